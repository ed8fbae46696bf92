// SPDX-License-Identifier: MIT
// The daemon's face on the bus.
#pragma once

#include "introspection.h" // made from com.norvix.Daemon.xml

#include <QDBusAbstractAdaptor>
#include <QString>
#include <QStringList>

/// Forwards each bus method to the parent's slot of the same name and relays the parent's signals.
/// Holds no state. Main thread only. A slot that cannot be invoked answers with its type's default.
class DaemonAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.norvix.Daemon")
    Q_CLASSINFO("D-Bus Introspection", NORVIX_INTROSPECTION)

public:
    explicit DaemonAdaptor(QObject *parent);

public slots:
    void establishConnection();
    bool getConnectAtBoot();
    bool getConnectAtModemPlug();
    int getConnectionState();
    QString getDefaultRoute();
    int getIdlenessTime();
    QString getInterface();
    QString getIP();
    QString getIP(const QString &interface);
    bool getIsCompiling();
    bool getIsModemPlugged();
    QStringList getLoginAndPassword();
    QString getProtocol();
    QString getService();
    QString getVCI();
    QString getVPI();
    bool reply();
    void restartModem();
    void setAccountData(const QString &login, const QString &password);
    void setConnectAtBoot(bool connect);
    void setConnectAtModemPlug(bool connect);
    void setIdlenessTime(int idleness);
    void terminateConnection();
    void useNewModem();

signals:
    void accountDataChanged(bool success);
    void compilationFinished(bool success);
    void compilingDriver();
    void connectionEstablished();
    void connectionState(int state);
    void connectionTerminated();
    void connectionTime(int h, int m, int s);
    void connectionTimeout();
    void defaultRoute(QString iface);
    void establishingConnection();
    void incorrectDNS();
    void invalidAccountData();
    void IP(QString ip);
    void modemPlugged(QString name);
    void modemUnplugged();
    void newModemPlugged(QString name);
    void newModemUnplugged();
    void restartModemFinished();
    void restartModemStarted();
    void setEnabledConnect(bool enable);
    void settingOpenDNS(bool success);
    void synchronizationFailed();
    void synchronizing();
    void transmissionBytes(double rx, double tx);
    void transmissionErrors(uint rx, uint tx);
    void transmissionSpeed(uint rx, uint tx);

private:
    template <typename Result, typename... Arguments>
    Result forward(const char *slot, const Arguments &...arguments);
    template <typename... Arguments>
    void forwardCall(const char *slot, const Arguments &...arguments);
};
