// SPDX-License-Identifier: MIT
// The last five minutes as a plot.
#pragma once

#include "desktop/model/speed_history.h"
#include "desktop/plot/plot_content.h"

namespace desktop {

/// @p now is milliseconds since 1970.
PlotContent speedPlot(const SpeedHistory &speeds, qint64 now);

} // namespace desktop
