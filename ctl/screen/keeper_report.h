// SPDX-License-Identifier: MIT
// How the keeper stands, as fields of a report.
#pragma once

#include "client/keeper_bus.h"

class Report;

/// Adds what the keeper has told, or that it has told nothing, under @p prefix ("keeper.").
void addKeeper(Report &report, const KeeperAnswer<KeeperState> &keeper, const QString &prefix);
