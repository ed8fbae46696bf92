// SPDX-License-Identifier: MIT
// The speeds of the last five minutes, whatever counters and clocks do.
#include "desktop/model/speed_history.h"
#include "test_table.h"

#include <QTest>

using desktop::SpeedHistory;

namespace {

constexpr qint64 noon = 1763809200000;
constexpr qint64 minute = 60000;

QVector<qint64> times(const SpeedHistory &history)
{
    QVector<qint64> result;
    for (const desktop::SpeedSample &sample : history.samples()) {
        result.append(sample.at);
    }
    return result;
}

} // namespace

class SpeedHistoryTest : public QObject
{
    Q_OBJECT

private slots:
    void keepsWhatIsTold()
    {
        SpeedHistory history;
        history.add(762500, 50000, noon);
        QCOMPARE(history.samples().size(), 1);
        QCOMPARE(*history.samples().first().down, 762500.0);
        QCOMPARE(*history.samples().first().up, 50000.0);
    }

    void aSpeedOfNothingIsKnownToBeNothing()
    {
        SpeedHistory history;
        history.add(0, 0, noon);
        QCOMPARE(*history.samples().first().down, 0.0);
    }

    void aDifferenceThatHasWrappedIsNotKnown_data()
    {
        const auto row
            = table<quint32, quint32, bool, bool>("down", "up", "isDownKnown", "isUpKnown");
        row("both began anew", 4294966296U, 4294967200U, false, false);
        row("only one did", 4294966296U, 700U, false, true);
        row("after half a wrap", 700U, 2147483648U, true, false);
        row("the fastest ADSL2+ line", 3000000U, 437500U, true, true);
    }
    void aDifferenceThatHasWrappedIsNotKnown()
    {
        QFETCH(quint32, down);
        QFETCH(quint32, up);
        QFETCH(bool, isDownKnown);
        QFETCH(bool, isUpKnown);
        SpeedHistory history;
        history.add(down, up, noon);
        QCOMPARE(history.samples().first().down.has_value(), isDownKnown);
        QCOMPARE(history.samples().first().up.has_value(), isUpKnown);
    }

    void whatIsOlderThanFiveMinutesIsForgotten()
    {
        SpeedHistory history;
        history.add(1, 1, noon);
        history.add(2, 2, noon + 3 * minute);
        history.add(3, 3, noon + 6 * minute);
        QCOMPARE(times(history), (QVector<qint64>{noon + 3 * minute, noon + 6 * minute}));
    }

    void timeAloneForgetsToo()
    {
        SpeedHistory history;
        history.add(1, 1, noon);
        history.forgetOld(noon + 6 * minute);
        QVERIFY(history.samples().isEmpty());
    }

    void aClockSetBackLeavesNothingOfTheFuture()
    {
        SpeedHistory history;
        history.add(1, 1, noon);
        history.add(2, 2, noon + minute);
        history.add(3, 3, noon + 2 * minute);
        history.add(4, 4, noon + minute - 1);
        QCOMPARE(times(history), (QVector<qint64>{noon, noon + minute - 1}));
    }

    void aClockSetBackBySoMuchThatNothingIsLeftBeginsAnew()
    {
        SpeedHistory history;
        history.add(1, 1, noon);
        history.add(2, 2, noon - 100 * minute);
        QCOMPARE(times(history), (QVector<qint64>{noon - 100 * minute}));
    }

    void timeAloneSetBackForgetsTheFuture()
    {
        SpeedHistory history;
        history.add(1, 1, noon);
        history.forgetOld(noon - 100 * minute);
        QVERIFY(history.samples().isEmpty());
    }

    void aClockSetForwardForgetsWhatLiesBehind()
    {
        SpeedHistory history;
        history.add(1, 1, noon);
        history.add(2, 2, noon + 100 * minute);
        QCOMPARE(times(history), (QVector<qint64>{noon + 100 * minute}));
    }

    void timesAlwaysRise()
    {
        SpeedHistory history;
        history.add(1, 1, noon);
        history.add(2, 2, noon);
        QCOMPARE(times(history), (QVector<qint64>{noon}));
        QCOMPARE(*history.samples().first().down, 2.0);
    }
};

QTEST_APPLESS_MAIN(SpeedHistoryTest)
#include "speed_history_test.moc"
