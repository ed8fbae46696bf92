// SPDX-License-Identifier: MIT
// Reads the kernel log and tells the line's state.
#include "daemon/norvix_daemon.h"

#include "connection/line_state.h"
#include "daemon/logging.h"
#include "daemon/settings.h"
#include "support/debug.h"

#include <sys/klog.h>

namespace {

constexpr int readWholeRing = 3; // SYSLOG_ACTION_READ_ALL: does not consume the log
constexpr int ringSize = 100000;

const char *traceOf(LineState state)
{
    switch (state) {
    case LineSynchronized:
        return "Norvix_Daemon::getModemState(): synchronized.";
    case LineSynchronizing:
        return "Norvix_Daemon::getModemState(): synchronizing.";
    case LineSyncFailed:
        return "Norvix_Daemon::getModemState(): synchronization failed";
    case LineBooting:
        return "Norvix_Daemon::getModemState(): booting";
    case LineError:
        return "Norvix_Daemon::getModemState(): error";
    case LineUnknown:
        break;
    }
    return nullptr;
}

void trace(const LineReport &report)
{
    for (int pass = 0; pass < report.passes; ++pass) {
        qDebug("i: %d ", pass);
    }
    const char *text = report.driverLineFound ? traceOf(report.state)
                                              : "Norvix_Daemon::getModemState(): idx < 0";
    if (debug && text != nullptr) {
        puts(text);
    }
}

} // namespace

int Norvix_Daemon::getModemState()
{
    const int vendorId = readSetting(settings(), "vendor_id", 0).toInt();

    // One zero byte more than is asked for: a full read has no end of its own.
    QByteArray ring(ringSize + 1, '\0');
    if (klogctl(readWholeRing, ring.data(), ringSize) <= 0) {
        appendToLog(QStringLiteral("Norvix_Daemon::getModemState(): klogctl() <= 0!"));
        return LineUnknown;
    }
    const LineReport report = lineStateFromLog(ring, vendorId);
    trace(report);
    return report.state;
}
