// SPDX-License-Identifier: MIT
// The daemon as a neighbour on the system bus: calls, signals, its coming and going.
#pragma once

#include "client/failure.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>

class QDBusError;

struct BusReply
{
    Failure failure;
    QVariant value; ///< the first value of the reply; invalid when it has none

    bool ok() const { return !failure; }
};

class DaemonBus : public QObject
{
    Q_OBJECT

public:
    enum class Start
    {
        IfNeeded, ///< the bus may start the daemon for this call
        Never,
    };

    explicit DaemonBus(QObject *parent = nullptr);

    /// False when the system bus can not be reached.
    bool isConnected() const;
    /// Whether somebody owns the daemon's name now.
    bool isDaemonRunning() const;
    bool hasOwner(const QString &name) const;

    /// Calls a method of the daemon and waits for the reply, @p timeoutMs at most.
    BusReply call(const char *method, const QVariantList &arguments = {},
        Start start = Start::Never, int timeoutMs = 25000) const;

    /// The same for the object that sets things up. A value that it refuses is DaemonRefused, with
    /// what is expected instead.
    BusReply callSetup(
        const char *method, const QVariantList &arguments = {}, Start start = Start::Never) const;

    /// Calls any method on the bus; used to look at the daemon's neighbours.
    BusReply callOther(const QDBusMessage &message, int timeoutMs) const;

    /// From now on the daemon's signals and its coming and going are reported.
    void listen();

signals:
    void received(const QString &signal, const QVariantList &arguments);
    void daemonAppeared();
    void daemonLeft();
    void busLost();

private slots:
    void take(const QDBusMessage &message);

private:
    QDBusConnection m_bus;
};

/// Why a call has failed.
Failure failureOf(const QDBusError &error);
