// SPDX-License-Identifier: MIT
// The administrator's settings file.
#pragma once

#include "keeper/decision/pauses.h"

#include <QByteArray>
#include <QStringList>

namespace keeper {

struct Settings
{
    Pauses pauses;
    QStringList problems; ///< what was not understood and is left out, one sentence each
};

/// By the text of the settings file: one "key = seconds" a line; what is not set keeps its default.
Settings settingsFrom(const QByteArray &text);

} // namespace keeper
