// SPDX-License-Identifier: MIT
// What the traffic meter tells from tick to tick, across links.
#include "network/traffic_meter.h"

#include <QTest>
#include <limits>

namespace {

constexpr quint32 largest = std::numeric_limits<quint32>::max();

TrafficReading bytes(quint32 rx, quint32 tx)
{
    TrafficReading reading;
    reading.rxBytes = rx;
    reading.txBytes = tx;
    return reading;
}

} // namespace

class TrafficMeterTest : public QObject
{
    Q_OBJECT

private slots:
    void theFirstTickHasNoSpeed();
    void theSpeedIsTheDifferenceToTheLastTick();
    void aCounterThatWrapsKeepsItsSpeed();
    void aNewLinkGivesOneWrappedSpeedAndTheOldTotal();
    void eachDirectionIsArchivedByItself();
    void equalReadingsChangeNothing();
    void aFailedReadingCountsAsZero();
    void aTotalIsArchivedOnce();
};

void TrafficMeterTest::theFirstTickHasNoSpeed()
{
    for (const quint32 start : {0U, 1U, 5000U, largest}) {
        TrafficMeter meter;
        const TrafficTick tick = meter.tick(bytes(start, start));
        QCOMPARE(tick.rxSpeed, 0U);
        QCOMPARE(tick.txSpeed, 0U);
        QVERIFY(!tick.endedRxBytes);
        QVERIFY(!tick.endedTxBytes);
    }
}

void TrafficMeterTest::theSpeedIsTheDifferenceToTheLastTick()
{
    TrafficMeter meter;
    meter.tick(bytes(1000, 100));
    TrafficTick tick = meter.tick(bytes(4000, 350));
    QCOMPARE(tick.rxSpeed, 3000U);
    QCOMPARE(tick.txSpeed, 250U);
    tick = meter.tick(bytes(4001, 350));
    QCOMPARE(tick.rxSpeed, 1U);
    QCOMPARE(tick.txSpeed, 0U);
    QVERIFY(!tick.endedRxBytes);
    QVERIFY(!tick.endedTxBytes);
}

void TrafficMeterTest::aCounterThatWrapsKeepsItsSpeed()
{
    TrafficMeter meter;
    meter.tick(bytes(largest - 99, largest));
    const TrafficTick tick = meter.tick(bytes(100, 0));
    QCOMPARE(tick.rxSpeed, 200U);
    QCOMPARE(tick.txSpeed, 1U);
    // A wrap cannot be told from a new link.
    QCOMPARE(tick.endedRxBytes.value_or(0), largest - 99);
    QCOMPARE(tick.endedTxBytes.value_or(0), largest);
}

void TrafficMeterTest::aNewLinkGivesOneWrappedSpeedAndTheOldTotal()
{
    TrafficMeter meter;
    meter.tick(bytes(5000, 700));
    TrafficTick tick = meter.tick(bytes(100, 700));
    QCOMPARE(tick.endedRxBytes.value_or(0), 5000U);
    QCOMPARE(tick.rxSpeed, 4294962396U); // 100 - 5000, never reset between links
    QVERIFY(!tick.endedTxBytes);
    tick = meter.tick(bytes(150, 700));
    QCOMPARE(tick.rxSpeed, 50U);
    QVERIFY(!tick.endedRxBytes);
}

void TrafficMeterTest::eachDirectionIsArchivedByItself()
{
    TrafficMeter meter;
    meter.tick(bytes(5000, 700));
    TrafficTick tick = meter.tick(bytes(6000, 10));
    QVERIFY(!tick.endedRxBytes);
    QCOMPARE(tick.endedTxBytes.value_or(0), 700U);
    tick = meter.tick(bytes(3, 2));
    QCOMPARE(tick.endedRxBytes.value_or(0), 6000U);
    QCOMPARE(tick.endedTxBytes.value_or(0), 10U);
}

void TrafficMeterTest::equalReadingsChangeNothing()
{
    TrafficMeter meter;
    meter.tick(bytes(5000, 700));
    for (int i = 0; i < 3; ++i) {
        const TrafficTick tick = meter.tick(bytes(5000, 700));
        QCOMPARE(tick.rxSpeed, 0U);
        QCOMPARE(tick.txSpeed, 0U);
        QVERIFY(!tick.endedRxBytes);
        QVERIFY(!tick.endedTxBytes);
    }
    QCOMPARE(meter.tick(bytes(4999, 700)).endedRxBytes.value_or(0), 5000U);
}

void TrafficMeterTest::aFailedReadingCountsAsZero()
{
    TrafficMeter meter;
    meter.tick(bytes(5000, 700));
    TrafficTick tick = meter.tick(bytes(0, 0));
    QCOMPARE(tick.endedRxBytes.value_or(0), 5000U);
    QCOMPARE(tick.endedTxBytes.value_or(0), 700U);
    tick = meter.tick(bytes(0, 0));
    QVERIFY(!tick.endedRxBytes);
    QCOMPARE(tick.rxSpeed, 0U);
}

void TrafficMeterTest::aTotalIsArchivedOnce()
{
    TrafficMeter meter;
    QVERIFY(!meter.tick(bytes(0, 0)).endedRxBytes);
    meter.tick(bytes(10, 0));
    QCOMPARE(meter.tick(bytes(5, 0)).endedRxBytes.value_or(0), 10U);
    QVERIFY(!meter.tick(bytes(5, 0)).endedRxBytes);
    QVERIFY(!meter.tick(bytes(10, 0)).endedRxBytes);
}

QTEST_APPLESS_MAIN(TrafficMeterTest)
#include "traffic_meter_test.moc"
