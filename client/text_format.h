// SPDX-License-Identifier: MIT
// Numbers and paragraphs as a person reads them.
#pragma once

#include <QString>
#include <QStringList>

/// @p bytes with a decimal unit ("1.5 MB"), in the language's own notation.
QString bytesText(double bytes);

/// A speed in bytes per second with its unit ("12.3 kB/s").
QString rateText(double bytesPerSecond);

/// @p seconds as hours, minutes and seconds ("01:02:03"); hours may pass 99.
QString clockText(qint64 seconds);

/// @p text cut at blanks into lines of at most @p width characters; a longer word stays whole.
/// Line feeds in the text stay. Every line but the first is indented by @p indent blanks.
QStringList wrapped(const QString &text, int width, int indent = 0);

/// @p text with every control character replaced by a visible one, so that foreign text can not
/// steer the terminal.
QString printable(const QString &text);
