// SPDX-License-Identifier: MIT
// The central object: all state, all threads, all wiring. Its slots are implemented in the room of
// their concern; the file is named beside each group.
#pragma once

#include "connection/process_identity.h"
#include "daemon/announcements.h"
#include "daemon/hal_proxy.h"
#include "daemon/hal_silence.h"
#include "daemon/modem_catalogue.h"
#include "dbus/contract.h"
#include "network/traffic_meter.h"
#include "support/dns_manager.h"

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

/// A new modem that was announced and is there: what useNewModem() would take into use.
struct AnnouncedModem
{
    QString name; ///< empty: none
    int vendorId = 0;
    int productId = 0;
    QString udi;
};

class Norvix_Daemon : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.norvix.Daemon")

public:
    /// Does the whole start-up (daemon/norvix_daemon.cpp). May wait for a driver build, serving bus
    /// calls meanwhile; ends the process with status 1 or 2 when the bus refuses the registration.
    explicit Norvix_Daemon(QObject *parent = nullptr);
    ~Norvix_Daemon() override;

    /// The line's state from the kernel log, a LineState as integer. Any thread.
    static int getModemState(); // connection/modem_state.cpp

    /// The modem that useNewModem() would take into use with its own identifier; without a name
    /// when there is none, or when another device has been looked at since.
    AnnouncedModem announcedModem() const; // daemon/modem_detection.cpp

    /// Appends a connection fact to today's file under /var/log/norvix.
    void writeDailyLog(const QString &msg); // daemon/norvix_daemon.cpp

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
    QString getIP(QString interface = QString()); // network/network_status.cpp
    QString getDefaultRoute(); // network/network_status.cpp
    void setConnectAtBoot(bool connect); // daemon/settings_methods.cpp
    void setConnectAtModemPlug(bool connect); // daemon/settings_methods.cpp
    void establishConnection(); // connection/connection_control.cpp
    void terminateConnection(); // connection/connection_control.cpp
    void restartModem(); // driver/modem_restart.cpp
    void setIdlenessTime(int idleness); // daemon/settings_methods.cpp
    void useNewModem(); // daemon/modem_detection.cpp
    void setAccountData(const QString &login, const QString &password); // network/account.cpp
    bool getIsModemPlugged(); // daemon/modem_detection.cpp
    bool getIsCompiling(); // driver/driver_build.cpp
    bool getConnectAtBoot(); // daemon/settings_methods.cpp
    bool getConnectAtModemPlug(); // daemon/settings_methods.cpp
    bool reply(); // daemon/norvix_daemon.cpp
    QString getVPI(); // daemon/settings_methods.cpp
    QString getVCI(); // daemon/settings_methods.cpp
    QString getProtocol(); // daemon/settings_methods.cpp
    QString getService(); // daemon/settings_methods.cpp
    QString getInterface(); // connection/connection_facts.cpp
    int getConnectionState(); // connection/connection_control.cpp
    int getIdlenessTime(); // daemon/settings_methods.cpp
    QStringList getLoginAndPassword(); // network/account.cpp

private slots:
    void connectingStarted(); // connection/connection_control.cpp
    void connectingFinished(); // connection/connection_control.cpp
    void writeLog(const QString &str); // daemon/norvix_daemon.cpp
    void deviceAdded(const QString &udi); // daemon/modem_detection.cpp
    void deviceRemoved(const QString &udi); // daemon/modem_detection.cpp
    void verifyDevice(); // daemon/modem_detection.cpp
    void verifyDNS(); // network/dns_check.cpp
    void getTransmissionStatistics(QString interface = QString()); // network/network_status.cpp
    QTime getConnectionTime(); // connection/connection_facts.cpp
    void debugConnecting(const QByteArray &msg); // connection/connection_control.cpp
    void compilationFinished(); // driver/driver_build.cpp
    void compilationStarted(); // driver/driver_build.cpp

private:
    // Start-up: daemon/norvix_daemon.cpp
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

    void pppdEnded(); // connection/connection_control.cpp
    void initModemsMap(); // daemon/norvix_daemon.cpp
    void setOpenDNS(); // network/dns_check.cpp
    void removePidFiles(); // connection/connection_facts.cpp

    // Detection: daemon/modem_detection.cpp. Where HAL leaves the question open, the answer is
    // false and the question is to be asked again once HAL answers.
    void askNext();
    bool acceptDevice(const QString &udi);
    bool examineDevice();

    // Bus and HAL: daemon/norvix_daemon.cpp, daemon/modem_detection.cpp
    QDBusConnection m_connection;
    HalProxy m_halManager;
    HalProxy m_halDevice;
    HalSilence m_listSilence; ///< about the list of devices
    HalSilence m_deviceSilence; ///< about the properties of a device

    // The line and the connection: connection/connection_control.cpp,
    // connection/connection_facts.cpp
    QRegExp m_localIpRegExp;
    QRegExp m_connectRegExp;
    QRegExp m_authFailedRegExp;
    bool m_connecting = false;
    ConnectThread *m_connectThread = nullptr;
    std::optional<ProcessIdentity> m_pppd; ///< as first read from its pid file
    QTime m_connectionTime; ///< elapsed time; invalid while unknown
    QTimer *m_connectionTimeRetry; ///< asks again every second while the time is unknown

    // Detection: daemon/modem_detection.cpp
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

    // Traffic: network/network_status.cpp
    QTimer *m_statisticsTimer;
    TrafficMeter m_trafficMeter;

    // Resolver configuration: network/dns_check.cpp
    DNS_Manager m_dnsManager;

    // Driver: driver/driver_build.cpp, driver/modem_restart.cpp
    CompilerThread *m_compilerThread;
    RestartModem *m_restartThread = nullptr;
    bool m_isCompiling = false;
};
