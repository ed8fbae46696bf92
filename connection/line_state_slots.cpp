// SPDX-License-Identifier: MIT
// Reads the kernel log and tells the line's state.
#include "daemon/norvix_daemon.h"

#include "connection/line_state.h"
#include "daemon/logging.h"
#include "daemon/settings.h"
#include "support/process/debug.h"

#include <sys/klog.h>
#include <sys/mman.h>

namespace {

constexpr int readWholeRing = 3; // SYSLOG_ACTION_READ_ALL: does not consume the log
constexpr int ringSize = 100000;

constexpr int maxPasses = 5;

/// Memory full of zeros that goes back to the system. From the heap, so much of it would stay with
/// the process for ever, between two questions a day.
class ZeroedPages
{
public:
    explicit ZeroedPages(size_t size)
        : m_size(size)
        , m_pages(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
    }
    ~ZeroedPages()
    {
        if (m_pages != MAP_FAILED) {
            munmap(m_pages, m_size);
        }
    }
    Q_DISABLE_COPY_MOVE(ZeroedPages)

    /// Null when the system has no memory to give.
    char *data() const { return m_pages == MAP_FAILED ? nullptr : static_cast<char *>(m_pages); }

private:
    size_t m_size;
    void *m_pages;
};

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
    // Every further pass would find the same last driver line again, so it is examined once: only
    // the last one decides, however clear an earlier one was. What is left of the passes is their
    // trace.
    const int passes = report.driverLineFound && report.state == LineUnknown ? maxPasses : 1;
    for (int pass = 0; pass < passes; ++pass) {
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
    const ZeroedPages ring(ringSize + 1);
    if (ring.data() == nullptr || klogctl(readWholeRing, ring.data(), ringSize) <= 0) {
        appendToLog(QStringLiteral("Norvix_Daemon::getModemState(): klogctl() <= 0!"));
        return LineUnknown;
    }
    const LineReport report
        = lineStateFromLog(QByteArray::fromRawData(ring.data(), ringSize + 1), vendorId);
    trace(report);
    return report.state;
}
