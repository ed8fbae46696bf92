// SPDX-License-Identifier: MIT
#include "client/daemon_bus.h"

#include "dbus/contract.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusServiceWatcher>

namespace {

constexpr int answerMs = 25000;

const QLatin1String service(Bus::service);

} // namespace

Failure failureOf(const QDBusError &error)
{
    switch (error.type()) {
    case QDBusError::ServiceUnknown:
        return {FailureKind::NoDaemon, QString()};
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
        return {FailureKind::NoBus, QString()};
    case QDBusError::AccessDenied:
        return {FailureKind::NotPermitted, QString()};
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return {FailureKind::NoAnswer, QString()};
    default:
        break;
    }
    if (error.name() == QLatin1String(Bus::setupRefused)) {
        return {FailureKind::DaemonRefused, error.message()};
    }
    if (error.name() == QLatin1String(Bus::setupNotStored)) {
        return {FailureKind::DaemonNotStored, error.message()};
    }
    if (error.name() == QLatin1String(Bus::keeperRefused)) {
        return {FailureKind::KeeperRefused, error.message()};
    }
    if (error.name() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")) {
        return {FailureKind::NoDaemon, QString()};
    }
    // A failed activation comes under several names of its own.
    return {error.name().contains(QLatin1String(".Spawn.")) ? FailureKind::NotStarted
                                                            : FailureKind::DaemonError,
        error.message()};
}

DaemonBus::DaemonBus(QObject *parent)
    : QObject(parent)
    , m_bus(QDBusConnection::systemBus())
{
}

bool DaemonBus::isDaemonRunning() const
{
    return hasOwner(service);
}

bool DaemonBus::isConnected() const
{
    return m_bus.isConnected();
}

bool DaemonBus::hasOwner(const QString &name) const
{
    return m_bus.isConnected() && m_bus.interface()->isServiceRegistered(name).value();
}

BusReply DaemonBus::call(
    const char *method, const QVariantList &arguments, Start start, int timeoutMs) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, QLatin1String(Bus::daemonPath),
        QLatin1String(Bus::daemonInterface), QLatin1String(method));
    message.setArguments(arguments);
    message.setAutoStartService(start == Start::IfNeeded);
    return callOther(message, timeoutMs);
}

BusReply DaemonBus::callSetup(const char *method, const QVariantList &arguments, Start start) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, QLatin1String(Bus::setupPath),
        QLatin1String(Bus::setupInterface), QLatin1String(method));
    message.setArguments(arguments);
    message.setAutoStartService(start == Start::IfNeeded);
    return callOther(message, answerMs);
}

BusReply DaemonBus::callOther(const QDBusMessage &message, int timeoutMs) const
{
    if (!m_bus.isConnected()) {
        return {{FailureKind::NoBus, QString()}, {}};
    }
    const QDBusMessage answer = m_bus.call(message, QDBus::Block, timeoutMs);
    if (answer.type() == QDBusMessage::ErrorMessage) {
        return {failureOf(QDBusError(answer)), {}};
    }
    return {{}, answer.arguments().value(0)};
}

void DaemonBus::listen()
{
    m_bus.connect(service, QLatin1String(Bus::daemonPath), QLatin1String(Bus::daemonInterface),
        QString(), this, SLOT(take(QDBusMessage)));
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
        SIGNAL(busLost()));
    auto *watcher
        = new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &DaemonBus::daemonAppeared);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &DaemonBus::daemonLeft);
}

void DaemonBus::take(const QDBusMessage &message)
{
    emit received(message.member(), message.arguments());
}
