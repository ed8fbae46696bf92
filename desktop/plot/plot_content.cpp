// SPDX-License-Identifier: MIT
#include "desktop/plot/plot_content.h"

#include "client/say.h"

#include <QLocale>
#include <QStringList>
#include <algorithm>
#include <cmath>

namespace desktop {

namespace {

std::optional<double> valueOf(const PlotPoint &point, bool isFirst)
{
    return isFirst ? point.first : point.second;
}

/// What the highest mark of the point is.
double heightOf(const PlotContent &content, const PlotPoint &point)
{
    const double first = point.first.value_or(0);
    const double second = point.second.value_or(0);
    return content.shape == PlotShape::Bars ? first + second : std::max(first, second);
}

QString seriesText(
    const PlotSeries &series, const std::optional<double> &value, const QString &unit)
{
    return value ? Say::tr("%1 %2").arg(series.name, valueText(*value, unit))
                 : Say::tr("%1 not known").arg(series.name);
}

/// The highest value of a series with its time.
QString highestText(const PlotContent &content, bool isFirst)
{
    const PlotPoint *highest = nullptr;
    for (const PlotPoint &point : content.points) {
        const std::optional<double> value = valueOf(point, isFirst);
        if (value && (highest == nullptr || *value > *valueOf(*highest, isFirst))) {
            highest = &point;
        }
    }
    if (highest == nullptr) {
        return {};
    }
    const PlotSeries &series = isFirst ? content.first : content.second;
    return Say::tr("%1 at most %2 (%3).")
        .arg(series.name, valueText(*valueOf(*highest, isFirst), content.unit), highest->name);
}

} // namespace

QString valueText(double value, const QString &unit)
{
    const double size = std::abs(value);
    const int decimals = size == 0 || size >= 100 ? 0 : size >= 1 ? 1 : 2;
    const QString number = QLocale().toString(value, 'f', decimals);
    return unit.isEmpty() ? number : number + QLatin1Char(' ') + unit;
}

bool isEmpty(const PlotContent &content)
{
    return std::none_of(content.points.begin(), content.points.end(),
        [](const PlotPoint &point) { return point.first || point.second; });
}

ValueAxis valueAxisOf(const PlotContent &content, int mostLines)
{
    double least = 0;
    double most = 0;
    for (const PlotPoint &point : content.points) {
        most = std::max(most, heightOf(content, point));
        least = std::min({least, point.first.value_or(0), point.second.value_or(0)});
    }
    return valueAxis(least, most, mostLines);
}

double PlotScale::xOf(double at) const
{
    const double share = (at - begin) / (end - begin);
    return isMirrored ? area.right() - share * area.width() : area.left() + share * area.width();
}

double PlotScale::yOf(double value) const
{
    const double share = (value - values.bottom) / (values.top - values.bottom);
    return area.bottom() - share * area.height();
}

double PlotScale::timeAt(double x) const
{
    const double share = (isMirrored ? area.right() - x : x - area.left()) / area.width();
    return begin + share * (end - begin);
}

QVector<QVector<QPointF>> linePieces(
    const PlotContent &content, const PlotScale &scale, bool isFirst)
{
    QVector<QVector<QPointF>> pieces;
    bool isBroken = true;
    double before = 0;
    for (const PlotPoint &point : content.points) {
        const std::optional<double> value = valueOf(point, isFirst);
        if (!value) {
            isBroken = true;
            continue;
        }
        if (isBroken || point.at - before > content.longestStep) {
            pieces.append(QVector<QPointF>());
        }
        pieces.last().append(QPointF(scale.xOf(point.at), scale.yOf(*value)));
        isBroken = false;
        before = point.at;
    }
    return pieces;
}

int pointNear(const PlotContent &content, double at)
{
    int nearest = -1;
    double distance = content.longestStep;
    for (int place = 0; place < content.points.size(); ++place) {
        const double away = std::abs(content.points.at(place).at - at);
        if (away <= distance) {
            nearest = place;
            distance = away;
        }
    }
    return nearest;
}

QString pointText(const PlotContent &content, int place)
{
    if (place < 0 || place >= content.points.size()) {
        return {};
    }
    const PlotPoint &point = content.points.at(place);
    if (!point.first && !point.second) {
        return Say::tr("%1: not known").arg(point.name);
    }
    const QString first = seriesText(content.first, point.first, content.unit);
    return content.second.name.isEmpty()
        ? Say::tr("%1: %2").arg(point.name, first)
        : Say::tr("%1: %2, %3")
              .arg(point.name, first, seriesText(content.second, point.second, content.unit));
}

QString plotText(const PlotContent &content)
{
    if (isEmpty(content)) {
        return content.whenEmpty;
    }
    QStringList sentences;
    for (const PlotSeries &series : {content.first, content.second}) {
        if (!series.present.isEmpty()) {
            sentences.append(Say::tr("%1 %2.").arg(series.name, series.present));
        }
    }
    for (const bool isFirst : {true, false}) {
        const QString highest = highestText(content, isFirst);
        if (!highest.isEmpty()) {
            sentences.append(highest);
        }
    }
    return sentences.join(QLatin1Char(' '));
}

} // namespace desktop
