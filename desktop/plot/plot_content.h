// SPDX-License-Identifier: MIT
// What a plot shows: values over time, and the words for them. No widget, no pixel but those that a
// caller asks for.
#pragma once

#include "desktop/plot/axis.h"

#include <QPointF>
#include <QRectF>
#include <optional>

namespace desktop {

/// Values at one time; what is not known is missing.
struct PlotPoint
{
    double at = 0; ///< on the axis of time
    QString name; ///< of that time, in words
    std::optional<double> first; ///< in the unit of the plot
    std::optional<double> second;
};

/// A mark on the axis of time.
struct PlotMark
{
    double at = 0;
    QString text;
};

enum class PlotShape
{
    Lines, ///< the first filled, the second dashed
    Bars, ///< the second stands on the first
};

/// One of the two things that are shown.
struct PlotSeries
{
    QString name; ///< "Down"
    QString present; ///< its value now, or in all, with the unit
};

struct PlotContent
{
    PlotShape shape = PlotShape::Lines;
    QString title; ///< what it is: "Speed"
    QString span; ///< of which time: "last five minutes"
    QString unit; ///< said once
    QString whenEmpty; ///< said in place of a plot without any value
    PlotSeries first;
    PlotSeries second;
    double begin = 0;
    double end = 1;
    double longestStep = 1; ///< points that are farther apart have something unknown in between
    QVector<PlotPoint> points; ///< in order of time
    QVector<PlotMark> marks;
};

/// Whether there is a value at all.
bool isEmpty(const PlotContent &content);

/// The axis of values for the plot, with @p mostLines lines at most.
ValueAxis valueAxisOf(const PlotContent &content, int mostLines);

/// Where values are on the screen.
struct PlotScale
{
    QRectF area;
    double begin = 0;
    double end = 1;
    ValueAxis values;
    bool isMirrored = false; ///< time runs from right to left

    double xOf(double at) const;
    double yOf(double value) const;
    double timeAt(double x) const;
};

/// The pieces of a line through the first (or second) values, broken where something is not known.
QVector<QVector<QPointF>> linePieces(
    const PlotContent &content, const PlotScale &scale, bool isFirst);

/// The point that is shown nearest to @p at; -1 where nothing is known, and outside.
int pointNear(const PlotContent &content, double at);

/// A point in words: "14:03: Down 6.1 Mbit/s, Up 0.4 Mbit/s".
QString pointText(const PlotContent &content, int place);

/// What a person who sees the plot reads from it.
QString plotText(const PlotContent &content);

/// A value with the unit of the plot.
QString valueText(double value, const QString &unit);

} // namespace desktop
