// SPDX-License-Identifier: MIT
// A stand-in for the central object: the same signals, and slots that only note their calls.
#pragma once

#include <QByteArrayList>
#include <QObject>
#include <QStringList>

class FakeDaemon : public QObject
{
    Q_OBJECT

public:
    QByteArrayList calls; ///< "name(arguments)"

signals:
    void transmissionSpeed(uint rx, uint tx);
    void transmissionErrors(uint rx, uint tx);
    void transmissionBytes(double rx, double tx);
    void IP(QString ip);
    void defaultRoute(QString iface);
    void connectionTime(int h, int m, int s);
    void modemPlugged(QString name);
    void newModemPlugged(QString name);
    void modemUnplugged();
    void newModemUnplugged();
    void incorrectDNS();
    void settingOpenDNS(bool success);
    void connectionEstablished();
    void connectionTerminated();
    void establishingConnection();
    void setEnabledConnect(bool enable);
    void connectionState(int state);
    void connectionTimeout();
    void restartModemStarted();
    void restartModemFinished();
    void accountDataChanged(bool success);
    void compilingDriver();
    void compilationFinished(bool success);
    void synchronizing();
    void synchronizationFailed();
    void invalidAccountData();
    void notOnTheBus(int number);

public slots:
    QString getIP(QString interface = QString()) { return text("getIP", interface); }
    QString getDefaultRoute() { return text("getDefaultRoute"); }
    void setConnectAtBoot(bool connect) { note("setConnectAtBoot", connect ? "true" : "false"); }
    void setConnectAtModemPlug(bool connect)
    {
        note("setConnectAtModemPlug", connect ? "true" : "false");
    }
    void establishConnection() { note("establishConnection"); }
    void terminateConnection() { note("terminateConnection"); }
    void restartModem() { note("restartModem"); }
    void setIdlenessTime(int idleness) { note("setIdlenessTime", QByteArray::number(idleness)); }
    void useNewModem() { note("useNewModem"); }
    void setAccountData(QString login, QString password)
    {
        note("setAccountData", (login + QLatin1Char('|') + password).toUtf8());
    }
    bool getIsModemPlugged() { return note("getIsModemPlugged"); }
    bool getIsCompiling() { return note("getIsCompiling"); }
    bool getConnectAtBoot() { return note("getConnectAtBoot"); }
    bool getConnectAtModemPlug() { return note("getConnectAtModemPlug"); }
    bool reply() { return note("reply"); }
    QString getVPI() { return text("getVPI"); }
    QString getVCI() { return text("getVCI"); }
    QString getProtocol() { return text("getProtocol"); }
    QString getService() { return text("getService"); }
    QString getInterface() { return text("getInterface"); }
    int getConnectionState() { return note("getConnectionState") ? 42 : 0; }
    int getIdlenessTime() { return note("getIdlenessTime") ? 42 : 0; }
    QStringList getLoginAndPassword()
    {
        note("getLoginAndPassword");
        return {QStringLiteral("login"), QStringLiteral("pass word")};
    }

private:
    bool note(const char *name, const QByteArray &arguments = QByteArray())
    {
        calls.append(QByteArray(name) + '(' + arguments + ')');
        return true;
    }

    QString text(const char *name, const QString &argument = QString())
    {
        note(name, argument.toUtf8());
        return QStringLiteral("%1 of <%2>").arg(QLatin1String(name), argument);
    }
};
