// SPDX-License-Identifier: MIT
#include "keeper/decision/decision.h"

#include "keeper/decision/limits.h"
#include "keeper/decision/step.h"

#include <algorithm>

namespace keeper {

State initialState(
    const Memory &memory, bool isSameBoot, Unheard unheard, const Pauses &pauses, const Moment &now)
{
    State state;
    state.pauses = pauses;
    state.memory = memory;
    if (unheard == Unheard::Disconnect) {
        state.memory.isWanted = false;
    }
    const bool wasWanted = state.memory.isWanted.value_or(false);
    state.isWantedIfAtBoot = !isSameBoot && wasWanted;
    state.isWantedIfUnplugged = unheard == Unheard::DisconnectOrUnplugged && wasWanted;
    const qint64 restartedBefore = (now.wall - memory.modemRestartedWall) * 1000;
    if (restartedBefore >= 0 && restartedBefore < restartEveryMs) {
        state.modemRestartedAt = now.ms - restartedBefore;
    }
    state.outageSince = now.ms;
    state.nextAttempt = now.ms;
    return state;
}

bool isWanted(const State &state)
{
    return state.memory.isWanted.value_or(false) && !state.isWantedIfAtBoot
        && !state.isWantedIfUnplugged;
}

Decision decide(const State &state, const Event &event, const Moment &now)
{
    Step step(state, now);
    step.passDeadlines();
    std::visit([&step](const auto &what) { step.take(what); }, event);
    step.act();
    return step.decision();
}

std::optional<qint64> nextTick(const State &state, qint64 now)
{
    std::optional<qint64> next;
    const auto consider = [&](bool matters, qint64 at) {
        if (matters && at > now) {
            next = std::min(next.value_or(at), at);
        }
    };
    const bool isWaiting = state.memory.keep && isWanted(state) && state.isDaemonThere
        && !state.isInSession && state.task == Task::None && state.pause != Pause::Settings;
    consider(isWaiting, state.nextAttempt);
    consider(
        state.link == Link::Bare && (isWaiting || state.isInSession), state.bareSince + bareLinkMs);
    consider(
        state.termination.has_value(), state.termination.value_or(Termination()).at + excuseMs + 1);
    consider(
        (state.task != Task::None || state.isThreadRunning) && !state.asleepUntil, state.taskUntil);
    consider(state.ending != Ending::None, state.endingUntil);
    consider(state.restartUntil.has_value(), state.restartUntil.value_or(0));
    consider(state.asleepUntil.has_value(), state.asleepUntil.value_or(0));
    consider(state.isSleepHeld, state.letSleepAt);
    return next;
}

bool wantsLooks(const State &state)
{
    return state.memory.keep && isWanted(state) && state.isDaemonThere && !state.isInSession
        && !state.asleepUntil;
}

} // namespace keeper
