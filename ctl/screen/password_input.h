// SPDX-License-Identifier: MIT
// Reading a line without showing it.
#pragma once

#include <QString>
#include <optional>

/// Asks on the terminal of standard input with the echo off; nothing at the end of input.
std::optional<QString> askHidden(const QString &question);

/// Asks on the terminal of standard input.
std::optional<QString> askVisible(const QString &question);

/// All of standard input but one closing line feed, of at most 4096 bytes.
QString restOfInput();
