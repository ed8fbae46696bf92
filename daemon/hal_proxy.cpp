// SPDX-License-Identifier: MIT
#include "daemon/hal_proxy.h"

#include <QDBusMessage>
#include <QDBusVariant>

HalProxy::HalProxy(const QString &path, const char *interface, const QDBusConnection &bus)
    : QDBusAbstractInterface(QStringLiteral("org.freedesktop.Hal"), path, interface, bus, nullptr)
{
}

std::optional<int> HalProxy::intProperty(const char *key)
{
    const QDBusMessage reply = call(QStringLiteral("GetProperty"), QString::fromLatin1(key));
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return std::nullopt;
    }
    // HAL answers with the plain value although its description says "variant"; take both.
    QVariant value = reply.arguments().constFirst();
    if (value.userType() == qMetaTypeId<QDBusVariant>()) {
        value = qvariant_cast<QDBusVariant>(value).variant();
    }
    // Nothing is converted: an id of another type is no id of HAL's.
    return value.userType() == QMetaType::Int ? std::optional<int>(value.toInt()) : std::nullopt;
}
