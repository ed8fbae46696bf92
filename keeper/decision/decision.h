// SPDX-License-Identifier: MIT
// The one place where the keeper decides: what has happened and what is known go in, what is to be
// done comes out. It knows no bus, no socket and no clock.
#pragma once

#include "keeper/decision/state.h"

#include <QVector>
#include <variant>

namespace keeper {

/// What can happen. Facts that are told twice change nothing.
namespace event {

/// The daemon answers; what it said when asked.
struct DaemonAppeared
{
    bool connectsAtBoot = false;
    bool isModemPlugged = false;
    bool isBuilding = false;
    bool isConnecting = false; ///< an attempt was running before anybody listened
};
struct DaemonGone
{
};
/// A look at the interfaces, at least 250 ms after the last change.
struct LinkSeen
{
    Link link = Link::Gone;
    bool hasForeign = false;
    Cause cause = Cause::HungUp; ///< when the link has gone: what it looked like
    bool wasAskedAgain = false; ///< after the user's disconnect somebody asked for the connection
};
struct LineSeen
{
    bool hasDevice = false;
    std::optional<bool> carrier;
};
/// The daemon has begun to connect, for whomever.
struct AttemptBegan
{
};
struct LineAwaited
{
};
/// Why the running attempt fails; its end is told later.
struct AttemptTold
{
    Cause cause = Cause::Unknown;
};
/// The daemon takes requests again. @p cause is what the log tells.
struct AttemptEnded
{
    int connectionState = 2; ///< as on the bus: 0 connected, 1 connecting, 2 not connected
    Cause cause = Cause::Unknown;
};
/// The link was ended over the bus, by whomever.
struct Terminated
{
};
struct ModemPlugged
{
};
struct ModemUnplugged
{
};
struct RestartBegan
{
};
struct RestartEnded
{
};
struct BuildBegan
{
};
struct BuildEnded
{
};
struct AccountChanged
{
};
/// Peer file or line settings are others now.
struct SettingsChanged
{
};
/// The answer to Action::AskDaemon; no state when there was none.
struct DaemonAnswered
{
    std::optional<int> connectionState;
    bool isBuilding = false;
};
/// The answer to Action::Connect.
struct RequestAnswered
{
    bool isAccepted = true;
};
/// The answer to Action::EndLink, good or bad.
struct EndAnswered
{
};
struct SleepComing
{
};
struct Woke
{
};
struct KeepSet
{
    bool keep = true;
};
/// A client of the keeper wants the connection.
struct ConnectAsked
{
};
/// Time has passed.
struct Tick
{
};

} // namespace event

using Event
    = std::variant<event::DaemonAppeared, event::DaemonGone, event::LinkSeen, event::LineSeen,
        event::AttemptBegan, event::LineAwaited, event::AttemptTold, event::AttemptEnded,
        event::Terminated, event::ModemPlugged, event::ModemUnplugged, event::RestartBegan,
        event::RestartEnded, event::BuildBegan, event::BuildEnded, event::AccountChanged,
        event::SettingsChanged, event::DaemonAnswered, event::RequestAnswered, event::EndAnswered,
        event::SleepComing, event::Woke, event::KeepSet, event::ConnectAsked, event::Tick>;

/// What is to be done at the edge.
struct Action
{
    enum class Kind
    {
        AskDaemon, ///< for its state; answered by DaemonAnswered
        Connect, ///< answered by RequestAnswered
        EndLink, ///< answered by EndAnswered
        RestartModem,
        LookAtLinks, ///< answered by LinkSeen
        HoldSleep,
        LetSleep,
        BeginSession,
        EndSession, ///< with the cause
        TellLoss, ///< with the cause
        NoteAttempt, ///< that failed, with the cause
    };
    Kind kind;
    Cause cause = Cause::None;

    bool operator==(const Action &other) const
    {
        return kind == other.kind && cause == other.cause;
    }
};

struct Decision
{
    State state;
    QVector<Action> actions; ///< in this order
};

/// The state at the start. @p isSameBoot: the memory was written since the machine was started.
/// @p unheard: what happened after it was written.
State initialState(const Memory &memory, bool isSameBoot, Unheard unheard, const Pauses &pauses,
    const Moment &now);

/// What follows from an event.
Decision decide(const State &state, const Event &event, const Moment &now);

/// When decide() wants to be asked again with a Tick, in ms since boot and after @p now; nothing
/// while only events can change anything.
std::optional<qint64> nextTick(const State &state, qint64 now);

/// Whether somebody wants the connection, as far as is known.
bool isWanted(const State &state);

/// Whether line and settings should be looked at every ten seconds: somebody waits for them.
bool wantsLooks(const State &state);

} // namespace keeper
