// SPDX-License-Identifier: MIT
// The central object: all state, all threads, all wiring. Its start and its logs are in
// norvix_daemon.cpp, every slot is in a file of its concern's room whose name ends in _slots.cpp.
#pragma once

#include "connection/process_identity.h"
#include "daemon/announcements.h"
#include "daemon/hal_proxy.h"
#include "daemon/hal_silence.h"
#include "daemon/modem_catalogue.h"
#include "dbus/contract.h"
#include "network/traffic_meter.h"
#include "support/resolver/dns_manager.h"

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QRegExp>
#include <QStringList>
#include <QTime>
#include <optional>

class CompilerThread;
class ConnectThread;
class QTimer;
class RestartModem;

class Norvix_Daemon : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.norvix.Daemon")

public:
    /// Does the whole start-up. May wait for a driver build, serving bus calls meanwhile; ends the
    /// process with status 1 or 2 when the bus refuses the registration.
    explicit Norvix_Daemon(QObject *parent = nullptr);
    ~Norvix_Daemon() override;

    /// The line's state from the kernel log, a LineState as integer. Any thread.
    static int getModemState();

    /// The modem that useNewModem() would take into use with its own identifier; without a name
    /// when there is none, or when another device has been looked at since.
    AnnouncedModem announcedModem() const;

    /// Appends a connection fact to today's file under /var/log/norvix.
    void writeDailyLog(const QString &msg);

signals:
    Q_SCRIPTABLE void transmissionSpeed(uint rx, uint tx); ///< bytes per second
    Q_SCRIPTABLE void transmissionErrors(uint rx, uint tx);
    Q_SCRIPTABLE void transmissionBytes(double rx, double tx);
    Q_SCRIPTABLE void IP(QString ip);
    Q_SCRIPTABLE void defaultRoute(QString iface);
    Q_SCRIPTABLE void connectionTime(int h, int m, int s);
    Q_SCRIPTABLE void modemPlugged(QString name);
    Q_SCRIPTABLE void newModemPlugged(QString name);
    Q_SCRIPTABLE void modemUnplugged();
    Q_SCRIPTABLE void newModemUnplugged();
    Q_SCRIPTABLE void incorrectDNS();
    Q_SCRIPTABLE void settingOpenDNS(bool success);
    Q_SCRIPTABLE void connectionEstablished();
    Q_SCRIPTABLE void connectionTerminated();
    Q_SCRIPTABLE void establishingConnection();
    Q_SCRIPTABLE void setEnabledConnect(bool enable);
    Q_SCRIPTABLE void connectionState(int state);
    Q_SCRIPTABLE void connectionTimeout();
    Q_SCRIPTABLE void restartModemStarted();
    Q_SCRIPTABLE void restartModemFinished();
    Q_SCRIPTABLE void accountDataChanged(bool success);
    Q_SCRIPTABLE void compilingDriver();
    Q_SCRIPTABLE void compilationFinished(bool success);
    Q_SCRIPTABLE void synchronizing();
    Q_SCRIPTABLE void synchronizationFailed();
    Q_SCRIPTABLE void invalidAccountData();

public slots:
    // The methods of the bus, in the order of the interface description.
    QString getIP(QString interface = QString());
    QString getDefaultRoute();
    void setConnectAtBoot(bool connect);
    void setConnectAtModemPlug(bool connect);
    void establishConnection();
    void terminateConnection();
    void restartModem();
    void setIdlenessTime(int idleness);
    void useNewModem();
    void setAccountData(const QString &login, const QString &password);
    bool getIsModemPlugged();
    bool getIsCompiling();
    bool getConnectAtBoot();
    bool getConnectAtModemPlug();
    bool reply();
    QString getVPI();
    QString getVCI();
    QString getProtocol();
    QString getService();
    QString getInterface();
    int getConnectionState();
    int getIdlenessTime();
    QStringList getLoginAndPassword();

private slots:
    void connectingStarted();
    void connectingFinished();
    void writeLog(const QString &str);
    void deviceAdded(const QString &udi);
    void deviceRemoved(const QString &udi);
    void verifyDevice();
    void verifyDNS();
    void getTransmissionStatistics(QString interface = QString());
    QTime getConnectionTime();
    void debugConnecting(const QByteArray &msg);
    void compilationFinished();
    void compilationStarted();

private:
    // Start-up
    void startLog();
    void checkPolicyFile();
    void registerOnBus();
    void registerSetup();
    void wireWorkers();
    void testModemDriver();
    void connectAtBoot();
    void subscribeToHal();
    void wireTimers();
    void setPppdPatterns();
    void adoptRunningConnection();

    void pppdEnded();
    void initModemsMap();
    void setOpenDNS();
    void removePidFiles();

    // Detection. Where HAL leaves the question open, the answer is false and the question is to be
    // asked again once HAL answers.
    void askNext();
    bool acceptDevice(const QString &udi);
    bool examineDevice();

    // Bus and HAL
    QDBusConnection m_connection;
    HalProxy m_halManager;
    HalProxy m_halDevice;
    HalSilence m_listSilence; ///< about the list of devices
    HalSilence m_deviceSilence; ///< about the properties of a device

    // The line and the connection
    QRegExp m_localIpRegExp;
    QRegExp m_connectRegExp;
    QRegExp m_authFailedRegExp;
    bool m_connecting = false;
    ConnectThread *m_connectThread = nullptr;
    std::optional<ProcessIdentity> m_pppd; ///< as first read from its pid file
    QTime m_connectionTime; ///< elapsed time; invalid while unknown
    QTimer *m_connectionTimeRetry; ///< asks again every second while the time is unknown

    // Detection
    QString m_addedUdi = QStringLiteral("...");
    QString m_verifiedUdi = QStringLiteral("#");
    QString m_newModemName;
    qint32 m_newVendorId = 0;
    qint32 m_newProductId = 0;
    QString m_announcedUdi; ///< whose announcement the three above come from
    bool m_modemPlugged = false;
    QTimer *m_verifyTimer;
    Announcements m_announcements;
    QTimer *m_askTimer; ///< lets bus calls in between two announcements
    QList<ModemInfo> m_modems;

    // Traffic
    QTimer *m_statisticsTimer;
    TrafficMeter m_trafficMeter;

    // Resolver configuration
    DNS_Manager m_dnsManager;

    // Driver
    CompilerThread *m_compilerThread;
    RestartModem *m_restartThread = nullptr;
    bool m_isCompiling = false;
};
