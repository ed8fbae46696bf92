// SPDX-License-Identifier: MIT
// Colours that can be told from what is behind them, in light and dark.
#pragma once

#include <QColor>
#include <QPalette>

namespace desktop {

/// How much two colours differ in brightness: 1 for not at all, 21 for black on white.
double contrast(const QColor &first, const QColor &second);

/// @p colour, made darker or lighter until its contrast to @p background is at least @p least.
QColor withContrast(const QColor &colour, const QColor &background, double least);

/// Enough for lines and shapes, and for text.
constexpr double shapeContrast = 3;
constexpr double textContrast = 4.5;

struct PlotColours
{
    QColor ground;
    QColor first;
    QColor second;
    QColor line; ///< of the axes: there, but behind everything else
    QColor mutedText; ///< on the window
};

PlotColours plotColours(const QPalette &palette);

} // namespace desktop
