// SPDX-License-Identifier: MIT
#include "connection/line_state.h"

#include "dbus/modem_families.h"

#include <QRegExp>
#include <QString>
#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string_view>

namespace {

// All patterns match within this many characters, so that one line's beginning is enough to test.
constexpr int longestMatch = 256;

/// The lines of one driver. An empty state pattern is one that the driver never writes.
struct DriverFamily
{
    int vendorId;
    /// Any line of the driver has one or the other: '0' is any digit, '?' any character. No
    /// pattern, because a pattern's search from the end takes ten times as long.
    std::array<std::string_view, 2> markers;
    const char *synchronized;
    const char *synchronizing;
    const char *booting;
    const char *error;
};

// clang-format off
constexpr std::array<DriverFamily, 4> driverFamilies = {{
    {eagleVendorId, {"[ueagle-atm]", {}},
     R"(\[ueagle-atm\] modem operational)",
     nullptr,
     R"((\[ueagle-atm\] \(re\)booting started)|(\[ueagle-atm\] Modem started, waiting synchronization))",
     nullptr},
    {unicornVendorId, {"unicorn_msw:", {}},
     R"((unicorn_msw: Current Modem State \(\d\): SHOWTIME_L\d)|(unicorn_msw: Event Reported \(\d\): Showtime))",
     nullptr,
     R"((unicorn_msw: Current Modem State \(\d\): ACTIVATING)|(unicorn_msw: Event Reported \(\d\): Initializing)|(unicorn_msw: Current Modem State \(\d\): INITIALIZING)|(unicorn_msw: Current Modem State \(\d\): Ghs_HANDSHAKING))",
     nullptr},
    // The bare bar in the first state is an alternation; its second half can never match at a marker.
    {speedtouchVendorId, {"ATM dev 0:", "speedtch 0-0:0?0:"},
     R"(ATM dev \d: ADSL line is up \(([0-9]{1,5}) kb/s down | ([0-9]{1,5}) kb/s up\))",
     R"(ATM dev \d: ADSL line is synchronising)",
     nullptr,
     R"(speedtch \d-\d:\d.\d: speedtch_heavy_init: firmware upload failed)"},
    {0, {"ATM dev 0:", {}},
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

/// Where @p marker stands for the last time in @p log.
std::optional<size_t> lastMarker(std::string_view log, std::string_view marker)
{
    const auto *hit = std::find_end(
        log.begin(), log.end(), marker.begin(), marker.end(), [](char found, char wanted) {
            return found == wanted || wanted == '?'
                || (wanted == '0' && found > '0' && found <= '9');
        });
    return hit == log.end() ? std::nullopt : std::optional<size_t>(hit - log.begin());
}

/// The position of the last driver line.
std::optional<size_t> lastDriverLine(std::string_view log, const DriverFamily &family)
{
    const auto &[marker, other] = family.markers;
    const std::optional<size_t> last = lastMarker(log, marker);
    // No position is less than any.
    return other.empty() ? last : std::max(last, lastMarker(log, other));
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
        kernelLog.constData(), strnlen(kernelLog.constData(), size_t(kernelLog.size())));
    const DriverFamily &family = familyOf(vendorId);

    LineReport report;
    if (const std::optional<size_t> index = lastDriverLine(log, family)) {
        report.driverLineFound = true;
        report.state = stateOfLine(beginningOfLine(log, *index), family);
    }
    return report;
}
