// SPDX-License-Identifier: MIT
// What is done: sessions, attempts and pauses, sleep.
#include "keeper/decision/step.h"

#include "keeper/decision/limits.h"

namespace keeper {

Step::Step(const State &state, const Moment &now)
    : s(state)
    , m_now(now)
{
}

void Step::passDeadlines()
{
    if (s.asleepUntil && m_now.ms >= *s.asleepUntil) {
        wakeUp();
    }
    if (s.termination && m_now.ms > s.termination->at + excuseMs) {
        resolveTermination(Cause::User);
    }
    if (s.isInSession && s.link == Link::Bare && m_now.ms >= s.bareSince + bareLinkMs) {
        loseLink(s.bareCause);
    }
    if (!s.asleepUntil && m_now.ms >= s.taskUntil) {
        giveUpTask();
    }
    if (s.ending != Ending::None && m_now.ms >= s.endingUntil) {
        s.ending = Ending::None;
        s.ownTerminations = 0;
    }
    if (s.restartUntil && m_now.ms >= *s.restartUntil) {
        s.restartUntil.reset();
    }
}

void Step::giveUpTask()
{
    s.isThreadRunning = false; // its end has been missed
    switch (s.task) {
    case Task::None:
        break;
    case Task::Asking:
        s.task = Task::None;
        break;
    case Task::Requested:
        attemptFailed(Cause::RequestDropped);
        break;
    case Task::Running:
        attemptFailed(s.toldCause == Cause::None ? Cause::Unknown : s.toldCause);
        break;
    }
}

void Step::act()
{
    prepareForSleep();
    const bool mayEnd = s.memory.keep && s.isDaemonThere && s.ending == Ending::None;
    if (mayEnd && s.link == Link::Up && s.isUnwanted) {
        endLink(Ending::ForUser);
    }
    if (mayRequest() && m_now.ms >= s.nextAttempt) {
        s.task = Task::Asking;
        s.taskUntil = m_now.ms + answerMs;
        note(Action::Kind::AskDaemon);
    }
}

/// Everything that must be so before a connection is requested, but for the pause.
bool Step::mayRequest() const
{
    const bool isIdle = s.task == Task::None && !s.isThreadRunning && s.ending == Ending::None;
    const bool isHeldUp = s.isBuilding || s.restartUntil || s.asleepUntil || s.modem == Modem::Gone
        || s.pause == Pause::Settings;
    const bool isLinkAway
        = s.link == Link::Gone || (s.link == Link::Bare && m_now.ms >= s.bareSince + bareLinkMs);
    return s.memory.keep && isWanted(s) && s.isDaemonThere && isIdle && !isHeldUp && s.isLinkKnown
        && isLinkAway && !s.isInSession;
}

// ---- sessions

void Step::beginSession(qint64 upSince, bool wasAskedAgain)
{
    if (s.isLossUntold) {
        endSession(Cause::User);
    }
    s.isUnwanted = m_now.ms < s.disownedUntil && !wasAskedAgain;
    s.isInSession = true;
    s.modem = Modem::There; // without HAL the daemon sees none
    s.upSince = upSince;
    s.memory.lastUpWall = m_now.wall;
    s.expectedLoss.reset();
    s.refusals = 0;
    s.peerTerminations = 0;
    s.syncFailures = 0;
    beginOutage(); // the last one is over; what follows counts from nothing
    s.task = Task::None;
    s.isAwaitingLine = false;
    s.reason = Cause::None;
    note(Action::Kind::BeginSession);
    if (!s.isUnwanted) {
        // Nobody who has heard of it has disconnected since: whoever brought it up wanted it.
        setWish(true);
        s.termination.reset();
        s.disownedUntil = 0;
    }
}

void Step::loseLink(Cause cause)
{
    s.isInSession = false;
    s.isUnwanted = false;
    s.lostAt = m_now.ms;
    s.memory.lastUpWall = m_now.wall;
    if (s.ending != Ending::None) {
        endSession(s.ending == Ending::ForSleep ? Cause::Sleep : Cause::User);
    } else if (s.expectedLoss) {
        endSession(*s.expectedLoss);
    } else if (s.termination) {
        s.isLossUntold = true;
    } else {
        if (cause == Cause::Unplugged) {
            s.modem = Modem::Gone; // the daemon tells of it later
        }
        endSession(cause);
    }
}

/// The link's end with its reason, and when the next attempt may be.
void Step::endSession(Cause cause)
{
    s.isLossUntold = false;
    s.expectedLoss.reset();
    s.reason = cause;
    note(Action::Kind::EndSession, cause);
    if (!isIntended(cause)) {
        note(Action::Kind::TellLoss, cause);
    }
    beginOutage();
    const qint64 upFor = s.lostAt - s.upSince;
    if (upFor >= steadyLinkMs) {
        s.shortLinks = 0;
    }
    if (upFor < shortLinkMs && isProvidersDoing(cause)) {
        ++s.shortLinks;
        waitFor(Pause::HungUp, pauseHungUp(s.pauses, s.shortLinks));
    }
}

/// It is clear now who ended the connection over the bus.
void Step::resolveTermination(Cause cause)
{
    s.termination.reset();
    if (s.isLossUntold) {
        endSession(cause);
    }
}

/// The link goes, or went a moment ago, for a reason that is nobody's wish.
void Step::excuse(Cause cause)
{
    if (s.termination) {
        s.memory.isWanted = s.termination->wasWanted;
        if (s.termination->wasWanted) {
            s.disownedUntil = 0;
        }
        s.reason = cause;
        resolveTermination(cause);
    }
    if (s.isInSession) {
        s.expectedLoss = cause;
    }
}

// ---- attempts

/// The wish is known now, whatever an earlier keeper has left open.
void Step::setWish(bool isWanted)
{
    s.memory.isWanted = isWanted;
    s.isWantedIfAtBoot = false;
    s.isWantedIfUnplugged = false;
}

void Step::somebodyAsked()
{
    if (s.termination) {
        resolveTermination(Cause::User);
    }
    setWish(true);
    s.disownedUntil = 0;
    s.isUnwanted = false;
    s.refusals = 0;
    s.peerTerminations = 0;
    if (!s.isInSession) {
        beginOutage();
    }
}

void Step::beginOutage()
{
    s.outageSince = m_now.ms;
    s.attempts = 0;
    s.slowFailures = 0;
    s.foreignSince.reset();
    s.pause = Pause::None;
    s.nextAttempt = m_now.ms;
}

void Step::attemptFailed(Cause cause)
{
    s.task = Task::None;
    s.isAwaitingLine = false;
    if (!isWanted(s) || s.isInSession) {
        return;
    }
    ++s.attempts;
    s.peerTerminations = cause == Cause::PeerTerminated ? s.peerTerminations + 1 : 0;
    s.syncFailures = cause == Cause::LineNotSynchronised ? s.syncFailures + 1 : 0;
    if (s.peerTerminations >= peerTerminationsMost) {
        cause = Cause::AccountRefused;
    }
    s.reason = cause;
    note(Action::Kind::NoteAttempt, cause);
    switch (failureOf(cause)) {
    case Failure::Unanswered: {
        const qint64 outage = m_now.ms - s.outageSince;
        s.slowFailures = outage >= fastOutageMs ? s.slowFailures + 1 : 0;
        waitFor(Pause::Unanswered, pauseUnanswered(s.pauses, outage, s.slowFailures));
        break;
    }
    case Failure::Refused: {
        ++s.refusals;
        const bool hasWorkedLately
            = s.memory.lastUpWall != 0 && m_now.wall - s.memory.lastUpWall < latelySeconds;
        waitFor(Pause::Refused, pauseRefused(s.pauses, s.refusals, hasWorkedLately));
        break;
    }
    case Failure::Settings:
        s.pause = Pause::Settings;
        break;
    }
    restartStuckModem();
}

/// A driver may stop telling of the line for good; only loading it anew helps. The daemon ends
/// every pppd before it: not while one of somebody else's, on which he relies perhaps, is up.
void Step::restartStuckModem()
{
    const bool wasLately = s.modemRestartedAt && m_now.ms - *s.modemRestartedAt < restartEveryMs;
    if (s.syncFailures < syncFailuresMost || !s.memory.keep || s.modem == Modem::Gone || wasLately
        || s.restartUntil || s.hasForeignLink) {
        return;
    }
    s.syncFailures = 0;
    s.modemRestartedAt = m_now.ms;
    s.memory.modemRestartedWall = m_now.wall;
    s.restartUntil = m_now.ms + restartBeginMs;
    s.reason = Cause::ModemRestart;
    note(Action::Kind::RestartModem);
}

void Step::waitFor(Pause pause, qint64 ms)
{
    s.pause = pause;
    s.nextAttempt = m_now.ms + spread(ms, m_now.dice);
}

/// What unanswered attempts have been waiting for may be there now.
void Step::trySoon()
{
    if (s.pause == Pause::None || s.pause == Pause::Unanswered) {
        s.pause = Pause::None;
        s.nextAttempt = m_now.ms;
    }
}

void Step::request()
{
    s.task = Task::Requested;
    s.taskUntil = m_now.ms + answerMs;
    s.toldCause = Cause::None;
    note(Action::Kind::Connect);
}

/// What was to be asked for before a request is not needed any more.
void Step::dropQuestion()
{
    if (s.task == Task::Asking) {
        s.task = Task::None;
    }
}

// ---- sleep, and ending a link

void Step::prepareForSleep()
{
    if (!s.isSleepHeld) {
        return;
    }
    // Ending the link kills every pppd: one of somebody else's is worth more than our farewell.
    const bool mayEnd = s.memory.keep && s.isDaemonThere && s.link == Link::Up && !s.hasForeignLink;
    if (mayEnd && s.ending == Ending::None) {
        endLink(Ending::ForSleep);
    }
    if (!mayEnd || m_now.ms >= s.letSleepAt) {
        s.isSleepHeld = false;
        note(Action::Kind::LetSleep);
    }
}

void Step::wakeUp()
{
    // The daemon's own clocks stood still meanwhile: what was under way still is.
    if (s.task != Task::None || s.isThreadRunning) {
        s.taskUntil = m_now.ms + attemptMs;
    }
    if (s.disownedUntil > *s.asleepUntil - asleepMs) {
        s.disownedUntil = m_now.ms + attemptMs;
    }
    s.asleepUntil.reset();
    if (s.isSleepHeld) {
        s.isSleepHeld = false;
        note(Action::Kind::LetSleep);
    }
    note(Action::Kind::HoldSleep);
    s.outageSince = m_now.ms;
    s.slowFailures = 0;
    trySoon(); // a pause that the provider is owed goes on
}

void Step::endLink(Ending ending)
{
    s.ending = ending;
    s.endingUntil = m_now.ms + endingMs;
    ++s.ownTerminations;
    note(Action::Kind::EndLink);
}

} // namespace keeper
