// SPDX-License-Identifier: MIT
#include "connection/line_state.h"

#include <QRegExp>
#include <QString>
#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
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
    /// What every match of the marker looks like, one or the other: eight or more literal
    /// characters, then '0' is any digit and '?' any character.
    std::array<std::string_view, 2> shapes;
    const char *synchronized;
    const char *synchronizing;
    const char *booting;
    const char *error;
};

// clang-format off
constexpr std::array<DriverFamily, 4> driverFamilies = {{
    {0x1110, R"(\[ueagle-atm\])", {"[ueagle-atm]", "[ueagle-atm]"},
     R"(\[ueagle-atm\] modem operational)",
     nullptr,
     R"((\[ueagle-atm\] \(re\)booting started)|(\[ueagle-atm\] Modem started, waiting synchronization))",
     nullptr},
    {0x0483, R"(unicorn_msw:)", {"unicorn_msw:", "unicorn_msw:"},
     R"((unicorn_msw: Current Modem State \(\d\): SHOWTIME_L\d)|(unicorn_msw: Event Reported \(\d\): Showtime))",
     nullptr,
     R"((unicorn_msw: Current Modem State \(\d\): ACTIVATING)|(unicorn_msw: Event Reported \(\d\): Initializing)|(unicorn_msw: Current Modem State \(\d\): INITIALIZING)|(unicorn_msw: Current Modem State \(\d\): Ghs_HANDSHAKING))",
     nullptr},
    // The bare bar in the first state is an alternation; its second half can never match at a marker.
    {0x06b9, R"((ATM dev \d:)|(speedtch \d-\d:\d.\d:))", {"ATM dev 0:", "speedtch 0-0:0?0:"},
     R"(ATM dev \d: ADSL line is up \(([0-9]{1,5}) kb/s down | ([0-9]{1,5}) kb/s up\))",
     R"(ATM dev \d: ADSL line is synchronising)",
     nullptr,
     R"(speedtch \d-\d:\d.\d: speedtch_heavy_init: firmware upload failed)"},
    {0, R"(ATM dev \d:)", {"ATM dev 0:", "ATM dev 0:"},
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

/// Whether @p text begins as @p shape, in which '0' is any digit and '?' any character.
bool beginsLike(std::string_view text, std::string_view shape)
{
    return text.size() >= shape.size()
        && std::equal(shape.begin(), shape.end(), text.begin(), [](char wanted, char found) {
               return wanted == '0' ? found >= '0' && found <= '9'
                                    : wanted == '?' || wanted == found;
           });
}

/// Eight characters, to be compared in one go.
quint64 eightCharacters(const char *text)
{
    quint64 characters = 0;
    memcpy(&characters, text, sizeof(characters));
    return characters;
}

/// The position of the last driver line. One look backwards over the bytes for the marker's shapes,
/// which takes the same time whatever the log holds; the pattern itself, run over a whole log,
/// takes many times as long. It still has the last word.
std::optional<size_t> lastDriverLine(std::string_view log, const DriverFamily &family)
{
    const auto &[shape, otherShape] = family.shapes;
    const quint64 head = eightCharacters(shape.data());
    const quint64 otherHead = eightCharacters(otherShape.data());
    for (size_t end = log.size(); end >= sizeof(head); --end) {
        const size_t index = end - sizeof(head);
        const std::string_view rest = log.substr(index);
        const quint64 here = eightCharacters(rest.data());
        const bool fits = (here == head && beginsLike(rest, shape))
            || (here == otherHead && beginsLike(rest, otherShape));
        if (fits && matchesAtStart(family.marker, beginningOfLine(log, index))) {
            return index;
        }
    }
    return std::nullopt;
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
    report.passes = 1;
    const std::optional<size_t> index = lastDriverLine(log, family);
    if (!index) {
        return report;
    }
    report.driverLineFound = true;
    report.state = stateOfLine(beginningOfLine(log, *index), family);
    if (report.state == LineUnknown) {
        // Keeps the found position as the next start: every pass finds the same line again, so only
        // the last driver line decides, however clear an earlier one was.
        report.passes = maxPasses;
    }
    return report;
}
