// SPDX-License-Identifier: MIT
// Numbers as a person reads them, and foreign text that can do no harm.
#pragma once

#include <QString>
#include <optional>

/// @p bytes with a decimal unit ("1.5 MB"), in the language's own notation.
QString bytesText(double bytes);

/// A speed in bytes per second with its unit ("12.3 kB/s").
QString rateText(double bytesPerSecond);

/// @p seconds as hours, minutes and seconds ("01:02:03"); hours may pass 99.
QString clockText(qint64 seconds);

/// A time in seconds since 1970 as local date and time ("2026-11-21 14:05:00").
QString momentText(qint64 time);

/// The same in the form of ISO 8601, with the distance from UTC.
QString momentIso(qint64 time);

/// The bytes of a text such as "50GB", "1.5 TB" or "700 kB", with the units of bytesText(); nothing
/// for anything else, and for less than a byte.
std::optional<quint64> bytesFromText(const QString &text);

/// Whether a character steers a terminal or changes the order in which others are shown, so that it
/// may not get out as it came in: controls, those of the upper half too, and bidirectional ones.
bool isSteering(QChar character);

/// @p text with every such character replaced by a visible one; line feeds and tabulators, too.
QString printable(const QString &text);
