// SPDX-License-Identifier: MIT
// The elapsed time in all the forms that ps prints.
#include "connection/elapsed_time.h"
#include "test_table.h"

#include <QTest>

namespace {

/// "h:m:s", "none" when there is no time, "invalid" when it is none of a day.
QString shown(const QString &text)
{
    const std::optional<QTime> time = parseElapsedTime(text);
    if (!time) {
        return QStringLiteral("none");
    }
    return time->isValid() ? time->toString(QStringLiteral("h:m:s")) : QStringLiteral("invalid");
}

} // namespace

class ElapsedTimeTest : public QObject
{
    Q_OBJECT

private slots:
    void psTextGivesTheTime_data();
    void psTextGivesTheTime();
    void onlyTheBeginningOfALongTextIsSearched();
};

void ElapsedTimeTest::psTextGivesTheTime_data()
{
    const auto row = tableOfTexts<QString, QString>("text", "time");
    row("      00:07\n", "0:0:7"); // as ps pads it
    row("05:07", "0:5:7");
    row("59:59", "0:59:59");
    row("01:02:03", "1:2:3");
    row("   23:59:59", "23:59:59");
    row("00:00", "0:0:0");
    row("1-02:03:04", "2:3:4"); // days are dropped
    row("10-02:03:04", "2:3:4");
    row("365-23:00:01", "23:0:1");
    row("123:45:12", "23:45:12"); // hours of three digits do not occur
    row("99:59:59", "invalid");
    row("00:60", "invalid");
    row("00:00:60", "invalid");

    row("", "none");
    row("\n", "none");
    row("07", "none");
    row("5:07", "none"); // two digits each
    row("05:7", "none");
    row("0507", "none");
    row("-", "none");
    row("error: process ID list syntax error", "none");
    row("05-07", "none");
    row("05 : 07", "none");
    row(":05:07", "0:5:7");
    row("x05:07y", "0:5:7");
    row("05:07:", "0:5:7");
    row("0102:03", "1:2:3"); // the first colon may be missing
    row("\xb2\xb3:\xb9\xb2", "none");
}

void ElapsedTimeTest::psTextGivesTheTime()
{
    QFETCH(QString, text);
    QFETCH(QString, time);
    QCOMPARE(shown(text), time);
}

void ElapsedTimeTest::onlyTheBeginningOfALongTextIsSearched()
{
    const int size = 10 * 1024 * 1024;
    for (const char filler : {'x', '1', ':', ' '}) {
        const QString filling(size, QLatin1Char(filler));
        QCOMPARE(shown(filling), QStringLiteral("none"));
        QCOMPARE(shown(QStringLiteral("01:02:03 ") + filling), QStringLiteral("1:2:3"));
    }
    // Later text does not count: the search takes time that grows with its square.
    QCOMPARE(
        shown(QString(100, QLatin1Char('x')) + QStringLiteral("01:02:03")), QStringLiteral("none"));
}

QTEST_APPLESS_MAIN(ElapsedTimeTest)
#include "elapsed_time_test.moc"
