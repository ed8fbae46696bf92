// SPDX-License-Identifier: MIT
// What can happen to the connection, as the window learns of it. Values only.
#pragma once

#include "client/failure.h"
#include "client/keeper_state.h"
#include "client/line_log.h"

#include <QString>
#include <QVariantList>
#include <optional>
#include <variant>

namespace desktop {

/// What a person asks for.
enum class Request
{
    Connect,
    Disconnect,
    RestartModem,
};

namespace event {

struct BusLost
{
};

/// Somebody owns the daemon's name now; the greeting's answers follow.
struct DaemonAppeared
{
};

struct DaemonLeft
{
};

/// The daemon owes an answer for longer than a person would wait.
struct DaemonSilent
{
};

/// An answer of the daemon to a question of the window's own. Each comes by itself: while others
/// are waited for, a signal may tell what is newer than it.
struct DaemonAnswered
{
    std::optional<int> state; ///< as on the bus
    std::optional<bool> isModemPlugged;
    std::optional<bool> isBuilding;
    std::optional<QString> address; ///< asked for only while connected
    std::optional<QString> route;
    std::optional<QString> interface;
    std::optional<QString> announcedModem; ///< empty for none
};

/// A signal of the daemon.
struct DaemonTold
{
    QString signal;
    QVariantList arguments;
};

struct KeeperTold
{
    KeeperState state;
};

struct KeeperLeft
{
};

/// A loss that nobody wanted; the reason is a code of the keeper's.
struct LinkLost
{
    QString reason;
};

/// The last sessions that the keeper remembers, newest first.
struct SessionsTold
{
    QList<KeeperSession> sessions;
};

/// How long pppd has been running, as the system tells it.
struct LinkSeen
{
    qint64 seconds;
};

/// What system and keeper tell of the line.
struct LineSeen
{
    LineStatus line;
    std::optional<double> downMargin; ///< dB
    std::optional<double> upMargin;
};

struct Requested
{
    Request request;
};

/// Who was asked has taken the request; what comes of it is told by signals.
struct RequestTaken
{
    Request request;
};

/// A request has come to nothing. It changes no state: the daemon alone tells how it is.
struct RequestFailed
{
    Request request;
    Failure failure;
};

/// The computer is about to sleep, or has woken up.
struct SleepTold
{
    bool isAsleep;
};

/// Only the time has passed.
struct Ticked
{
};

} // namespace event

using Event = std::variant<event::BusLost, event::DaemonAppeared, event::DaemonLeft,
    event::DaemonSilent, event::DaemonAnswered, event::DaemonTold, event::KeeperTold,
    event::KeeperLeft, event::LinkLost, event::SessionsTold, event::LinkSeen, event::LineSeen,
    event::Requested, event::RequestTaken, event::RequestFailed, event::SleepTold, event::Ticked>;

} // namespace desktop
