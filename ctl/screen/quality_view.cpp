// SPDX-License-Identifier: MIT
#include "ctl/screen/quality_view.h"

#include "client/say.h"
#include "client/text_format.h"

#include <QLocale>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int axisWidth = 9; // of the figures at the left, with their blank
constexpr int graphRows = 3;

QString numberText(double number, int decimals)
{
    return QLocale().toString(number, 'f', decimals);
}

/// What is drawn: a figure with its name, its unit and how it is shown.
struct Quantity
{
    const char *name;
    std::optional<double> LineSample::*figure;
    const char *unit;
    int decimals;
    double scale; ///< from the figure to what is shown
    bool isCounter;
    int rows;
};

const std::vector<Quantity> &quantities()
{
    static const std::vector<Quantity> table = {
        {QT_TRANSLATE_NOOP("Say", "Synchronised"), &LineSample::carrier, "%", 0, 100, false, 1},
        {QT_TRANSLATE_NOOP("Say", "Margin down"), &LineSample::downMargin, "dB", 1, 1, false,
            graphRows},
        {QT_TRANSLATE_NOOP("Say", "Margin up"), &LineSample::upMargin, "dB", 1, 1, false,
            graphRows},
        {QT_TRANSLATE_NOOP("Say", "Rate down"), &LineSample::downRate, "kbit/s", 0, 1, false,
            graphRows},
        {QT_TRANSLATE_NOOP("Say", "Rate up"), &LineSample::upRate, "kbit/s", 0, 1, false,
            graphRows},
        {QT_TRANSLATE_NOOP("Say", "Errors down"), &LineSample::downErrors, "", 0, 1, true, 1},
        {QT_TRANSLATE_NOOP("Say", "Errors up"), &LineSample::upErrors, "", 0, 1, true, 1},
    };
    return table;
}

struct Extent
{
    double least = 0;
    double most = 0;
    double last = 0;
    double sum = 0;
};

std::optional<Extent> extentOf(const Curve &curve)
{
    std::optional<Extent> extent;
    for (const std::optional<double> &value : curve) {
        if (!value) {
            continue;
        }
        if (!extent) {
            extent = Extent{*value, *value, *value, 0};
        }
        extent->least = std::min(extent->least, *value);
        extent->most = std::max(extent->most, *value);
        extent->last = *value;
        extent->sum += *value;
    }
    return extent;
}

QString headOf(const Quantity &quantity, const Extent &extent)
{
    const auto shown = [&quantity](double value) {
        const QString number = numberText(value * quantity.scale, quantity.decimals);
        return *quantity.unit == '\0' ? number
                                      : number + QLatin1Char(' ') + QLatin1String(quantity.unit);
    };
    const QString name = Say::tr(quantity.name);
    return quantity.isCounter
        ? Say::tr("%1: %2 in all").arg(name, shown(extent.sum))
        : Say::tr("%1: last %2, lowest %3, highest %4")
              .arg(name, shown(extent.last), shown(extent.least), shown(extent.most));
}

/// The graph with its figures at the left: the highest above, nought below.
QStringList drawn(const Quantity &quantity, const Curve &curve, double highest, bool hasGlyphs)
{
    QStringList lines = bars(curve, highest, quantity.rows, hasGlyphs);
    for (int row = 0; row < lines.size(); ++row) {
        const QString figure = row == 0 ? numberText(highest * quantity.scale, quantity.decimals)
            : row == lines.size() - 1   ? QStringLiteral("0")
                                        : QString();
        lines[row] = figure.rightJustified(axisWidth - 1) + QLatin1Char(' ') + lines.at(row);
    }
    return lines;
}

/// How much of a sample lies in a step.
qint64 overlap(const LineSample &sample, qint64 begin, qint64 end)
{
    return std::min(sample.time + sample.span, end) - std::max(sample.time, begin);
}

struct Steps
{
    qint64 from;
    qint64 until;
    int count;

    qint64 begin(int step) const { return from + (until - from) * step / count; }
    int at(qint64 time) const
    {
        return until > from ? int((time - from) * count / (until - from)) : 0;
    }
};

} // namespace

Curve curveOf(const QList<LineSample> &samples, std::optional<double> LineSample::*figure,
    qint64 from, qint64 until, int steps)
{
    const Steps all{from, until, steps};
    std::vector<double> sums(size_t(steps), 0);
    std::vector<double> weights(size_t(steps), 0);
    for (const LineSample &sample : samples) {
        const std::optional<double> value = sample.*figure;
        const int first = std::max(0, all.at(sample.time));
        for (int step = first; value && step < steps && all.begin(step) < sample.time + sample.span;
             ++step) {
            const qint64 weight = overlap(sample, all.begin(step), all.begin(step + 1));
            if (weight > 0) {
                sums.at(size_t(step)) += *value * double(weight);
                weights.at(size_t(step)) += double(weight);
            }
        }
    }
    Curve curve;
    for (size_t step = 0; step < size_t(steps); ++step) {
        curve.append(weights.at(step) > 0 ? std::optional<double>(sums.at(step) / weights.at(step))
                                          : std::nullopt);
    }
    return curve;
}

Curve growthOf(const QList<LineSample> &samples, std::optional<double> LineSample::*counter,
    qint64 from, qint64 until, int steps)
{
    const Steps all{from, until, steps};
    Curve curve;
    for (int step = 0; step < steps; ++step) {
        curve.append(std::nullopt);
    }
    std::optional<double> before;
    for (const LineSample &sample : samples) {
        const std::optional<double> value = sample.*counter;
        if (!value) {
            continue;
        }
        // What stood there before the first sample belongs to an earlier time.
        const double growth = !before ? 0 : *value < *before ? *value : *value - *before;
        before = value;
        const int step = all.at(sample.time);
        if (step >= 0 && step < steps) {
            curve[step] = curve.at(step).value_or(0) + growth;
        }
    }
    return curve;
}

QStringList bars(const Curve &curve, double highest, int rows, bool hasGlyphs)
{
    const QString marks = hasGlyphs ? QStringLiteral(" ▁▂▃▄▅▆▇█") : QStringLiteral(" .:-=+*#@");
    const int levels = marks.size() - 1;
    QStringList lines;
    for (int row = rows - 1; row >= 0; --row) {
        QString line;
        for (const std::optional<double> &value : curve) {
            const double share
                = highest > 0 ? std::clamp(value.value_or(0) / highest, 0.0, 1.0) : 0;
            const int height = value ? std::max(1, int(std::ceil(share * rows * levels))) : 0;
            line += marks.at(std::clamp(height - row * levels, 0, levels));
        }
        lines.append(line);
    }
    return lines;
}

QStringList qualityView(
    const QList<LineSample> &samples, qint64 from, qint64 until, int width, bool hasGlyphs)
{
    const int steps = std::max(8, width - axisWidth);
    QStringList lines;
    for (const Quantity &quantity : quantities()) {
        const Curve curve = quantity.isCounter
            ? growthOf(samples, quantity.figure, from, until, steps)
            : curveOf(samples, quantity.figure, from, until, steps);
        if (const std::optional<Extent> extent = extentOf(curve)) {
            lines.append(headOf(quantity, *extent));
            // The share of the time is one of the whole.
            const double highest
                = quantity.figure == &LineSample::carrier ? 1 : std::max(extent->most, 0.0);
            lines += drawn(quantity, curve, highest, hasGlyphs);
        }
    }
    if (!lines.isEmpty()) {
        const QString begin = momentText(from).left(16);
        const QString end = momentText(until).left(16);
        lines.append(QString(axisWidth, QLatin1Char(' ')) + begin
            + QString(std::max(1, steps - begin.size() - end.size()), QLatin1Char(' ')) + end);
    }
    return lines;
}
