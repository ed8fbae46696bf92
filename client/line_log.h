// SPDX-License-Identifier: MIT
// What the modem drivers' lines in the kernel log say about the ADSL line.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

enum class Line
{
    Up,
    Synchronising,
    Booting,
    Down,
    FirmwareFailed,
    Unknown,
};

struct LineStatus
{
    Line line = Line::Unknown;
    std::optional<int> downKbit; ///< kbit/s, where the driver names it
    std::optional<int> upKbit;
    QString driverLine; ///< the line that decided; empty when there is none
};

/// The newest telling line of any known driver decides; other lines of the drivers are passed over.
LineStatus lineFromKernelLog(const QByteArray &log);

/// The state as its word in machine-readable output.
QString lineWord(Line line);

/// The state in the user's language, with the rates where they are known.
QString lineText(const LineStatus &status);
