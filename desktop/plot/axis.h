// SPDX-License-Identifier: MIT
// The axis of values: where its lines are, and in which unit.
#pragma once

#include <QString>
#include <QVector>

namespace desktop {

/// A unit for the values of a plot: they are divided by @p size.
struct PlotUnit
{
    double size = 1;
    QString name;
};

/// The unit for speeds of up to @p most bytes per second, as providers name them: bits.
PlotUnit speedUnit(double most);
/// For rates of up to @p most kbit/s.
PlotUnit rateUnit(double most);
/// For traffic of up to @p most bytes.
PlotUnit trafficUnit(double most);

struct ValueAxis
{
    double bottom = 0;
    double top = 1;
    double step = 1;

    /// The values with a line, from the bottom.
    QVector<double> lines() const;
    /// How such a value is written, in the language's own notation.
    QString label(double value) const;
};

/// An axis from @p least (or 0) to @p most with @p mostLines lines at most, their distance 1, 2 or
/// 5 or one of these times a power of ten. An axis of nothing reaches to 1.
ValueAxis valueAxis(double least, double most, int mostLines);

/// Which of the labels of the given @p widths have room side by side in @p room: every n-th, 1 for
/// all of them.
int everyNth(const QVector<double> &widths, double gap, double room);

} // namespace desktop
