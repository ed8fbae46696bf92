// SPDX-License-Identifier: MIT
// The log files: the main log and the daily log.
#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

/// The main log's path, /opt/norvix/daemon.log.
QString mainLogPath();

/// Begins a fresh main log.
void removeMainLog();

/// A connection attempt begins. Of each attempt the log keeps the first and the last megabyte; one
/// that holds a megabyte of older ones is put aside as daemon.log.1, the one before that as
/// daemon.log.2. Any thread.
void beginLogAttempt();

/// What a client sent, as it may stand in a log line: its first 256 characters, those that control
/// a terminal or end a line written as \uXXXX. All else is unchanged.
QString loggable(const QString &foreign);

/// Qt's messages: printed on standard output with "Debug: " or "Fatal: " before them, and appended
/// to the main log. A fatal message then ends the process, but not when the log cannot be opened.
/// Any thread.
void debugHandler(QtMsgType type, const char *msg);

/// Makes debugHandler() receive every message of Qt in the process.
void installDebugHandler();

/// Appends "dd-MM-yyyy hh:mm:ss @p msg" to the main log in UTF-8, and prints it on standard output
/// when `debug` is set. A log that cannot be opened is skipped silently. Any thread.
void appendToLog(const QString &msg);

/// The same for bytes that may be no text: they stand in the log as they are.
void appendBytesToLog(const QByteArray &msg);

/// Appends "dd.MM.yyyy hh:mm:ss: @p msg" to today's file under /var/log/norvix, which is made when
/// missing. Failures are silent. Main thread.
void appendToDailyLog(const QString &msg);
