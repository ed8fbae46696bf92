// SPDX-License-Identifier: MIT
#include "desktop/plot/history_plots.h"

#include "client/say.h"
#include "client/text_format.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>

namespace desktop {

namespace {

constexpr qint64 daySeconds = 86400;
constexpr qint64 hourSeconds = 3600;
constexpr int shownMonths = 12;

QString dayText(const QDate &day)
{
    return QLocale().toString(day, QLocale::ShortFormat);
}

PlotContent barsOf(const QList<KeeperTraffic> &traffic)
{
    PlotContent content;
    content.shape = PlotShape::Bars;
    content.title = Say::tr("Traffic");
    content.first.name = Say::tr("Down");
    content.second.name = Say::tr("Up");
    content.whenEmpty = Say::tr("No traffic yet. It is counted while the keeper runs.");
    content.longestStep = 0.5;
    quint64 received = 0;
    quint64 sent = 0;
    quint64 most = 0;
    for (const KeeperTraffic &part : traffic) {
        received += part.received;
        sent += part.sent;
        most = std::max(most, part.total());
    }
    content.unit = trafficUnit(double(most)).name;
    content.first.present = bytesText(double(received));
    content.second.present = bytesText(double(sent));
    return content;
}

void appendBar(PlotContent &content, const QString &name, const KeeperTraffic &part, double unit)
{
    content.points.append({double(content.points.size() + 1), name, double(part.received) / unit,
        double(part.sent) / unit});
}

double unitOf(const QList<KeeperTraffic> &traffic)
{
    quint64 most = 0;
    for (const KeeperTraffic &part : traffic) {
        most = std::max(most, part.total());
    }
    return trafficUnit(double(most)).size;
}

std::optional<double> inUnit(const std::optional<double> &value, double unit)
{
    return value ? std::optional<double>(*value / unit) : std::nullopt;
}

/// "14:00" or, for what stands for a day or lies further back, with the day.
QString timeName(qint64 time, bool isWithinADay)
{
    const QDateTime moment = QDateTime::fromSecsSinceEpoch(time);
    const QString clock = QLocale().toString(moment.time(), QLocale::ShortFormat);
    return isWithinADay ? clock : dayText(moment.date()) + QLatin1Char(' ') + clock;
}

QVector<PlotMark> timeMarks(qint64 from, qint64 until)
{
    const bool isDay = until - from <= daySeconds;
    QVector<PlotMark> marks;
    QDateTime mark = QDateTime::fromSecsSinceEpoch(from);
    // From whole days or hours, as clocks show them.
    mark.setTime(isDay ? QTime(mark.time().hour(), 0) : QTime(0, 0));
    while (mark.toSecsSinceEpoch() <= until) {
        if (mark.toSecsSinceEpoch() >= from) {
            marks.append({double(mark.toSecsSinceEpoch()),
                isDay ? QLocale().toString(mark.time(), QLocale::ShortFormat)
                      : QLocale().toString(mark.date().day())});
        }
        mark = isDay ? mark.addSecs(3 * hourSeconds) : mark.addDays(1);
    }
    return marks;
}

} // namespace

PlotContent dayPlot(const QList<KeeperTraffic> &days, const QDate &begin, const QDate &end)
{
    QList<KeeperTraffic> shown;
    for (const KeeperTraffic &day : days) {
        if (day.begin >= begin && day.begin <= end) {
            shown.append(day);
        }
    }
    PlotContent content = barsOf(shown);
    content.span = Say::tr("per day");
    const double unit = unitOf(shown);
    const QDate newest = shown.isEmpty() ? QDate() : shown.first().begin;
    for (QDate day = begin; day <= end; day = day.addDays(1)) {
        const double at = double(begin.daysTo(day) + 1);
        content.marks.append({at, QLocale().toString(day.day())});
        const auto found = std::find_if(shown.begin(), shown.end(),
            [&day](const KeeperTraffic &traffic) { return traffic.begin == day; });
        if (found != shown.end()) {
            appendBar(content, dayText(day), *found, unit);
        } else if (day <= newest) {
            appendBar(content, dayText(day), KeeperTraffic(), unit);
        }
    }
    content.begin = 0.5;
    content.end = double(begin.daysTo(end)) + 1.5;
    return content;
}

PlotContent monthPlot(const QList<KeeperTraffic> &months)
{
    const QList<KeeperTraffic> shown = months.mid(0, shownMonths);
    PlotContent content = barsOf(shown);
    content.span = Say::tr("per billing month");
    const double unit = unitOf(shown);
    for (auto month = shown.crbegin(); month != shown.crend(); ++month) {
        appendBar(content, Say::tr("%1 to %2").arg(dayText(month->begin), dayText(month->end)),
            *month, unit);
        content.marks.append({double(content.points.size()),
            QLocale().standaloneMonthName(month->begin.month(), QLocale::ShortFormat)});
    }
    content.begin = 0.5;
    content.end = std::max(int(shown.size()), 6) + 0.5;
    return content;
}

PlotContent linePlot(const QList<LineSample> &samples, LineValue value, qint64 from, qint64 until)
{
    const bool isRate = value == LineValue::Rate;
    const bool isDay = until - from <= daySeconds;
    PlotContent content;
    content.title = isRate ? Say::tr("Line rate") : Say::tr("Noise margin");
    content.span = isDay ? Say::tr("last day") : Say::tr("last 30 days");
    content.whenEmpty = isRate
        ? Say::tr(
            "No line rates yet. They are noted while the keeper runs and the driver tells them.")
        : Say::tr("No noise margins yet. They are noted while the keeper runs and the driver tells "
                  "them.");
    content.first.name = Say::tr("Down");
    content.second.name = Say::tr("Up");
    content.begin = double(from);
    content.end = double(until);
    double most = 0;
    qint64 longest = 60;
    for (const LineSample &sample : samples) {
        most = std::max({most, sample.downRate.value_or(0), sample.upRate.value_or(0)});
        longest = std::max(longest, sample.span);
    }
    const PlotUnit unit = isRate ? rateUnit(most) : PlotUnit{1, Say::tr("dB")};
    content.unit = unit.name;
    // Samples are of the middle of their time; neighbours may stand for different spans.
    content.longestStep = double(longest) * 1.5;
    for (const LineSample &sample : samples) {
        const double at = double(sample.time) + double(sample.span == 60 ? 0 : sample.span / 2);
        content.points.append({at, timeName(qint64(at), isDay),
            inUnit(isRate ? sample.downRate : sample.downMargin, unit.size),
            inUnit(isRate ? sample.upRate : sample.upMargin, unit.size)});
    }
    for (const PlotPoint &point : content.points) {
        if (point.first) {
            content.first.present = valueText(*point.first, content.unit);
        }
        if (point.second) {
            content.second.present = valueText(*point.second, content.unit);
        }
    }
    content.marks = timeMarks(from, until);
    return content;
}

} // namespace desktop
