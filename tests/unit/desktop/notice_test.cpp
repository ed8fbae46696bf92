// SPDX-License-Identifier: MIT
// What a person is told unasked.
#include "desktop/model/notice.h"

#include "dbus/contract.h"
#include "test_table.h"

#include <QtTest>

using namespace desktop;

namespace {

constexpr qint64 second = 1000;
constexpr qint64 minute = 60 * second;
constexpr qint64 morning = 1790000000000; // some day

/// A program that runs, and somebody who hears what it tells.
class Day
{
public:
    Day()
        : m_decision(morning)
    {
        happen(event::DaemonAppeared());
        pass(10 * minute);
    }

    void pass(qint64 time) { m_now += time; }

    void happen(const Event &event)
    {
        m_model.apply(event, m_now);
        if (const auto notice = m_decision.take(event, m_model, m_now, isSeen)) {
            told.append(*notice);
        }
        m_now += 1;
    }

    void tell(const char *signal, const QVariantList &arguments = {})
    {
        happen(event::DaemonTold{QLatin1String(signal), arguments});
    }

    void connectIt()
    {
        tell(DaemonSignal::establishingConnection);
        tell(DaemonSignal::connectionEstablished);
    }

    void loseIt() { tell(DaemonSignal::connectionState, {int(ConnectionDown)}); }

    void keep(bool isLimitReached = false)
    {
        KeeperState state;
        state.phase = QLatin1String(KeeperPhase::connected);
        state.isWanted = state.isKeeping = true;
        state.isLimitReached = isLimitReached;
        happen(event::KeeperTold{state});
    }

    QList<NoticeKind> kinds() const
    {
        QList<NoticeKind> kinds;
        for (const Notice &notice : told) {
            kinds.append(notice.kind);
        }
        return kinds;
    }

    bool isSeen = false;
    QList<Notice> told;

private:
    ConnectionModel m_model;
    NoticeDecision m_decision;
    qint64 m_now = morning;
};

using Kinds = QList<NoticeKind>;

} // namespace

class NoticeTest : public QObject
{
    Q_OBJECT

private slots:
    void aConnectionThatComesUpIsNoNews()
    {
        Day day;
        day.connectIt();
        QVERIFY(day.told.isEmpty());
    }

    void aFailedAttemptIsToldWithItsReason_data()
    {
        const auto row = tableOfTexts<QByteArray>("signal");
        for (const char *signal : {DaemonSignal::synchronizationFailed,
                 DaemonSignal::connectionTimeout, DaemonSignal::invalidAccountData}) {
            row(signal);
        }
    }
    void aFailedAttemptIsToldWithItsReason()
    {
        QFETCH(QByteArray, signal);
        Day day;
        day.tell(DaemonSignal::establishingConnection);
        day.tell(signal);
        day.loseIt();
        QCOMPARE(day.kinds(), Kinds{NoticeKind::AttemptFailed});
        QVERIFY(!day.told.constFirst().text.isEmpty());
    }

    void anAttemptThatEndsWithoutAReasonIsTold()
    {
        Day day;
        day.tell(DaemonSignal::establishingConnection);
        day.loseIt();
        QCOMPARE(day.kinds(), Kinds{NoticeKind::AttemptFailed});
    }

    void aRequestThatNobodyTakesIsAFailedAttempt()
    {
        Day day;
        day.happen(event::Requested{Request::Connect});
        day.happen(event::RequestFailed{Request::Connect, {FailureKind::NotPermitted, {}}});
        QCOMPARE(day.kinds(), Kinds{NoticeKind::AttemptFailed});
    }

    void anAttemptThatThePersonEndsIsNoNews()
    {
        Day day;
        day.tell(DaemonSignal::establishingConnection);
        day.happen(event::Requested{Request::Disconnect});
        day.tell(DaemonSignal::synchronizationFailed);
        day.tell(DaemonSignal::connectionTerminated);
        day.loseIt();
        QVERIFY(day.told.isEmpty());
    }

    void aConnectionThatThePersonEndsIsNoNews()
    {
        Day day;
        day.connectIt();
        day.happen(event::Requested{Request::Disconnect});
        day.tell(DaemonSignal::connectionTerminated);
        day.loseIt();
        QVERIFY(day.told.isEmpty());
    }

    void aConnectionThatEndsBecauseTheModemIsRestartedHereIsNoNews()
    {
        Day day;
        day.keep();
        day.connectIt();
        day.happen(event::Requested{Request::RestartModem});
        day.happen(event::LinkLost{QLatin1String(KeeperReason::modemRestart)});
        QVERIFY(day.told.isEmpty());
    }

    void aConnectionThatAnotherProgramEndsIsNoNews()
    {
        Day day;
        day.connectIt();
        day.tell(DaemonSignal::connectionTerminated);
        QVERIFY(day.told.isEmpty());
    }

    void anEndThatWasNotDoneDoesNotSilenceALaterLoss()
    {
        Day day;
        day.connectIt();
        day.happen(event::Requested{Request::Disconnect});
        day.happen(event::RequestFailed{Request::Disconnect, {FailureKind::NoAnswer, {}}});
        day.loseIt();
        QCOMPARE(day.kinds(), Kinds{NoticeKind::LinkLost});
    }

    void aLossIsToldOnceWithTheKeepersReason()
    {
        Day day;
        day.keep();
        day.connectIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::hungUp)});
        day.loseIt();
        QCOMPARE(day.kinds(), Kinds{NoticeKind::LinkLost});
        QCOMPARE(
            day.told.constFirst().text, keeperReasonFact(QLatin1String(KeeperReason::hungUp)).text);
    }

    void aLossThatTheDaemonTellsFirstIsToldOnceToo()
    {
        Day day;
        day.keep();
        day.connectIt();
        day.loseIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::lineLost)});
        QCOMPARE(day.kinds(), Kinds{NoticeKind::LinkLost});
    }

    void aLossInSleepIsNoNews()
    {
        Day day;
        day.keep();
        day.connectIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::sleep)});
        QVERIFY(day.told.isEmpty());
    }

    void theSameReasonIsToldAgainOnlyAfterTenMinutes()
    {
        Day day;
        day.keep();
        const auto lose = [&day] {
            day.connectIt();
            day.happen(event::LinkLost{QLatin1String(KeeperReason::hungUp)});
        };
        lose();
        day.pass(9 * minute);
        lose();
        QCOMPARE(day.told.size(), 1);
        day.pass(2 * minute);
        lose();
        QCOMPARE(day.told.size(), 2);
    }

    void anotherReasonIsToldAtOnce()
    {
        Day day;
        day.keep();
        day.connectIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::hungUp)});
        day.connectIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::lineLost)});
        QCOMPARE(day.told.size(), 2);
    }

    void aClockThatIsSetBackSilencesNothing()
    {
        Day day;
        day.keep();
        day.connectIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::hungUp)});
        day.pass(-60 * minute + 59 * minute + 30 * second);
        day.connectIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::hungUp)});
        QCOMPARE(day.told.size(), 2);
    }

    void whatIsSeenInTheWindowIsNotToldNorSoonAfter()
    {
        Day day;
        day.keep();
        day.isSeen = true;
        day.connectIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::hungUp)});
        day.isSeen = false;
        day.pass(2 * minute);
        day.connectIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::hungUp)});
        QVERIFY(day.told.isEmpty());
    }

    void aNewModemIsTold()
    {
        Day day;
        day.tell(DaemonSignal::newModemPlugged, {QStringLiteral("Speedtouch")});
        QCOMPARE(day.kinds(), Kinds{NoticeKind::NewModem});
        QVERIFY(day.told.constFirst().text.contains(QLatin1String("Speedtouch")));
    }

    void theLimitIsToldWhenItIsReachedAndNotWhenItWasBefore()
    {
        Day day;
        day.keep(true); // the first that is known
        QVERIFY(day.told.isEmpty());
        day.keep(false);
        day.keep(true);
        day.keep(true);
        QCOMPARE(day.kinds(), Kinds{NoticeKind::LimitReached});
    }

    void atStartNothingIsTold()
    {
        ConnectionModel model;
        NoticeDecision decision(morning);
        const Event plugged = event::DaemonTold{
            QLatin1String(DaemonSignal::newModemPlugged), {QStringLiteral("Speedtouch")}};
        model.apply(plugged, morning + 20 * second);
        QVERIFY(!decision.take(plugged, model, morning + 20 * second, false));
        QVERIFY(decision.take(plugged, model, morning + 40 * second, false));
    }

    void whoAsksForAConnectionAtStartHearsOfItsFailure()
    {
        ConnectionModel model;
        NoticeDecision decision(morning);
        for (const Event &event : {Event(event::Requested{Request::Connect}),
                 Event(
                     event::DaemonTold{QLatin1String(DaemonSignal::establishingConnection), {}})}) {
            model.apply(event, morning + second);
            QVERIFY(!decision.take(event, model, morning + second, false));
        }
        const Event refused
            = event::DaemonTold{QLatin1String(DaemonSignal::invalidAccountData), {}};
        model.apply(refused, morning + 2 * second);
        QVERIFY(decision.take(refused, model, morning + 2 * second, false));
    }

    void fromFallingAsleepUntilAMinuteAfterWakingUpNothingIsTold()
    {
        Day day;
        day.keep();
        day.connectIt();
        day.happen(event::SleepTold{true});
        day.pass(500 * minute);
        day.happen(event::LinkLost{QLatin1String(KeeperReason::silent)});
        day.happen(event::SleepTold{false});
        day.pass(50 * second);
        day.tell(DaemonSignal::connectionTimeout);
        QVERIFY(day.told.isEmpty());
        day.pass(20 * second);
        day.connectIt();
        day.happen(event::LinkLost{QLatin1String(KeeperReason::silent)});
        QCOMPARE(day.kinds(), Kinds{NoticeKind::LinkLost});
    }

    void theDaemonsComingAndGoingIsNoNews()
    {
        Day day;
        day.connectIt();
        day.happen(event::DaemonLeft());
        day.happen(event::DaemonAppeared());
        event::DaemonAnswered answer;
        answer.state = ConnectionDown;
        day.happen(answer);
        day.happen(event::DaemonSilent());
        day.happen(event::BusLost());
        QVERIFY(day.told.isEmpty());
    }

    void aWholeDay()
    {
        Day day;
        day.keep();
        day.tell(DaemonSignal::newModemPlugged, {QStringLiteral("Speedtouch")}); // 1
        day.isSeen = true; // set up and connected in the window
        day.happen(event::Requested{Request::Connect});
        day.connectIt();
        day.isSeen = false;
        day.pass(120 * minute);
        for (int time = 0; time < 5; ++time) { // a bad hour: lost every two minutes
            day.happen(event::LinkLost{QLatin1String(KeeperReason::lineLost)}); // 2
            day.loseIt();
            day.connectIt();
            day.pass(2 * minute);
        }
        day.pass(60 * minute);
        day.happen(event::SleepTold{true});
        day.happen(event::LinkLost{QLatin1String(KeeperReason::sleep)});
        day.pass(300 * minute);
        day.happen(event::SleepTold{false});
        day.tell(DaemonSignal::establishingConnection);
        day.tell(DaemonSignal::connectionTimeout);
        day.connectIt();
        day.pass(30 * minute);
        day.keep(true); // 3
        day.pass(60 * minute);
        day.happen(event::LinkLost{QLatin1String(KeeperReason::hungUp)}); // 4
        day.tell(DaemonSignal::establishingConnection);
        day.tell(DaemonSignal::invalidAccountData); // 5
        day.happen(event::Requested{Request::Disconnect});
        day.tell(DaemonSignal::connectionTerminated);
        day.loseIt();
        QCOMPARE(day.kinds(),
            (Kinds{NoticeKind::NewModem, NoticeKind::LinkLost, NoticeKind::LimitReached,
                NoticeKind::LinkLost, NoticeKind::AttemptFailed}));
    }
};

QTEST_GUILESS_MAIN(NoticeTest)
#include "notice_test.moc"
