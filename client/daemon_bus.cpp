// SPDX-License-Identifier: MIT
#include "client/daemon_bus.h"

#include "client/say.h"
#include "dbus/contract.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusServiceWatcher>

namespace {

constexpr int answerMs = 25000;

const QLatin1String service(Bus::service);

} // namespace

BusReply failedReply(const QDBusError &error)
{
    BusReply reply;
    switch (error.type()) {
    case QDBusError::ServiceUnknown:
        reply.code = NoDaemon;
        reply.error = DaemonBus::notRunningText();
        break;
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
        reply.code = NoDaemon;
        reply.error = Say::tr("The system bus can not be reached: is dbus-daemon running?");
        break;
    case QDBusError::AccessDenied:
        reply.code = NotPermitted;
        reply.error = Say::tr("The system bus does not let you do this. Members of the group "
                              "“norvix” and root may: “sudo usermod -a -G norvix $USER”, then log "
                              "in again.");
        break;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        reply.code = Failed;
        reply.error = Say::tr("The daemon does not answer. It may be waiting for another program; "
                              "see “norvixctl log”.");
        break;
    default:
        if (error.name() == QLatin1String(Bus::setupRefused)) {
            reply.code = ValueRefused;
            reply.error = Say::tr("The daemon refuses this: %1.").arg(error.message());
            break;
        }
        if (error.name() == QLatin1String(Bus::setupNotStored)) {
            reply.code = Failed;
            reply.error = Say::tr("The daemon could not store it: %1.").arg(error.message());
            break;
        }
        if (error.name() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")) {
            reply.code = NoDaemon;
            reply.error = DaemonBus::notRunningText();
            break;
        }
        // A failed activation comes under several names of its own.
        reply.code = error.name().contains(QLatin1String(".Spawn.")) ? NoDaemon : Failed;
        reply.error = reply.code == NoDaemon
            ? Say::tr("The system bus could not start the daemon: %1").arg(error.message())
            : Say::tr("The daemon answered with an error: %1").arg(error.message());
        break;
    }
    return reply;
}

DaemonBus::DaemonBus(QObject *parent)
    : QObject(parent)
    , m_bus(QDBusConnection::systemBus())
{
}

QString DaemonBus::notRunningText()
{
    return Say::tr("The daemon is not running. Start it with “sudo systemctl start "
                   "norvix-daemon”.");
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
        return failedReply(QDBusError(QDBusError::Disconnected, QString()));
    }
    const QDBusMessage answer = m_bus.call(message, QDBus::Block, timeoutMs);
    if (answer.type() == QDBusMessage::ErrorMessage) {
        return failedReply(QDBusError(answer));
    }
    BusReply reply;
    reply.value = answer.arguments().value(0);
    return reply;
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
