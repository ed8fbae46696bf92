// SPDX-License-Identifier: MIT
// Calls on the system bus that nobody waits for.
#pragma once

#include "client/failure.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>
#include <functional>

namespace desktop {

struct BusCall
{
    QString service;
    QString path;
    QString interface;
    QString method;
    QVariantList arguments;
    bool startsService = false; ///< the bus may start the service for it
    int timeoutMs = 25000;
};

/// A call of the daemon's method.
BusCall daemonCall(const char *method, const QVariantList &arguments = {});
/// Of the daemon's object through which things are set up.
BusCall setupCall(const char *method, const QVariantList &arguments = {});
BusCall keeperCall(const char *method, const QVariantList &arguments = {});

/// Has the daemon store these of its settings; the bus starts it for that.
BusCall storeSettingsCall(const QVariantMap &values);
/// The same for an account, as a person types it.
BusCall storeAccountCall(const QString &login, const QString &password);

struct BusAnswer
{
    Failure failure;
    QVariantList values;

    bool ok() const { return !failure; }
    QVariant value() const { return values.value(0); }
};

class AsyncBus : public QObject
{
    Q_OBJECT

public:
    using Then = std::function<void(const BusAnswer &)>;

    explicit AsyncBus(const QDBusConnection &bus, QObject *parent = nullptr);

    QDBusConnection connection() const { return m_bus; }

    /// Calls, and @p then with the answer or the failure, always later and in this thread; never
    /// when @p receiver has gone by then.
    void ask(const BusCall &call, QObject *receiver, const Then &then);

private:
    QDBusConnection m_bus;
};

} // namespace desktop
