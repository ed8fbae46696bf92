// SPDX-License-Identifier: MIT
// Measures the line-state query on full kernel logs, the daemon's function beside the floor.
#include "bench/floor_line_state.h"
#include "connection/line_state.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

namespace {

constexpr int ringSize = 100000;

struct Family
{
    const char *name;
    int vendorId;
    const char *up; ///< a line that tells that the line is up
    const char *unknown; ///< a driver line that tells nothing
    const char *almost; ///< what begins like a driver line and is none
};

constexpr std::array<Family, 4> families = {{
    {"ueagle-atm", 0x1110, "usb 1-1: [ueagle-atm] modem operational",
        "usb 1-1: [ueagle-atm] device disconnected", "[ueagle-atm"},
    {"unicorn", 0x0483, "unicorn_msw: Current Modem State (1): SHOWTIME_L0",
        "unicorn_msw: Driver unloaded", "unicorn_msw "},
    {"speedtch", 0x06b9, "ATM dev 0: ADSL line is up (8128 kb/s down | 832 kb/s up)",
        "speedtch 1-1:1.0: found stage-1 firmware", "speedtch "},
    {"cxacru", 0x0572, "ATM dev 0: ADSL line: up", "ATM dev 0: channel analysis", "ATM dev "},
}};

/// A full ring of @p line, over and over.
QByteArray ringOf(const QByteArray &line)
{
    return QByteArray()
        .append((line + '\n').repeated(ringSize / (line.size() + 1) + 1))
        .left(ringSize);
}

QByteArray ring()
{
    return ringOf("[ 1234.567890] usb 1-1: new full-speed USB device number 5 using uhci_hcd");
}

/// @p log with @p text put at @p position, and the zero byte behind it that a query has.
QByteArray with(QByteArray log, const char *text, int position)
{
    log.replace(position, int(strlen(text)), text);
    return log + '\0';
}

double nowNs()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return double(time.tv_sec) * 1e9 + double(time.tv_nsec);
}

/// The median time of a call of @p query.
template <typename Query> double medianNs(Query query)
{
    std::vector<double> times;
    const double deadline = nowNs() + 1.5e8;
    while (times.size() < 15 || (nowNs() < deadline && times.size() < 1001)) {
        const double before = nowNs();
        query();
        times.push_back(nowNs() - before);
    }
    std::nth_element(times.begin(), times.begin() + long(times.size() / 2), times.end());
    return times[times.size() / 2];
}

void measure(const char *kind, const Family &family, const QByteArray &log)
{
    volatile int state = lineStateFromLog(log, family.vendorId).state;
    const int floorState = floor_line_state(log.constData(), size_t(log.size()), family.vendorId);
    if (state != floorState) {
        fprintf(
            stderr, "%s, %s: state %d, floor says %d\n", family.name, kind, int(state), floorState);
    }
    const double ours = medianNs([&] { state = lineStateFromLog(log, family.vendorId).state; });
    const double floor = medianNs(
        [&] { state = floor_line_state(log.constData(), size_t(log.size()), family.vendorId); });
    printf("%s|%s|%.0f|%.0f\n", kind, family.name, ours, floor);
}

} // namespace

/// Prints "kind|family|nanoseconds of ours|nanoseconds of the floor" for each case.
int main()
{
    for (const Family &family : families) {
        measure("typical", family, with(ring(), family.up, ringSize - 3000));
        measure("first line only", family, with(ring(), family.up, 0));
        measure("last line unknown", family, with(ring(), family.unknown, ringSize - 100));
        measure("no driver line", family, with(ring(), "", 0));
        measure("many that are almost one", family, with(ringOf(family.almost), "", 0));
        measure("many driver lines", family, with(ringOf(family.up), "", 0));
    }
    return 0;
}
