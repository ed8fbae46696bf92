// SPDX-License-Identifier: MIT
// The daemon's settings file, read and written beside the daemon.
#pragma once

#include "client/failure.h"

#include <QMap>
#include <QString>
#include <QVariant>

/// Path of the daemon's settings file.
QString settingsPath();

/// Whether the file exists and this user may read it.
bool canReadSettings();

/// The text of a key, @p fallback when the key is missing or the file is not readable.
QString settingText(const char *key, const QString &fallback = QString());

/// A key as a whole number, 0 when missing.
int settingNumber(const char *key);

/// Stores the values in the file, keeping the other keys, the owner and the mode. The daemon reads
/// them when it next looks at the file.
Failure writeSettings(const QMap<QString, QVariant> &values);
