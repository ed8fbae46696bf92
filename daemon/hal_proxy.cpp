// SPDX-License-Identifier: MIT
#include "daemon/hal_proxy.h"

#include <QDBusError>
#include <QDBusVariant>

namespace {

/// Neither a value nor an error of HAL's own: it hangs, or died over the question.
bool isSilence(const QDBusMessage &reply)
{
    switch (QDBusError(reply).type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return true;
    default:
        return false;
    }
}

} // namespace

HalProxy::HalProxy(const QString &path, const char *interface, const QDBusConnection &bus)
    : QDBusAbstractInterface(QStringLiteral("org.freedesktop.Hal"), path, interface, bus, nullptr)
{
    setTimeout(halTimeoutMs);
}

QDBusMessage HalProxy::ask(const char *method, const char *argument)
{
    const QString text = QString::fromLatin1(argument);
    const QDBusMessage reply = call(QString::fromLatin1(method), text);
    m_unanswered.reset();
    if (isSilence(reply)) {
        m_unanswered = QDBusMessage::createMethodCall(
            service(), path(), interface(), QString::fromLatin1(method));
        *m_unanswered << text;
    }
    return reply;
}

std::optional<int> HalProxy::intProperty(const char *key)
{
    const QDBusMessage reply = ask("GetProperty", key);
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
