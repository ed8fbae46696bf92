// SPDX-License-Identifier: MIT
// The tables of the history, and how an older file becomes a newer one.
#pragma once

#include <QByteArray>
#include <array>

namespace keeper {

/// One after the other: the n-th makes version n + 1 of a file of version n. What has been shipped
/// stays as it is; a change is one more.
constexpr std::array<const char *, 1> migrations = {
    R"(
CREATE TABLE session (id INTEGER PRIMARY KEY, began INTEGER NOT NULL, ended INTEGER,
  seen INTEGER NOT NULL, seconds INTEGER NOT NULL DEFAULT 0, reason TEXT, interface TEXT NOT NULL,
  address TEXT NOT NULL, received INTEGER NOT NULL DEFAULT 0, sent INTEGER NOT NULL DEFAULT 0,
  boot TEXT NOT NULL, number INTEGER NOT NULL);
CREATE TABLE attempt (id INTEGER PRIMARY KEY, first INTEGER NOT NULL, last INTEGER NOT NULL,
  count INTEGER NOT NULL, reason TEXT NOT NULL, after INTEGER NOT NULL);
CREATE TABLE line (span INTEGER NOT NULL, time INTEGER NOT NULL, carrier REAL,
  down_rate REAL, up_rate REAL, down_margin REAL, up_margin REAL,
  down_attenuation REAL, up_attenuation REAL, down_errors REAL, up_errors REAL,
  PRIMARY KEY (span, time)) WITHOUT ROWID;
CREATE TABLE traffic (day TEXT PRIMARY KEY, received INTEGER NOT NULL, sent INTEGER NOT NULL)
  WITHOUT ROWID;
CREATE TABLE counter (boot TEXT NOT NULL, number INTEGER NOT NULL, received INTEGER NOT NULL,
  sent INTEGER NOT NULL, PRIMARY KEY (boot, number)) WITHOUT ROWID;
)"};

constexpr int schemaVersion = int(migrations.size());

/// The version that the first bytes of a file tell; 0 when they are no database's.
int versionInHeader(const QByteArray &fileBegin);

} // namespace keeper
