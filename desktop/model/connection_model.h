// SPDX-License-Identifier: MIT
// Everything the window knows of the connection: one value, changed by one pure function.
#pragma once

#include "desktop/model/event.h"
#include "desktop/model/speed_history.h"

namespace desktop {

enum class DaemonPresence
{
    Unknown, ///< not looked yet
    NoBus,
    Away,
    Silent, ///< it is there and owes an answer
    There,
};

enum class ConnectingStep
{
    None, ///< nothing is under way
    Started,
    WaitingForLine,
    Calling, ///< the line is there, the provider is called
};

/// What the last attempt or connection came to, when it was no good.
enum class Trouble
{
    None,
    LineNotSynchronised,
    ProviderSilent,
    AccountRefused,
    NotUp, ///< for a reason that the daemon's log tells
    Lost, ///< the keeper's reason tells why
    ResolverWrong,
};

/// Times are milliseconds since 1970.
class ConnectionModel
{
public:
    /// Takes an event in. The only way in which anything here changes.
    void apply(const Event &event, qint64 now);

    DaemonPresence daemon = DaemonPresence::Unknown;
    std::optional<int> state; ///< as on the bus; nothing when nobody has told it
    ConnectingStep step = ConnectingStep::None;
    Trouble trouble = Trouble::None;
    qint64 troubleAt = 0;
    Failure requestFailure; ///< of the last request, until the next
    std::optional<Request> pending; ///< asked for and not yet seen to happen

    QString address;
    QString route; ///< the interface of the default route
    QString interface;
    std::optional<qint64> connectedSeconds;
    double received = 0; ///< bytes in this connection
    double sent = 0;
    SpeedHistory speeds;

    std::optional<bool> isModemPlugged;
    QString modemName; ///< empty until somebody has told it
    QString announcedModem; ///< a modem that could be adopted
    bool isBuilding = false;
    bool isRestarting = false;

    std::optional<KeeperState> keeper; ///< nothing without a keeper
    QString lossReason;
    std::optional<event::LineSeen> line;

private:
    struct Taker;

    void forgetDaemon();
    void forgetLink();
    void takeState(int newState, qint64 now);
    void takeSignal(const QString &signal, const QVariantList &arguments, qint64 now);
    void setTrouble(Trouble newTrouble, qint64 now);
};

} // namespace desktop
