// SPDX-License-Identifier: MIT
#include "connection/connect_thread.h"

#include "connection/interface_flags.h"
#include "connection/line_state.h"
#include "connection/pppd_command.h"
#include "daemon/settings.h"
#include "dbus/modem_families.h"
#include "support/process/debug.h"
#include "support/process/my_process.h"
#include "support/process/programs.h"
#include "support/process/system_info.h"

#include <QEventLoop>
#include <QTimer>
#include <poll.h>

namespace {

constexpr int linePollMs = 5000;
constexpr int bridgeSettlingMs = 2000;
constexpr int ifconfigTimeoutMs = 30000;
constexpr int bridgingTimeoutMs = 5000;
constexpr int pppdTimeoutMs = 90000;

// How long a pppd that has just been killed may take to go before a new one is started.
constexpr int pppdEndingMs = 1000;

// How long a killall that still runs is waited for before a new pppd is started: longer than it
// has, but one that cannot be ended keeps nobody from connecting.
constexpr int killallEndingMs = 10000;

// Lines that may wait for the main thread before reading pauses.
constexpr int linesAhead = 256;

int counter = 0;

} // namespace

ConnectThread::ConnectThread(QSettings *settings, int (*getModemState)())
    : m_process(new MyProcess(nullptr))
    , m_getModemState(getModemState)
    , m_is32bit(Norvix::SystemInfo::getArchitecture() == QLatin1String("i386"))
    , m_settings(settings)
{
    m_environment = childEnvironment(QProcess::systemEnvironment(), m_is32bit);
    m_process->setEnvironment(m_environment);
    m_process->moveToThread(this);
    connect(m_process, &MyProcess::lineAvailable, this, &ConnectThread::debugMsg);
    connect(m_process, &MyProcess::lineAvailable, this, &ConnectThread::keepPaceWithReader,
        Qt::DirectConnection);
}

void ConnectThread::launch()
{
    m_process->moveToThread(this); // a pppd that outlived the last run was left to the main thread
    start(QThread::InheritPriority);
}

void ConnectThread::killPppd()
{
    m_process->kill();
}

void ConnectThread::waitBeforePppd(FileDescriptor killall)
{
    if (killall.isOpen()) {
        const std::lock_guard<std::mutex> lock(m_killallMutex);
        m_killall = std::move(killall);
    }
}

void ConnectThread::waitForKillall()
{
    FileDescriptor killall;
    {
        const std::lock_guard<std::mutex> lock(m_killallMutex);
        killall = std::move(m_killall);
    }
    if (killall.isOpen()) {
        pollfd end = {killall.get(), POLLIN, 0};
        poll(&end, 1, killallEndingMs);
    }
}

/// Lets the main thread catch up now and then, so that a pppd that floods its output fills its own
/// pipe and not our memory.
void ConnectThread::keepPaceWithReader()
{
    if (QThread::currentThread() == this && ++m_linesSent % linesAhead == 0) {
        QMetaObject::invokeMethod(
            this, [] {}, Qt::BlockingQueuedConnection);
    }
}

void ConnectThread::say(const char *operation, const QString &text)
{
    emit threadMessage(
        QStringLiteral("ConnectThread::%1(): %2").arg(QLatin1String(operation), text));
}

// What is printed here and in run() is how users' reports tell how far an attempt has come: the
// texts stay as they are.
bool ConnectThread::waitForSynchronization()
{
    printf("wFS(): counter == %i\n", counter);
    if (m_getModemState() == LineSynchronized) {
        puts("getModemState called");
        writeVerbose("ConnectThread::waitForSynchronization(): modem synchronized.\n");
        counter = 0;
        return true;
    }
    if (counter > 6) {
        writeVerbose(
            "ConnectThread::waitForSynchronization(): counter > 6, resetting and returning.\n");
        m_result = NotSynchronized;
        counter = 0;
        return false;
    }
    if (counter == 0) {
        writeVerbose("ConnectThread::waitForSynchronization(): counter == 0, emitting the "
                     "synchronizing signal.\n");
        emit synchronizing();
    }
    QEventLoop loop;
    QTimer::singleShot(linePollMs, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    ++counter;
    return waitForSynchronization();
}

void ConnectThread::prepareDSL0()
{
    prepareInterface("prepareDSL0", "dsl0");
}

void ConnectThread::prepareNAS0()
{
    prepareInterface("prepareNAS0", "nas0");
}

void ConnectThread::prepareInterface(const char *operation, const char *interface)
{
    const std::optional<bool> isUp = isInterfaceUp(interface);
    if (!isUp) {
        return;
    }
    const QString name = QString::fromLatin1(interface);
    if (*isUp) {
        say(operation, QStringLiteral("interface %1 is up.").arg(name));
        return;
    }
    say(operation, QStringLiteral("interface %1 is down.").arg(name));
    const ProgramResult ifconfig
        = runProgram(QStringLiteral("ifconfig"), {name, QStringLiteral("up")}, ifconfigTimeoutMs);
    say(operation,
        QStringLiteral("ifconfig %1 up: %2")
            .arg(name, QLatin1String(ifconfig.exitCode == 0 ? "success." : "failed!")));
}

void ConnectThread::prepareBridging()
{
    constexpr const char *operation = "prepareBridging";
    runProgram(
        QStringLiteral("modprobe"), {QStringLiteral("br2684")}, bridgingTimeoutMs, m_environment);

    const QString vci = readSettingText(m_settings, "vci", 0);
    const QString vpi = readSettingText(m_settings, "vpi", 0);
    const QString circuit = vpi + QLatin1Char('.') + vci;
    say(operation, QStringLiteral("VPI.VCI: ") + circuit);

    // Keeps the asymmetry: on 32-bit systems this installation's own one, elsewhere the first along
    // the path, so that one which an administrator has put before it counts.
    const QString bridge = m_is32bit ? QStringLiteral("/opt/norvix/bin/br2684ctl_i386")
                                     : QStringLiteral("br2684ctl_amd64");
    const ProgramResult br2684ctl = runProgram(bridge,
        {QStringLiteral("-b"), QStringLiteral("-c"), QStringLiteral("0"), QStringLiteral("-e"),
            QStringLiteral("0"), QStringLiteral("-a"), circuit},
        bridgingTimeoutMs, m_environment);
    qDebug("%lld ", br2684ctl.processId);
    say(operation,
        QLatin1String(br2684ctl.exitCode == 0 ? "br2684ctl: success." : "br2684ctl: failed!"));

    const auto addAddress = [this] {
        return runProgram(QStringLiteral("ip"),
            {QStringLiteral("addr"), QStringLiteral("add"), QStringLiteral("192.168.0.1/32"),
                QStringLiteral("dev"), QStringLiteral("nas0")},
            bridgingTimeoutMs, m_environment);
    };
    // Twice: the bridge daemon goes to the background before nas0 is sure to be there. Only the
    // second run is reported, which fails where the first one has set the address; who reads logs
    // knows that "failed!" as the usual outcome.
    addAddress();
    // The timer belongs to this thread: through the thread object, which lives on the main one, a
    // busy main thread would delay it.
    const QObject here;
    QTimer::singleShot(bridgeSettlingMs, Qt::PreciseTimer, &here, [this] { quit(); });
    exec();
    say(operation, QLatin1String(addAddress().exitCode == 0 ? "ip: success." : "ip: failed!"));
}

void ConnectThread::run()
{
    m_result = Ended;
    puts("ConnectThread::run()");
    if (!waitForSynchronization()) {
        say("run", QStringLiteral("modem synchronization failed, returning!"));
        m_result = NotSynchronized;
        return;
    }
    syncSettings(m_settings);

    QString peer = QStringLiteral("norvix");
    if (readSetting(m_settings, "vendor_id", 0).toInt() == unicornVendorId) {
        peer = QStringLiteral("norvix_unicorn");
        prepareDSL0();
    } else if (readSettingText(m_settings, "protocol", QStringLiteral("PPPoA"))
        == QLatin1String("PPPoE")) {
        prepareBridging();
        prepareNAS0();
    }
    m_arguments = pppdArguments(peer, readSetting(m_settings, "pppd_arguments").toStringList());

    if (m_process->state() != QProcess::NotRunning) {
        m_process->waitForFinished(pppdEndingMs);
    }
    waitForKillall();
    m_process->start(QStringLiteral("pppd"), m_arguments);
    if (m_process->waitForFinished(pppdTimeoutMs)) {
        return;
    }
    if (m_process->error() == QProcess::FailedToStart) {
        say("run", QStringLiteral("pppd: ") + m_process->errorString());
    } else if (m_process->state() != QProcess::NotRunning) {
        // This thread ends now. The main thread reads on, so that pppd never blocks on a full pipe.
        m_process->moveToThread(thread());
    }
}
