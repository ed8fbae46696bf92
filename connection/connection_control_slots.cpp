// SPDX-License-Identifier: MIT
// Starting, following and ending a connection.
#include "daemon/norvix_daemon.h"

#include "connection/connect_thread.h"
#include "connection/line_state.h"
#include "connection/pid_file.h"
#include "connection/pppd_line.h"
#include "daemon/logging.h"
#include "support/process/debug.h"
#include "support/process/programs.h"
#include "support/resolver/interface_address.h"

#include <QTimer>
#include <csignal>

namespace {

constexpr int killTimeoutMs = 500;
constexpr int killallGraceMs = 5000;

/// The note on a line that is not up. It says "returning", yet the connection goes on: the thread
/// waits for the line by itself.
const char *noteOnLine(int lineState)
{
    switch (LineState(lineState)) {
    case LineSynchronizing:
        return "Modem is synchronizing, returning...";
    case LineSyncFailed:
        return "Modem synchronization failed, returning...";
    case LineError:
        return "Modem driver returned error, returning...";
    case LineUnknown:
        return "Modem state is unknown, returning...";
    case LineSynchronized:
    case LineBooting:
        break;
    }
    return nullptr;
}

/// The bare number is all that the log tells of a step; users' reports are read by it.
void traceStep(int step)
{
    qDebug("%d ", step);
}

/// Kills the process whose id the file at @p path holds, unless it is one that took over the id of
/// @p pppd, which a crash had left in the file.
void killProcessOf(const QString &path, const std::optional<ProcessIdentity> &pppd)
{
    const std::optional<pid_t> pid = readPidFile(path);
    if (pid && !isTakenOver(*pid, pppd)) {
        qDebug("pid: %d ", int(*pid));
        kill(*pid, SIGKILL);
    }
}

} // namespace

void Norvix_Daemon::establishConnection()
{
    if (m_connectThread->isRunning()) {
        writeLog(QStringLiteral("Can not establish connection, thread is still running!"));
        return;
    }
    if (getConnectionState() == ConnectionUp && debug) {
        puts("Norvix_Daemon::establishConnection(): already connected...");
    }
    if (const char *note = noteOnLine(getModemState())) {
        puts(note);
    }
    m_connecting = true;
    m_connectThread->launch();
}

void Norvix_Daemon::connectingStarted()
{
    m_connecting = true;
    emit setEnabledConnect(false);
    emit establishingConnection();
}

void Norvix_Daemon::connectingFinished()
{
    m_connecting = false;
    emit setEnabledConnect(true);
    switch (static_cast<ConnectThread::Result>(m_connectThread->result())) {
    case ConnectThread::NotSynchronized:
        emit synchronizationFailed();
        break;
    case ConnectThread::TimedOut:
        emit connectionTimeout();
        break;
    case ConnectThread::Ended:
        break;
    }
    emit connectionState(getConnectionState());
}

/// The end of a pppd that outlived its thread, perhaps while it was dialling again. While a thread
/// runs, its own end decides.
void Norvix_Daemon::pppdEnded()
{
    if (!m_connectThread->isRunning()) {
        m_connecting = false;
    }
}

void Norvix_Daemon::debugConnecting(const QByteArray &msg)
{
    // Before all else, so that the log tells the line's effects after the line. As it is: what the
    // far end sent may be no text.
    appendBytesToLog("Norvix_Daemon::debugConnecting(): " + msg);
    switch (classifyPppdLine(msg, m_connectRegExp, m_localIpRegExp, m_authFailedRegExp)) {
    case PppdEvent::None:
        break;
    case PppdEvent::Link:
        qDebug("%s", "connectingRegExp");
        m_connecting = true;
        m_statisticsTimer->stop();
        break;
    case PppdEvent::LocalAddress:
        // In this order: at the first signal clients forget the last link's address and route, and
        // the resolver is checked; the next two tell the new ones.
        emit connectionEstablished();
        emit IP(getIP(QString()));
        emit defaultRoute(getDefaultRoute());
        m_connecting = false;
        m_pppd.reset(); // who wrote this line is running, whatever is known of its id
        getConnectionTime();
        m_statisticsTimer->start();
        break;
    case PppdEvent::AuthenticationFailed:
        m_connecting = false;
        m_connectThread->killPppd();
        emit invalidAccountData();
        break;
    case PppdEvent::DiscoveryTimeout:
        m_connectThread->killPppd();
        m_connecting = false;
        emit connectionTimeout();
        break;
    }
}

int Norvix_Daemon::getConnectionState()
{
    if (m_connecting) {
        return ConnectionConnecting;
    }
    const QString address = firstAddressOf(getInterface()).value_or(QString());
    return address.isEmpty() ? ConnectionDown : ConnectionUp;
}

void Norvix_Daemon::terminateConnection()
{
    traceStep(1);
    killProcessOf(QStringLiteral("/var/run/ppp-norvix.pid"), m_pppd);

    traceStep(2);
    if (const std::optional<pid_t> bridge = readPidFile(QStringLiteral("/var/run/nas0.pid"))) {
        // Keeps the odd argument: the character with the id's code, not its digits. The bridge
        // daemon writes another file, so that this one's id may be anybody's by now; what ends the
        // bridge is the killall below.
        if (const std::optional<QString> character = characterOfId(*bridge)) {
            // "0" is every process of the caller's group: kill has one of its own.
            runProgramInOwnGroup(
                QStringLiteral("kill"), {QStringLiteral("-9"), *character}, killTimeoutMs);
        }
    }

    traceStep(3);
    removePidFiles();
    emit connectionTerminated();
    m_statisticsTimer->stop();

    traceStep(4);
    // A late one is not ended at once: without a pid file nothing else ends pppd, and a busy
    // machine is where it is late. The next connection waits for it, so that its pppd is never the
    // victim.
    ProgramResult killall = runProgramWithGrace(QStringLiteral("killall"),
        {QStringLiteral("-9"), QStringLiteral("pppd"), QStringLiteral("br2684ctl_amd64"),
            QStringLiteral("br2684ctl_i386")},
        killTimeoutMs, killallGraceMs);
    m_connectThread->waitBeforePppd(std::move(killall.leftBehind));

    traceStep(5);
    puts("Norvix_Daemon::terminateConnection()");
    killProcessOf(QStringLiteral("/var/run/") + getInterface() + QStringLiteral(".pid"), m_pppd);
    m_pppd.reset();
}
