// SPDX-License-Identifier: MIT
#include "client/line_log.h"

#include "client/say.h"

#include <QRegularExpression>
#include <vector>

namespace {

struct Phrase
{
    const char *text;
    Line line;
};

// What a line must contain to tell something, in the drivers' own words.
const std::vector<Phrase> &phrases()
{
    static const std::vector<Phrase> table = {
        {"[ueagle-atm] modem operational", Line::Up},
        {"[ueagle-atm] modem started, waiting synchronization", Line::Synchronising},
        {"[ueagle-atm] Modem started, waiting synchronization", Line::Synchronising},
        {"[ueagle-atm] (re)booting started", Line::Booting},
        {"[ueagle-atm] pre-firmware device, uploading firmware", Line::Booting},
        {"[ueagle-atm] modem synchronization failed", Line::Down},
        {"[ueagle-atm] ADSL device removed", Line::Down},
        {"failed to load ueagle-atm/", Line::FirmwareFailed},
        {"ADSL line is up", Line::Up},
        {"ADSL line is synchronising", Line::Synchronising},
        {"DSL line goes up", Line::Synchronising},
        {"ADSL line is down", Line::Down},
        {"DSL line goes down", Line::Down},
        {"firmware upload failed", Line::FirmwareFailed},
        {"no stage 1 firmware found", Line::FirmwareFailed},
        {"no stage 2 firmware found", Line::FirmwareFailed},
        {"ADSL line: up", Line::Up},
        {"ADSL line: attempting to activate", Line::Synchronising},
        {"ADSL line: training", Line::Synchronising},
        {"ADSL line: channel analysis", Line::Synchronising},
        {"ADSL line: exchange", Line::Synchronising},
        {"ADSL line: waiting", Line::Synchronising},
        {"ADSL line: initializing", Line::Booting},
        {"ADSL line: down", Line::Down},
        {"SHOWTIME_L", Line::Up},
        {": Showtime", Line::Up},
        {"unicorn_msw: Current Modem State", Line::Synchronising},
        {"unicorn_msw: Event Reported", Line::Synchronising},
    };
    return table;
}

bool isDriverLine(const QByteArray &line)
{
    for (const char *marker :
        {"[ueagle-atm]", "ueagle-atm/", "ATM dev ", "speedtch ", "unicorn_msw:"}) {
        if (line.contains(marker)) {
            return true;
        }
    }
    return false;
}

std::optional<LineStatus> statusOf(const QByteArray &line)
{
    if (!isDriverLine(line)) {
        return std::nullopt;
    }
    for (const Phrase &phrase : phrases()) {
        if (!line.contains(phrase.text)) {
            continue;
        }
        LineStatus status;
        status.line = phrase.line;
        // With its size: the short form would end at a NUL byte.
        status.driverLine = QString::fromUtf8(line.constData(), line.size());
        static const QRegularExpression rates(
            QStringLiteral("\\((\\d{1,6}) kb/s down \\| (\\d{1,6}) kb/s up\\)"));
        const QRegularExpressionMatch match = rates.match(status.driverLine);
        if (match.hasMatch()) {
            status.downKbit = match.captured(1).toInt();
            status.upKbit = match.captured(2).toInt();
        }
        return status;
    }
    return std::nullopt;
}

} // namespace

LineStatus lineFromKernelLog(const QByteArray &log)
{
    std::optional<LineStatus> newest;
    int end = log.size();
    while (end > 0) {
        const int start = log.lastIndexOf('\n', end - 1) + 1;
        const auto status = statusOf(log.mid(start, end - start).trimmed());
        end = start - 1;
        if (!status) {
            continue;
        }
        // A modem without its firmware starts over and over again: what it lacks is the news.
        if (status->line == Line::FirmwareFailed || !newest) {
            newest = status;
        }
        if (newest->line != Line::Booting || status->line != Line::Booting) {
            break;
        }
    }
    return newest.value_or(LineStatus());
}

QString lineWord(Line line)
{
    switch (line) {
    case Line::Up:
        return QStringLiteral("up");
    case Line::Synchronising:
        return QStringLiteral("synchronising");
    case Line::Booting:
        return QStringLiteral("booting");
    case Line::Down:
        return QStringLiteral("down");
    case Line::FirmwareFailed:
        return QStringLiteral("firmware-failed");
    case Line::Unknown:
        break;
    }
    return QStringLiteral("unknown");
}

QString lineText(const LineStatus &status)
{
    switch (status.line) {
    case Line::Up:
        if (!status.downKbit) {
            return Say::tr("synchronised");
        }
        return status.upKbit ? Say::tr("synchronised, %1 kbit/s down, %2 kbit/s up")
                                   .arg(*status.downKbit)
                                   .arg(*status.upKbit)
                             : Say::tr("synchronised, %1 kbit/s down").arg(*status.downKbit);
    case Line::Synchronising:
        return Say::tr("synchronising");
    case Line::Booting:
        return Say::tr("modem is starting");
    case Line::Down:
        return Say::tr("no synchronisation");
    case Line::FirmwareFailed:
        return Say::tr("the modem's firmware could not be loaded");
    case Line::Unknown:
        break;
    }
    return Say::tr("unknown");
}
