// SPDX-License-Identifier: MIT
#include "keeper/decision/phase.h"

#include "dbus/contract.h"
#include "keeper/decision/decision.h"

namespace keeper {

namespace {

const char *attemptPhase(const State &state)
{
    if (state.task != Task::None) {
        return state.isAwaitingLine ? KeeperPhase::waitingForLine : KeeperPhase::connecting;
    }
    if (state.modem == Modem::Gone) {
        return KeeperPhase::waitingForModem;
    }
    if (state.pause == Pause::Settings) {
        return KeeperPhase::waitingForSettings;
    }
    return state.carrier == false ? KeeperPhase::waitingForLine : KeeperPhase::waiting;
}

const char *wordOf(const State &state)
{
    if (state.isInSession) {
        return KeeperPhase::connected;
    }
    if (!state.memory.keep) {
        return KeeperPhase::off;
    }
    if (!state.memory.isWanted.value_or(false)) {
        return KeeperPhase::idle;
    }
    if (state.asleepUntil) {
        return KeeperPhase::asleep;
    }
    if (!state.isDaemonThere) {
        return KeeperPhase::waitingForDaemon;
    }
    if (state.isBuilding) {
        return KeeperPhase::waitingForDriver;
    }
    if (state.restartUntil) {
        return KeeperPhase::waitingForRestart;
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
