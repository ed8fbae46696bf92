// SPDX-License-Identifier: MIT
// What plots show and say, without a screen: axes, gaps, places and words.
#include "desktop/plot/history_plots.h"
#include "desktop/plot/speed_plot.h"
#include "test_table.h"

#include <QTest>
#include <QTimeZone>
#include <cmath>

using namespace desktop;

namespace {

constexpr qint64 noon = 1763809200000; // 11:00 UTC, 21 November 2025
constexpr qint64 second = 1000;

PlotContent pointsAt(const QVector<double> &times)
{
    PlotContent content;
    content.first.name = QStringLiteral("Down");
    content.second.name = QStringLiteral("Up");
    content.unit = QStringLiteral("dB");
    content.begin = 0;
    content.end = 10;
    content.longestStep = 1.5;
    for (const double at : times) {
        content.points.append({at, QString::number(at), at, std::nullopt});
    }
    return content;
}

PlotScale tenByTen()
{
    PlotScale scale;
    scale.area = QRectF(0, 0, 100, 100);
    scale.begin = 0;
    scale.end = 10;
    scale.values = {0, 10, 5};
    return scale;
}

QVector<int> sizes(const QVector<QVector<QPointF>> &pieces)
{
    QVector<int> result;
    for (const QVector<QPointF> &piece : pieces) {
        result.append(piece.size());
    }
    return result;
}

KeeperTraffic day(int number, quint64 received, quint64 sent)
{
    return {QDate(2026, 11, number), QDate(2026, 11, number), received, sent};
}

LineSample rateAt(qint64 time, qint64 span, std::optional<double> down)
{
    LineSample sample;
    sample.time = time;
    sample.span = span;
    sample.downRate = down;
    return sample;
}

} // namespace

class PlotContentTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "UTC");
        tzset();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    }

    void anAxisHasNiceSteps_data()
    {
        const auto row
            = table<double, double, int, QStringList>("least", "most", "lines", "labels");
        row("sketch", 0.0, 6.6, 5, {"0", "2", "4", "6", "8"});
        row("on a line", 0.0, 8.0, 5, {"0", "2", "4", "6", "8"});
        row("thousands", 0.0, 8128.0, 5, {"0", "5,000", "10,000"});
        row("parts", 0.0, 0.23, 4, {"0.0", "0.1", "0.2", "0.3"});
        row("hundredths", 0.0, 0.03, 4, {"0.00", "0.01", "0.02", "0.03"});
        row("nothing at all", 0.0, 0.0, 3, {"0.0", "0.5", "1.0"});
        row("below nothing", -1.5, 7.0, 5, {"-5", "0", "5", "10"});
        row("only below", -3.0, 0.0, 5, {"-3", "-2", "-1", "0"});
        row("room for two", 0.0, 6.6, 2, {"0", "10"});
    }
    void anAxisHasNiceSteps()
    {
        QFETCH(double, least);
        QFETCH(double, most);
        QFETCH(int, lines);
        QFETCH(QStringList, labels);
        const ValueAxis axis = valueAxis(least, most, lines);
        QStringList found;
        for (const double value : axis.lines()) {
            found.append(axis.label(value));
        }
        QCOMPARE(found, labels);
    }

    void everyAxisHoldsItsValuesWithinItsRoom()
    {
        for (int step = 0; step < 110; ++step) {
            const double most = 1e-3 * std::pow(1.37, step); // up to 1e12
            for (int lines = 2; lines <= 8; ++lines) {
                const ValueAxis axis = valueAxis(0, most, lines);
                QVERIFY2(axis.top >= most * (1 - 1e-6), qPrintable(QString::number(most)));
                QVERIFY2(axis.lines().size() <= lines, qPrintable(QString::number(most)));
                QVERIFY2(axis.top <= most * 10.01, qPrintable(QString::number(most)));
            }
        }
    }

    void unitsAreThoseThatNumbersStaySmallIn()
    {
        QCOMPARE(speedUnit(50000).name, QStringLiteral("kbit/s"));
        QCOMPARE(speedUnit(762500).name, QStringLiteral("Mbit/s"));
        QCOMPARE(762500 / speedUnit(762500).size, 6.1);
        QCOMPARE(rateUnit(8128).name, QStringLiteral("kbit/s"));
        QCOMPARE(rateUnit(24000).name, QStringLiteral("Mbit/s"));
        QCOMPARE(trafficUnit(31e6).name, QStringLiteral("MB"));
        QCOMPARE(trafficUnit(31e9).name, QStringLiteral("GB"));
    }

    void labelsThatHaveNoRoomAreLeftOut()
    {
        QCOMPARE(everyNth({10, 10, 10, 10}, 2, 100), 1);
        QCOMPARE(everyNth({10, 10, 10, 10}, 2, 40), 2);
        QCOMPARE(everyNth({10, 40}, 0, 40), 2);
        QCOMPARE(everyNth({}, 2, 40), 1);
        QCOMPARE(everyNth({10, 10}, 2, 0), 2);
    }

    void valuesStandWhereTheAxesSay()
    {
        PlotScale scale = tenByTen();
        QCOMPARE(scale.xOf(0), 0.0);
        QCOMPARE(scale.xOf(7.5), 75.0);
        QCOMPARE(scale.yOf(0), 100.0);
        QCOMPARE(scale.yOf(10), 0.0);
        QCOMPARE(scale.timeAt(25), 2.5);
    }

    void timeRunsTheOtherWayWhereWritingDoes()
    {
        PlotScale scale = tenByTen();
        scale.isMirrored = true;
        QCOMPARE(scale.xOf(7.5), 25.0);
        QCOMPARE(scale.timeAt(25), 7.5);
    }

    void aLineIsBrokenWhereNothingIsKnown_data()
    {
        const auto row = table<QVector<double>, QVector<int>>("times", "pieces");
        row("none", {}, {});
        row("one", {3}, {1});
        row("whole", {1, 2, 3}, {3});
        row("gap", {1, 2, 5, 6}, {2, 2});
        row("lonely", {1, 5, 9}, {1, 1, 1});
        row("late, but not a gap", {1, 2.5, 4}, {3});
    }
    void aLineIsBrokenWhereNothingIsKnown()
    {
        QFETCH(QVector<double>, times);
        QFETCH(QVector<int>, pieces);
        QCOMPARE(sizes(linePieces(pointsAt(times), tenByTen(), true)), pieces);
        QVERIFY(linePieces(pointsAt(times), tenByTen(), false).isEmpty());
    }

    void aValueThatIsMissingBreaksItsOwnLineOnly()
    {
        PlotContent content = pointsAt({1, 2, 3});
        content.points[1].first.reset();
        for (PlotPoint &point : content.points) {
            point.second = 1;
        }
        QCOMPARE(sizes(linePieces(content, tenByTen(), true)), (QVector<int>{1, 1}));
        QCOMPARE(sizes(linePieces(content, tenByTen(), false)), (QVector<int>{3}));
    }

    void thePointUnderThePointerIsTheNearest()
    {
        const PlotContent content = pointsAt({1, 2, 8});
        QCOMPARE(pointNear(content, 1.4), 0);
        QCOMPARE(pointNear(content, 1.6), 1);
        QCOMPARE(pointNear(content, 9), 2);
        QCOMPARE(pointNear(content, 5), -1); // in the gap
        QCOMPARE(pointNear(pointsAt({}), 5), -1);
    }

    void aPointIsSaidInWords()
    {
        PlotContent content = pointsAt({1});
        content.points[0] = {1, QStringLiteral("14:03"), 6.1, 0.4};
        content.unit = QStringLiteral("Mbit/s");
        QCOMPARE(pointText(content, 0), QStringLiteral("14:03: Down 6.1 Mbit/s, Up 0.40 Mbit/s"));
        content.points[0].second.reset();
        QCOMPARE(pointText(content, 0), QStringLiteral("14:03: Down 6.1 Mbit/s, Up not known"));
        content.points[0].first.reset();
        QCOMPARE(pointText(content, 0), QStringLiteral("14:03: not known"));
        QCOMPARE(pointText(content, -1), QString());
        QCOMPARE(pointText(content, 1), QString());
    }

    void numbersHaveAsManyDigitsAsMeanSomething()
    {
        QCOMPARE(valueText(0, "dB"), QStringLiteral("0 dB"));
        QCOMPARE(valueText(0.123, "dB"), QStringLiteral("0.12 dB"));
        QCOMPARE(valueText(11.53, "dB"), QStringLiteral("11.5 dB"));
        QCOMPARE(valueText(8128, QString()), QStringLiteral("8,128"));
    }

    void theSpeedsAreSaidInOneUnit()
    {
        SpeedHistory speeds;
        speeds.add(762500, 50000, noon - second);
        speeds.add(700000, 25000, noon);
        const PlotContent content = speedPlot(speeds, noon);
        QCOMPARE(content.unit, QStringLiteral("Mbit/s"));
        QCOMPARE(content.first.present, QStringLiteral("5.6 Mbit/s"));
        QCOMPARE(content.second.present, QStringLiteral("0.20 Mbit/s"));
        QCOMPARE(plotText(content),
            QStringLiteral("Down 5.6 Mbit/s. Up 0.20 Mbit/s. Down at most 6.1 Mbit/s (10:59:59). "
                           "Up at most 0.40 Mbit/s (10:59:59)."));
        QCOMPARE(content.marks.first().text, QStringLiteral("5 min"));
        QCOMPARE(content.marks.last().text, QStringLiteral("now"));
    }

    void aSpeedOfAWhileAgoIsNotThePresentOne()
    {
        SpeedHistory speeds;
        speeds.add(762500, 50000, noon);
        const PlotContent content = speedPlot(speeds, noon + 20 * second);
        QCOMPARE(content.first.present, QStringLiteral("–"));
        QVERIFY(!isEmpty(content));
    }

    void aWrappedSpeedLeavesAGap()
    {
        SpeedHistory speeds;
        speeds.add(762500, 50000, noon);
        speeds.add(4294967000U, 4294967000U, noon + second);
        speeds.add(762500, 50000, noon + 2 * second);
        const PlotContent content = speedPlot(speeds, noon + 2 * second);
        QCOMPARE(sizes(linePieces(content, tenByTen(), true)), (QVector<int>{1, 1}));
        QCOMPARE(pointText(content, 1), QStringLiteral("11:00:01: not known"));
    }

    void anEmptyPlotSaysWhy()
    {
        const PlotContent content = speedPlot(SpeedHistory(), noon);
        QVERIFY(isEmpty(content));
        QVERIFY(plotText(content).contains(QStringLiteral("while connected")));
    }

    void daysThatAreMissingHadNoTrafficAndDaysToComeHaveNone()
    {
        const PlotContent content = dayPlot({day(4, 2000000000, 500000000), day(1, 1000000000, 0),
                                                {QDate(2026, 10, 31), QDate(2026, 10, 31), 9, 9}},
            QDate(2026, 11, 1), QDate(2026, 11, 30));
        QCOMPARE(content.points.size(), 4);
        QCOMPARE(*content.points.at(0).first, 1.0);
        QCOMPARE(*content.points.at(1).first, 0.0);
        QCOMPARE(*content.points.at(3).second, 0.5);
        QCOMPARE(content.marks.size(), 30);
        QCOMPARE(content.first.present, QStringLiteral("3.0 GB"));
        QCOMPARE(valueAxisOf(content, 5).top, 3.0); // both parts of a bar count
    }

    void monthsAreShownOldestFirst()
    {
        const PlotContent content
            = monthPlot({{QDate(2026, 11, 15), QDate(2026, 12, 14), 5000000, 0},
                {QDate(2026, 10, 15), QDate(2026, 11, 14), 7000000, 1000000}});
        QCOMPARE(content.unit, QStringLiteral("MB"));
        QCOMPARE(*content.points.first().first, 7.0);
        QCOMPARE(content.points.first().name, QStringLiteral("15/10/2026 to 14/11/2026"));
    }

    void theLineIsBrokenWhereTheKeeperSlept()
    {
        const qint64 now = noon / 1000;
        const PlotContent content
            = linePlot({rateAt(now - 3600, 60, 8128), rateAt(now - 3540, 60, 8128),
                           rateAt(now - 600, 60, 6000), rateAt(now - 540, 60, {})},
                LineValue::Rate, now - 86400, now);
        QCOMPARE(sizes(linePieces(content, tenByTen(), true)), (QVector<int>{2, 1}));
        QCOMPARE(content.first.present, QStringLiteral("6,000 kbit/s"));
        QVERIFY(content.second.present.isEmpty());
        QCOMPARE(content.marks.first().text, QStringLiteral("11:00"));
    }
};

QTEST_APPLESS_MAIN(PlotContentTest)
#include "plot_content_test.moc"
