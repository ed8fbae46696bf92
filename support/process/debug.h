// SPDX-License-Identifier: MIT
// The debug switch and the verbose log, shared by the program and the library.
#pragma once

#include <QString>
#include <cstdio>

/// Verbose console output. Set by the command-line switches only; read everywhere.
extern bool debug;

/// The verbose log stream, open for appending, or null when it could not be opened.
/// Written by the connection thread only.
extern FILE *pFile;

/// Opens the verbose log at @p path when @p enable is true, closes it otherwise. Leaves `debug`
/// alone: if it copied its flag there, the command-line switches would change nothing. A file that
/// cannot be opened leaves `pFile` null and is no error.
void setDebug(bool enable, const QString &path);

/// Appends @p text to the verbose log when `debug` is set and the log is open.
void writeVerbose(const char *text);
