// SPDX-License-Identifier: MIT
#include "desktop/session/instance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace desktop {

namespace {

constexpr char name[] = "com.norvix.Desktop";
constexpr char path[] = "/com/norvix/Desktop";
constexpr char interface[] = "org.freedesktop.Application";
constexpr int patienceMs = 5000;

QString tokenOf(const QVariantMap &platformData)
{
    const QString token = platformData.value(QStringLiteral("activation-token")).toString();
    return token.isEmpty() ? platformData.value(QStringLiteral("desktop-startup-id")).toString()
                           : token;
}

/// What the desktop gave this process to take the focus with.
QVariantMap ownPlatformData()
{
    QVariantMap data;
    for (const auto &[key, variable] : {std::pair("desktop-startup-id", "DESKTOP_STARTUP_ID"),
             std::pair("activation-token", "XDG_ACTIVATION_TOKEN")}) {
        const QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty()) {
            data.insert(QLatin1String(key), value);
        }
    }
    return data;
}

} // namespace

Instance::Instance(const QDBusConnection &sessionBus, QObject *parent)
    : QObject(parent)
    , m_bus(sessionBus)
{
}

Instance::Outcome Instance::claim(bool isBackground)
{
    if (!m_bus.isConnected()) {
        return Outcome::First;
    }
    // The object comes first: whoever sees the name may call at once.
    m_bus.registerObject(QLatin1String(path), this, QDBusConnection::ExportAllSlots);
    if (m_bus.registerService(QLatin1String(name))) {
        return Outcome::First;
    }
    if (isBackground) {
        return Outcome::Handed; // it is there already, and nobody wants to see it
    }
    // There is no window yet that waiting could hold up.
    QDBusMessage call = QDBusMessage::createMethodCall(QLatin1String(name), QLatin1String(path),
        QLatin1String(interface), QStringLiteral("Activate"));
    call.setArguments({ownPlatformData()});
    call.setAutoStartService(false);
    const QDBusMessage answer = m_bus.call(call, QDBus::Block, patienceMs);
    return answer.type() == QDBusMessage::ReplyMessage ? Outcome::Handed : Outcome::Unanswered;
}

void Instance::Activate(const QVariantMap &platformData)
{
    emit activated(tokenOf(platformData));
}

void Instance::Open(const QStringList & /*uris*/, const QVariantMap &platformData)
{
    emit activated(tokenOf(platformData));
}

void Instance::ActivateAction(
    const QString & /*name*/, const QVariantList & /*parameter*/, const QVariantMap &platformData)
{
    emit activated(tokenOf(platformData));
}

} // namespace desktop
