// SPDX-License-Identifier: MIT
// A keeper's life as a test tells it: events with their times, and what came of them.
#pragma once

#include "keeper/decision/decision.h"
#include "keeper/decision/phase.h"

namespace keeper {

/// Time goes on by wait() only; ticks come when the decision wants them.
class Story
{
public:
    using Kind = Action::Kind;

    explicit Story(
        const Memory &memory = {}, bool isSameBoot = true, Unheard unheard = Unheard::Nothing)
        : state(initialState(memory, isSameBoot, unheard, Pauses(), now))
    {
    }

    /// One whose wish is known, with a daemon, a modem, and no link.
    static Story wanted()
    {
        Memory memory;
        memory.isWanted = true;
        Story story(memory);
        story.tell(event::DaemonAppeared{false, true, false, false});
        story.tell(event::LinkSeen{});
        return story;
    }

    /// One whose link has been up for @p ms.
    static Story connected(qint64 ms = 3'600'000)
    {
        Story story = wanted();
        story.comeUp();
        story.wait(ms);
        story.actions.clear();
        return story;
    }

    void tell(const Event &what) { take(decide(state, what, now)); }

    /// Lets time pass, with all ticks that are due in it.
    void wait(qint64 ms)
    {
        const qint64 until = now.ms + ms;
        while (const std::optional<qint64> next = nextTick(state, now.ms)) {
            if (*next > until) {
                break;
            }
            advanceTo(*next);
            tell(event::Tick());
        }
        advanceTo(until);
    }

    /// The question that precedes a request, answered.
    void answer(int connectionState = 2) { tell(event::DaemonAnswered{connectionState, false}); }

    /// From a question to a running attempt.
    void begin()
    {
        answer();
        tell(event::RequestAnswered{true});
        tell(event::AttemptBegan());
    }

    void comeUp()
    {
        begin();
        tell(event::LinkSeen{Link::Up});
        tell(event::AttemptEnded{0, Cause::None});
    }

    /// A whole attempt, from the question on.
    void fail(Cause cause)
    {
        begin();
        tell(event::AttemptEnded{2, cause});
    }

    bool did(Kind kind) const { return count(kind) > 0; }

    int count(Kind kind) const
    {
        int number = 0;
        for (const Action &action : actions) {
            number += action.kind == kind ? 1 : 0;
        }
        return number;
    }

    /// The cause of the last action of that kind.
    Cause causeOf(Kind kind) const
    {
        for (int i = actions.size() - 1; i >= 0; --i) {
            if (actions.at(i).kind == kind) {
                return actions.at(i).cause;
            }
        }
        return Cause::None;
    }

    /// How long until the next question comes by itself, in ms; -1 when none does within a day.
    qint64 untilQuestion() const
    {
        if (state.task == Task::Asking) {
            return 0;
        }
        Story copy = *this;
        copy.actions.clear();
        while (!copy.did(Kind::AskDaemon)) {
            const std::optional<qint64> next = nextTick(copy.state, copy.now.ms);
            if (!next || *next - now.ms > 86'400'000) {
                return -1;
            }
            copy.advanceTo(*next);
            copy.tell(event::Tick());
        }
        return copy.now.ms - now.ms;
    }

    QString phase() const { return phaseOf(state); }

    Moment now{1'000'000, 1'800'000'000, 0.5};
    QVector<Action> actions;
    State state;

private:
    void take(const Decision &decision)
    {
        state = decision.state;
        actions += decision.actions;
    }

    void advanceTo(qint64 ms)
    {
        now.wall += ms / 1000 - now.ms / 1000;
        now.ms = ms;
    }
};

} // namespace keeper
