// SPDX-License-Identifier: MIT
#include "keeper/notices/daemon_client.h"

#include "dbus/contract.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <memory>

namespace keeper {

namespace {

const QLatin1String service(Bus::service);
const QLatin1String path(Bus::daemonPath);
const QLatin1String interface(Bus::daemonInterface);

// Longer than the daemon waits for a neighbour that hangs.
constexpr int callMs = 50'000;

struct Subscription
{
    const char *signal;
    const char *slot;
};

} // namespace

DaemonClient::DaemonClient(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
}

void DaemonClient::start()
{
    auto *watcher
        = new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) { takeOwner(owner); });
    listen();
    const QDBusReply<QString> owner = m_bus.interface()->serviceOwner(service);
    if (owner.isValid()) {
        takeOwner(owner.value());
    }
}

void DaemonClient::listen()
{
    // One by one: a rule for the whole interface would wake us at each of its ticks, four times a
    // second.
    static const Subscription subscriptions[] = {
        {DaemonSignal::establishingConnection, SLOT(onEstablishingConnection())},
        {DaemonSignal::connectionState, SLOT(onConnectionState(int))},
        {DaemonSignal::connectionTerminated, SLOT(onConnectionTerminated())},
        {DaemonSignal::synchronizing, SLOT(onSynchronizing())},
        {DaemonSignal::synchronizationFailed, SLOT(onSynchronizationFailed())},
        {DaemonSignal::connectionTimeout, SLOT(onConnectionTimeout())},
        {DaemonSignal::invalidAccountData, SLOT(onInvalidAccountData())},
        {DaemonSignal::accountDataChanged, SLOT(onAccountDataChanged(bool))},
        {DaemonSignal::modemPlugged, SLOT(onModemPlugged())},
        {DaemonSignal::modemUnplugged, SLOT(onModemUnplugged())},
        {DaemonSignal::restartModemStarted, SLOT(onRestartModemStarted())},
        {DaemonSignal::restartModemFinished, SLOT(onRestartModemFinished())},
        {DaemonSignal::compilingDriver, SLOT(onCompilingDriver())},
        {DaemonSignal::compilationFinished, SLOT(onCompilationFinished())},
    };
    for (const Subscription &subscription : subscriptions) {
        m_bus.connect(
            service, path, interface, QLatin1String(subscription.signal), this, subscription.slot);
    }
    m_bus.connect(service, path, QLatin1String(Bus::setupInterface),
        QLatin1String(SetupSignal::SettingsChanged), this, SLOT(onSettingsChanged()));
}

void DaemonClient::takeOwner(const QString &owner)
{
    ++m_generation;
    emit happened(event::DaemonGone());
    if (!owner.isEmpty()) {
        greet();
    }
}

/// Asks a new daemon for what it will not tell by itself.
void DaemonClient::greet()
{
    const auto daemon = std::make_shared<event::DaemonAppeared>();
    call(DaemonMethod::getConnectAtBoot,
        [daemon](const QVariant &value) { daemon->connectsAtBoot = value.toBool(); });
    call(DaemonMethod::getIsCompiling,
        [daemon](const QVariant &value) { daemon->isBuilding = value.toBool(); });
    call(DaemonMethod::getConnectionState, [daemon](const QVariant &value) {
        daemon->isConnecting = value.isValid() && value.toInt() == 1;
    });
    // Answers come in the order of the calls: this is the last.
    call(DaemonMethod::getIsModemPlugged, [this, daemon](const QVariant &value) {
        daemon->isModemPlugged = value.toBool();
        emit happened(*daemon);
    });
}

void DaemonClient::askState()
{
    const auto answer = std::make_shared<event::DaemonAnswered>();
    call(DaemonMethod::getIsCompiling,
        [answer](const QVariant &value) { answer->isBuilding = value.toBool(); });
    call(DaemonMethod::getConnectionState, [this, answer](const QVariant &value) {
        if (value.isValid()) {
            answer->connectionState = value.toInt();
        }
        emit happened(*answer);
    });
}

void DaemonClient::connectLink()
{
    call(DaemonMethod::establishConnection,
        [this](const QVariant &value) { emit happened(event::RequestAnswered{value.isValid()}); });
}

void DaemonClient::endLink()
{
    call(DaemonMethod::terminateConnection,
        [this](const QVariant &) { emit happened(event::EndAnswered()); });
}

void DaemonClient::restartModem()
{
    call(DaemonMethod::restartModem, [](const QVariant &) {});
}

void DaemonClient::call(const char *method, const Answer &answer)
{
    QDBusMessage message
        = QDBusMessage::createMethodCall(service, path, interface, QLatin1String(method));
    message.setAutoStartService(false); // a stopped daemon stays stopped
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message, callMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
        [this, answer, generation = m_generation](QDBusPendingCallWatcher *finished) {
            finished->deleteLater();
            if (generation != m_generation) {
                return;
            }
            const QDBusMessage reply = finished->reply();
            if (reply.type() != QDBusMessage::ReplyMessage) {
                answer(QVariant());
            } else {
                answer(reply.arguments().value(0, QVariant(true)));
            }
        });
}

void DaemonClient::onSynchronizationFailed()
{
    emit happened(event::AttemptTold{Cause::LineNotSynchronised});
}

void DaemonClient::onConnectionTimeout()
{
    emit happened(event::AttemptTold{Cause::NoConcentrator});
}

void DaemonClient::onInvalidAccountData()
{
    emit happened(event::AttemptTold{Cause::AccountRefused});
}

void DaemonClient::onAccountDataChanged(bool isWritten)
{
    if (isWritten) {
        emit happened(event::AccountChanged());
    }
}

} // namespace keeper
