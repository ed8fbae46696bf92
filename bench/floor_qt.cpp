// SPDX-License-Identifier: MIT
// Floor of a Qt service: the daemon's 24 methods and 26 signals, forwarded by name and relayed,
// with nothing behind them.
#include "bench/emission.h"

#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

// The same in the object and in its adaptor.
#define FLOOR_SIGNALS                                                                              \
    void accountDataChanged(bool);                                                                 \
    void compilationFinished(bool);                                                                \
    void compilingDriver();                                                                        \
    void connectionEstablished();                                                                  \
    void connectionState(int);                                                                     \
    void connectionTerminated();                                                                   \
    void connectionTime(int, int, int);                                                            \
    void connectionTimeout();                                                                      \
    void defaultRoute(QString);                                                                    \
    void establishingConnection();                                                                 \
    void incorrectDNS();                                                                           \
    void invalidAccountData();                                                                     \
    void IP(QString);                                                                              \
    void modemPlugged(QString);                                                                    \
    void modemUnplugged();                                                                         \
    void newModemPlugged(QString);                                                                 \
    void newModemUnplugged();                                                                      \
    void restartModemFinished();                                                                   \
    void restartModemStarted();                                                                    \
    void setEnabledConnect(bool);                                                                  \
    void settingOpenDNS(bool);                                                                     \
    void synchronizationFailed();                                                                  \
    void synchronizing();                                                                          \
    void transmissionBytes(double, double);                                                        \
    void transmissionErrors(uint, uint);                                                           \
    void transmissionSpeed(uint, uint);

class Floor : public QObject
{
    Q_OBJECT

signals:
    FLOOR_SIGNALS

public slots:
    void establishConnection() { }
    bool getConnectAtBoot() { return true; }
    bool getConnectAtModemPlug() { return true; }
    int getConnectionState() { return 0; }
    QString getDefaultRoute() { return QString(); }
    int getIdlenessTime() { return 0; }
    QString getInterface() { return QString(); }
    QString getIP(const QString & = QString()) { return QString(); }
    bool getIsCompiling() { return true; }
    bool getIsModemPlugged() { return true; }
    QStringList getLoginAndPassword() { return QStringList(); }
    QString getProtocol() { return QString(); }
    QString getService() { return QString(); }
    QString getVCI() { return QString(); }
    QString getVPI() { return QString(); }
    bool reply() { return true; }
    void restartModem() { }
    void setAccountData(const QString &, const QString &) { }
    void setConnectAtBoot(bool) { }
    void setConnectAtModemPlug(bool) { }
    void setIdlenessTime(int) { }
    void terminateConnection() { }
    void useNewModem() { }
};

class FloorAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.norvix.bench.Qt")

public:
    explicit FloorAdaptor(QObject *parent)
        : QDBusAbstractAdaptor(parent)
    {
        setAutoRelaySignals(true);
    }

signals:
    FLOOR_SIGNALS

public slots:
    void establishConnection() { call("establishConnection"); }
    bool getConnectAtBoot() { return ask("getConnectAtBoot", false); }
    bool getConnectAtModemPlug() { return ask("getConnectAtModemPlug", false); }
    int getConnectionState() { return ask("getConnectionState", 0); }
    QString getDefaultRoute() { return ask("getDefaultRoute", QString()); }
    int getIdlenessTime() { return ask("getIdlenessTime", 0); }
    QString getInterface() { return ask("getInterface", QString()); }
    QString getIP() { return ask("getIP", QString()); }
    QString getIP(const QString &name) { return ask("getIP", QString(), Q_ARG(QString, name)); }
    bool getIsCompiling() { return ask("getIsCompiling", false); }
    bool getIsModemPlugged() { return ask("getIsModemPlugged", false); }
    QStringList getLoginAndPassword() { return ask("getLoginAndPassword", QStringList()); }
    QString getProtocol() { return ask("getProtocol", QString()); }
    QString getService() { return ask("getService", QString()); }
    QString getVCI() { return ask("getVCI", QString()); }
    QString getVPI() { return ask("getVPI", QString()); }
    bool reply() { return ask("reply", false); }
    void restartModem() { call("restartModem"); }
    void setAccountData(const QString &login, const QString &password)
    {
        call("setAccountData", Q_ARG(QString, login), Q_ARG(QString, password));
    }
    void setConnectAtBoot(bool connect) { call("setConnectAtBoot", Q_ARG(bool, connect)); }
    void setConnectAtModemPlug(bool on) { call("setConnectAtModemPlug", Q_ARG(bool, on)); }
    void setIdlenessTime(int idleness) { call("setIdlenessTime", Q_ARG(int, idleness)); }
    void terminateConnection() { call("terminateConnection"); }
    void useNewModem() { call("useNewModem"); }

private:
    template <typename... Arguments> void call(const char *slot, const Arguments &...arguments)
    {
        QMetaObject::invokeMethod(parent(), slot, arguments...);
    }

    template <typename Result, typename... Arguments>
    Result ask(const char *slot, Result result, const Arguments &...arguments)
    {
        QMetaObject::invokeMethod(parent(), slot, Q_RETURN_ARG(Result, result), arguments...);
        return result;
    }
};

/// floor-qt [fork]: serves. floor-qt COUNT: prints the processor time per signal and ends.
int main(int argc, char **argv)
{
    const int count = argc > 1 ? atoi(argv[1]) : 0;
    if (argc > 1 && strcmp(argv[1], "fork") == 0 && fork() != 0) {
        return 0;
    }
    qputenv("QT_NO_GLIB", "1"); // the cheaper event loop, which is the daemon's too
    QCoreApplication application(argc, argv);
    Floor floor;
    new FloorAdaptor(&floor);
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.registerService(QStringLiteral("com.norvix.bench.Qt"))
        || !bus.registerObject(QStringLiteral("/com/norvix/bench"), &floor)) {
        fputs("floor-qt: the bus refuses\n", stderr);
        return 1;
    }
    if (count > 0) {
        printf("%lld\n", emissionTimeNs(floor, count));
        return 0;
    }
    return QCoreApplication::exec();
}

#include "floor_qt.moc"
