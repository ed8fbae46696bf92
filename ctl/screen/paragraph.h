// SPDX-License-Identifier: MIT
// Text as it gets to a terminal: in lines of its width, with nothing in it that steers.
#pragma once

#include <QString>
#include <QStringList>

/// @p text cut at blanks into lines of at most @p width characters; a longer word stays whole.
/// Line feeds in the text stay. Every line but the first is indented by @p indent blanks.
QStringList wrapped(const QString &text, int width, int indent = 0);

/// @p text with every character that steers a terminal replaced by a visible one; line feeds,
/// tabulators and @p ours stay.
QString printableLines(const QString &text, const QStringList &ours = QStringList());
