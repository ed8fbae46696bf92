// SPDX-License-Identifier: MIT
#include "desktop/plot/speed_plot.h"

#include "client/say.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>

namespace desktop {

namespace {

constexpr int minutes = 5;
constexpr double minuteMs = 60000;

// The daemon tells a speed each second; one or two may be late.
constexpr double longestStepMs = 3500;

std::optional<double> inUnit(const std::optional<double> &speed, const PlotUnit &unit)
{
    return speed ? std::optional<double>(*speed / unit.size) : std::nullopt;
}

QString presentText(const std::optional<double> &speed, const PlotUnit &unit)
{
    return speed ? valueText(*speed / unit.size, unit.name) : QStringLiteral("–");
}

} // namespace

PlotContent speedPlot(const SpeedHistory &speeds, qint64 now)
{
    PlotContent content;
    content.title = Say::tr("Speed");
    content.span = Say::tr("last five minutes");
    content.whenEmpty = Say::tr("The speed of the last five minutes appears here while connected.");
    content.first.name = Say::tr("Down");
    content.second.name = Say::tr("Up");
    content.begin = double(now - SpeedHistory::spanMs);
    content.end = double(now);
    content.longestStep = longestStepMs;
    double most = 0;
    for (const SpeedSample &sample : speeds.samples()) {
        most = std::max({most, sample.down.value_or(0), sample.up.value_or(0)});
    }
    const PlotUnit unit = speedUnit(most);
    content.unit = unit.name;
    const QLocale locale;
    for (const SpeedSample &sample : speeds.samples()) {
        content.points.append({double(sample.at),
            locale.toString(
                QDateTime::fromMSecsSinceEpoch(sample.at).time(), QStringLiteral("HH:mm:ss")),
            inUnit(sample.down, unit), inUnit(sample.up, unit)});
    }
    const QVector<SpeedSample> &samples = speeds.samples();
    const bool isFresh = !samples.isEmpty() && double(now - samples.last().at) <= longestStepMs;
    content.first.present
        = presentText(isFresh ? samples.last().down : std::optional<double>(), unit);
    content.second.present
        = presentText(isFresh ? samples.last().up : std::optional<double>(), unit);
    for (int minute = minutes; minute >= 0; --minute) {
        const QString text = minute == minutes ? Say::tr("%1 min").arg(minute)
            : minute == 0                      ? Say::tr("now")
                                               : locale.toString(minute);
        content.marks.append({double(now) - minute * minuteMs, text});
    }
    return content;
}

} // namespace desktop
