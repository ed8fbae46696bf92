// SPDX-License-Identifier: MIT
// The edge: notices become events for the decision, its actions are carried out, clients are told.
#pragma once

#include "keeper/daemon_log.h"
#include "keeper/decision/decision.h"
#include "keeper/history/history.h"
#include "keeper/line/loss_judge.h"
#include "keeper/memory_file.h"
#include "keeper/notices/boot_timer.h"
#include "keeper/notices/daemon_client.h"
#include "keeper/notices/link_watch.h"
#include "keeper/notices/sleep_watch.h"

#include <QObject>
#include <QTimer>
#include <QVariantMap>

namespace keeper {

/// The keeper, but for its face on the bus. Main thread only.
class Keeper : public QObject
{
    Q_OBJECT

public:
    /// @p stateFolder holds what is remembered.
    Keeper(const QDBusConnection &bus, const QString &stateFolder, const Pauses &pauses);

    /// Begins to look and to act. False, with errno set, when the kernel tells nothing.
    bool start();
    /// Books what has gone through the link up to now.
    void finish();

    /// All properties of the bus interface by their names.
    const QVariantMap &properties() const { return m_told; }

    void setKeep(bool keep) { handle(event::KeepSet{keep}); }
    void connectLink() { handle(event::ConnectAsked()); }
    void setLimit(quint64 bytes);
    void setBillingDay(int day);
    quint64 limit() const { return m_stored.limit; }
    int billingDay() const { return m_stored.billingDay; }
    /// With the traffic up to now booked.
    History &history();

public slots:
    /// Ends the program: without the bus there is nothing to do.
    void busLost();

signals:
    /// Properties that have changed, with their values.
    void changed(const QVariantMap &properties);
    void linkLost(const QString &reason);

private:
    void handle(const Event &event);
    void carryOut(const Action &action);
    void attemptEnded(int connectionState);
    void lookAtLinks();
    void lookAtLine();
    void pulse();
    void setPulse();

    QList<Interface> ownLinks();
    void beginSession();
    void endSession(Cause cause);
    void bookNow();
    void book(const Traffic &counters);
    qint64 secondsToCount(qint64 until);
    void interfaceGone(const Interface &interface);
    void sampleBridge();
    std::optional<quint64> bridgeCounter() const;
    Cause lossCause() const;
    void checkLimit();

    void remember();
    void announce();
    qint64 nextAttemptWall();

    const QString m_boot;
    const QString m_storedPath;
    Stored m_stored;
    Stored m_written; ///< as the file has it
    DaemonLog m_log;
    History m_history;
    State m_state;
    DaemonClient m_daemon;
    SleepWatch m_sleep;
    LinkWatch m_links;
    BootTimer m_timer;
    BootTimer m_monthEnd; ///< while the limit is reached
    ClockWatch m_clock;
    QTimer m_pulse;
    int m_pulses = 0;

    QSet<int> m_own; ///< interfaces that have been ours since they are there
    QStringList m_foreign; ///< names of others' links that are up
    LinkIdentity m_session; ///< the link of the running session
    QString m_sessionName;
    qint64 m_countedUntil = 0; ///< ms since boot, of its length
    bool m_hasDevice = false; ///< the running session goes through an ATM device
    QString m_bridge; ///< the interface below the link; empty over ATM
    Stillness m_stillness;

    qint64 m_attemptMark = 0; ///< where the log's part of the next or running attempt begins
    qint64 m_disconnectMark = 0; ///< and that of the attempt that a disconnect fell into
    QByteArray m_settingsStamp;

    QVariantMap m_told;
    QString m_phase;
    qint64 m_since = 0; ///< seconds since 1970
    qint64 m_toldNextAttempt = 0; ///< ms since boot, of the next
    qint64 m_toldNextWall = 0;
    bool m_isLimitReached = false;
};

} // namespace keeper
