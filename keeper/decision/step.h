// SPDX-License-Identifier: MIT
// One step of the decision: the state, changed by one event, and the actions that follow.
#pragma once

#include "keeper/decision/decision.h"

namespace keeper {

/// Use it once: passDeadlines(), take() the event, act(), decision().
class Step
{
public:
    Step(const State &state, const Moment &now);

    /// What time alone has decided.
    void passDeadlines();

    // What each event changes in what is known. None of them begins an attempt.
    void take(const event::DaemonAppeared &daemon);
    void take(const event::DaemonGone &);
    void take(const event::LinkSeen &seen);
    void take(const event::LineSeen &seen);
    void take(const event::AttemptBegan &);
    void take(const event::LineAwaited &);
    void take(const event::AttemptTold &told);
    void take(const event::AttemptEnded &ended);
    void take(const event::Terminated &);
    void take(const event::ModemPlugged &);
    void take(const event::ModemUnplugged &);
    void take(const event::RestartBegan &);
    void take(const event::RestartEnded &);
    void take(const event::BuildBegan &);
    void take(const event::BuildEnded &);
    void take(const event::AccountChanged &);
    void take(const event::SettingsChanged &);
    void take(const event::DaemonAnswered &answer);
    void take(const event::RequestAnswered &answer);
    void take(const event::EndAnswered &);
    void take(const event::SleepComing &);
    void take(const event::Woke &);
    void take(const event::KeepSet &set);
    void take(const event::ConnectAsked &);
    void take(const event::Tick &) { }

    /// Begins what the state now asks for: letting the machine sleep, ending a link, an attempt.
    void act();

    Decision decision() const { return {s, m_actions}; }

private:
    void note(Action::Kind kind, Cause cause = Cause::None) { m_actions.append({kind, cause}); }

    void beginSession(qint64 upSince, bool wasAskedAgain);
    void loseLink(Cause cause);
    void endSession(Cause cause);
    void resolveTermination(Cause cause);
    void excuse(Cause cause);
    void setWish(bool isWanted);
    void somebodyAsked();
    void beginOutage();
    void attemptFailed(Cause cause);
    void giveUpTask();
    void restartStuckModem();
    void waitFor(Pause pause, qint64 ms);
    void trySoon();
    void request();
    void dropQuestion();
    void wakeUp();
    void prepareForSleep();
    void endLink(Ending ending);

    bool mayRequest() const;

    State s; // NOLINT(readability-identifier-naming): it stands in every line
    const Moment m_now;
    QVector<Action> m_actions;
};

} // namespace keeper
