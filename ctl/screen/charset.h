// SPDX-License-Identifier: MIT
// The user's language and character set, from the environment.
#pragma once

#include <QByteArray>
#include <QString>

/// Whether the locale's character set is UTF-8.
bool isLocaleUtf8();

/// Whether it is one of one byte a character, such as ISO-8859-1. Where it is neither, as in the
/// locale "C", text passes as UTF-8.
bool isLocaleEightBit();

/// @p text in the locale's character set, with a question mark for what it has not got.
QByteArray toLocale(const QString &text);

/// Text that came from the terminal or the command line.
QString fromLocale(const QByteArray &bytes);

/// Whether messages stay as they are: scripts rely on it that the locale "C" means that, whatever
/// LANGUAGE says.
bool isLanguagePlain();
