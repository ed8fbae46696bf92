// SPDX-License-Identifier: MIT
// What the modem's driver tells of the line in sysfs.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>

namespace keeper {

/// What is missing was not told. Speedtch and drivers built by users tell only the first two.
struct LineQuality
{
    std::optional<bool> carrier;
    std::optional<double> downRate; ///< kbit/s
    std::optional<double> upRate;
    std::optional<double> downMargin; ///< dB
    std::optional<double> upMargin;
    std::optional<double> downAttenuation; ///< dB
    std::optional<double> upAttenuation;
    std::optional<double> downErrors; ///< since the line came up, that could not be corrected
    std::optional<double> upErrors;
};

/// Reads one attribute by its path below the device's folder; nothing when it is not there.
using AttributeReader = std::function<std::optional<QByteArray>(const char *attribute)>;

/// The line by the attributes of an ATM device of whatever driver.
LineQuality lineQuality(const AttributeReader &read);

/// The folder of ATM device 0, which a connection goes through, if it is a modem's; else empty.
QString atmDeviceFolder(const QString &folder = QStringLiteral("/sys/class/atm"));

/// Reads the attributes in @p folder: a few files of the kernel's memory, without waiting for the
/// modem.
LineQuality readLineQuality(const QString &folder);

} // namespace keeper
