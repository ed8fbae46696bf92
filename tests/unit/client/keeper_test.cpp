// SPDX-License-Identifier: MIT
// What the keeper tells, as values and sentences, whoever it is that answers.
#include "client/keeper_bus.h"
#include "client/keeper_state.h"
#include "client/traffic_plan.h"
#include "dbus/contract.h"
#include "test_table.h"

#include <QSet>
#include <QTest>
#include <limits>

namespace {

using Map = QVariantMap;
using Rows = QList<QVariantMap>;

Map withKey(Map map, const char *key, const QVariant &value)
{
    map.insert(QLatin1String(key), value);
    return map;
}

Map withoutKey(Map map, const char *key)
{
    map.remove(QLatin1String(key));
    return map;
}

const Map connected = {{"State", "connected"}, {"Wanted", true}, {"Keep", true}, {"Reason", ""},
    {"Since", qint64(1763800000)}, {"NextAttempt", qint64(0)}, {"Attempts", 0U},
    {"ForeignLinks", QStringList()}, {"History", "ok"}, {"LimitReached", false}};

const Map session = {{"began", qint64(1763800000)}, {"ended", qint64(1763803600)},
    {"seconds", qint64(3600)}, {"reason", "hung-up"}, {"interface", "ppp0"},
    {"address", "192.0.2.7"}, {"received", qint64(5000)}, {"sent", qint64(700)}};

const Map attempts = {{"first", qint64(1763800000)}, {"last", qint64(1763800090)},
    {"count", qint64(17)}, {"reason", "no-concentrator"}};

const Map month = {
    {"begin", "2026-11-15"}, {"end", "2026-12-14"}, {"received", qint64(10)}, {"sent", qint64(2)}};

const Map sample
    = {{"time", qint64(1763800000)}, {"span", qint64(900)}, {"carrier", 0.5}, {"down_rate", 8128.0},
        {"up_rate", 832.0}, {"down_margin", 11.5}, {"up_margin", 9.0}, {"down_attenuation", 31.25},
        {"up_attenuation", 17.0}, {"down_errors", 3.0}, {"up_errors", qint64(4)}};

/// What is nothing that a keeper would say in the place of a number, text or flag.
QList<QVariant> garbage()
{
    return {QVariant(), QVariantList{1}, QVariantMap{{"a", 1}}, QByteArray("x"),
        QVariant::fromValue(QChar('x')), std::numeric_limits<double>::quiet_NaN(),
        std::numeric_limits<double>::infinity(), -1e300};
}

KeeperSession hungUpAt(qint64 ended, qint64 seconds)
{
    KeeperSession result;
    result.began = ended - seconds;
    result.ended = ended;
    result.seconds = seconds;
    result.reason = QStringLiteral("hung-up");
    return result;
}

} // namespace

class ClientKeeperTest : public QObject
{
    Q_OBJECT

private slots:
    void theStateIsWhatThePropertiesTell()
    {
        const auto state = keeperState(
            {{"State", "waiting"}, {"Wanted", true}, {"Keep", true}, {"Reason", "silent"},
                {"Since", qint64(1763800000)}, {"NextAttempt", qint64(1763800060)},
                {"Attempts", 3U}, {"ForeignLinks", QStringList{"ppp7"}}, {"History", "set-aside"},
                {"LimitReached", true}});
        QVERIFY(state);
        QCOMPARE(state->phase, QStringLiteral("waiting"));
        QVERIFY(state->isWanted);
        QVERIFY(state->isKeeping);
        QCOMPARE(state->reason, QStringLiteral("silent"));
        QCOMPARE(state->since.value_or(0), 1763800000);
        QCOMPARE(state->nextAttempt.value_or(0), 1763800060);
        QCOMPARE(state->attempts, 3U);
        QCOMPARE(state->foreignLinks, QStringList{"ppp7"});
        QCOMPARE(state->history, QStringLiteral("set-aside"));
        QVERIFY(state->isLimitReached);
    }

    void noAttemptIsPlannedAtTheTimeNought() { QVERIFY(!keeperState(connected)->nextAttempt); }

    void whoLacksStateWantedOrKeepIsNoKeeper_data()
    {
        const auto row = table<QString>("key");
        for (const char *key : {"State", "Wanted", "Keep"}) {
            row(key, QString::fromLatin1(key));
        }
    }
    void whoLacksStateWantedOrKeepIsNoKeeper()
    {
        QFETCH(QString, key);
        QVERIFY(!keeperState(withoutKey(connected, qPrintable(key))));
        for (const QVariant &wrong : garbage()) {
            QVERIFY(!keeperState(withKey(connected, qPrintable(key), wrong)));
        }
        QVERIFY(!keeperState(withKey(connected, qPrintable(key), 1)));
        QVERIFY(!keeperState({}));
    }

    void aPropertyOfAWrongTypeCountsAsOneThatIsMissing_data()
    {
        const auto row = table<QString>("key");
        for (const char *key : KeeperProperty::all) {
            const QString name = QLatin1String(key);
            if (name != "State" && name != "Wanted" && name != "Keep") {
                row(key, name);
            }
        }
    }
    void aPropertyOfAWrongTypeCountsAsOneThatIsMissing()
    {
        QFETCH(QString, key);
        QVERIFY(keeperState(withoutKey(connected, qPrintable(key))));
        for (const QVariant &wrong : garbage()) {
            const auto state = keeperState(withKey(connected, qPrintable(key), wrong));
            QVERIFY(state);
            QCOMPARE(state->phase, QStringLiteral("connected"));
            QVERIFY(state->reason.isEmpty());
            QVERIFY(!state->nextAttempt);
            QCOMPARE(state->attempts, 0U);
            QVERIFY(!state->isLimitReached);
            QVERIFY(state->foreignLinks.isEmpty());
        }
    }

    void aTimeThatCannotBeIsNone_data()
    {
        const auto row = table<QVariant>("time");
        row("before the beginning", QVariant(qint64(-5)));
        row("after the year 9999", QVariant(qint64(253402300800)));
        row("the largest", QVariant(std::numeric_limits<qint64>::max()));
        row("the largest without a sign", QVariant(std::numeric_limits<quint64>::max()));
        row("text", QVariant("1763800000"));
    }
    void aTimeThatCannotBeIsNone()
    {
        QFETCH(QVariant, time);
        QVERIFY(!keeperState(withKey(connected, "Since", time))->since);
        QVERIFY(keeperSessions({withKey(session, "began", time)}).isEmpty());
        QVERIFY(!keeperSessions({withKey(session, "ended", time)}).constFirst().ended);
    }

    void onlyWhatHasChangedChanges()
    {
        const KeeperState before = *keeperState(connected);
        const KeeperState after
            = withChanges(before, {{"State", "waiting"}, {"NextAttempt", qint64(1763800060)}});
        QCOMPARE(after.phase, QStringLiteral("waiting"));
        QCOMPARE(after.nextAttempt.value_or(0), 1763800060);
        QCOMPARE(after.since.value_or(0), before.since.value_or(-1));
        QVERIFY(after.isWanted);
        QCOMPARE(after.history, QStringLiteral("ok"));
        QVERIFY(!withChanges(after, {{"NextAttempt", qint64(0)}}).nextAttempt);
        QCOMPARE(withChanges(after, {{"NextAttempt", "soon"}}).nextAttempt.value_or(0), 1763800060);
        QVERIFY(!withChanges(after, {{"Wanted", false}}).isWanted);
    }

    void aSessionIsWhatItsRowTells()
    {
        const KeeperSession read = keeperSessions({session}).value(0);
        QCOMPARE(read.began, 1763800000);
        QCOMPARE(read.ended.value_or(0), 1763803600);
        QCOMPARE(read.seconds, 3600);
        QCOMPARE(read.reason, QStringLiteral("hung-up"));
        QCOMPARE(read.interface, QStringLiteral("ppp0"));
        QCOMPARE(read.address, QStringLiteral("192.0.2.7"));
        QCOMPARE(read.received, 5000U);
        QCOMPARE(read.sent, 700U);
    }

    void aRunningSessionHasNoEnd()
    {
        const auto read
            = keeperSessions({withoutKey(withoutKey(session, "ended"), "reason")}).value(0);
        QVERIFY(!read.ended);
        QVERIFY(read.reason.isEmpty());
        QCOMPARE(read.seconds, 3600);
    }

    void rowsKeepTheirOrderAndThoseThatAreNoneAreLeftOut()
    {
        const auto read = keeperSessions({withKey(session, "seconds", qint64(1)), {},
            withKey(session, "seconds", "x"), withKey(session, "seconds", qint64(2))});
        QCOMPARE(read.size(), 2);
        QCOMPARE(read.at(0).seconds, 1);
        QCOMPARE(read.at(1).seconds, 2);
    }

    void aRowWithoutWhatMakesItOneIsLeftOut_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<Map>("row");
        QTest::addColumn<QString>("key");
        for (const char *key : {"began", "seconds", "received", "sent"}) {
            QTest::addRow("session, %s", key) << "session" << session << key;
        }
        for (const char *key : {"first", "last", "count"}) {
            QTest::addRow("attempts, %s", key) << "attempts" << attempts << key;
        }
        for (const char *key : {"begin", "end", "received", "sent"}) {
            QTest::addRow("month, %s", key) << "month" << month << key;
        }
        for (const char *key : {"time", "span"}) {
            QTest::addRow("sample, %s", key) << "sample" << sample << key;
        }
    }
    void aRowWithoutWhatMakesItOneIsLeftOut()
    {
        QFETCH(QString, what);
        QFETCH(Map, row);
        QFETCH(QString, key);
        const auto count = [&what](const Map &map) {
            return what == "session" ? keeperSessions({map}).size()
                : what == "attempts" ? keeperAttempts({map}).size()
                : what == "month"    ? keeperMonths({map}).size()
                                     : lineSamples({map}).size();
        };
        QCOMPARE(count(row), 1);
        QCOMPARE(count(withoutKey(row, qPrintable(key))), 0);
        QCOMPARE(count(withKey(row, qPrintable(key), qint64(-1))), 0);
        QCOMPARE(count(withKey(row, qPrintable(key), true)), 0);
        for (const QVariant &wrong : garbage()) {
            QCOMPARE(count(withKey(row, qPrintable(key), wrong)), 0);
        }
    }

    void anyWholeNumberOfTheBusCounts()
    {
        for (const QVariant &number : {QVariant(200), QVariant(200U), QVariant(qint64(200)),
                 QVariant(quint64(200)), QVariant::fromValue(short(200)),
                 QVariant::fromValue(ushort(200)), QVariant::fromValue(uchar(200))}) {
            QCOMPARE(
                keeperSessions({withKey(session, "received", number)}).value(0).received, 200U);
        }
    }

    void theSumOfBothDirectionsIsAlwaysANumber()
    {
        const auto read
            = keeperMonths({withKey(withKey(month, "received", std::numeric_limits<qint64>::max()),
                "sent", std::numeric_limits<qint64>::max())});
        QCOMPARE(read.value(0).total(), std::numeric_limits<quint64>::max() - 1);
        QVERIFY(keeperMonths({withKey(month, "received", std::numeric_limits<quint64>::max())})
                    .isEmpty());
    }

    void attemptsAreWhatTheirRowTells()
    {
        const KeeperAttempts read = keeperAttempts({attempts}).value(0);
        QCOMPARE(read.first, 1763800000);
        QCOMPARE(read.last, 1763800090);
        QCOMPARE(read.count, 17U);
        QCOMPARE(read.reason, QStringLiteral("no-concentrator"));
    }

    void aDayAndAMonthAreWhatTheirRowTells()
    {
        const KeeperTraffic read = keeperMonths({month}).value(0);
        QCOMPARE(read.begin, QDate(2026, 11, 15));
        QCOMPARE(read.end, QDate(2026, 12, 14));
        QCOMPARE(read.total(), 12U);
        const KeeperTraffic day
            = keeperDays({{{"day", "2026-11-21"}, {"received", 1}, {"sent", 2}}}).value(0);
        QCOMPARE(day.begin, QDate(2026, 11, 21));
        QCOMPARE(day.end, day.begin);
        QCOMPARE(day.received, 1U);
        QCOMPARE(day.sent, 2U);
    }

    void aDayThatIsNoneIsLeftOut_data()
    {
        const auto row = table<QString>("day");
        for (const char *day : {"", "2026-02-30", "2026-1-1", "2026-11-21x", "21.11.2026",
                 "2026-11-21T10:00", "today"}) {
            row(day, QString::fromLatin1(day));
        }
    }
    void aDayThatIsNoneIsLeftOut()
    {
        QFETCH(QString, day);
        QVERIFY(keeperDays({{{"day", day}, {"received", 1}, {"sent", 2}}}).isEmpty());
    }

    void aSampleHasWhatTheDriverTells()
    {
        const LineSample read = lineSamples({sample}).value(0);
        QCOMPARE(read.time, 1763800000);
        QCOMPARE(read.span, 900);
        QCOMPARE(read.carrier.value_or(-1), 0.5);
        QCOMPARE(read.downRate.value_or(-1), 8128.0);
        QCOMPARE(read.upRate.value_or(-1), 832.0);
        QCOMPARE(read.downMargin.value_or(-1), 11.5);
        QCOMPARE(read.upMargin.value_or(-1), 9.0);
        QCOMPARE(read.downAttenuation.value_or(-1), 31.25);
        QCOMPARE(read.upAttenuation.value_or(-1), 17.0);
        QCOMPARE(read.downErrors.value_or(-1), 3.0);
        QCOMPARE(read.upErrors.value_or(-1), 4.0);
        const LineSample poor
            = lineSamples({{{"time", qint64(1763800000)}, {"span", qint64(60)}}}).value(0);
        QCOMPARE(poor.span, 60);
        QVERIFY(!poor.carrier && !poor.downRate && !poor.upRate && !poor.downMargin
            && !poor.upMargin && !poor.downAttenuation && !poor.upAttenuation && !poor.downErrors
            && !poor.upErrors);
    }

    void aFigureThatCannotBeIsLeftOutOfItsSample_data()
    {
        const auto row = table<QString, double>("key", "figure");
        row("more than always", "carrier", 1.5);
        row("less than never", "carrier", -0.1);
        row("a rate below none", "down_rate", -1.0);
        row("a rate of light", "up_rate", 1e12);
        row("a margin of nothing real", "down_margin", 1e6);
        row("no number", "up_margin", std::numeric_limits<double>::quiet_NaN());
        row("fewer errors than none", "down_errors", -1.0);
    }
    void aFigureThatCannotBeIsLeftOutOfItsSample()
    {
        QFETCH(QString, key);
        QFETCH(double, figure);
        const LineSample read = lineSamples({withKey(sample, qPrintable(key), figure)}).value(0);
        const QList<std::optional<double>> all
            = {read.carrier, read.downRate, read.upRate, read.downMargin, read.upMargin,
                read.downAttenuation, read.upAttenuation, read.downErrors, read.upErrors};
        QCOMPARE(all.count(std::nullopt), 1);
    }

    void aMarginMayBeBelowNought()
    {
        QCOMPARE(
            lineSamples({withKey(sample, "down_margin", -2.5)}).value(0).downMargin.value(), -2.5);
    }

    void thePlanHasALimitAndADay()
    {
        const auto plan = keeperPlan({{"limit", quint64(50'000'000'000)}, {"billing_day", 15U}});
        QVERIFY(plan);
        QCOMPARE(plan->limit, quint64(50'000'000'000));
        QCOMPARE(plan->billingDay, 15);
        for (const QVariant &day : {QVariant(0U), QVariant(32U), QVariant("1"), QVariant(-1)}) {
            QVERIFY(!keeperPlan({{"limit", quint64(0)}, {"billing_day", day}}));
        }
        QVERIFY(!keeperPlan({{"billing_day", 15U}}));
        QVERIFY(!keeperPlan({{"limit", -1}, {"billing_day", 15U}}));
        QVERIFY(!keeperPlan({}));
    }

    void answersOfAnotherKindAreNone()
    {
        for (const QVariant &wrong : garbage()) {
            if (wrong.type() != QVariant::Map) {
                QVERIFY(!busMap(wrong));
            }
            QVERIFY(!busRows(wrong));
        }
        QCOMPARE(busMap(session).value_or(Map()), session);
        QCOMPARE(busRows(QVariant::fromValue(Rows{session})).value_or(Rows()), Rows{session});
    }

    void whatIsLeftOfALimitIsSharedByTheDaysThatAreLeft()
    {
        const KeeperTraffic running = {QDate(2026, 11, 15), QDate(2026, 12, 14), 6000, 4000};
        const auto use = planUse({40000, 15}, running, QDate(2026, 12, 12));
        QVERIFY(use);
        QCOMPARE(use->used, 10000U);
        QCOMPARE(use->left, 30000U);
        QCOMPARE(use->daysLeft, 3);
        QCOMPARE(use->leftPerDay, 10000U);
        QVERIFY(!use->isReached);
        QCOMPARE(planUse({40000, 15}, running, QDate(2026, 12, 14))->daysLeft, 1);
    }

    void aLimitIsReachedByExactlyItsBytes()
    {
        const KeeperTraffic running = {QDate(2026, 11, 15), QDate(2026, 12, 14), 6000, 4000};
        const QDate today(2026, 11, 20);
        QVERIFY(!planUse({10001, 15}, running, today)->isReached);
        QVERIFY(planUse({10000, 15}, running, today)->isReached);
        QCOMPARE(planUse({1, 15}, running, today)->left, 0U);
        QVERIFY(planUseText({10000, 15}, running, today).contains("the limit is 10.0 kB"));
        QVERIFY(planUseText({20000, 15}, running, today)
                    .contains("10.0 kB of 20.0 kB; what is left is 400 B a day"));
    }

    void withoutALimitOrOutsideTheMonthNothingIsLeftOver()
    {
        const KeeperTraffic running = {QDate(2026, 11, 15), QDate(2026, 12, 14), 6000, 4000};
        QVERIFY(!planUse({0, 15}, running, QDate(2026, 11, 20)));
        QVERIFY(!planUse({1, 15}, running, QDate(2026, 11, 14)));
        QVERIFY(!planUse({1, 15}, running, QDate(2026, 12, 15)));
        QVERIFY(!planUse({1, 15}, running, QDate()));
        QVERIFY(planUseText({0, 15}, running, QDate(2026, 11, 20)).contains("10.0 kB."));
    }

    void failuresOfCallsAreTheKeepers_data()
    {
        const auto row = table<int, bool, int>("kind", "isInstalled", "keepers");
        row("none", int(FailureKind::None), true, int(FailureKind::None));
        row("nobody", int(FailureKind::NoDaemon), true, int(FailureKind::KeeperStopped));
        row("not installed", int(FailureKind::NoDaemon), false, int(FailureKind::KeeperMissing));
        row("hanging", int(FailureKind::NoAnswer), true, int(FailureKind::KeeperNoAnswer));
        row("an error", int(FailureKind::DaemonError), true, int(FailureKind::KeeperError));
        row("no bus", int(FailureKind::NoBus), true, int(FailureKind::NoBus));
        row("refused by the bus", int(FailureKind::NotPermitted), true,
            int(FailureKind::NotPermitted));
        row("a value refused", int(FailureKind::KeeperRefused), true,
            int(FailureKind::KeeperRefused));
    }
    void failuresOfCallsAreTheKeepers()
    {
        QFETCH(int, kind);
        QFETCH(bool, isInstalled);
        QFETCH(int, keepers);
        QCOMPARE(int(failureOfKeeper({FailureKind(kind), QString()}, isInstalled).kind), keepers);
        QCOMPARE(failureOfKeeper({FailureKind::DaemonError, "words"}, true).detail,
            QStringLiteral("words"));
    }

    void everyStateHasASentenceOfItsOwn()
    {
        QSet<QString> texts;
        for (const char *word : KeeperPhase::all) {
            const QString text = keeperPhaseText(QLatin1String(word));
            QVERIFY2(!text.isEmpty(), word);
            texts.insert(text);
        }
        QCOMPARE(texts.size(), int(KeeperPhase::all.size()));
        QCOMPARE(keeperPhaseText("waiting-for-line"), QStringLiteral("waiting for the line"));
    }

    void everyReasonHasASentenceOfItsOwn()
    {
        QSet<QString> texts;
        for (const char *word : KeeperReason::all) {
            const QString text = keeperReasonFact(QLatin1String(word)).text;
            QVERIFY2(text.endsWith(QLatin1Char('.')), word);
            texts.insert(text);
        }
        QCOMPARE(texts.size(), int(KeeperReason::all.size()));
        QCOMPARE(keeperReasonFact("hung-up").text, QStringLiteral("The provider hung up."));
    }

    void whatAPersonCanMendComesWithItsRemedy()
    {
        const auto remedy
            = [](const char *word) { return keeperReasonFact(QLatin1String(word)).remedy.kind; };
        QCOMPARE(remedy("account-refused"), RemedyKind::SetAccountAgain);
        QCOMPARE(remedy("circuit-missing"), RemedyKind::SetLine);
        QCOMPARE(remedy("unplugged"), RemedyKind::PlugModem);
        QCOMPARE(remedy("hung-up"), RemedyKind::None);
        QCOMPARE(remedy("something-new"), RemedyKind::None);
    }

    void aWordOfANewerKeeperIsToldAsItIsAndSteersNothing()
    {
        QCOMPARE(keeperPhaseText("on-holiday"), QStringLiteral("on-holiday"));
        QCOMPARE(keeperReasonFact("on\x1bholiday").text, QStringLiteral("on\uFFFDholiday"));
        QCOMPARE(keeperHistoryText("\x9b"), QStringLiteral("\uFFFD"));
        QCOMPARE(keeperReasonFact(QString()).text, QString());
        QCOMPARE(keeperPhaseText(QString()), QString());
    }

    void aHistoryThatIsFineNeedsNoWords()
    {
        for (const char *word : KeeperHistory::all) {
            const QString text = keeperHistoryText(QLatin1String(word));
            QCOMPARE(text.isEmpty(), qstrcmp(word, "ok") == 0);
            QVERIFY(text != QLatin1String(word));
        }
    }

    void aHangUpIsTheDailyOneAfterADay_data()
    {
        const auto row = table<qint64, bool>("seconds", "isDaily");
        row("a day", qint64(86400), true);
        row("a quarter hour less", qint64(85500), true);
        row("a quarter hour more", qint64(87300), true);
        row("less", qint64(85499), false);
        row("more", qint64(87301), false);
        row("an hour", qint64(3600), false);
        row("two days", qint64(172800), false);
    }
    void aHangUpIsTheDailyOneAfterADay()
    {
        QFETCH(qint64, seconds);
        QFETCH(bool, isDaily);
        QCOMPARE(isDailyHangUp({hungUpAt(1763800000, seconds)}, 0), isDaily);
    }

    void aHangUpIsTheDailyOneADayFromTheNextHangUp()
    {
        // At four every night, the user's own disconnects and reconnects in between.
        constexpr qint64 night = 1763780400;
        KeeperSession byUser = hungUpAt(night + 50000, 1000);
        byUser.reason = QStringLiteral("user");
        const QList<KeeperSession> nightly
            = {hungUpAt(night + 86400 + 60, 30000), byUser, hungUpAt(night, 20000)};
        QVERIFY(isDailyHangUp(nightly, 0));
        QVERIFY(isDailyHangUp(nightly, 2));
        QVERIFY(!isDailyHangUp(nightly, 1));
    }

    void aLineThatIsHungUpAllTheTimeHasNoDailyHangUp()
    {
        QList<KeeperSession> sessions;
        for (int hour = 0; hour < 50; ++hour) {
            sessions.prepend(hungUpAt(1763780400 + hour * 3600, 3590));
        }
        for (int place = 0; place < sessions.size(); ++place) {
            QVERIFY(!isDailyHangUp(sessions, place));
        }
    }

    void onlyAHangUpIsTheDailyOne()
    {
        for (const char *reason : {"silent", "user", "sleep", "line-lost", ""}) {
            KeeperSession other = hungUpAt(1763800000, 86400);
            other.reason = QLatin1String(reason);
            QVERIFY(!isDailyHangUp({other}, 0));
        }
        KeeperSession running = hungUpAt(1763800000, 86400);
        running.ended.reset();
        QVERIFY(!isDailyHangUp({running}, 0));
        QVERIFY(!isDailyHangUp({}, 0));
        QVERIFY(!isDailyHangUp({hungUpAt(1763800000, 86400)}, 1));
    }
};

QTEST_GUILESS_MAIN(ClientKeeperTest)
#include "keeper_test.moc"
