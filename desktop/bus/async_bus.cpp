// SPDX-License-Identifier: MIT
#include "desktop/bus/async_bus.h"

#include "client/daemon_bus.h"
#include "client/keeper_bus.h"
#include "client/pppd_words.h"
#include "dbus/contract.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QTimer>

namespace desktop {

namespace {

BusCall callOf(const char *service, const char *path, const char *interface, const char *method,
    const QVariantList &arguments)
{
    BusCall call;
    call.service = QLatin1String(service);
    call.path = QLatin1String(path);
    call.interface = QLatin1String(interface);
    call.method = QLatin1String(method);
    call.arguments = arguments;
    return call;
}

} // namespace

BusCall daemonCall(const char *method, const QVariantList &arguments)
{
    return callOf(Bus::service, Bus::daemonPath, Bus::daemonInterface, method, arguments);
}

BusCall setupCall(const char *method, const QVariantList &arguments)
{
    return callOf(Bus::service, Bus::setupPath, Bus::setupInterface, method, arguments);
}

BusCall keeperCall(const char *method, const QVariantList &arguments)
{
    BusCall call
        = callOf(Bus::keeperService, Bus::keeperPath, Bus::keeperInterface, method, arguments);
    call.timeoutMs = keeperAnswerMs;
    return call;
}

BusCall storeSettingsCall(const QVariantMap &values)
{
    BusCall call = setupCall(SetupMethod::SetSettings, {values});
    call.startsService = true;
    return call;
}

BusCall storeAccountCall(const QString &login, const QString &password)
{
    BusCall call
        = setupCall(SetupMethod::SetAccount, {encodedLogin(login), encodedPassword(password)});
    call.startsService = true;
    return call;
}

AsyncBus::AsyncBus(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
}

void AsyncBus::ask(const BusCall &call, QObject *receiver, const Then &then)
{
    if (!m_bus.isConnected()) {
        QTimer::singleShot(0, receiver, [then] { then({{FailureKind::NoBus, QString()}, {}}); });
        return;
    }
    QDBusMessage message
        = QDBusMessage::createMethodCall(call.service, call.path, call.interface, call.method);
    message.setArguments(call.arguments);
    message.setAutoStartService(call.startsService);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message, call.timeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, watcher, &QObject::deleteLater);
    connect(watcher, &QDBusPendingCallWatcher::finished, receiver,
        [then, isKeeper = call.service == QLatin1String(Bus::keeperService)](
            QDBusPendingCallWatcher *finished) {
            const QDBusMessage reply = finished->reply();
            if (reply.type() == QDBusMessage::ReplyMessage) {
                then({{}, reply.arguments()});
                return;
            }
            const Failure failure = failureOf(QDBusError(reply));
            then({isKeeper ? failureOfKeeper(failure) : failure, {}});
        });
}

} // namespace desktop
