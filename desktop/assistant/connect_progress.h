// SPDX-License-Identifier: MIT
// How far connecting has come, in four steps that are ticked off.
#pragma once

#include "desktop/model/connection_model.h"
#include "desktop/model/deed.h"

#include <array>

namespace desktop {

enum class Progress
{
    Waiting, ///< for the step before
    Running,
    Done,
    Failed,
};

enum class ConnectStage
{
    Daemon,
    Line,
    Provider,
    Address,
};

inline constexpr int stageCount = 4;

struct ConnectProgress
{
    std::array<Progress, stageCount> stages{}; ///< in the order of ConnectStage
    bool isRunning = false;
    bool isConnected = false;
    QString cause; ///< of a failure, in the user's language; empty for none
    Deed deed; ///< what helps then
};

/// @p carrier: what the kernel tells of the line, nothing when it does not.
/// @p now is milliseconds since 1970.
ConnectProgress connectProgressOf(
    const ConnectionModel &model, std::optional<bool> carrier, qint64 now);

QString stageTitle(ConnectStage stage);
QString progressText(Progress progress);

} // namespace desktop
