// SPDX-License-Identifier: MIT
// Start-up of the central object, and what belongs to no single room.
#include "daemon/norvix_daemon.h"

#include "connection/connect_thread.h"
#include "connection/pppd_line.h"
#include "daemon/logging.h"
#include "daemon/settings.h"
#include "daemon/setup.h"
#include "dbus/daemon_adaptor.h"
#include "driver/compiler_thread.h"
#include "driver/restart_modem.h"
#include "support/files/settings_text.h"
#include "support/process/debug.h"
#include "support/process/my_process.h"

#include <QDBusError>
#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <cstdlib>

namespace {

constexpr int statisticsIntervalMs = 1000;
constexpr int connectionTimeRetryMs = 1000;

constexpr int serviceRefusedStatus = 1;
constexpr int objectRefusedStatus = 2;

const char halManagerInterface[] = "org.freedesktop.Hal.Manager";

/// The default timer of the library is coarse: a second would last 1050 ms.
QTimer *preciseTimer(int intervalMs)
{
    auto *timer = new QTimer;
    timer->setTimerType(Qt::PreciseTimer);
    timer->setInterval(intervalMs);
    return timer;
}

QString constructorText(const QString &text)
{
    return QStringLiteral("NorvixDaemon::NorvixDaemon(): ") + text;
}

} // namespace

Norvix_Daemon::Norvix_Daemon(QObject *parent)
    : QObject(parent)
    , m_connection(QDBusConnection::systemBus())
    , m_halManager(
          QStringLiteral("/org/freedesktop/Hal/Manager"), halManagerInterface, m_connection)
    , m_halDevice(
          QStringLiteral("/org/freedesktop/Hal/Device"), "org.freedesktop.Hal.Device", m_connection)
    , m_listSilence(m_connection)
    , m_deviceSilence(m_connection)
    , m_connectionTimeRetry(preciseTimer(connectionTimeRetryMs))
    , m_verifyTimer(preciseTimer(0))
    , m_askTimer(preciseTimer(0))
    , m_statisticsTimer(preciseTimer(statisticsIntervalMs))
    , m_compilerThread(new CompilerThread(this, QString(), nullptr))
{
    m_connectionTimeRetry->setSingleShot(true);
    connect(m_connectionTimeRetry, &QTimer::timeout, this, &Norvix_Daemon::getConnectionTime);

    startLog();
    new DaemonAdaptor(this);
    checkPolicyFile();
    registerOnBus();
    m_modemPlugged = getIsModemPlugged();
    wireWorkers();
    initModemsMap();
    testModemDriver();
    connectAtBoot();
    m_verifyTimer->setSingleShot(true);
    connect(m_verifyTimer, &QTimer::timeout, this, &Norvix_Daemon::verifyDevice);
    m_askTimer->setSingleShot(true);
    connect(m_askTimer, &QTimer::timeout, this, &Norvix_Daemon::askNext);
    connect(&m_deviceSilence, &HalSilence::ended, this, &Norvix_Daemon::askNext);
    subscribeToHal();
    wireTimers();
    setPppdPatterns();
    getModemState();
    adoptRunningConnection();
}

// Leaves the threads, the timers and the service name alone: the process ends right after.
Norvix_Daemon::~Norvix_Daemon() = default;

void Norvix_Daemon::startLog()
{
    removeMainLog();
    writeLog(constructorText(QStringLiteral("ctor invoked.")));
    const QStringList keys = settings()->allKeys();
    for (const QString &key : keys) {
        const QString value = settingAsText(settings()->value(key));
        writeLog(constructorText(QStringLiteral("daemon.ini: %1 = %2").arg(key, value)));
    }
    logSettingsTrouble();
}

void Norvix_Daemon::checkPolicyFile()
{
    // The message promises more than is done: the policy file is the installer's job.
    const bool exists = QFile::exists(QStringLiteral("/etc/dbus-1/system.d/norvix.conf"));
    writeLog(constructorText(exists
            ? QStringLiteral("norvix.conf exists.")
            : QStringLiteral("norvix.conf does not exist! Creating a new one...")));
}

void Norvix_Daemon::registerOnBus()
{
    writeLog(constructorText(m_connection.isConnected()
            ? QStringLiteral("successfully connected to DBus.")
            : QStringLiteral("failed to connect to DBus!")));

    if (!m_connection.registerService(QLatin1String(Bus::service))) {
        writeLog(constructorText(QStringLiteral("failed to register the service!")));
        writeLog(constructorText(m_connection.lastError().message()));
        puts("NorvixDaemon::NorvixDaemon(): Failed to register the service!");
        exit(serviceRefusedStatus);
    }
    if (!m_connection.registerObject(
            QLatin1String(Bus::daemonPath), this, QDBusConnection::ExportAdaptors)) {
        writeLog(constructorText(QStringLiteral("failed to register the object!")));
        writeLog(constructorText(m_connection.lastError().message()));
        if (!debug) {
            fputs("Failed to register the object!\n", stderr);
        }
        exit(objectRefusedStatus);
    }
    registerSetup();
}

void Norvix_Daemon::registerSetup()
{
    // Beside the object above, whose interface stays as its clients know it.
    auto *object = new QObject(this);
    new SetupAdaptor(object,
        {[this] { return announcedModem(); },
            [this](const QString &login, const QString &password) {
                bool isStored = false;
                const auto outcome = connect(this, &Norvix_Daemon::accountDataChanged, this,
                    [&isStored](bool success) { isStored = success; });
                setAccountData(login, password);
                disconnect(outcome);
                return isStored;
            }});
    if (!m_connection.registerObject(
            QLatin1String(Bus::setupPath), object, QDBusConnection::ExportAdaptors)) {
        writeLog(constructorText(QStringLiteral("failed to register the setup object!")));
    }
}

void Norvix_Daemon::wireWorkers()
{
    m_restartThread = new RestartModem(settings(), nullptr);
    connect(m_restartThread, &QThread::started, this, &Norvix_Daemon::restartModemStarted);
    connect(m_restartThread, &QThread::finished, this, &Norvix_Daemon::restartModemFinished);

    m_connectThread = new ConnectThread(settings(), &Norvix_Daemon::getModemState);
    connect(m_connectThread, &QThread::started, this, &beginLogAttempt);
    connect(m_connectThread, &QThread::finished, this, &Norvix_Daemon::connectingFinished);
    connect(m_connectThread, &QThread::started, this, &Norvix_Daemon::connectingStarted);
    connect(m_connectThread, &ConnectThread::synchronizing, this, &Norvix_Daemon::synchronizing);
    connect(m_connectThread, &ConnectThread::threadMessage, this, &Norvix_Daemon::writeLog);
    connect(m_connectThread, &ConnectThread::debugMsg, this, &Norvix_Daemon::debugConnecting);
    qRegisterMetaType<QProcess::ExitStatus>(); // from the thread it comes queued
    connect(m_connectThread->pppd(), QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
        this, &Norvix_Daemon::pppdEnded);

    // By name: the signal compilationFinished(bool) has the same one.
    connect(m_compilerThread, SIGNAL(finished()), this, SLOT(compilationFinished()));
    connect(m_compilerThread, SIGNAL(started()), this, SLOT(compilationStarted()));
}

void Norvix_Daemon::initModemsMap()
{
    if (debug) {
        puts("Norvix_Daemon::initModemsMap(): begin...");
    }
    m_modems = modemCatalogue();
    if (debug) {
        puts("Norvix_Daemon::initModemsMap(): end...");
    }
}

void Norvix_Daemon::testModemDriver()
{
    // The odd words on standard output are what start scripts and guides look for: which modem was
    // found, and that a build has begun.
    const int productId = readSetting(settings(), "product_id", 0).toInt();
    const int vendorId = readSetting(settings(), "vendor_id", 0).toInt();
    for (const ModemInfo &modem : qAsConst(m_modems)) {
        printf("it: %s\n", modem.name.toLocal8Bit().constData());
        if (modem.ids.contains(vendorId, productId)) {
            puts("oook");
            m_compilerThread->setDriverName(modem.driver);
            break;
        }
    }

    const int code = m_compilerThread->testDriver();
    if (code == 0) {
        return;
    }
    QEventLoop loop;
    connect(m_compilerThread, &QThread::finished, &loop, &QEventLoop::quit);
    writeLog(QStringLiteral("Norvix_Daemon::Norvix_Daemon: modem's driver test failed with code: ")
        + QString::number(code));
    m_compilerThread->start(QThread::InheritPriority);
    puts("sssssss");
    loop.exec(); // bus calls are served meanwhile
}

void Norvix_Daemon::connectAtBoot()
{
    if (m_modemPlugged && getConnectAtBoot() && getConnectionState() == ConnectionDown) {
        writeLog(QStringLiteral("Norvix_Daemon(): modem is plugged in, connect at boot."));
        establishConnection();
    }
}

void Norvix_Daemon::subscribeToHal()
{
    // Any sender and any path; the bus policy lets only HAL's broadcasts through.
    const QString interface = QString::fromLatin1(halManagerInterface);
    m_connection.connect(QString(), QString(), interface, QStringLiteral("DeviceAdded"), this,
        SLOT(deviceAdded(QString)));
    m_connection.connect(QString(), QString(), interface, QStringLiteral("DeviceRemoved"), this,
        SLOT(deviceRemoved(QString)));
}

void Norvix_Daemon::wireTimers()
{
    connect(m_statisticsTimer, SIGNAL(timeout()), this, SLOT(getTransmissionStatistics()));
    connect(this, &Norvix_Daemon::connectionEstablished, this, &Norvix_Daemon::verifyDNS);
    connect(this, SIGNAL(connectionEstablished()), m_statisticsTimer, SLOT(start()));
    connect(this, &Norvix_Daemon::connectionTerminated, m_statisticsTimer, &QTimer::stop);
}

void Norvix_Daemon::setPppdPatterns()
{
    m_localIpRegExp = localAddressPattern();
    m_connectRegExp = linkPattern();
    m_authFailedRegExp = authenticationFailedPattern();
}

void Norvix_Daemon::adoptRunningConnection()
{
    if (getConnectionState() != ConnectionUp) {
        return;
    }
    writeDailyLog(QStringLiteral("Registered IP: ") + getIP(QString()));
    getConnectionTime();
    m_statisticsTimer->start();
}

void Norvix_Daemon::writeLog(const QString &str)
{
    appendToLog(str);
}

void Norvix_Daemon::writeDailyLog(const QString &msg)
{
    appendToDailyLog(msg);
}

bool Norvix_Daemon::reply()
{
    return true;
}
