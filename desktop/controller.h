// SPDX-License-Identifier: MIT
// Holds the one model, feeds it with events and carries out what a person asks for.
#pragma once

#include "desktop/bus/async_bus.h"
#include "desktop/bus/daemon_watch.h"
#include "desktop/bus/keeper_watch.h"
#include "desktop/model/headline.h"
#include "desktop/model/step.h"

#include <QObject>
#include <QTimer>

namespace desktop {

class Controller : public QObject
{
    Q_OBJECT

public:
    explicit Controller(const QDBusConnection &systemBus, QObject *parent = nullptr);

    void start();

    const ConnectionModel &model() const { return m_model; }
    AsyncBus &bus() { return m_bus; }

    /// Whether a window shows figures now; without one nothing is looked at by the clock.
    void setWatched(bool isWatched);

    /// Asks daemon or keeper for it; the outcome comes as events.
    void request(Request request);

    /// Does what a button says. Pages are asked for by pageWanted().
    void perform(Action action);

    /// Takes an event that somebody else has seen.
    void take(const Event &event);

signals:
    /// The model has changed, or time has; what happens at one moment is told once.
    void changed();
    /// Every event, after it was taken in.
    void happened(const desktop::Event &event);
    /// A button leads to another page, or to the assistant.
    void pageWanted(desktop::Action action);
    /// A button leads to a page of the assistant.
    void assistantWanted(desktop::AssistantStep step);

private:
    BusCall callFor(Request request) const;
    void ask(Request request);
    void startAndConnect();
    void announce();

    AsyncBus m_bus;
    DaemonWatch m_daemon;
    KeeperWatch m_keeper;
    ConnectionModel m_model;
    QTimer m_announcement;
    QTimer m_clock; ///< what only time changes is shown anew by it
    bool m_isWatched = false;
};

} // namespace desktop
