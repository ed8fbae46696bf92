// SPDX-License-Identifier: MIT
// What each event changes in what is known.
#include "keeper/decision/limits.h"
#include "keeper/decision/step.h"

namespace keeper {

// ---- the daemon

void Step::take(const event::DaemonAppeared &daemon)
{
    take(event::DaemonGone());
    s.isDaemonThere = true;
    s.isBuilding = daemon.isBuilding;
    s.modem = daemon.isModemPlugged ? Modem::There : Modem::Gone;
    if (s.isWantedIfAtBoot && !daemon.connectsAtBoot) {
        setWish(false);
    }
    if (s.isWantedIfUnplugged) {
        setWish(!daemon.isModemPlugged);
        s.reason = daemon.isModemPlugged ? Cause::User : Cause::Unplugged;
    }
    s.isWantedIfAtBoot = false;
    trySoon();
    if (daemon.isConnecting) {
        take(event::AttemptBegan());
    }
}

void Step::take(const event::DaemonGone &)
{
    s.isDaemonThere = false;
    s.task = Task::None;
    s.isThreadRunning = false;
    s.isAwaitingLine = false;
    s.isBuilding = false;
    s.restartUntil.reset();
    s.ending = Ending::None;
    s.ownTerminations = 0;
}

void Step::take(const event::DaemonAnswered &answer)
{
    if (s.task != Task::Asking) {
        return;
    }
    s.task = Task::None;
    if (!answer.connectionState) {
        s.reason = Cause::RequestRefused;
        waitFor(Pause::Unanswered, s.pauses.unanswered);
        return;
    }
    s.isBuilding = answer.isBuilding;
    if (!mayRequest()) {
        return;
    }
    if (*answer.connectionState == 1) { // somebody was faster
        s.task = Task::Running;
        s.isThreadRunning = true;
        s.taskUntil = m_now.ms + attemptMs;
        s.toldCause = Cause::None;
        return;
    }
    if (*answer.connectionState == 0 && !s.foreignSince) {
        // The daemon looks at one interface, ours are others: perhaps the next look shows it.
        s.foreignSince = m_now.ms;
        s.reason = s.hasForeignLink ? Cause::ForeignLink : s.reason;
        note(Action::Kind::LookAtLinks);
        waitFor(Pause::Unanswered, foreignMs);
        return;
    }
    request();
}

void Step::take(const event::RequestAnswered &answer)
{
    if (s.task != Task::Requested) {
        return;
    }
    if (answer.isAccepted) {
        s.taskUntil = m_now.ms + beginMs;
    } else {
        attemptFailed(Cause::RequestRefused);
    }
}

void Step::take(const event::EndAnswered &)
{
    s.ownTerminations = 0; // the signal comes before the answer
}

// ---- link and line

void Step::take(const event::LinkSeen &seen)
{
    const Link before = s.link;
    const bool isFirst = !s.isLinkKnown;
    s.link = seen.link;
    s.isLinkKnown = true;
    s.hasForeignLink = seen.hasForeign;
    switch (seen.link) {
    case Link::Up:
        if (!s.isInSession) {
            // One that is found may have been up for days.
            beginSession(isFirst ? m_now.ms - steadyLinkMs : m_now.ms, seen.wasAskedAgain);
        }
        break;
    case Link::Bare:
        if (before != Link::Bare) {
            s.bareSince = m_now.ms;
            s.bareCause = seen.cause;
        }
        break;
    case Link::Gone:
        if (s.isInSession) {
            // The first sight tells most: what carried the link may be gone as well by now.
            loseLink(before == Link::Bare ? s.bareCause : seen.cause);
        }
        s.ending = Ending::None;
        break;
    }
}

void Step::take(const event::LineSeen &seen)
{
    const bool isModemNew = seen.hasDevice && s.modem != Modem::There;
    const bool isLineNew = seen.carrier == true && s.carrier == false;
    if (seen.hasDevice) {
        s.modem = Modem::There;
    }
    s.carrier = seen.carrier;
    if (isModemNew || isLineNew) {
        trySoon();
    }
}

// ---- attempts

void Step::take(const event::AttemptBegan &)
{
    if (s.task != Task::Requested) {
        somebodyAsked();
    }
    s.task = Task::Running;
    s.isThreadRunning = true;
    s.taskUntil = m_now.ms + attemptMs;
    s.isAwaitingLine = false;
    s.toldCause = Cause::None;
}

void Step::take(const event::LineAwaited &)
{
    s.isAwaitingLine = s.task == Task::Running;
}

void Step::take(const event::AttemptTold &told)
{
    s.toldCause = told.cause;
}

void Step::take(const event::AttemptEnded &ended)
{
    s.isThreadRunning = false;
    if (s.task != Task::Running) {
        return;
    }
    s.isAwaitingLine = false;
    if (s.isInSession) { // one more was asked for while the link was up
        s.task = Task::None;
        return;
    }
    if (s.toldCause == Cause::None) {
        s.toldCause = ended.cause;
    }
    switch (ended.connectionState) {
    case 0: // the link is up, or another one is that the daemon takes for ours
        s.taskUntil = m_now.ms + arrivalMs;
        break;
    case 1: // pppd goes on by itself
        s.taskUntil = m_now.ms + lingeringMs;
        break;
    default:
        s.disownedUntil = 0;
        attemptFailed(s.toldCause);
        break;
    }
}

// ---- the wish

void Step::take(const event::Terminated &)
{
    if (s.ownTerminations > 0) {
        --s.ownTerminations;
        return;
    }
    dropQuestion();
    // An attempt that is under way goes on all the same and may still bring a link up.
    const bool isUnderWay = s.isThreadRunning || s.task != Task::None;
    s.disownedUntil = m_now.ms + (isUnderWay ? attemptMs : excuseMs);
    s.termination = Termination{m_now.ms, isWanted(s)};
    setWish(false);
    s.reason = Cause::User;
    s.pause = Pause::None;
}

void Step::take(const event::KeepSet &set)
{
    if (set.keep == s.memory.keep) {
        return;
    }
    s.memory.keep = set.keep;
    dropQuestion();
    if (!s.isInSession) {
        beginOutage();
    }
}

void Step::take(const event::ConnectAsked &)
{
    somebodyAsked();
}

// ---- modem and settings

void Step::take(const event::ModemPlugged &)
{
    s.modem = Modem::There;
    trySoon();
}

void Step::take(const event::ModemUnplugged &)
{
    s.modem = Modem::Gone;
    s.carrier.reset();
    excuse(Cause::Unplugged);
}

void Step::take(const event::RestartBegan &)
{
    s.restartUntil = m_now.ms + restartMs;
    excuse(Cause::ModemRestart);
}

void Step::take(const event::RestartEnded &)
{
    s.restartUntil.reset();
    trySoon();
}

void Step::take(const event::BuildBegan &)
{
    s.isBuilding = true;
}

void Step::take(const event::BuildEnded &)
{
    s.isBuilding = false;
    trySoon();
}

void Step::take(const event::AccountChanged &)
{
    s.refusals = 0;
    s.peerTerminations = 0;
    if (s.pause == Pause::Refused) {
        s.pause = Pause::None;
    }
    take(event::SettingsChanged());
}

void Step::take(const event::SettingsChanged &)
{
    if (s.pause == Pause::Settings) {
        s.pause = Pause::None;
    }
    trySoon();
}

// ---- sleep

void Step::take(const event::SleepComing &)
{
    if (s.asleepUntil) {
        return;
    }
    dropQuestion();
    s.asleepUntil = m_now.ms + asleepMs;
    s.letSleepAt = m_now.ms + sleepHeldMs;
    s.isSleepHeld = true;
}

void Step::take(const event::Woke &)
{
    if (s.asleepUntil) {
        wakeUp();
    }
}

} // namespace keeper
