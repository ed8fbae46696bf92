// SPDX-License-Identifier: MIT
// Numbers as a person reads them, and foreign text that can do no harm.
#pragma once

#include <QString>

/// @p bytes with a decimal unit ("1.5 MB"), in the language's own notation.
QString bytesText(double bytes);

/// A speed in bytes per second with its unit ("12.3 kB/s").
QString rateText(double bytesPerSecond);

/// @p seconds as hours, minutes and seconds ("01:02:03"); hours may pass 99.
QString clockText(qint64 seconds);

/// Whether a character steers a terminal or changes the order in which others are shown, so that it
/// may not get out as it came in: controls, those of the upper half too, and bidirectional ones.
bool isSteering(QChar character);

/// @p text with every such character replaced by a visible one; line feeds and tabulators, too.
QString printable(const QString &text);
