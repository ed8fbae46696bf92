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
    Ending, ///< somebody has ended it, and what waits for the line goes on until it is there
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

/// A loss that the present connection has followed.
struct Loss
{
    qint64 at = 0; ///< seconds since 1970
    qint64 awaySeconds = 0;
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
    /// Of the last request, until the next, or until it is not so any more.
    Failure requestFailure;
    std::optional<Request> pending; ///< asked for and not yet seen to happen
    qint64 waitSince = 0; ///< since when it is waited for the same

    /// The link came up although the person had ended the attempt: it is to be ended once more.
    bool isEndingOwed = false;
    /// The daemon left while a connection was up, which stays.
    bool isLinkLeft = false;

    QString address; ///< empty for none
    QString route; ///< the interface of the default route
    QString interface;
    std::optional<qint64> upSince;
    double received = 0; ///< bytes in this connection
    double sent = 0;
    SpeedHistory speeds;

    std::optional<bool> isModemPlugged;
    QString modemName; ///< empty until somebody has told it
    QString announcedModem; ///< a modem that could be adopted
    bool isBuilding = false;
    std::optional<bool> buildResult; ///< whether the last build that was seen went well
    bool isRestarting = false;

    std::optional<KeeperState> keeper; ///< nothing without a keeper
    QString lossReason; ///< a word of KeeperReason; empty where no keeper has told one
    std::optional<Loss> lastLoss; ///< of this connection; nothing when somebody wanted its begin
    std::optional<event::LineSeen> line;

    /// How long the connection has been up. The daemon's own count begins anew after a day.
    std::optional<qint64> connectedSeconds(qint64 now) const;

    /// Whether what is shown of it becomes another with time alone: a count, or a plot that moves.
    bool doesTimeShow() const;

private:
    struct Taker;

    void forgetDaemon();
    void forgetLink();
    void takeVoice();
    void takeState(int newState, qint64 now);
    void takeKeepersTime();
    void takeEnd(qint64 now);
    void takeTermination(qint64 now);
    void takeLoss(const QString &reason, qint64 now);
    void takeKeeper(const KeeperState &told, qint64 now);
    void takeSignal(const QString &signal, const QVariantList &arguments, qint64 now);
    void setTrouble(Trouble newTrouble, qint64 now);
};

} // namespace desktop
