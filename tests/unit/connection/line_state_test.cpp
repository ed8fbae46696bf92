// SPDX-License-Identifier: MIT
// The line's state from recorded, spliced and random kernel logs, compared with the plain search.
#include "connection/line_state.h"
#include "plain_line_state.h"
#include "test_data.h"
#include "test_table.h"

#include <QRandomGenerator>
#include <QTest>
#include <array>

namespace {

constexpr int ueagle = 0x1110;
constexpr int unicorn = 0x0483;
constexpr int speedtch = 0x06b9;
constexpr int generic = 0x0572;
constexpr std::array<int, 4> families = {ueagle, unicorn, speedtch, generic};

/// Names the log of the first difference between the two searches; empty when there is none.
QByteArray difference(const QByteArray &log)
{
    static const std::array<PlainLineState, 4> searches = {PlainLineState(families[0]),
        PlainLineState(families[1]), PlainLineState(families[2]), PlainLineState(families[3])};
    for (size_t i = 0; i < families.size(); ++i) {
        const int vendorId = families[i];
        const LineReport plain = searches[i](log);
        const LineReport fast = lineStateFromLog(log, vendorId);
        if (!sameReport(plain, fast)) {
            return QByteArray::number(vendorId, 16) + ": plain " + QByteArray::number(plain.state)
                + " fast " + QByteArray::number(fast.state) + " for ..." + log.right(200);
        }
    }
    return QByteArray();
}

QByteArrayList recordedLogs()
{
    QByteArrayList logs;
    const QStringList names = testDataNames(QStringLiteral("kernel-log"), QStringLiteral("*.txt"));
    for (const QString &name : names) {
        logs.append(testData(QStringLiteral("kernel-log/") + name));
    }
    return logs;
}

// Whole driver lines, and pieces that are nearly one.
const std::array<const char *, 48> fragments = {"[ueagle-atm]", "[ueagle-atm] ",
    "[ueagle-atm] modem operational", "[ueagle-atm] (re)booting started",
    "[ueagle-atm] Modem started, waiting synchronization", "[ueagle-atm",
    "[ueagle-atm] modem started, waiting synchronization...", "ueagle-atm] modem operational",
    "unicorn_msw:", "unicorn_msw: Current Modem State (1): SHOWTIME_L1",
    "unicorn_msw: Event Reported (2): Showtime", "unicorn_msw: Event Reported (2): Initializing",
    "unicorn_msw: Current Modem State (3): ACTIVATING",
    "unicorn_msw: Current Modem State (4): INITIALIZING",
    "unicorn_msw: Current Modem State (5): Ghs_HANDSHAKING",
    "unicorn_msw: Current Modem State (12): ACTIVATING", "unicorn_msw", "ATM dev 0:", "ATM dev ",
    "ATM dev 10:", "ATM dev x:", "ATM dev \xb2:", "ATM dev 0: ADSL line: up",
    "ATM dev 0: ADSL line: attempting to activate", "ATM dev 0: ADSL line: initializing",
    "ATM dev 0: ADSL line: down", "ATM dev 0: ADSL line is up (8128 kb/s down | 832 kb/s up)",
    "ATM dev 0: ADSL line is up (812800 kb/s down | 832 kb/s up)", " 832 kb/s up)",
    "ATM dev 0: ADSL line is synchronising", "ATM dev 0: DSL line goes up",
    "ATM dev 0: ATM dev 1:", "speedtch 1-1:1.0:", "speedtch ", "speedtch 1-1:1x0:",
    "speedtch 1-1:1\n0:", "speedtch 1-1:1.0: speedtch_heavy_init: firmware upload failed",
    "speedtch 1-1:1.0: ATM dev 0: ADSL line: up", "#####", "####", "\n", "\n<6>[   10.073215] ",
    "usb 1-1: ", " ", "\t", "\xff\xc3\x28", "0", ":"};

QByteArray randomLog(QRandomGenerator &random, int size)
{
    QByteArray log;
    while (log.size() < size) {
        log += fragments[random.bounded(quint32(fragments.size()))];
    }
    log.truncate(size);
    return log;
}

} // namespace

class LineStateTest : public QObject
{
    Q_OBJECT

private slots:
    void aRecordedLogTellsItsState_data();
    void aRecordedLogTellsItsState();
    void eachDriverLineTellsItsState_data();
    void eachDriverLineTellsItsState();
    void onlyTheLastDriverLineDecides();
    void theLogEndsAtItsFirstNul();
    void aMarkerMayStandAtEitherEnd();
    void truncationsOfARecordedLogEqualThePlainLineState();
    void everyTruncationOfSplicedLogsEqualsThePlainLineState();
    void shortRandomLogsEqualThePlainLineState();
    void fullRandomLogsEqualThePlainLineState();
    void aFullLogWithoutDriverLinesEqualsThePlainLineState();
};

void LineStateTest::aRecordedLogTellsItsState_data()
{
    const auto row = table<int, int, int>("forUeagle", "forSpeedtch", "forOthers");
    // The unicorn driver wrote none of these.
    row("klog-cxacru-initializing", 5, 5, 3);
    row("klog-cxacru-attempting-to-activate", 5, 5, 1);
    row("klog-cxacru-training", 5, 5, 5);
    row("klog-cxacru-channel-analysis", 5, 5, 5);
    row("klog-cxacru-exchange", 5, 5, 5);
    row("klog-cxacru-up", 5, 5, 0);
    row("klog-cxacru-line-lost", 5, 5, 5);
    row("klog-cxacru-waiting", 5, 5, 5);
    row("klog-cxacru-unplugged", 5, 5, 5);
    row("klog-eagle-preboot", 5, 5, 5);
    row("klog-eagle-no-firmware", 3, 5, 5);
    row("klog-eagle-booting", 3, 5, 5);
    row("klog-eagle-started", 5, 5, 5); // the driver's m is a small one
    row("klog-eagle-operational", 0, 5, 5);
    row("klog-eagle-sync-failed", 3, 5, 5);
    row("klog-eagle-unplugged", 5, 5, 5);
    row("klog-speedtch-no-firmware", 5, 5, 5);
    row("klog-speedtch-upload-failed", 5, 4, 5);
    row("klog-speedtch-synchronising", 5, 1, 5);
    row("klog-speedtch-up", 5, 0, 5);
    row("klog-speedtch-down", 5, 5, 5);
    row("klog-speedtch-unplugged", 5, 5, 5);
}

void LineStateTest::aRecordedLogTellsItsState()
{
    QFETCH(int, forUeagle);
    QFETCH(int, forSpeedtch);
    QFETCH(int, forOthers);
    const QByteArray log = testData(
        QStringLiteral("kernel-log/%1.txt").arg(QString::fromLatin1(QTest::currentDataTag())));
    QCOMPARE(int(lineStateFromLog(log, ueagle).state), forUeagle);
    QCOMPARE(int(lineStateFromLog(log, speedtch).state), forSpeedtch);
    QCOMPARE(int(lineStateFromLog(log, unicorn).state), 5);
    for (const int other : {generic, 0, -1, 0x0572, 0x08e3, 0x1111}) {
        QCOMPARE(int(lineStateFromLog(log, other).state), forOthers);
    }
    QCOMPARE(difference(log), QByteArray());
}

void LineStateTest::eachDriverLineTellsItsState_data()
{
    QTest::addColumn<int>("vendorId");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("state");
    const auto row = [](int vendorId, const char *line, int state) {
        QTest::newRow(line) << vendorId << QByteArray(line) << state;
    };
    row(ueagle, "[ueagle-atm] modem operational", 0);
    row(ueagle, "[ueagle-atm] (re)booting started", 3);
    row(ueagle, "[ueagle-atm] Modem started, waiting synchronization...", 3);
    row(ueagle, "[ueagle-atm] modem started, waiting synchronization...", 5);
    row(ueagle, "[UEAGLE-ATM] modem operational", 5);
    row(ueagle, "[ueagle-atm]  modem operational", 5);
    row(unicorn, "unicorn_msw: Current Modem State (1): SHOWTIME_L1", 0);
    row(unicorn, "unicorn_msw: Event Reported (9): Showtime", 0);
    row(unicorn, "unicorn_msw: Event Reported (2): Initializing", 3);
    row(unicorn, "unicorn_msw: Current Modem State (0): ACTIVATING", 3);
    row(unicorn, "unicorn_msw: Current Modem State (0): INITIALIZING", 3);
    row(unicorn, "unicorn_msw: Current Modem State (0): Ghs_HANDSHAKING", 3);
    row(unicorn, "unicorn_msw: Current Modem State (10): ACTIVATING", 5);
    row(unicorn, "unicorn_msw: Event Reported (2): SHOWTIME_L1", 5);
    row(speedtch, "ATM dev 0: ADSL line is up (8128 kb/s down | 832 kb/s up)", 0);
    row(speedtch, "ATM dev 0: ADSL line is up (8128 kb/s down ", 0);
    row(speedtch, "ATM dev 0: ADSL line is up (8128 kb/s down", 5);
    row(speedtch, "ATM dev 0: ADSL line is up (123456 kb/s down | 832 kb/s up)", 5);
    row(speedtch, "ATM dev 0: ADSL line is synchronising", 1);
    row(speedtch, "speedtch 1-1:1.0: speedtch_heavy_init: firmware upload failed (-32)!", 4);
    row(speedtch, "speedtch 1-10:1.0: speedtch_heavy_init: firmware upload failed", 5);
    row(speedtch, "speedtch 1-1:1.0: found stage 2 firmware speedtch-2.bin", 5);
    row(generic, "ATM dev 0: ADSL line: up (8128 kb/s down | 832 kb/s up)", 0);
    row(generic, "ATM dev 7: ADSL line: up", 0);
    row(generic, "ATM dev 0: ADSL line: attempting to activate", 1);
    row(generic, "ATM dev 0: ADSL line: initializing", 3);
    row(generic, "ATM dev 0: ADSL line: down", 5);
    row(generic, "ATM dev 12: ADSL line: up", 5);
    row(generic, "[ueagle-atm] modem operational", 5);
}

void LineStateTest::eachDriverLineTellsItsState()
{
    QFETCH(int, vendorId);
    QFETCH(QByteArray, line);
    QFETCH(int, state);
    for (const QByteArray &log :
        {line, "<6>[    7.2] " + line + "\n", line + "\n<4>[    8.1] x\n"}) {
        QCOMPARE(int(lineStateFromLog(log, vendorId).state), state);
        QCOMPARE(difference(log), QByteArray());
    }
}

void LineStateTest::onlyTheLastDriverLineDecides()
{
    const QByteArray up = "[ueagle-atm] modem operational\n";
    const LineReport decided = lineStateFromLog("[ueagle-atm] what\n" + up + "other\n", ueagle);
    QCOMPARE(decided.state, LineSynchronized);
    QVERIFY(decided.driverLineFound);

    const LineReport undecided = lineStateFromLog(up + "[ueagle-atm] what\n", ueagle);
    QCOMPARE(undecided.state, LineUnknown);
    QVERIFY(undecided.driverLineFound);

    const LineReport none = lineStateFromLog("no driver\n", ueagle);
    QCOMPARE(none.state, LineUnknown);
    QVERIFY(!none.driverLineFound);

    QCOMPARE(lineStateFromLog(QByteArray(), ueagle).state, LineUnknown);
    QVERIFY(!lineStateFromLog(QByteArray(), ueagle).driverLineFound);
}

void LineStateTest::theLogEndsAtItsFirstNul()
{
    const QByteArray up = "ATM dev 0: ADSL line: up\n";
    const QByteArray nul(1, '\0');
    QCOMPARE(lineStateFromLog(up + nul + "ATM dev 0: ADSL line: initializing\n", generic).state,
        LineSynchronized);
    QCOMPARE(lineStateFromLog(nul + up, generic).state, LineUnknown);
    QVERIFY(!lineStateFromLog(nul + up, generic).driverLineFound);
    QCOMPARE(lineStateFromLog("ATM dev 0: ADSL line: u" + nul + "p", generic).state, LineUnknown);
    for (int i = 0; i <= up.size(); ++i) {
        QCOMPARE(difference(up.left(i) + nul + up.mid(i)), QByteArray());
    }
}

void LineStateTest::aMarkerMayStandAtEitherEnd()
{
    const QByteArray filler(100000, '.');
    for (const char *marker : {"[ueagle-atm]", "unicorn_msw:", "ATM dev 0:", "speedtch 1-1:1.0:",
             "ATM dev 0: ADSL line: up", "[ueagle-atm] modem operational"}) {
        const QByteArray text(marker);
        for (int size = 0; size <= text.size(); ++size) {
            // Nothing is read behind the end, though the marker would go on there.
            QCOMPARE(difference(text.left(size)), QByteArray());
            QCOMPARE(difference("\n" + text.left(size)), QByteArray());
        }
        QCOMPARE(difference(filler + text), QByteArray());
        QCOMPARE(difference(text + filler), QByteArray());
    }
}

void LineStateTest::truncationsOfARecordedLogEqualThePlainLineState()
{
    int first = 0;
    for (const QByteArray &log : recordedLogs()) {
        QCOMPARE(difference(log), QByteArray());
        // Logs of one driver begin alike, so each is cut at another third of its places.
        for (int size = first++ % 3; size <= log.size(); size += 3) {
            QCOMPARE(difference(log.left(size)), QByteArray());
        }
    }
}

void LineStateTest::everyTruncationOfSplicedLogsEqualsThePlainLineState()
{
    const QByteArrayList logs = recordedLogs();
    QRandomGenerator random(20240131);
    for (int i = 0; i < 4; ++i) {
        const QByteArray &first = logs.at(random.bounded(logs.size()));
        const QByteArray &second = logs.at(random.bounded(logs.size()));
        // As a ring buffer has it: begins and goes on in the middle of a line.
        const QByteArray log
            = first.mid(random.bounded(first.size())) + second.mid(random.bounded(second.size()));
        for (int size = 0; size <= log.size(); ++size) {
            QCOMPARE(difference(log.left(size)), QByteArray());
            if (size % 7 == 0) {
                QCOMPARE(difference(log.mid(size)), QByteArray());
            }
        }
    }
}

void LineStateTest::shortRandomLogsEqualThePlainLineState()
{
    QRandomGenerator random(1);
    for (int i = 0; i < 6000; ++i) {
        QCOMPARE(difference(randomLog(random, random.bounded(300))), QByteArray());
    }
}

void LineStateTest::fullRandomLogsEqualThePlainLineState()
{
    QRandomGenerator random(2);
    for (int i = 0; i < 12; ++i) {
        QCOMPARE(difference(randomLog(random, 100000)), QByteArray());

        // The last driver line far from the end.
        const int size = random.bounded(100000);
        const QByteArray text = randomLog(random, size) + QByteArray(100000 - size, '.');
        QCOMPARE(difference(text), QByteArray());
    }
}

void LineStateTest::aFullLogWithoutDriverLinesEqualsThePlainLineState()
{
    for (const char *fragment :
        {"ATM dev ", "speedtch 1-1:1.", "[ueagle-atm ", "unicorn_msw", "\n"}) {
        QCOMPARE(difference(QByteArray(fragment).repeated(100000).left(100000)), QByteArray());
    }
}

QTEST_APPLESS_MAIN(LineStateTest)
#include "line_state_test.moc"
