// SPDX-License-Identifier: MIT
// Pid files, and the interface names in and around them.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <sys/types.h>

/// The process id on the first line of @p content. Empty when that is no decimal number above 1
/// that fits a process id: 0, 1 and negative numbers mean process groups, init or everybody to
/// kill().
std::optional<pid_t> parsePid(const QByteArray &content);

/// The process id in the file at @p path; empty when it is missing or holds none.
std::optional<pid_t> readPidFile(const QString &path);

/// The PPP interface that a pid file with @p content names: the first "ppp" and digit. Empty when
/// none.
QString interfaceInPidFile(const QByteArray &content);

/// The PPP interface of the first of @p entries that is an interface's pid file. Empty when none
/// is.
QString interfaceOfPidFiles(const QStringList &entries);
