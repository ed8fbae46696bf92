// SPDX-License-Identifier: MIT
// The client's live view: from signals to lines.
#include "ctl/screen/watch_view.h"
#include "test_table.h"

#include <QTest>

namespace {

WatchState connectedState()
{
    WatchState state;
    state.isDaemonThere = true;
    takeSignal(state, QStringLiteral("connectionEstablished"), {});
    takeSignal(state, QStringLiteral("IP"), {QStringLiteral("10.64.0.100")});
    state.interface = QStringLiteral("ppp0");
    return state;
}

} // namespace

class ClientWatchTest : public QObject
{
    Q_OBJECT

private slots:
    void aSecondsFiguresAreClosedByTheTotals()
    {
        WatchState state = connectedState();
        QVERIFY(!takeSignal(state, QStringLiteral("transmissionSpeed"), {1000u, 200u}));
        QVERIFY(!takeSignal(state, QStringLiteral("transmissionErrors"), {1u, 2u}));
        QVERIFY(takeSignal(state, QStringLiteral("transmissionBytes"), {5000.0, 600.0}));
        QVERIFY(!takeSignal(state, QStringLiteral("connectionTime"), {0, 0, 5}));
        QCOMPARE(watchLine(state),
            QStringLiteral("connected  ppp0  10.64.0.100  00:00:05  down 1.0 kB/s  up 200 B/s  "
                           "received 5.0 kB  sent 600 B"));
    }

    void aCounterThatBeganAnewIsNoSpeed()
    {
        WatchState state = connectedState();
        takeSignal(state, QStringLiteral("transmissionSpeed"), {4294960000u, 10u});
        QVERIFY(!state.receiveRate);
        QCOMPARE(state.receiveHistory, QList<double>{0});
        QCOMPARE(state.sendHistory, QList<double>{10});
    }

    void theEndOfTheConnectionForgetsItsFigures()
    {
        WatchState state = connectedState();
        takeSignal(state, QStringLiteral("transmissionSpeed"), {1000u, 200u});
        takeSignal(state, QStringLiteral("connectionTerminated"), {});
        QCOMPARE(state.connection, 2);
        QVERIFY(!state.receiveRate);
        QVERIFY(state.address.isEmpty());
        QCOMPARE(state.event, QStringLiteral("connection terminated"));
    }

    void theGraphFillsItsHeightWithTheLargestValue_data()
    {
        const auto row
            = table<QList<double>, int, bool, QStringList>("values", "rows", "glyphs", "lines");
        row("nothing yet", QList<double>{}, 1, true, QStringList{"    "});
        row("all zero", QList<double>{0, 0}, 1, true, QStringList{"    "});
        row("steps", QList<double>{1, 4, 8}, 1, true, QStringList{" ▁▄█"});
        row("a trickle still shows", QList<double>{1, 100000}, 1, true, QStringList{"  ▁█"});
        row("two rows", QList<double>{8, 16}, 2, true, QStringList{"   █", "  ██"});
        row("only the newest", QList<double>{9, 8, 0, 0, 0}, 1, true, QStringList{"█   "});
        row("ASCII", QList<double>{0, 8}, 1, false, QStringList{"   @"});
    }
    void theGraphFillsItsHeightWithTheLargestValue()
    {
        QFETCH(QList<double>, values);
        QFETCH(int, rows);
        QFETCH(bool, glyphs);
        QFETCH(QStringList, lines);
        QCOMPARE(rateGraph(values, 4, rows, glyphs), lines);
    }

    void theScreenNeverExceedsTheTerminal_data()
    {
        const auto row = table<int, int>("width", "height");
        row("usual", 80, 24);
        row("low", 80, 4);
        row("narrow", 20, 24);
        row("large", 100, 200);
    }
    void theScreenNeverExceedsTheTerminal()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        WatchState state = connectedState();
        for (uint tick = 0; tick < 1000; ++tick) {
            takeSignal(state, QStringLiteral("transmissionSpeed"), {tick, tick});
        }
        const QStringList screen = watchScreen(state, width, height, true);
        QVERIFY(screen.size() < height);
        for (const QString &line : screen) {
            QVERIFY(line.size() <= width);
        }
        QVERIFY(state.receiveHistory.size() <= 600);
    }

    void machinesGetNullForWhatIsUnknown()
    {
        const QJsonObject object = watchObject(WatchState());
        QCOMPARE(object[QStringLiteral("state")].toString(), QStringLiteral("unknown"));
        QVERIFY(object[QStringLiteral("receiveRate")].isNull());
        QVERIFY(object[QStringLiteral("seconds")].isNull());
    }
};

QTEST_GUILESS_MAIN(ClientWatchTest)
#include "watch_test.moc"
