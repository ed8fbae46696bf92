// SPDX-License-Identifier: MIT
#include "dbus/daemon_adaptor.h"

#include <QMetaObject>

namespace {

const char *typeName(bool)
{
    return "bool";
}
const char *typeName(int)
{
    return "int";
}
const char *typeName(const QString &)
{
    return "QString";
}
const char *typeName(const QStringList &)
{
    return "QStringList";
}

template <typename T> QGenericArgument argument(const T &value)
{
    return QGenericArgument(typeName(value), &value);
}

} // namespace

DaemonAdaptor::DaemonAdaptor(QObject *parent)
    : QDBusAbstractAdaptor(parent)
{
    setAutoRelaySignals(true);
}

template <typename Result, typename... Arguments>
Result DaemonAdaptor::forward(const char *slot, const Arguments &...arguments)
{
    Result result = Result();
    QMetaObject::invokeMethod(parent(), slot, Qt::AutoConnection,
        QGenericReturnArgument(typeName(result), &result), argument(arguments)...);
    return result;
}

template <typename... Arguments>
void DaemonAdaptor::forwardCall(const char *slot, const Arguments &...arguments)
{
    QMetaObject::invokeMethod(parent(), slot, Qt::AutoConnection, argument(arguments)...);
}

void DaemonAdaptor::establishConnection()
{
    forwardCall("establishConnection");
}

bool DaemonAdaptor::getConnectAtBoot()
{
    return forward<bool>("getConnectAtBoot");
}

bool DaemonAdaptor::getConnectAtModemPlug()
{
    return forward<bool>("getConnectAtModemPlug");
}

int DaemonAdaptor::getConnectionState()
{
    return forward<int>("getConnectionState");
}

QString DaemonAdaptor::getDefaultRoute()
{
    return forward<QString>("getDefaultRoute");
}

int DaemonAdaptor::getIdlenessTime()
{
    return forward<int>("getIdlenessTime");
}

QString DaemonAdaptor::getInterface()
{
    return forward<QString>("getInterface");
}

QString DaemonAdaptor::getIP()
{
    return forward<QString>("getIP");
}

QString DaemonAdaptor::getIP(const QString &interface)
{
    return forward<QString>("getIP", interface);
}

bool DaemonAdaptor::getIsCompiling()
{
    return forward<bool>("getIsCompiling");
}

bool DaemonAdaptor::getIsModemPlugged()
{
    return forward<bool>("getIsModemPlugged");
}

QStringList DaemonAdaptor::getLoginAndPassword()
{
    return forward<QStringList>("getLoginAndPassword");
}

QString DaemonAdaptor::getProtocol()
{
    return forward<QString>("getProtocol");
}

QString DaemonAdaptor::getService()
{
    return forward<QString>("getService");
}

QString DaemonAdaptor::getVCI()
{
    return forward<QString>("getVCI");
}

QString DaemonAdaptor::getVPI()
{
    return forward<QString>("getVPI");
}

bool DaemonAdaptor::reply()
{
    return forward<bool>("reply");
}

void DaemonAdaptor::restartModem()
{
    forwardCall("restartModem");
}

void DaemonAdaptor::setAccountData(const QString &login, const QString &password)
{
    forwardCall("setAccountData", login, password);
}

void DaemonAdaptor::setConnectAtBoot(bool connect)
{
    forwardCall("setConnectAtBoot", connect);
}

void DaemonAdaptor::setConnectAtModemPlug(bool connect)
{
    forwardCall("setConnectAtModemPlug", connect);
}

void DaemonAdaptor::setIdlenessTime(int idleness)
{
    forwardCall("setIdlenessTime", idleness);
}

void DaemonAdaptor::terminateConnection()
{
    forwardCall("terminateConnection");
}

void DaemonAdaptor::useNewModem()
{
    forwardCall("useNewModem");
}
