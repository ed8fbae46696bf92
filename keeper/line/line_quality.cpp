// SPDX-License-Identifier: MIT
#include "keeper/line/line_quality.h"

#include <QDir>
#include <QFile>

namespace keeper {

namespace {

constexpr qint64 mostBytes = 256;

/// A decimal number, as cxacru writes it.
std::optional<double> decimal(const std::optional<QByteArray> &text)
{
    bool isNumber = false;
    const double value = text.value_or(QByteArray()).trimmed().toDouble(&isNumber);
    return isNumber ? std::optional<double>(value) : std::nullopt;
}

/// A hexadecimal number, as ueagle-atm writes it.
std::optional<double> hexadecimal(const std::optional<QByteArray> &text)
{
    bool isNumber = false;
    const uint value = text.value_or(QByteArray()).trimmed().toUInt(&isNumber, 16);
    return isNumber ? std::optional<double>(value) : std::nullopt;
}

void takeCxacru(const AttributeReader &read, LineQuality *line)
{
    line->downRate = decimal(read("device/downstream_rate"));
    line->upRate = decimal(read("device/upstream_rate"));
    line->downMargin = decimal(read("device/downstream_snr_margin"));
    line->upMargin = decimal(read("device/upstream_snr_margin"));
    line->downAttenuation = decimal(read("device/downstream_attenuation"));
    line->upAttenuation = decimal(read("device/upstream_attenuation"));
    line->downErrors = decimal(read("device/downstream_crc_errors"));
    line->upErrors = decimal(read("device/upstream_crc_errors"));
}

void takeUeagle(const AttributeReader &read, LineQuality *line)
{
    line->downRate = hexadecimal(read("device/stat_dsrate"));
    line->upRate = hexadecimal(read("device/stat_usrate"));
    line->downMargin = hexadecimal(read("device/stat_dsmargin"));
    line->upMargin = hexadecimal(read("device/stat_usmargin"));
    line->downAttenuation = hexadecimal(read("device/stat_dsattenuation"));
    line->upAttenuation = hexadecimal(read("device/stat_usattenuation"));
    line->downErrors = hexadecimal(read("device/stat_dsunc"));
    line->upErrors = hexadecimal(read("device/stat_usunc"));
}

} // namespace

LineQuality lineQuality(const AttributeReader &read)
{
    LineQuality line;
    if (const std::optional<double> carrier = decimal(read("carrier"))) {
        line.carrier = *carrier != 0;
    }
    if (read("device/downstream_rate")) {
        takeCxacru(read, &line);
    } else if (read("device/stat_dsrate")) {
        takeUeagle(read, &line);
    }
    if (!line.downRate) {
        if (const std::optional<double> rate = decimal(read("link_rate"))) {
            line.downRate = *rate / 1000;
        }
    }
    return line;
}

namespace {

QByteArray atmNumber(const QString &device)
{
    QFile file(device + QStringLiteral("/atmindex"));
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.read(mostBytes).trimmed()
                                                                  : QByteArray();
}

} // namespace

QString atmDeviceFolder(const QString &folder)
{
    const QDir devices(folder);
    for (const QString &name : devices.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        QString device = devices.filePath(name);
        // Those of modems hang on USB; the kernel's software devices hang on nothing. The daemon's
        // connection goes through the device with number 0: another one is none that it waits for.
        if (QFile::exists(device + QStringLiteral("/device")) && atmNumber(device) == "0") {
            return device;
        }
    }
    return QString();
}

LineQuality readLineQuality(const QString &folder)
{
    return lineQuality([&folder](const char *attribute) -> std::optional<QByteArray> {
        QFile file(folder + QLatin1Char('/') + QLatin1String(attribute));
        if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
            return std::nullopt;
        }
        return file.read(mostBytes);
    });
}

} // namespace keeper
