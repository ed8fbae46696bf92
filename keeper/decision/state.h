// SPDX-License-Identifier: MIT
// All that the keeper knows and has in hand. Only decide() changes it.
#pragma once

#include "keeper/decision/cause.h"
#include "keeper/decision/pauses.h"

#include <optional>

namespace keeper {

/// The time of an event, from two clocks.
struct Moment
{
    qint64 ms = 0; ///< since boot, sleep included: for durations
    qint64 wall = 0; ///< seconds since 1970: for what outlives a boot
    double dice = 0.5; ///< 0 to 1, a new one each time
};

/// What the kernel tells of the interface of our connection.
enum class Link
{
    Gone, ///< there is none
    Bare, ///< it is there and has no address: pppd is coming up, or on its way out
    Up,
};

enum class Modem
{
    Unknown,
    There,
    Gone,
};

/// How far an attempt has come.
enum class Task
{
    None,
    Asking, ///< the daemon has been asked for its state, right before a request
    Requested, ///< the connection has been requested
    Running, ///< the daemon is at it, whoever asked for it
};

/// Why a link is being ended by the keeper.
enum class Ending
{
    None,
    ForSleep,
    ForUser, ///< who had disconnected before it came up
};

/// What the next attempt waits for besides the facts.
enum class Pause
{
    None,
    Unanswered,
    HungUp,
    Refused,
    Settings, ///< no attempt before they change
};

/// A link was ended over the bus; for two seconds what follows may tell that no user wanted it.
struct Termination
{
    qint64 at = 0; ///< ms
    bool wasWanted = false; ///< the wish before
};

/// What outlives the process.
struct Memory
{
    bool keep = true; ///< the keeper does anything at all
    std::optional<bool> isWanted; ///< empty: nobody has ever been heard
    qint64 lastUpWall = 0; ///< when a link was last up, seconds since 1970; 0: never
    qint64 modemRestartedWall = 0; ///< when the keeper last restarted the modem, likewise
};

/// What the daemon's log tells of the time in which the keeper was not there.
enum class Unheard
{
    Nothing,
    Disconnect, ///< somebody ended the connection
    DisconnectOrUnplugged, ///< so did somebody, or else the modem was unplugged and still is
};

struct State // NOLINT(clang-analyzer-optin.performance.Padding): in the order of the explanation
{
    Pauses pauses; ///< never changes

    // the wish
    Memory memory;
    bool isWantedIfAtBoot = false; ///< of an earlier boot: the setting connect-at-boot decides
    bool isWantedIfUnplugged = false; ///< whether somebody disconnected is not clear yet
    std::optional<Termination> termination;

    // the world
    bool isDaemonThere = false;
    Link link = Link::Gone;
    bool isLinkKnown = false; ///< it has been looked for
    bool hasForeignLink = false; ///< ppp interfaces of others are up
    qint64 bareSince = 0; ///< ms, when the link lost its address or appeared without
    Cause bareCause = Cause::Unknown; ///< what the loss of the address looked like
    Modem modem = Modem::Unknown;
    std::optional<bool> carrier; ///< the line, as the driver tells it
    bool isBuilding = false; ///< the driver
    std::optional<qint64> restartUntil; ///< ms, the modem is being restarted, at most until then
    std::optional<qint64> asleepUntil; ///< ms, about to sleep or asleep, at most until then
    qint64 letSleepAt = 0; ///< ms, sleep is held up no longer
    bool isSleepHeld = false; ///< by us, since it was announced

    // the link that is or was up
    bool isInSession = false;
    bool isUnwanted = false; ///< it came up although the user had disconnected meanwhile
    qint64 upSince = 0; ///< ms
    qint64 lostAt = 0; ///< ms
    std::optional<Cause> expectedLoss; ///< why the link will go, or went, that nobody has told yet
    bool isLossUntold = false; ///< the link is gone, and whether a user wanted it is not clear yet

    // the attempt
    Task task = Task::None;
    qint64 taskUntil = 0; ///< ms, when it is given up
    bool isThreadRunning = false; ///< the daemon would drop a request
    bool isAwaitingLine = false; ///< the running attempt waits for synchronisation
    Cause toldCause = Cause::None; ///< what a signal told about the running attempt
    qint64 disownedUntil = 0; ///< ms, a link that comes up before was not wanted any more
    Ending ending = Ending::None;
    qint64 endingUntil = 0; ///< ms, when another try to end it is allowed
    int ownTerminations = 0; ///< signals still to come that our own ending causes

    // the pause
    Pause pause = Pause::None;
    qint64 nextAttempt = 0; ///< ms, not before
    qint64 outageSince = 0; ///< ms
    int attempts = 0; ///< failed ones of this outage
    int slowFailures = 0; ///< of these, since it is ten minutes old
    int shortLinks = 0; ///< links in a row that went within a minute
    int refusals = 0; ///< of the account, in a row
    int peerTerminations = 0; ///< hang-ups before an address, in a row
    int syncFailures = 0; ///< attempts in a row that found no line
    std::optional<qint64> modemRestartedAt; ///< ms, by the keeper
    std::optional<qint64> foreignSince; ///< ms, when another link was first found in the way

    // what is told
    Cause reason = Cause::None;
};

} // namespace keeper
