// SPDX-License-Identifier: MIT
// The connection's interface, pid files and elapsed time.
#include "daemon/norvix_daemon.h"

#include "connection/elapsed_time.h"
#include "connection/pid_file.h"
#include "support/process/debug.h"
#include "support/process/programs.h"

#include <QDir>
#include <QFile>
#include <QTimer>

namespace {

const QString runFolder = QStringLiteral("/var/run/");
const QString linknamePidFile = QStringLiteral("/var/run/ppp-norvix.pid");

constexpr int psTimeoutMs = 2000;
constexpr int longestPsLine = 49;

QString interfaceOfLinknamePidFile()
{
    return interfaceInPidFile(beginningOfPidFile(linknamePidFile));
}

/// What ps prints as the elapsed time of @p pid, its first line only.
QString elapsedTimeText(pid_t pid)
{
    const QStringList arguments = {QStringLiteral("-p"), QString::number(uint(pid)),
        QStringLiteral("-o"), QStringLiteral("etime=")};
    const QByteArray output
        = runProgram(QStringLiteral("ps"), arguments, psTimeoutMs, QStringList(), longestPsLine)
              .output;
    return QString::fromLatin1(output.split('\n').constFirst().constData());
}

} // namespace

QString Norvix_Daemon::getInterface()
{
    QString interface = interfaceOfLinknamePidFile();
    if (interface.isEmpty()) {
        interface = interfaceOfPidFiles(QDir(runFolder).entryList());
    }
    if (interface.isEmpty()) {
        if (debug) {
            puts("Norvix_Daemon::getInterface(): returning default (ppp0)");
        }
        interface = QStringLiteral("ppp0");
    }
    return interface;
}

void Norvix_Daemon::removePidFiles()
{
    const QString interfacePidFile = runFolder + getInterface() + QStringLiteral(".pid");
    QFile::remove(linknamePidFile);
    QFile::remove(interfacePidFile);
}

QTime Norvix_Daemon::getConnectionTime()
{
    std::optional<pid_t> pid = readPidFile(linknamePidFile);
    if (!pid) {
        pid = readPidFile(runFolder + getInterface() + QStringLiteral(".pid"));
    }
    if (pid && !m_pppd) {
        m_pppd = identityOf(*pid);
    }
    const std::optional<QTime> elapsed
        = pid ? parseElapsedTime(elapsedTimeText(*pid)) : std::nullopt;
    if (!elapsed) {
        if (debug) {
            puts("Norvix_Daemon::getConnectionTime(): returning QTime()!");
        }
        m_connectionTimeRetry->start();
    }
    m_connectionTime = elapsed.value_or(QTime());
    return m_connectionTime;
}
