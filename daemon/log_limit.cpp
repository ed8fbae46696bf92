// SPDX-License-Identifier: MIT
#include "daemon/log_limit.h"

namespace {

// More than what stays, so that thinning is rare.
constexpr qint64 thinnedAbove = 3 * LogLimit::keptBytes;

} // namespace

void LogLimit::begin(qint64 size)
{
    *this = LogLimit();
    m_attempt = size;
}

bool LogLimit::isExceeded(qint64 size) const
{
    return size - m_attempt > thinnedAbove && size >= m_notBefore;
}

QByteArray LogLimit::thinned(const QByteArray &log, const QByteArray &stamp)
{
    if (m_headEnd == 0) {
        m_headEnd = m_attempt + keptBytes;
        const qint64 lastLineEnd = log.lastIndexOf('\n', int(m_headEnd) - 1);
        if (lastLineEnd >= m_attempt) {
            m_headEnd = lastLineEnd + 1;
        }
    }
    qint64 tailStart = log.size() - keptBytes;
    const qint64 lineEnd = log.indexOf('\n', int(tailStart) - 1);
    if (lineEnd >= 0 && lineEnd + 1 < log.size()) {
        tailStart = lineEnd + 1;
    }
    m_missing += tailStart - m_headEnd;
    return log.left(int(m_headEnd)) + stamp
        + "Norvix_Daemon::writeLog(): " + QByteArray::number(m_missing)
        + " bytes of this attempt are left out here.\n" + log.mid(int(tailStart));
}
