// SPDX-License-Identifier: MIT
// The daemon's coming, going and telling, as events.
#pragma once

#include "desktop/bus/async_bus.h"
#include "desktop/model/event.h"

#include <QDBusMessage>
#include <QTimer>

namespace desktop {

class DaemonWatch : public QObject
{
    Q_OBJECT

public:
    explicit DaemonWatch(AsyncBus &bus, QObject *parent = nullptr);

    /// Begins to listen; the first events come later.
    void start();

    /// Whether somebody looks at the figures of every second. Nobody is woken for them otherwise,
    /// and the daemon is asked once a minute whether it still answers.
    void setWatched(bool isWatched);

    /// Asks for the state now; the answer is an event.
    void look();

signals:
    void happened(const desktop::Event &event);

private slots:
    void take(const QDBusMessage &message);
    void takeBusLoss();

private:
    void takeOwner(const QString &owner);
    void greet();
    void subscribe(const char *signal, bool isWanted);
    void askForState();
    void askForAddress();
    void tell(const BusCall &call,
        const std::function<void(event::DaemonAnswered &, const QVariant &)> &take);

    enum class Greeting
    {
        Owed, ///< it has not answered the questions that a new one is asked
        UnderWay,
        Answered,
    };

    AsyncBus &m_bus;
    QString m_owner;
    unsigned m_generation = 0; ///< of the daemon: answers of one that has gone count for nothing
    bool m_isWatched = false;
    bool m_isAsked = false; ///< a question for the state is under way
    Greeting m_greeting = Greeting::Owed;
    std::optional<int> m_lastState; ///< answered, as on the bus
    QTimer m_heartbeat;
    QTimer m_patience;
};

} // namespace desktop
