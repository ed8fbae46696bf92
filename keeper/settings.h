// SPDX-License-Identifier: MIT
// The administrator's settings file.
#pragma once

#include "keeper/decision/pauses.h"

#include <QByteArray>
#include <QStringList>

namespace keeper {

/// The pauses by the text of the settings file: one "key = seconds" a line; what is not set keeps
/// its default. What is not understood is left out and told in @p problems, one sentence each.
Pauses pausesFrom(const QByteArray &text, QStringList *problems);

} // namespace keeper
