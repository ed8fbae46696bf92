// SPDX-License-Identifier: MIT
// Calls to HAL.
#pragma once

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <QDBusMessage>
#include <optional>

/// How long HAL may think about a question. The main loop waits meanwhile.
constexpr int halTimeoutMs = 5000;

/// One object of HAL on the system bus. Unlike the ready-made interface class it asks for no
/// introspection, so that a hanging HAL does not block the constructor, and a path that is no
/// object path (it comes from a broadcast that anybody may send) gives an error reply and does not
/// end the process.
class HalProxy : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    HalProxy(const QString &path, const char *interface, const QDBusConnection &bus);

    /// Asks and waits for the reply, at most halTimeoutMs.
    QDBusMessage ask(const char *method, const char *argument);

    /// The property @p key of the device; empty when the reply is an error or no 32-bit integer.
    /// Waits like ask().
    std::optional<int> intProperty(const char *key);

    /// The last question, when HAL left it without a reply of any kind; else empty.
    const std::optional<QDBusMessage> &unanswered() const { return m_unanswered; }

private:
    std::optional<QDBusMessage> m_unanswered;
};
