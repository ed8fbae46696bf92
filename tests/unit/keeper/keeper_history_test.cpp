// SPDX-License-Identifier: MIT
// The history: what is booked, joined, thinned, and what becomes of a damaged file.
#include "keeper/history/billing.h"
#include "keeper/history/history.h"
#include "keeper/history/schema.h"
#include "keeper/history/thinning.h"
#include "test_files.h"
#include "test_table.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

using namespace keeper;

Q_DECLARE_METATYPE(std::optional<keeper::Traffic>)
Q_DECLARE_METATYPE(keeper::Traffic)

namespace {

const LinkIdentity firstLink{QStringLiteral("boot-1"), 7};
const LinkIdentity secondLink{QStringLiteral("boot-1"), 8};
const QDate today(2026, 11, 21);
constexpr qint64 morning = 1'795'200'000;

QVariant field(const Rows &rows, const char *name, int row = 0)
{
    return rows.value(row).value(QLatin1String(name));
}

void begin(History &history, const LinkIdentity &link = firstLink, qint64 now = morning)
{
    history.beginSession(now, link, QStringLiteral("ppp0"), QStringLiteral("10.64.0.100"));
}

} // namespace

class HistoryTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup() { m_folder.reset(); }

    // ---- pure

    void aBillingMonthBeginsOnItsDay_data()
    {
        QTest::addColumn<QDate>("day");
        QTest::addColumn<int>("billingDay");
        QTest::addColumn<QDate>("begin");
        QTest::addColumn<QDate>("end");
        const auto row = [](const char *name, const char *day, int billingDay, const char *begin,
                             const char *end) {
            const auto date = [](const char *text) {
                return QDate::fromString(QLatin1String(text), Qt::ISODate);
            };
            QTest::newRow(name) << date(day) << billingDay << date(begin) << date(end);
        };
        row("calendar month", "2026-11-21", 1, "2026-11-01", "2026-11-30");
        row("its first day", "2026-11-15", 15, "2026-11-15", "2026-12-14");
        row("the day before", "2026-11-14", 15, "2026-10-15", "2026-11-14");
        row("over the year", "2026-01-10", 20, "2025-12-20", "2026-01-19");
        row("31st in February", "2026-02-28", 31, "2026-02-28", "2026-03-30");
        row("31st before that", "2026-02-27", 31, "2026-01-31", "2026-02-27");
        row("29th, no leap year", "2026-03-01", 29, "2026-02-28", "2026-03-28");
        row("29th, leap year", "2028-02-28", 29, "2028-01-29", "2028-02-28");
    }

    void aBillingMonthBeginsOnItsDay()
    {
        QFETCH(QDate, day);
        QFETCH(int, billingDay);
        const BillingMonth month = billingMonth(day, billingDay);
        QTEST(month.begin, "begin");
        QTEST(month.end, "end");
    }

    void billingMonthsLeaveNoDayOut()
    {
        for (int billingDay = 1; billingDay <= 31; ++billingDay) {
            for (QDate day(2027, 1, 1); day < QDate(2029, 1, 1); day = day.addDays(1)) {
                const BillingMonth month = billingMonth(day, billingDay);
                QVERIFY(month.begin <= day && day <= month.end);
                QCOMPARE(
                    billingMonth(month.end.addDays(1), billingDay).begin, month.end.addDays(1));
            }
        }
    }

    void aWrapIsNeverGuessed()
    {
        const Traffic last{4'294'967'000, 10};
        QCOMPARE(newTraffic(last, {100, 20}).received, quint64(100));
        QCOMPARE(newTraffic(last, {100, 20}).sent, quint64(10));
        QCOMPARE(newTraffic(std::nullopt, {100, 20}).received, quint64(100));
        QCOMPARE(newTraffic(last, last).received, quint64(0));
    }

    void thinningCutsAtBordersOfTheLongerSpan()
    {
        for (const Thinning &step : thinningPlan(morning + 12345)) {
            QCOMPARE(step.before % step.intoSpan, qint64(0));
            QVERIFY(step.before <= morning + 12345 - 2 * 86400);
        }
    }

    // ---- sessions and traffic

    void aSessionIsRememberedWithItsTraffic()
    {
        History history(path());
        begin(history);
        history.book(morning + 60, today, firstLink, {{1000, 100}, 60});
        history.book(morning + 120, today, firstLink, {{5000, 200}, 60});
        history.endSession(morning + 130, firstLink, 10, QStringLiteral("hung-up"));
        const Rows sessions = history.sessions(10);
        QCOMPARE(sessions.size(), 1);
        QCOMPARE(field(sessions, "received").toInt(), 5000);
        QCOMPARE(field(sessions, "sent").toInt(), 200);
        QCOMPARE(field(sessions, "seconds").toInt(), 130);
        QCOMPARE(field(sessions, "reason").toString(), QStringLiteral("hung-up"));
        QCOMPARE(field(history.days(10), "received").toInt(), 5000);
    }

    void aKeeperThatStartsAnewCountsNothingTwice()
    {
        {
            History history(path());
            begin(history);
            history.book(morning + 60, today, firstLink, {{1000, 100}, 60});
        }
        History history(path());
        begin(history, firstLink, morning + 70);
        history.book(morning + 120, today, firstLink, {{1500, 100}, 60});
        QCOMPARE(history.sessions(10).size(), 1);
        QCOMPARE(field(history.sessions(10), "seconds").toInt(), 60 + 10 + 60);
        QCOMPARE(field(history.days(10), "received").toInt(), 1500);
        QCOMPARE(field(history.sessions(10), "received").toInt(), 1500);
    }

    void anotherLinkIsAnotherSession()
    {
        History history(path());
        begin(history);
        history.book(morning + 60, today, firstLink, {{1000, 100}, 60});
        begin(history, secondLink, morning + 300); // nobody saw the first one's end
        history.book(morning + 360, today, secondLink, {{50, 5}, 60});
        const Rows sessions = history.sessions(10);
        QCOMPARE(sessions.size(), 2);
        QCOMPARE(field(sessions, "reason", 1).toString(), QStringLiteral("unknown"));
        QCOMPARE(field(sessions, "ended", 1).toLongLong(), morning + 60);
        QCOMPARE(field(history.days(10), "received").toInt(), 1050);
    }

    void theSameNumberInAnotherBootIsAnotherLink()
    {
        History history(path());
        begin(history);
        history.book(morning + 60, today, firstLink, {{1000, 100}, 60});
        const LinkIdentity later{QStringLiteral("boot-2"), 7};
        begin(history, later, morning + 600);
        history.book(morning + 660, today, later, {{1200, 100}, 60});
        QCOMPARE(field(history.days(10), "received").toInt(), 2200);
    }

    void aClockSetBackByAYearLosesNothing()
    {
        History history(path());
        begin(history);
        history.book(morning + 60, today, firstLink, {{1000, 100}, 60});
        const qint64 back = morning - qint64(365) * 86400;
        history.book(back, today.addYears(-1), firstLink, {{1700, 100}, 60});
        history.noteLine(back, LineQuality());
        history.noteAttempt(back, QStringLiteral("no-concentrator"));
        history.endSession(back + 10, firstLink, 70, QStringLiteral("user"));
        QCOMPARE(history.trafficBetween(today.addYears(-2), today).received, quint64(1700));
        QCOMPARE(field(history.sessions(10), "seconds").toInt(), 190);
        QCOMPARE(history.condition(), QStringLiteral("ok"));
    }

    void equalFailuresAreOneEntry()
    {
        History history(path());
        for (int i = 0; i < 50; ++i) {
            history.noteAttempt(morning + i, QStringLiteral("no-concentrator"));
        }
        history.noteAttempt(morning + 60, QStringLiteral("account-refused"));
        history.noteAttempt(morning + 70, QStringLiteral("no-concentrator"));
        const Rows attempts = history.attempts(10);
        QCOMPARE(attempts.size(), 3);
        QCOMPARE(field(attempts, "count", 2).toInt(), 50);
        QCOMPARE(field(attempts, "first", 2).toLongLong(), morning);
        QCOMPARE(field(attempts, "last", 2).toLongLong(), morning + 49);
    }

    void failuresOfTwoOutagesAreTwoEntries()
    {
        History history(path());
        history.noteAttempt(morning, QStringLiteral("no-concentrator"));
        begin(history);
        history.noteAttempt(morning + 100, QStringLiteral("no-concentrator"));
        QCOMPARE(history.attempts(10).size(), 2);
    }

    // ---- the line

    void samplesAreThinnedWithTheirAge()
    {
        History history(path());
        LineQuality line;
        line.carrier = true;
        constexpr int days = 70;
        for (int hour = 0; hour < days * 24; ++hour) { // four minutes of each hour
            for (int minute = 0; minute < 60; minute += 15) {
                line.downMargin = minute / 15;
                history.noteLine(morning + hour * 3600 + minute * 60, line);
            }
        }
        const Rows all = history.lineBetween(0, morning * 2);
        QMap<int, int> counts;
        for (const QVariantMap &row : all) {
            ++counts[row.value(QStringLiteral("span")).toInt()];
        }
        QVERIFY(qAbs(counts[60] - 2 * 96) <= 8);
        QVERIFY(qAbs(counts[900] - 58 * 96) <= 100);
        QVERIFY(qAbs(counts[86400] - 10) <= 1);
        QCOMPARE(field(all, "span").toInt(), 86400); // the oldest
        QCOMPARE(field(all, "down_margin", 1).toDouble(), 1.5); // of a whole day
        QVERIFY(!all.first().contains(QStringLiteral("up_margin")));
    }

    void itNeverGrowsBeyondItsLimit()
    {
        History history(path());
        LineQuality line;
        line.carrier = true;
        line.downRate = line.upRate = line.downMargin = line.upMargin = 1.25;
        line.downAttenuation = line.upAttenuation = line.downErrors = line.upErrors = 1.25;
        for (int i = 0; i < 40; ++i) {
            history.noteAttempt(morning + i, QString(100'000 + i, QLatin1Char('x')));
        }
        for (int i = 0; i < 2000; ++i) {
            history.noteLine(morning + i * 60, line);
        }
        QCOMPARE(history.condition(), QStringLiteral("ok"));
        QVERIFY(size() <= 5'500'000);
        history.noteAttempt(morning + 999'999, QStringLiteral("no-concentrator"));
        QCOMPARE(
            field(history.attempts(1), "reason").toString(), QStringLiteral("no-concentrator"));
    }

    // ---- what can be wrong with the file

    void aDamagedFileIsSetAside_data()
    {
        const auto row = table<QString>("damage");
        row("text", "text");
        row("header", "header");
        row("truncated", "truncated");
        row("a page in the middle", "page");
    }

    void aDamagedFileIsSetAside()
    {
        QFETCH(QString, damage);
        {
            History history(path());
            for (int i = 0; i < 3000; ++i) {
                history.noteAttempt(morning + i, QString::number(i));
            }
            history.settle();
        }
        QByteArray content = contentOf(path());
        QVERIFY(content.size() > 20 * 4096);
        if (damage == QLatin1String("text")) {
            content = "this is no database\n";
        } else if (damage == QLatin1String("header")) {
            content.replace(0, 100, QByteArray(100, 'x'));
        } else if (damage == QLatin1String("truncated")) {
            content.truncate(10 * 4096 + 1000);
        } else {
            content.replace(12 * 4096, 4096, QByteArray(4096, '\xa5'));
        }
        writeFile(path(), content);
        for (int start = 0; start < 2; ++start) { // one damaged file is kept, not two
            writeFile(path(), content);
            History history(path());
            QCOMPARE(history.condition(), QStringLiteral("set-aside"));
            history.noteAttempt(morning, QStringLiteral("afresh"));
            QCOMPARE(history.attempts(10).size(), 1);
        }
        QCOMPARE(contentOf(path() + QStringLiteral(".damaged")), content);
        QCOMPARE(m_folder->path().isEmpty() ? 0 : filesNamed("damaged"), 1);
    }

    void damageThatAStatementMeetsIsSetAside()
    {
        History history(path());
        for (int i = 0; i < 3000; ++i) {
            history.noteAttempt(morning + i, QString::number(i));
        }
        history.settle();
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadWrite));
        for (int page = 1; page < file.size() / 4096; ++page) {
            file.seek(page * 4096);
            file.write(QByteArray(4096, '\xa5'));
        }
        file.close();
        for (int i = 0; i < 3; ++i) {
            history.attempts(100'000);
            history.noteAttempt(morning, QStringLiteral("afresh"));
        }
        // The pages may have been in memory still; a new start meets the damage for sure.
        History again(path());
        QVERIFY(QStringList({QStringLiteral("ok"), QStringLiteral("set-aside")})
                    .contains(again.condition()));
        QVERIFY(filesNamed("damaged") == 1);
    }

    void aNewerFileIsLeftUntouched()
    {
        {
            Database database(path());
            QVERIFY(database.run("CREATE TABLE future (x); PRAGMA user_version = 99;"));
        }
        const QByteArray before = contentOf(path());
        History history(path());
        begin(history);
        history.noteAttempt(morning, QStringLiteral("x"));
        history.endSession(morning, firstLink, 0, QStringLiteral("user"));
        QCOMPARE(history.condition(), QStringLiteral("newer"));
        QCOMPARE(history.sessions(10).size(), 0);
        QCOMPARE(contentOf(path()), before);
        QCOMPARE(filesNamed("history"), 1);
    }

    void aFolderThatCannotBeWrittenIsSaidAndTriedAgain()
    {
        const QString away = m_folder->path() + QStringLiteral("/missing");
        History history(away + QStringLiteral("/history.sqlite"));
        QCOMPARE(history.condition(), QStringLiteral("unwritable"));
        history.noteAttempt(morning, QStringLiteral("lost"));
        QVERIFY(QDir().mkdir(away));
        history.noteAttempt(morning, QStringLiteral("kept"));
        QCOMPARE(history.condition(), QStringLiteral("ok"));
        QCOMPARE(history.attempts(10).size(), 1);
    }

    void theVersionIsReadFromTheHeader()
    {
        QCOMPARE(versionInHeader(QByteArray("short")), 0);
        QCOMPARE(versionInHeader(QByteArray(100, 'x')), 0);
        {
            History history(path());
            history.settle();
        }
        QCOMPARE(versionInHeader(contentOf(path())), schemaVersion);
    }

private:
    QString path() const { return m_folder->path() + QStringLiteral("/history.sqlite"); }

    qint64 size() const
    {
        return QFileInfo(path()).size() + QFileInfo(path() + QStringLiteral("-wal")).size();
    }

    int filesNamed(const char *part) const
    {
        int count = 0;
        for (const QString &name : QDir(m_folder->path()).entryList(QDir::Files)) {
            const bool isPart = name.contains(QLatin1String(part))
                && !name.endsWith(QLatin1String("-wal")) && !name.endsWith(QLatin1String("-shm"));
            count += isPart ? 1 : 0;
        }
        return count;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(HistoryTest)
#include "keeper_history_test.moc"
