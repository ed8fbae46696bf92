// SPDX-License-Identifier: MIT
// What the keeper remembers, as plots.
#pragma once

#include "client/keeper_state.h"
#include "desktop/plot/plot_content.h"

namespace desktop {

/// The days from @p begin to @p end; days after the newest are still to come. @p days is newest
/// first, as the keeper has them.
PlotContent dayPlot(const QList<KeeperTraffic> &days, const QDate &begin, const QDate &end);

/// Billing months, newest first.
PlotContent monthPlot(const QList<KeeperTraffic> &months);

enum class LineValue
{
    Rate,
    Margin,
};

/// The line between two times (seconds since 1970).
PlotContent linePlot(const QList<LineSample> &samples, LineValue value, qint64 from, qint64 until);

} // namespace desktop
