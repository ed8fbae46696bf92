// SPDX-License-Identifier: MIT
// The line's quality as graphs of text.
#pragma once

#include "client/keeper_state.h"

#include <QList>
#include <QStringList>

/// A figure at equal steps of time; nothing where it is not known.
using Curve = QList<std::optional<double>>;

/// A figure of the samples from @p from until @p until in @p steps equal steps: the mean of what
/// falls into each, weighted by how long it stands for.
Curve curveOf(const QList<LineSample> &samples, std::optional<double> LineSample::*figure,
    qint64 from, qint64 until, int steps);

/// How much a counter has grown in each step. A counter that is lower than before began anew.
Curve growthOf(const QList<LineSample> &samples, std::optional<double> LineSample::*counter,
    qint64 from, qint64 until, int steps);

/// Columns of bars, @p rows lines high, from nought to @p highest. What is known is never drawn as
/// nothing. Without @p hasGlyphs they are drawn in ASCII.
QStringList bars(const Curve &curve, double highest, int rows, bool hasGlyphs);

/// All that the samples tell, at most @p width columns wide; empty when they tell nothing.
QStringList qualityView(
    const QList<LineSample> &samples, qint64 from, qint64 until, int width, bool hasGlyphs);
