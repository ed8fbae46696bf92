// SPDX-License-Identifier: MIT
#include "desktop/tray/notifier.h"

#include "client/say.h"

#include <QDBusServiceWatcher>
#include <utility>

namespace desktop {

namespace {

const char service[] = "org.freedesktop.Notifications";
const char path[] = "/org/freedesktop/Notifications";

} // namespace

Notifier::Notifier(AsyncBus &sessionBus, QObject *parent)
    : QObject(parent)
    , m_bus(sessionBus)
{
    QDBusConnection bus = m_bus.connection();
    if (!bus.isConnected()) {
        return;
    }
    const auto listen = [&](const char *signal, const char *slot) {
        bus.connect(QLatin1String(service), QLatin1String(path), QLatin1String(service),
            QLatin1String(signal), this, slot);
    };
    listen("ActionInvoked", SLOT(takeAction(uint, QString)));
    listen("ActivationToken", SLOT(takeToken(uint, QString)));
    listen("NotificationClosed", SLOT(takeEnd(uint, uint)));
    auto *watcher = new QDBusServiceWatcher(
        QLatin1String(service), bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    // A new service counts anew: the number may be somebody else's there.
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { m_id = 0; });
}

void Notifier::tell(
    const QString &title, const QString &text, const std::function<void(bool)> &then)
{
    const Message message{title, text, then};
    if (m_isSending) {
        if (const auto overtaken = std::exchange(m_waiting, message)) {
            overtaken->then(false);
        }
        return;
    }
    send(message);
}

void Notifier::send(const Message &message)
{
    m_isSending = true;
    BusCall call;
    call.service = call.interface = QLatin1String(service);
    call.path = QLatin1String(path);
    call.method = QStringLiteral("Notify");
    call.startsService = true;
    // The body is a kind of HTML.
    call.arguments = {QStringLiteral("Norvix"), m_id, QStringLiteral("norvix-desktop"),
        message.title, message.text.toHtmlEscaped(),
        QStringList{QStringLiteral("default"), Say::tr("Open the window")},
        QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("com.norvix.Desktop")}}, -1};
    m_bus.ask(call, this, [this, then = message.then](const BusAnswer &answer) {
        m_isSending = false;
        m_id = answer.ok() ? answer.value().toUInt() : 0;
        then(answer.ok());
        if (const auto next = std::exchange(m_waiting, std::nullopt)) {
            send(*next);
        }
    });
}

void Notifier::takeAction(uint id, const QString & /*action*/)
{
    if (id == m_id && id != 0) {
        emit activated(std::exchange(m_token, QString()));
    }
}

void Notifier::takeToken(uint id, const QString &token)
{
    if (id == m_id) {
        m_token = token;
    }
}

void Notifier::takeEnd(uint id, uint /*reason*/)
{
    if (id == m_id) {
        m_id = 0;
    }
}

} // namespace desktop
