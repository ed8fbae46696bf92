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

/// The first 64 kB of the pid file at @p path. Empty when it is missing or no regular file: a pipe
/// without a writer would never answer.
QByteArray beginningOfPidFile(const QString &path);

/// The process id in the file at @p path; empty when it is missing or holds none.
std::optional<pid_t> readPidFile(const QString &path);

/// The text of the one character whose code is @p pid. Empty when that is the code of no character:
/// one of a pair of surrogates, or above 0x10ffff.
std::optional<QString> characterOfId(pid_t pid);

/// The PPP interface that a pid file with @p content names: the first "ppp" and digit. Empty when
/// none.
QString interfaceInPidFile(const QByteArray &content);

/// The PPP interface of the first of @p entries that is an interface's pid file. Empty when none
/// is.
QString interfaceOfPidFiles(const QStringList &entries);
