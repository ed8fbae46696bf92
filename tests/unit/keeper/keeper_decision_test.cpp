// SPDX-License-Identifier: MIT
// What the keeper decides, case by case.
#include "keeper_story.h"
#include "test_table.h"

#include <QtTest>

Q_DECLARE_METATYPE(keeper::Cause)

using namespace keeper;
using Kind = Action::Kind;

class DecisionTest : public QObject
{
    Q_OBJECT

private slots:
    // ---- the wish

    void nothingIsTriedThatNobodyAskedFor()
    {
        Story story;
        story.tell(event::DaemonAppeared{true, true, false, false});
        story.tell(event::LinkSeen{});
        story.wait(86'400'000);
        QCOMPARE(story.actions.size(), 0);
        QCOMPARE(story.phase(), QStringLiteral("idle"));
        QVERIFY(!nextTick(story.state, story.now.ms));
    }

    void aLinkFoundUpIsWanted()
    {
        Story story;
        story.tell(event::DaemonAppeared{false, true, false, false});
        story.tell(event::LinkSeen{Link::Up});
        QCOMPARE(story.phase(), QStringLiteral("connected"));
        story.tell(event::LinkSeen{Link::Gone});
        QVERIFY(story.did(Kind::AskDaemon));
    }

    void whatSomebodyAskedForIsWanted()
    {
        Story story;
        story.tell(event::DaemonAppeared{false, true, false, false});
        story.tell(event::LinkSeen{});
        story.tell(event::AttemptBegan());
        story.tell(event::AttemptEnded{2, Cause::NoConcentrator});
        QVERIFY(isWanted(story.state));
        QCOMPARE(story.untilQuestion(), 5000);
    }

    void anAttemptThatRanBeforeAnybodyListenedIsWanted()
    {
        Story story;
        story.tell(event::LinkSeen{});
        story.tell(event::DaemonAppeared{false, true, false, true});
        QVERIFY(!story.did(Kind::AskDaemon));
        story.tell(event::AttemptEnded{2, Cause::NoConcentrator});
        QVERIFY(isWanted(story.state));
        QCOMPARE(story.untilQuestion(), 5'000);
    }

    void aLinkEndedOverTheBusDoesNotComeBack()
    {
        Story story = Story::connected();
        story.tell(event::Terminated());
        story.tell(event::LinkSeen{});
        story.wait(86'400'000);
        QVERIFY(!story.did(Kind::AskDaemon));
        QVERIFY(!story.did(Kind::TellLoss));
        QCOMPARE(story.causeOf(Kind::EndSession), Cause::User);
        QCOMPARE(story.phase(), QStringLiteral("idle"));
    }

    void anUnpluggedModemIsNoUsersDisconnect()
    {
        Story story = Story::connected();
        story.tell(event::Terminated());
        story.wait(140);
        story.tell(event::ModemUnplugged());
        story.wait(400);
        story.tell(event::LinkSeen{});
        QCOMPARE(story.causeOf(Kind::TellLoss), Cause::Unplugged);
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-modem"));
        QCOMPARE(story.untilQuestion(), -1);
        story.tell(event::ModemPlugged());
        QVERIFY(story.did(Kind::AskDaemon));
    }

    void aModemThatIsSeenToBeGoneIsWaitedFor()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{Link::Gone, false, Cause::Unplugged});
        QCOMPARE(story.causeOf(Kind::TellLoss), Cause::Unplugged);
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-modem"));
        QCOMPARE(story.untilQuestion(), -1);
        story.tell(event::Terminated()); // the daemon tells of it later
        story.tell(event::ModemUnplugged());
        QVERIFY(isWanted(story.state));
        QCOMPARE(story.count(Kind::TellLoss), 1);
        QVERIFY(!story.did(Kind::AskDaemon));
        story.tell(event::LineSeen{true, false});
        QVERIFY(story.did(Kind::AskDaemon));
    }

    void theReasonWaitsForWhatFollowsTheDisconnect()
    {
        Story story = Story::connected();
        story.tell(event::Terminated());
        story.tell(event::LinkSeen{});
        QVERIFY(!story.did(Kind::EndSession));
        story.wait(600);
        story.tell(event::ModemUnplugged());
        QCOMPARE(story.causeOf(Kind::EndSession), Cause::Unplugged);
        QVERIFY(isWanted(story.state));
    }

    void aModemRestartIsNoUsersDisconnect()
    {
        Story story = Story::connected();
        story.tell(event::Terminated());
        story.tell(event::RestartBegan());
        story.tell(event::LinkSeen{});
        QCOMPARE(story.causeOf(Kind::EndSession), Cause::ModemRestart);
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-restart"));
        QVERIFY(!story.did(Kind::AskDaemon));
        story.tell(event::RestartEnded());
        QVERIFY(story.did(Kind::AskDaemon));
    }

    void anUnpluggingTooLateIsNoExcuse()
    {
        Story story = Story::connected();
        story.tell(event::Terminated());
        story.tell(event::LinkSeen{});
        story.wait(2100);
        story.tell(event::ModemUnplugged());
        QVERIFY(!isWanted(story.state));
    }

    void onlyTheLastDisconnectIsExcused()
    {
        Story story = Story::connected();
        story.tell(event::Terminated()); // the user
        story.wait(500);
        story.tell(event::Terminated()); // the modem
        story.tell(event::ModemUnplugged());
        QVERIFY(!isWanted(story.state));
    }

    void aDisconnectWhileNobodyListenedEndsTheWish()
    {
        Memory memory;
        memory.isWanted = true;
        Story story(memory, true, Unheard::Disconnect);
        story.tell(event::DaemonAppeared{false, true, false, false});
        story.tell(event::LinkSeen{});
        QCOMPARE(story.actions.size(), 0);
    }

    void whatMayHaveBeenAnUnpluggingIsNoneWithAModem()
    {
        Memory memory;
        memory.isWanted = true;
        Story story(memory, true, Unheard::DisconnectOrUnplugged);
        story.tell(event::LinkSeen{});
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-daemon"));
        story.tell(event::DaemonAppeared{false, true, false, false});
        QCOMPARE(story.phase(), QStringLiteral("idle"));
        QCOMPARE(story.actions.size(), 0);
    }

    void anUnpluggingWhileNobodyListenedIsNoUsersDisconnect()
    {
        Memory memory;
        memory.isWanted = true;
        Story story(memory, true, Unheard::DisconnectOrUnplugged);
        QVERIFY(!isWanted(story.state));
        story.tell(event::LinkSeen{});
        story.tell(event::DaemonAppeared{false, false, false, false});
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-modem"));
        QCOMPARE(story.state.reason, Cause::Unplugged);
        story.tell(event::ModemPlugged());
        QVERIFY(story.did(Kind::AskDaemon));
    }

    void whoeverAsksMeanwhileSettlesIt()
    {
        Memory memory;
        memory.isWanted = true;
        Story story(memory, true, Unheard::DisconnectOrUnplugged);
        story.tell(event::LinkSeen{});
        story.tell(event::ConnectAsked());
        story.tell(event::DaemonAppeared{false, true, false, false});
        QVERIFY(story.did(Kind::AskDaemon));
    }

    void theWishOutlivesTheKeeper() { QVERIFY(Story::wanted().did(Kind::AskDaemon)); }

    void theWishOutlivesTheDaemon()
    {
        Story story = Story::connected();
        story.tell(event::DaemonGone());
        story.tell(event::LinkSeen{});
        story.wait(60'000);
        QVERIFY(!story.did(Kind::AskDaemon));
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-daemon"));
        story.tell(event::DaemonAppeared{false, true, false, false});
        QVERIFY(story.did(Kind::AskDaemon));
    }

    void theWishOutlivesARebootWhereTheSettingSaysSo_data()
    {
        const auto row = table<bool>("connectsAtBoot");
        row("connect at boot", true);
        row("not", false);
    }

    void theWishOutlivesARebootWhereTheSettingSaysSo()
    {
        QFETCH(bool, connectsAtBoot);
        Memory memory;
        memory.isWanted = true;
        Story story(memory, false);
        QVERIFY(!isWanted(story.state));
        story.tell(event::LinkSeen{});
        story.tell(event::DaemonAppeared{connectsAtBoot, true, false, false});
        QCOMPARE(story.did(Kind::AskDaemon), connectsAtBoot);
        QCOMPARE(story.state.memory.isWanted.value(), connectsAtBoot);
    }

    void switchedOffItDoesNothing()
    {
        Story story = Story::connected();
        story.tell(event::KeepSet{false});
        story.tell(event::LinkSeen{});
        story.tell(event::SleepComing());
        story.tell(event::Woke());
        story.wait(86'400'000);
        QVERIFY(!story.did(Kind::AskDaemon));
        QCOMPARE(story.phase(), QStringLiteral("off"));
        QVERIFY(isWanted(story.state));
        story.tell(event::KeepSet{true});
        QVERIFY(story.did(Kind::AskDaemon));
    }

    // ---- a link is lost

    void aLostLinkIsTriedForAtOnce()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{Link::Gone, false, Cause::HungUp});
        QCOMPARE(story.causeOf(Kind::TellLoss), Cause::HungUp);
        QVERIFY(story.did(Kind::AskDaemon));
        story.answer();
        QVERIFY(story.did(Kind::Connect));
        QVERIFY(!story.did(Kind::EndLink));
    }

    void aLinkWithoutAddressIsLostAfterTenSeconds()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{Link::Bare, false, Cause::Silent});
        story.wait(9'999);
        QVERIFY(!story.did(Kind::EndSession));
        QCOMPARE(story.phase(), QStringLiteral("connected"));
        story.wait(1);
        QCOMPARE(story.causeOf(Kind::EndSession), Cause::Silent);
        QVERIFY(story.did(Kind::AskDaemon));
    }

    void theReasonIsWhatWasSeenFirst()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{Link::Bare, false, Cause::Silent});
        story.wait(3'000);
        story.tell(event::LinkSeen{Link::Gone, false, Cause::BridgeGone});
        QCOMPARE(story.causeOf(Kind::EndSession), Cause::Silent);
    }

    void anAddressThatComesBackIsTheSameSession()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{Link::Bare});
        story.wait(700);
        story.tell(event::LinkSeen{Link::Up});
        story.wait(86'400'000);
        QCOMPARE(story.actions.size(), 0);
    }

    void factsToldTwiceChangeNothing()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{Link::Gone, false, Cause::HungUp});
        story.tell(event::LinkSeen{Link::Gone, false, Cause::HungUp});
        QCOMPARE(story.count(Kind::EndSession), 1);
        QCOMPARE(story.count(Kind::AskDaemon), 1);
    }

    void aDailyHangUpIsNoFailure()
    {
        Story story = Story::connected(86'000'000);
        for (int day = 0; day < 5; ++day) {
            story.tell(event::LinkSeen{Link::Gone, false, Cause::HungUp});
            QVERIFY(story.state.task == Task::Asking);
            story.comeUp();
            story.wait(86'000'000);
        }
        QVERIFY(!story.did(Kind::NoteAttempt));
        QCOMPARE(story.state.attempts, 0);
    }

    void aLinkHungUpAtOnceIsTriedForEverMoreSeldom()
    {
        Story story = Story::connected();
        QVector<qint64> pauses;
        for (int i = 0; i < 10; ++i) {
            story.tell(event::LinkSeen{Link::Gone, false, Cause::HungUp});
            const qint64 pause = story.untilQuestion();
            pauses.append(pause);
            story.wait(pause);
            story.comeUp();
            story.wait(30'000);
        }
        QCOMPARE(pauses,
            (QVector<qint64>{
                0, 5'000, 10'000, 20'000, 40'000, 80'000, 160'000, 320'000, 640'000, 900'000}));
        story.wait(570'000); // ten minutes in all
        story.tell(event::LinkSeen{Link::Gone, false, Cause::HungUp});
        QCOMPARE(story.untilQuestion(), 0);
        story.comeUp();
        story.wait(30'000);
        story.tell(event::LinkSeen{Link::Gone, false, Cause::HungUp});
        QCOMPARE(story.untilQuestion(), 5'000);
    }

    // ---- attempts and pauses

    void pausesGrowWithTheOutage()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{});
        const qint64 start = story.now.ms;
        QVector<qint64> slow;
        while (story.now.ms - start < 90'000'000) {
            story.begin();
            story.wait(35'000);
            story.tell(event::AttemptEnded{2, Cause::NoConcentrator});
            const qint64 pause = story.untilQuestion();
            const qint64 age = story.now.ms - start;
            if (age < 600'000) {
                QCOMPARE(pause, 5'000);
            } else if (age < 86'400'000) {
                slow.append(pause);
            } else {
                QCOMPARE(pause, 300'000);
            }
            story.wait(pause);
        }
        QCOMPARE(slow.mid(0, 5), (QVector<qint64>{10'000, 20'000, 40'000, 60'000, 60'000}));
        QCOMPARE(slow.last(), 60'000);
        QCOMPARE(story.state.attempts, story.count(Kind::NoteAttempt));
    }

    void pausesAreSpreadByATenth_data()
    {
        const auto row = table<double, qint64>("dice", "pause");
        row("shortest", 0.0, qint64(4'500));
        row("longest", 1.0, qint64(5'500));
    }

    void pausesAreSpreadByATenth()
    {
        QFETCH(double, dice);
        QFETCH(qint64, pause);
        Story story = Story::connected();
        story.tell(event::LinkSeen{});
        story.now.dice = dice;
        story.fail(Cause::NoConcentrator);
        QCOMPARE(story.untilQuestion(), pause);
    }

    void aRefusedAccountIsTriedSeldom_data()
    {
        const auto row = table<qint64, QVector<qint64>>("workedAgo", "pauses");
        const QVector<qint64> distrusted{900'000, 3'600'000, 21'600'000, 21'600'000};
        row("worked lately", qint64(6) * 86400, (QVector<qint64>{60'000} + distrusted));
        row("worked long ago", qint64(8) * 86400, distrusted);
        row("never worked", qint64(0), distrusted);
    }

    void aRefusedAccountIsTriedSeldom()
    {
        QFETCH(qint64, workedAgo);
        QFETCH(QVector<qint64>, pauses);
        Story story = Story::wanted();
        story.state.memory.lastUpWall = workedAgo == 0 ? 0 : story.now.wall - workedAgo;
        for (const qint64 pause : pauses) {
            story.begin();
            story.tell(event::AttemptTold{Cause::AccountRefused});
            story.tell(event::AttemptEnded{2, Cause::Unknown});
            QCOMPARE(story.untilQuestion(), pause);
            QCOMPARE(story.causeOf(Kind::NoteAttempt), Cause::AccountRefused);
            story.wait(pause);
        }
    }

    void twoHangUpsBeforeAnAddressAreARefusal()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{});
        story.fail(Cause::PeerTerminated);
        QCOMPARE(story.untilQuestion(), 5'000);
        story.wait(5'000);
        story.fail(Cause::PeerTerminated);
        QCOMPARE(story.causeOf(Kind::NoteAttempt), Cause::AccountRefused);
        QCOMPARE(story.untilQuestion(), 60'000);
    }

    void hangUpsThatAreNotInARowAreNone()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{});
        for (const Cause cause :
            {Cause::PeerTerminated, Cause::NoConcentrator, Cause::PeerTerminated}) {
            story.fail(cause);
            QCOMPARE(story.untilQuestion(), 5'000);
            story.wait(5'000);
        }
    }

    void aNewAccountIsTriedAtOnce()
    {
        Story story = Story::wanted();
        story.fail(Cause::AccountRefused);
        QCOMPARE(story.untilQuestion(), 900'000);
        story.tell(event::SettingsChanged()); // not the account
        QCOMPARE(story.untilQuestion(), 900'000);
        story.tell(event::AccountChanged());
        QCOMPARE(story.untilQuestion(), 0);
    }

    void aRefusalIsWaitedForThroughSleep()
    {
        Story story = Story::wanted();
        story.fail(Cause::AccountRefused);
        story.tell(event::SleepComing());
        story.tell(event::Woke());
        QCOMPARE(story.untilQuestion(), 900'000);
    }

    void aUsersConnectForgetsRefusals()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{});
        story.fail(Cause::AccountRefused);
        story.tell(event::AttemptBegan());
        story.tell(event::AttemptTold{Cause::AccountRefused});
        story.tell(event::AttemptEnded{2, Cause::Unknown});
        QCOMPARE(story.untilQuestion(), 60'000);
    }

    void settingsThatStopAFirstAttemptAreWaitedFor_data()
    {
        const auto row = table<Cause>("cause");
        row("peer file", Cause::PeerFileMissing);
        row("account", Cause::PasswordMissing);
        row("line", Cause::CircuitMissing);
        row("option", Cause::BadOption);
        row("noauth", Cause::PeerMustAuthenticate);
    }

    void settingsThatStopAFirstAttemptAreWaitedFor()
    {
        QFETCH(Cause, cause);
        Story story = Story::wanted();
        story.fail(cause);
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-settings"));
        QCOMPARE(story.untilQuestion(), -1);
        story.tell(event::SleepComing());
        story.tell(event::Woke());
        QCOMPARE(story.untilQuestion(), -1);
        story.tell(event::SettingsChanged());
        QCOMPARE(story.untilQuestion(), 0);
    }

    void aLineThatCameBackIsTriedAtOnce()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{});
        story.wait(700'000);
        story.begin();
        story.tell(event::LineAwaited());
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-line"));
        story.tell(event::AttemptTold{Cause::LineNotSynchronised});
        story.tell(event::AttemptEnded{2, Cause::Unknown});
        story.tell(event::LineSeen{true, false});
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-line"));
        QCOMPARE(story.untilQuestion(), 10'000);
        story.tell(event::LineSeen{true, true});
        QCOMPARE(story.untilQuestion(), 0);
    }

    void threeFailuresOfTheLineRestartTheModem()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{});
        int restarts = 0;
        const qint64 start = story.now.ms;
        while (story.now.ms - start < 7'000'000) {
            story.begin();
            story.wait(35'000);
            story.tell(event::AttemptTold{Cause::LineNotSynchronised});
            story.tell(event::AttemptEnded{2, Cause::Unknown});
            if (story.count(Kind::RestartModem) > restarts) {
                ++restarts;
                QCOMPARE(story.state.reason, Cause::ModemRestart);
                QVERIFY(restarts > 1 || story.state.attempts == 3);
                story.tell(event::Terminated());
                story.tell(event::RestartBegan());
                QCOMPARE(story.phase(), QStringLiteral("waiting-for-restart"));
                QCOMPARE(story.untilQuestion(), 120'000);
                story.tell(event::RestartEnded());
            }
            story.wait(story.untilQuestion());
        }
        QCOMPARE(restarts, 2);
        QVERIFY(isWanted(story.state));
    }

    void aModemRestartIsRememberedByTheNextKeeper_data()
    {
        const auto row = table<int, bool>("secondsAgo", "isRestarted");
        row("half an hour ago", 1'800, false);
        row("over an hour ago", 3'700, true);
        row("after the clock was set back", -86'400, true);
    }

    void aModemRestartIsRememberedByTheNextKeeper()
    {
        QFETCH(int, secondsAgo);
        Memory memory;
        memory.isWanted = true;
        memory.modemRestartedWall = Story().now.wall - secondsAgo;
        Story story(memory);
        story.tell(event::DaemonAppeared{false, true, false, false});
        story.tell(event::LinkSeen{});
        for (int i = 0; i < 3; ++i) {
            story.fail(Cause::LineNotSynchronised);
            story.wait(story.untilQuestion());
        }
        QTEST(story.did(Kind::RestartModem), "isRestarted");
        QCOMPARE(story.state.memory.modemRestartedWall == memory.modemRestartedWall,
            !story.did(Kind::RestartModem));
    }

    void anUnpluggedModemIsNotRestarted()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{});
        for (int i = 0; i < 4; ++i) {
            story.begin();
            story.tell(event::ModemUnplugged());
            story.tell(event::AttemptTold{Cause::LineNotSynchronised});
            story.tell(event::AttemptEnded{2, Cause::Unknown});
            story.tell(event::ModemPlugged());
        }
        QVERIFY(!story.did(Kind::RestartModem));
    }

    /// The daemon takes such a link for its own and would end it first: with a dead line, the
    /// mobile one that somebody uses meanwhile.
    void besideAForeignLinkTheModemIsNotRestarted()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{Link::Gone, true});
        const auto failOnce = [&story] {
            story.tell(event::AttemptBegan());
            story.tell(event::AttemptTold{Cause::LineNotSynchronised});
            story.tell(event::AttemptEnded{0, Cause::Unknown});
            story.wait(5'000); // the foreign one's state
        };
        for (int i = 0; i < 4; ++i) {
            failOnce();
        }
        QCOMPARE(story.state.reason, Cause::LineNotSynchronised);
        QVERIFY(!story.did(Kind::RestartModem));
        story.tell(event::LinkSeen{Link::Gone, false});
        failOnce();
        QVERIFY(story.did(Kind::RestartModem));
    }

    void aDriverBuildIsWaitedFor()
    {
        Story story = Story::connected();
        story.tell(event::BuildBegan());
        story.tell(event::LinkSeen{});
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-driver"));
        QCOMPARE(story.untilQuestion(), -1);
        story.tell(event::BuildEnded());
        QVERIFY(story.did(Kind::AskDaemon));
    }

    // ---- before a request

    void nothingIsRequestedBeforeAnybodyLooked()
    {
        Memory memory;
        memory.isWanted = true;
        Story story(memory);
        story.tell(event::DaemonAppeared{false, true, false, false});
        story.wait(10'000);
        QVERIFY(!story.did(Kind::AskDaemon));
        story.tell(event::LinkSeen{Link::Up});
        story.wait(10'000);
        QVERIFY(!story.did(Kind::AskDaemon));
    }

    void nothingIsRequestedWhileTheDaemonConnects()
    {
        Story story = Story::wanted();
        story.answer(1);
        QVERIFY(!story.did(Kind::Connect));
        story.tell(event::AttemptEnded{2, Cause::NoConcentrator});
        QCOMPARE(story.untilQuestion(), 5'000);
    }

    void nothingIsRequestedBeforeTheInterfaceIsGone()
    {
        Story story = Story::wanted();
        story.begin();
        story.tell(event::LinkSeen{Link::Bare});
        story.tell(event::AttemptEnded{2, Cause::NoNegotiation});
        story.wait(9'999);
        QCOMPARE(story.count(Kind::AskDaemon), 1);
        story.wait(1);
        QCOMPARE(story.count(Kind::AskDaemon), 2); // ten seconds at most
    }

    void aForeignLinkIsSaidAndBlocksNobodyForEver()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{Link::Gone, true, Cause::HungUp});
        story.answer(0);
        QVERIFY(!story.did(Kind::Connect));
        QVERIFY(story.did(Kind::LookAtLinks));
        QCOMPARE(story.state.reason, Cause::ForeignLink);
        QCOMPARE(story.untilQuestion(), 10'000);
        story.wait(10'000);
        story.answer(0);
        QVERIFY(story.did(Kind::Connect));
        story.tell(event::AttemptBegan());
        story.tell(event::AttemptEnded{0, Cause::NoConcentrator}); // the foreign one's state
        story.wait(5'000);
        QCOMPARE(story.causeOf(Kind::NoteAttempt), Cause::NoConcentrator);
        story.wait(5'000);
        story.answer(0);
        QCOMPARE(story.count(Kind::Connect), 2);
    }

    void aRequestThatIsDroppedIsRepeated()
    {
        Story story = Story::wanted();
        story.answer();
        story.tell(event::RequestAnswered{true});
        story.wait(5'000);
        QCOMPARE(story.causeOf(Kind::NoteAttempt), Cause::RequestDropped);
        QCOMPARE(story.untilQuestion(), 5'000);
    }

    void aRequestThatTheBusRefusesIsSaid()
    {
        Story story = Story::wanted();
        story.answer();
        story.tell(event::RequestAnswered{false});
        QCOMPARE(story.state.reason, Cause::RequestRefused);
        QCOMPARE(story.untilQuestion(), 5'000);
    }

    void anAttemptWhoseEndWasMissedHoldsUpNobodyForEver()
    {
        Story story = Story::wanted();
        story.begin();
        QCOMPARE(story.untilQuestion(), 240'000 + 5'000);
    }

    void aLinkThatStaysInTheForegroundIsTriedForWhenItsThreadHasEnded()
    {
        Story story = Story::wanted();
        story.begin();
        story.tell(event::LinkSeen{Link::Up});
        story.wait(65'000);
        story.tell(event::LinkSeen{Link::Gone, false, Cause::HungUp});
        QCOMPARE(story.count(Kind::AskDaemon), 1);
        story.tell(event::AttemptEnded{2, Cause::Unknown});
        QCOMPARE(story.count(Kind::AskDaemon), 2);
    }

    void oneMoreConnectDuringALinkIsNoFailure()
    {
        Story story = Story::connected();
        story.tell(event::AttemptBegan());
        story.tell(event::AttemptEnded{0, Cause::None});
        story.wait(3'600'000);
        QCOMPARE(story.actions.size(), 0);
    }

    // ---- the user disconnects while something is under way

    void aDisconnectDuringAnAttemptEndsTheLinkThatItStillBringsUp()
    {
        Story story = Story::wanted();
        story.begin();
        story.wait(700);
        story.tell(event::Terminated());
        story.wait(15'000);
        QVERIFY(!story.did(Kind::EndLink));
        story.tell(event::LinkSeen{Link::Up});
        QCOMPARE(story.count(Kind::EndLink), 1);
        story.tell(event::Terminated()); // our own doing
        story.tell(event::EndAnswered());
        story.tell(event::LinkSeen{Link::Gone});
        story.tell(event::AttemptEnded{2, Cause::Unknown});
        story.wait(86'400'000);
        QCOMPARE(story.count(Kind::EndLink), 1);
        QCOMPARE(story.count(Kind::AskDaemon), 1);
        QCOMPARE(story.causeOf(Kind::EndSession), Cause::User);
        QVERIFY(!story.did(Kind::TellLoss));
    }

    void aDisconnectBetweenQuestionAndRequestStopsTheRequest()
    {
        Story story = Story::wanted();
        story.tell(event::Terminated());
        story.answer();
        QVERIFY(!story.did(Kind::Connect));
    }

    void aDisconnectBetweenRequestAndItsBeginIsObeyed()
    {
        Story story = Story::wanted();
        story.answer();
        story.tell(event::Terminated());
        story.tell(event::AttemptBegan());
        QVERIFY(!isWanted(story.state));
        story.tell(event::LinkSeen{Link::Up});
        QVERIFY(story.did(Kind::EndLink));
    }

    void aDisconnectDuringAPauseStopsIt()
    {
        Story story = Story::wanted();
        story.fail(Cause::NoConcentrator);
        story.tell(event::Terminated());
        QCOMPARE(story.untilQuestion(), -1);
    }

    void whoAsksAgainKeepsTheLink_data()
    {
        const auto row = table<bool>("byTheDaemonsLog");
        row("through the daemon, which drops it", true);
        row("through the keeper", false);
    }

    void whoAsksAgainKeepsTheLink()
    {
        QFETCH(bool, byTheDaemonsLog);
        Story story = Story::wanted();
        story.begin();
        story.tell(event::Terminated());
        if (!byTheDaemonsLog) {
            story.tell(event::ConnectAsked());
        }
        story.tell(event::LinkSeen{Link::Up, false, Cause::None, byTheDaemonsLog});
        QVERIFY(!story.did(Kind::EndLink));
        QVERIFY(isWanted(story.state));
    }

    void anotherClientsDisconnectBesideOurOwnIsObeyed()
    {
        Story story = Story::connected();
        story.tell(event::SleepComing());
        story.tell(event::Terminated());
        story.tell(event::Terminated());
        story.tell(event::EndAnswered());
        story.tell(event::LinkSeen{});
        story.wait(3'000);
        QVERIFY(!isWanted(story.state));
    }

    // ---- sleep

    void theLinkIsEndedBeforeSleepAndComesBackAfterIt()
    {
        Story story = Story::connected();
        story.tell(event::SleepComing());
        story.tell(event::SleepComing());
        QCOMPARE(story.count(Kind::EndLink), 1);
        QVERIFY(!story.did(Kind::LetSleep));
        story.tell(event::Terminated());
        story.tell(event::EndAnswered());
        story.tell(event::LinkSeen{});
        QCOMPARE(story.count(Kind::LetSleep), 1);
        QCOMPARE(story.causeOf(Kind::EndSession), Cause::Sleep);
        QVERIFY(!story.did(Kind::TellLoss));
        QVERIFY(!story.did(Kind::AskDaemon));
        story.tell(event::Woke());
        story.tell(event::Woke());
        QCOMPARE(story.count(Kind::HoldSleep), 1);
        QCOMPARE(story.count(Kind::AskDaemon), 1);
    }

    void sleepIsHeldUpForLessThanASecond()
    {
        Story story = Story::connected();
        story.tell(event::SleepComing());
        story.wait(999);
        QVERIFY(story.did(Kind::LetSleep));
    }

    void aForeignLinkIsNotKilledForSleep()
    {
        Story story = Story::connected();
        story.tell(event::LinkSeen{Link::Up, true});
        story.tell(event::SleepComing());
        QVERIFY(!story.did(Kind::EndLink));
        QVERIFY(story.did(Kind::LetSleep));
    }

    void withoutALinkSleepIsNotHeldUp()
    {
        Story story;
        story.tell(event::SleepComing());
        QCOMPARE(story.count(Kind::LetSleep), 1);
    }

    void afterWakingTheModemIsWaitedFor()
    {
        Story story = Story::connected();
        story.tell(event::SleepComing());
        story.tell(event::Terminated());
        story.tell(event::LinkSeen{});
        story.tell(event::ModemUnplugged());
        story.tell(event::Woke());
        QCOMPARE(story.phase(), QStringLiteral("waiting-for-modem"));
        QVERIFY(!story.did(Kind::AskDaemon));
        story.tell(event::ModemPlugged());
        QVERIFY(story.did(Kind::AskDaemon));
    }

    void wakingThatIsNeverToldIsNoticed()
    {
        Story story = Story::connected();
        story.tell(event::SleepComing());
        story.tell(event::Terminated());
        story.tell(event::LinkSeen{});
        QCOMPARE(story.untilQuestion(), 300'000);
    }

    // ---- what clients see

    void everyPhaseHasItsWord()
    {
        Story story = Story::wanted();
        QCOMPARE(story.phase(), QStringLiteral("connecting"));
        story.fail(Cause::NoConcentrator);
        QCOMPARE(story.phase(), QStringLiteral("waiting"));
        story.tell(event::SleepComing());
        QCOMPARE(story.phase(), QStringLiteral("asleep"));
    }

    void nothingWakesItUpWhileConnected()
    {
        Story story = Story::connected();
        QVERIFY(!nextTick(story.state, story.now.ms));
        QVERIFY(!wantsLooks(story.state));
    }
};

QTEST_APPLESS_MAIN(DecisionTest)
#include "keeper_decision_test.moc"
