// SPDX-License-Identifier: MIT
// The keeper as a neighbour on the system bus.
#pragma once

#include "client/failure.h"
#include "client/keeper_state.h"

class DaemonBus;
class QDBusMessage;

/// What the keeper has answered, or why there is nothing.
template <typename Value> struct KeeperAnswer
{
    Failure failure;
    Value value;

    bool ok() const { return !failure; }
};

/// How long a call waits for its answer.
constexpr int keeperAnswerMs = 5000;

/// Every call waits for its answer, keeperAnswerMs at most. The keeper is never started: what keeps
/// nothing, somebody has stopped.
class KeeperBus
{
public:
    /// @p bus must outlive this.
    explicit KeeperBus(const DaemonBus &bus);

    KeeperAnswer<KeeperState> state() const;

    // Newest first, @p most entries.
    KeeperAnswer<QList<KeeperSession>> sessions(quint32 most) const;
    KeeperAnswer<QList<KeeperAttempts>> attempts(quint32 most) const;
    KeeperAnswer<QList<KeeperTraffic>> days(quint32 most) const;
    KeeperAnswer<QList<KeeperTraffic>> months(quint32 most) const;

    /// Oldest first, of this time in seconds since 1970.
    KeeperAnswer<QList<LineSample>> lineQuality(qint64 from, qint64 until) const;

    KeeperAnswer<KeeperPlan> plan() const;

    Failure setKeep(bool keep) const;
    /// @p bytes: 0 for none.
    Failure setLimit(quint64 bytes) const;
    Failure setBillingDay(int day) const;

private:
    QVariant ask(const char *method, const QVariantList &arguments, Failure &failure) const;
    QVariant ask(const QDBusMessage &message, Failure &failure) const;
    template <typename Value>
    KeeperAnswer<QList<Value>> list(const char *method, const QVariantList &arguments,
        QList<Value> (*read)(const QList<QVariantMap> &)) const;

    const DaemonBus *m_bus;
};

/// A failure of a call as one of the keeper's: those of the library are about the daemon.
Failure failureOfKeeper(const Failure &failure, bool isInstalled);
/// The same, by what is installed here.
Failure failureOfKeeper(const Failure &failure);
