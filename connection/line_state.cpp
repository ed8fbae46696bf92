// SPDX-License-Identifier: MIT
#include "connection/line_state.h"

#include <QRegExp>
#include <QString>
#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

constexpr int maxPasses = 5;

// All patterns match within this many characters, so that one line's beginning is enough to test.
constexpr int longestMatch = 256;

/// The lines of one driver. An empty state pattern is one that the driver never writes.
struct DriverFamily
{
    int vendorId;
    const char *marker; ///< finds any line of the driver
    std::array<const char *, 2> heads; ///< how every match of the marker begins, to find it fast
    const char *synchronized;
    const char *synchronizing;
    const char *booting;
    const char *error;
};

// clang-format off
constexpr std::array<DriverFamily, 4> driverFamilies = {{
    {0x1110, R"(\[ueagle-atm\])", {"[ueagle-atm]", nullptr},
     R"(\[ueagle-atm\] modem operational)",
     nullptr,
     R"((\[ueagle-atm\] \(re\)booting started)|(\[ueagle-atm\] Modem started, waiting synchronization))",
     nullptr},
    {0x0483, R"(unicorn_msw:)", {"unicorn_msw:", nullptr},
     R"((unicorn_msw: Current Modem State \(\d\): SHOWTIME_L\d)|(unicorn_msw: Event Reported \(\d\): Showtime))",
     nullptr,
     R"((unicorn_msw: Current Modem State \(\d\): ACTIVATING)|(unicorn_msw: Event Reported \(\d\): Initializing)|(unicorn_msw: Current Modem State \(\d\): INITIALIZING)|(unicorn_msw: Current Modem State \(\d\): Ghs_HANDSHAKING))",
     nullptr},
    // The bare bar in the first state is an alternation; its second half can never match at a marker.
    {0x06b9, R"((ATM dev \d:)|(speedtch \d-\d:\d.\d:))", {"ATM dev ", "speedtch "},
     R"(ATM dev \d: ADSL line is up \(([0-9]{1,5}) kb/s down | ([0-9]{1,5}) kb/s up\))",
     R"(ATM dev \d: ADSL line is synchronising)",
     nullptr,
     R"(speedtch \d-\d:\d.\d: speedtch_heavy_init: firmware upload failed)"},
    {0, R"(ATM dev \d:)", {"ATM dev ", nullptr},
     R"(ATM dev \d: ADSL line: up)",
     R"(ATM dev \d: ADSL line: attempting to activate)",
     R"(ATM dev \d: ADSL line: initializing)",
     nullptr},
}};
// clang-format on

const DriverFamily &familyOf(int vendorId)
{
    const auto *hit = std::find_if(driverFamilies.begin(), driverFamilies.end() - 1,
        [=](const DriverFamily &family) { return family.vendorId == vendorId; });
    return *hit;
}

bool matchesAtStart(const char *pattern, const QString &text)
{
    return pattern != nullptr && QRegExp(QString::fromLatin1(pattern)).indexIn(text) == 0;
}

QString beginningOfLine(std::string_view log, size_t index)
{
    const std::string_view line = log.substr(index, longestMatch);
    return QString::fromLatin1(line.data(), int(line.size()));
}

/// The position of the last driver line: found by the marker's literal head, which is many times
/// faster than running the pattern backwards over the whole log, and confirmed by the marker
/// itself.
size_t lastDriverLine(std::string_view log, const DriverFamily &family)
{
    size_t last = std::string_view::npos;
    for (const char *head : family.heads) {
        if (head == nullptr) {
            continue;
        }
        size_t index = log.rfind(head);
        while (index != std::string_view::npos
            && !matchesAtStart(family.marker, beginningOfLine(log, index))) {
            index = index == 0 ? std::string_view::npos : log.rfind(head, index - 1);
        }
        if (index != std::string_view::npos && (last == std::string_view::npos || index > last)) {
            last = index;
        }
    }
    return last;
}

/// The state that one driver line tells, tested in the order that decides when several would match.
LineState stateOfLine(const QString &line, const DriverFamily &family)
{
    if (matchesAtStart(family.synchronized, line)) {
        return LineSynchronized;
    }
    if (matchesAtStart(family.synchronizing, line)) {
        return LineSynchronizing;
    }
    if (matchesAtStart(family.booting, line)) {
        return LineBooting;
    }
    if (matchesAtStart(family.error, line)) {
        return LineError;
    }
    return LineUnknown;
}

} // namespace

LineReport lineStateFromLog(const QByteArray &kernelLog, int vendorId)
{
    const std::string_view log(
        kernelLog.constData(), qstrnlen(kernelLog.constData(), uint(kernelLog.size())));
    const DriverFamily &family = familyOf(vendorId);

    LineReport report;
    report.passes = 1;
    const size_t index = lastDriverLine(log, family);
    if (index == std::string_view::npos) {
        return report;
    }
    report.driverLineFound = true;
    report.state = stateOfLine(beginningOfLine(log, index), family);
    if (report.state == LineUnknown) {
        // Keeps the found position as the next start: every pass finds the same line again, so only
        // the last driver line decides, however clear an earlier one was.
        report.passes = maxPasses;
    }
    return report;
}
