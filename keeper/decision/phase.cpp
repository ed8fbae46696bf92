// SPDX-License-Identifier: MIT
#include "keeper/decision/phase.h"

#include "keeper/decision/decision.h"

namespace keeper {

namespace {

const char *attemptPhase(const State &state)
{
    if (state.task != Task::None) {
        return state.isAwaitingLine ? "waiting-for-line" : "connecting";
    }
    if (state.modem == Modem::Gone) {
        return "waiting-for-modem";
    }
    if (state.pause == Pause::Settings) {
        return "waiting-for-settings";
    }
    return state.carrier == false ? "waiting-for-line" : "waiting";
}

const char *wordOf(const State &state)
{
    if (state.isInSession) {
        return "connected";
    }
    if (!state.memory.keep) {
        return "off";
    }
    if (!state.memory.isWanted.value_or(false)) {
        return "idle";
    }
    if (state.asleepUntil) {
        return "asleep";
    }
    if (!state.isDaemonThere) {
        return "waiting-for-daemon";
    }
    if (state.isBuilding) {
        return "waiting-for-driver";
    }
    if (state.restartUntil) {
        return "waiting-for-restart";
    }
    return attemptPhase(state);
}

} // namespace

QString phaseOf(const State &state)
{
    return QString::fromLatin1(wordOf(state));
}

std::optional<qint64> plannedAttempt(const State &state, qint64 now)
{
    const bool isHeldUp = state.isBuilding || state.restartUntil || state.asleepUntil
        || state.modem == Modem::Gone || state.pause == Pause::Settings;
    const bool isPlanned = state.memory.keep && isWanted(state) && state.isDaemonThere
        && !state.isInSession && state.task == Task::None && !isHeldUp && state.nextAttempt > now;
    return isPlanned ? std::optional<qint64>(state.nextAttempt) : std::nullopt;
}

} // namespace keeper
