// SPDX-License-Identifier: MIT
// Calls to HAL.
#pragma once

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <optional>

/// One object of HAL on the system bus. Unlike the ready-made interface class it asks for no
/// introspection, so that a hanging HAL does not block the constructor, and a path that is no
/// object path (it comes from a broadcast that anybody may send) gives an error reply and does not
/// end the process.
class HalProxy : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    HalProxy(const QString &path, const char *interface, const QDBusConnection &bus);

    /// The property @p key of the device; empty when the reply is an error or no 32-bit integer.
    /// Waits for the reply, at most the bus library's default time-out of 25 s.
    std::optional<int> intProperty(const char *key);
};
