// SPDX-License-Identifier: MIT
// The daemon as the keeper sees it on the bus: what it tells, and what it is asked.
#pragma once

#include "keeper/decision/decision.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariant>
#include <functional>

namespace keeper {

/// Main thread only. No call ever starts a daemon that does not run.
class DaemonClient : public QObject
{
    Q_OBJECT

public:
    explicit DaemonClient(const QDBusConnection &bus, QObject *parent = nullptr);

    /// Listens from now on; a daemon that is there already is told of, too.
    void start();

    /// Asks for its state; answered by event::DaemonAnswered.
    void askState();
    /// Asks for a connection; answered by event::RequestAnswered.
    void connectLink();
    /// Ends the link; answered by event::EndAnswered.
    void endLink();
    void restartModem();

signals:
    /// What the daemon has told, but for the end of an attempt.
    void happened(const keeper::Event &event);
    /// The daemon takes requests again; why an attempt failed is still to be found out.
    void attemptEnded(int connectionState);

private slots:
    void onEstablishingConnection() { emit happened(event::AttemptBegan()); }
    void onConnectionState(int state) { emit attemptEnded(state); }
    void onConnectionTerminated() { emit happened(event::Terminated()); }
    void onSynchronizing() { emit happened(event::LineAwaited()); }
    void onSynchronizationFailed();
    void onConnectionTimeout();
    void onInvalidAccountData();
    void onAccountDataChanged(bool isWritten);
    void onSettingsChanged() { emit happened(event::SettingsChanged()); }
    void onModemPlugged() { emit happened(event::ModemPlugged()); }
    void onModemUnplugged() { emit happened(event::ModemUnplugged()); }
    void onRestartModemStarted() { emit happened(event::RestartBegan()); }
    void onRestartModemFinished() { emit happened(event::RestartEnded()); }
    void onCompilingDriver() { emit happened(event::BuildBegan()); }
    void onCompilationFinished() { emit happened(event::BuildEnded()); }

private:
    using Answer = std::function<void(const QVariant &)>; ///< an invalid value for an error

    void listen();
    void takeOwner(const QString &owner);
    void greet();
    void call(const char *method, const Answer &answer);

    QDBusConnection m_bus;
    int m_generation = 0; ///< of daemons: answers of an earlier one count no more
};

} // namespace keeper
