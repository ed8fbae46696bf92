// SPDX-License-Identifier: MIT
// What the tray item says.
#pragma once

#include "desktop/model/headline.h"

namespace desktop {

/// Headline, reason and the facts that people look for, a line each.
QString trayToolTip(const ConnectionModel &model, qint64 now);

/// What ending the program is called: nobody shall wonder what becomes of the connection.
QString quitText(const ConnectionModel &model);

} // namespace desktop
