// SPDX-License-Identifier: MIT
// What the window believes after what it has seen, in every order that matters.
#include "dbus/contract.h"
#include "desktop/model/connection_model.h"
#include "test_table.h"

#include <QTest>

using namespace desktop;
namespace ev = desktop::event;

namespace {

constexpr qint64 noon = 1763809200000;

ev::DaemonTold told(const char *signal, const QVariantList &arguments = {})
{
    return {QLatin1String(signal), arguments};
}

ev::DaemonAnswered answeredState(int state)
{
    ev::DaemonAnswered answer;
    answer.state = state;
    return answer;
}

KeeperState keeperIn(const char *phase, const char *reason = "")
{
    KeeperState keeper;
    keeper.phase = QLatin1String(phase);
    keeper.isWanted = true;
    keeper.isKeeping = true;
    keeper.reason = QLatin1String(reason);
    return keeper;
}

const Event attemptBegins = told(DaemonSignal::establishingConnection);
const Event waitsForLine = told(DaemonSignal::synchronizing);
const Event comesUp = told(DaemonSignal::connectionEstablished);
const Event isEnded = told(DaemonSignal::connectionTerminated);
const Event endsDown = told(DaemonSignal::connectionState, {2});
const Event finishesUp = told(DaemonSignal::connectionState, {0});

/// A model to which all of it has happened, a second apart.
ConnectionModel after(const QVector<Event> &events)
{
    ConnectionModel model;
    qint64 now = noon;
    for (const Event &each : events) {
        model.apply(each, now);
        now += 1000;
    }
    return model;
}

/// The same with a daemon that is not connected.
ConnectionModel afterOffline(const QVector<Event> &events)
{
    return after(QVector<Event>{ev::DaemonAppeared(), answeredState(ConnectionDown)} + events);
}

} // namespace

Q_DECLARE_METATYPE(desktop::Event)
Q_DECLARE_METATYPE(desktop::Trouble)

class ConnectionModelTest : public QObject
{
    Q_OBJECT

private slots:
    void knowsNothingAtFirst()
    {
        const ConnectionModel model;
        QVERIFY(model.daemon == DaemonPresence::Unknown);
        QVERIFY(!model.state);
        QVERIFY(!model.isModemPlugged);
        QVERIFY(!model.keeper);
    }

    void followsTheDaemonsComingAndGoing()
    {
        QVERIFY(after({ev::DaemonAppeared()}).daemon == DaemonPresence::There);
        QVERIFY(after({ev::DaemonAppeared(), ev::DaemonLeft()}).daemon == DaemonPresence::Away);
        QVERIFY(after({ev::BusLost()}).daemon == DaemonPresence::NoBus);
        QVERIFY(after({ev::DaemonAppeared(), ev::DaemonSilent()}).daemon == DaemonPresence::Silent);
        QVERIFY(after({ev::DaemonLeft(), ev::DaemonSilent()}).daemon == DaemonPresence::Away);
    }

    void whoSpeaksIsNotSilent()
    {
        const QVector<Event> silent{ev::DaemonAppeared(), ev::DaemonSilent()};
        QVERIFY(
            after(silent + QVector<Event>{ev::DaemonAnswered()}).daemon == DaemonPresence::There);
        QVERIFY(after(silent + QVector<Event>{attemptBegins}).daemon == DaemonPresence::There);
    }

    void silenceForgetsNothing()
    {
        const ConnectionModel model
            = after({ev::DaemonAppeared(), answeredState(ConnectionUp), ev::DaemonSilent()});
        QCOMPARE(*model.state, int(ConnectionUp));
    }

    void aSignalIsNewerThanAnAnswerThatIsStillMissing()
    {
        ev::DaemonAnswered building;
        building.isBuilding = true;
        ev::DaemonAnswered modem;
        modem.isModemPlugged = true;
        const ConnectionModel model = after({ev::DaemonAppeared(), answeredState(ConnectionDown),
            building, told(DaemonSignal::compilationFinished, {true}), attemptBegins, modem});
        QVERIFY(!model.isBuilding);
        QCOMPARE(*model.state, int(ConnectionConnecting));
        QVERIFY(*model.isModemPlugged);
    }

    void followsAnAttemptThatComesUp()
    {
        ConnectionModel model = afterOffline({ev::Requested{Request::Connect}});
        QVERIFY(model.pending == Request::Connect);
        model = afterOffline({ev::Requested{Request::Connect}, attemptBegins});
        QVERIFY(!model.pending);
        QVERIFY(model.step == ConnectingStep::Started);
        model = afterOffline({attemptBegins, waitsForLine});
        QVERIFY(model.step == ConnectingStep::WaitingForLine);
        model = afterOffline({attemptBegins, waitsForLine, comesUp,
            told(DaemonSignal::IP, {"192.0.2.7"}), told(DaemonSignal::defaultRoute, {"ppp0"})});
        QCOMPARE(*model.state, int(ConnectionUp));
        QVERIFY(model.step == ConnectingStep::None);
        QCOMPARE(model.address, QStringLiteral("192.0.2.7"));
        QCOMPARE(model.route, QStringLiteral("ppp0"));
    }

    void noneIsNoAddress()
    {
        const ConnectionModel model = afterOffline(
            {comesUp, told(DaemonSignal::IP, {"..."}), told(DaemonSignal::defaultRoute, {"..."})});
        QVERIFY(model.address.isEmpty());
        QVERIFY(model.route.isEmpty());
    }

    void anAttemptThatFailsSaysWhy_data()
    {
        const auto row = table<QVector<Event>, Trouble>("events", "trouble");
        const Event refused = told(DaemonSignal::invalidAccountData);
        const Event timeout = told(DaemonSignal::connectionTimeout);
        const Event noLine = told(DaemonSignal::synchronizationFailed);
        row("refused", {attemptBegins, refused, endsDown}, Trouble::AccountRefused);
        row("timeout, told twice", {attemptBegins, timeout, timeout, endsDown},
            Trouble::ProviderSilent);
        row("no line", {attemptBegins, waitsForLine, noLine, endsDown},
            Trouble::LineNotSynchronised);
        row("nobody told why", {attemptBegins, endsDown}, Trouble::NotUp);
        row("its state was asked for before its end was told",
            {attemptBegins, refused, answeredState(2), endsDown}, Trouble::AccountRefused);
        row("not ours, and found running", {answeredState(1), endsDown}, Trouble::NotUp);
        row("ended by somebody", {attemptBegins, isEnded, endsDown}, Trouble::None);
        row("the next one begins", {attemptBegins, refused, endsDown, attemptBegins},
            Trouble::None);
        row("the next one comes up", {attemptBegins, refused, endsDown, attemptBegins, comesUp},
            Trouble::None);
        row("disconnecting later forgets nothing", {attemptBegins, refused, endsDown, isEnded},
            Trouble::AccountRefused);
    }
    void anAttemptThatFailsSaysWhy()
    {
        QFETCH(QVector<Event>, events);
        QFETCH(Trouble, trouble);
        QCOMPARE(afterOffline(events).trouble, trouble);
    }

    void anAttemptThatIsEndedGoesOnUntilItHasEnded()
    {
        ConnectionModel model = afterOffline({attemptBegins, waitsForLine,
            ev::Requested{Request::Disconnect}, isEnded, ev::RequestTaken{Request::Disconnect}});
        QVERIFY(model.step == ConnectingStep::Ending);
        QCOMPARE(*model.state, int(ConnectionConnecting));
        model.apply(answeredState(ConnectionConnecting), noon);
        QVERIFY(model.step == ConnectingStep::Ending);
        model.apply(endsDown, noon);
        QVERIFY(model.step == ConnectingStep::None);
        QVERIFY(!model.pending);
        QCOMPARE(*model.state, int(ConnectionDown));
    }

    void anAttemptThatComesUpAfterItWasEndedIsToBeEndedAgain()
    {
        ConnectionModel model
            = afterOffline({attemptBegins, waitsForLine, ev::Requested{Request::Disconnect},
                isEnded, ev::RequestTaken{Request::Disconnect}, comesUp});
        QVERIFY(model.isEndingOwed);
        model.apply(ev::Requested{Request::Disconnect}, noon);
        QVERIFY(!model.isEndingOwed);
        model.apply(isEnded, noon);
        QCOMPARE(*model.state, int(ConnectionDown));
        QVERIFY(!model.pending);
    }

    void whatSomebodyElseEndedIsHis()
    {
        QVERIFY(!afterOffline({attemptBegins, isEnded, comesUp}).isEndingOwed);
    }

    void disconnectingIsNoTrouble()
    {
        const ConnectionModel model
            = afterOffline({comesUp, finishesUp, ev::Requested{Request::Disconnect}, isEnded,
                ev::RequestTaken{Request::Disconnect}, endsDown});
        QCOMPARE(*model.state, int(ConnectionDown));
        QCOMPARE(model.trouble, Trouble::None);
        QVERIFY(!model.pending);
        QVERIFY(model.address.isEmpty());
    }

    void aRequestThatIsTakenWaitsForNothingMore()
    {
        QVERIFY(!afterOffline({ev::Requested{Request::Connect}, ev::RequestTaken{Request::Connect}})
                     .pending);
        // An answer to a question that was asked before says nothing of it.
        QVERIFY(
            afterOffline({ev::Requested{Request::Connect}, answeredState(ConnectionDown)}).pending
            == Request::Connect);
    }

    void aRequestThatFailsChangesNoState()
    {
        const ConnectionModel model = afterOffline({comesUp, ev::Requested{Request::Disconnect},
            ev::RequestFailed{Request::Disconnect, {FailureKind::NotPermitted, {}}}});
        QCOMPARE(*model.state, int(ConnectionUp));
        QVERIFY(!model.pending);
        QVERIFY(model.requestFailure.kind == FailureKind::NotPermitted);
    }

    void aFailureIsForgottenWithTheNextAttempt()
    {
        const Event failed = ev::RequestFailed{Request::Connect, {FailureKind::NoAnswer, {}}};
        QVERIFY(!afterOffline({failed, ev::Requested{Request::Connect}}).requestFailure);
        QVERIFY(!afterOffline({failed, attemptBegins}).requestFailure);
        QVERIFY(!afterOffline({failed, answeredState(ConnectionUp)}).requestFailure);
    }

    void aFailureIsForgottenWhenItIsNotSoAnyMore()
    {
        const Event unheard = ev::RequestFailed{Request::Connect, {FailureKind::NoAnswer, {}}};
        QVERIFY(afterOffline({unheard, answeredState(ConnectionDown)}).requestFailure);
        QVERIFY(!afterOffline({ev::DaemonSilent(), unheard, answeredState(ConnectionDown)})
                     .requestFailure);
        QVERIFY(!afterOffline({ev::DaemonSilent(), unheard, told(DaemonSignal::modemUnplugged)})
                     .requestFailure);
        QVERIFY(!afterOffline({unheard, ev::DaemonLeft(), ev::DaemonAppeared()}).requestFailure);
        const Event refused
            = ev::RequestFailed{Request::Disconnect, {FailureKind::NotPermitted, {}}};
        QVERIFY(!afterOffline({comesUp, refused, answeredState(ConnectionDown)}).requestFailure);
        QVERIFY(!afterOffline({comesUp, refused, ev::LinkLost{"hung-up"}}).requestFailure);
    }

    void aKeeperThatTellsSomethingDoesAnswer()
    {
        const Event unheard
            = ev::RequestFailed{Request::Connect, {FailureKind::KeeperNoAnswer, {}}};
        const Event refused = ev::RequestFailed{Request::Connect, {FailureKind::NotPermitted, {}}};
        QVERIFY(!afterOffline({unheard, ev::KeeperTold{}}).requestFailure);
        QVERIFY(afterOffline({refused, ev::KeeperTold{}}).requestFailure);
    }

    void whatHasComeUpAllTheSameHasNotFailed()
    {
        QVERIFY(!afterOffline({ev::Requested{Request::Connect}, comesUp,
                                  ev::RequestFailed{Request::Connect, {FailureKind::NoAnswer, {}}}})
                     .requestFailure);
    }

    void aDaemonThatIsStartedForConnectFindsItStillWanted()
    {
        const ConnectionModel model
            = after({ev::DaemonLeft(), ev::Requested{Request::Connect}, ev::DaemonAppeared()});
        QVERIFY(model.pending == Request::Connect);
    }

    void aLossThatNobodyTellsIsFoundByAsking()
    {
        const ConnectionModel model
            = afterOffline({comesUp, finishesUp, answeredState(ConnectionDown)});
        QCOMPARE(*model.state, int(ConnectionDown));
        QCOMPARE(model.trouble, Trouble::Lost);
        QVERIFY(model.lossReason.isEmpty());
    }

    void anotherDialIsFoundByAsking()
    {
        const ConnectionModel model
            = afterOffline({comesUp, finishesUp, answeredState(ConnectionConnecting)});
        QCOMPARE(*model.state, int(ConnectionConnecting));
        QVERIFY(model.step == ConnectingStep::Started);
    }

    void aLossHasTheKeepersReasonWhicheverComesFirst()
    {
        const Event lost = ev::LinkLost{QStringLiteral("hung-up")};
        for (const QVector<Event> &order :
            {QVector<Event>{lost}, QVector<Event>{lost, answeredState(2)},
                QVector<Event>{answeredState(2), lost}, QVector<Event>{lost, endsDown}}) {
            const ConnectionModel model = afterOffline(QVector<Event>{comesUp, finishesUp} + order);
            QCOMPARE(*model.state, int(ConnectionDown));
            QCOMPARE(model.trouble, Trouble::Lost);
            QCOMPARE(model.lossReason, QStringLiteral("hung-up"));
            QVERIFY(model.address.isEmpty());
        }
    }

    void aLossIsForgottenWhenTheLinkIsBack()
    {
        const ConnectionModel model = afterOffline(
            {comesUp, ev::LinkLost{QStringLiteral("silent")}, attemptBegins, comesUp});
        QCOMPARE(model.trouble, Trouble::None);
        QVERIFY(model.lossReason.isEmpty());
    }

    void theKeeperTellsTheEndThatTheDaemonDoesNotTell()
    {
        const ConnectionModel model
            = afterOffline({comesUp, ev::KeeperTold{keeperIn(KeeperPhase::connected)},
                ev::KeeperTold{keeperIn(KeeperPhase::waiting)}});
        QCOMPARE(*model.state, int(ConnectionDown));
        QCOMPARE(model.trouble, Trouble::None); // the reason comes as a loss, or nobody lost it
    }

    void aKeeperThatIsBehindEndsNothing()
    {
        const ConnectionModel model = afterOffline({ev::KeeperTold{keeperIn(KeeperPhase::waiting)},
            comesUp, ev::KeeperTold{keeperIn(KeeperPhase::connecting)}});
        QCOMPARE(*model.state, int(ConnectionUp));
    }

    void theEndOfTheThreadDoesNotEndALinkThatIsUp()
    {
        ConnectionModel model
            = afterOffline({comesUp, told(DaemonSignal::settingOpenDNS, {false}), finishesUp});
        QCOMPARE(*model.state, int(ConnectionUp));
        QCOMPARE(model.trouble, Trouble::ResolverWrong);
        model = afterOffline({comesUp, told(DaemonSignal::settingOpenDNS, {true}), finishesUp});
        QCOMPARE(model.trouble, Trouble::None);
    }

    void aLinkOutlivesTheDaemon()
    {
        ConnectionModel model = afterOffline({comesUp, ev::DaemonLeft()});
        QVERIFY(!model.state);
        QVERIFY(model.isLinkLeft);
        model.apply(ev::KeeperTold{keeperIn(KeeperPhase::waitingForDaemon)}, noon);
        QVERIFY(!model.isLinkLeft);
        QVERIFY(!afterOffline({ev::DaemonLeft()}).isLinkLeft);
        model = afterOffline({comesUp, ev::DaemonLeft(), ev::DaemonAppeared(), answeredState(0)});
        QCOMPARE(*model.state, int(ConnectionUp));
        QVERIFY(!model.isLinkLeft);
    }

    void aLinkThatWasTakenOverHasItsAddressAndTime()
    {
        ev::DaemonAnswered link;
        link.interface = QStringLiteral("ppp0");
        link.address = QStringLiteral("192.0.2.7");
        link.route = QStringLiteral("ppp0");
        ConnectionModel model
            = after({ev::DaemonAppeared(), answeredState(0), link, ev::LinkSeen{7200}});
        QCOMPARE(model.address, QStringLiteral("192.0.2.7"));
        QCOMPARE(*model.connectedSeconds(noon + 3000), qint64(7200));
        // A late answer about a link that has gone.
        model = after({ev::DaemonAppeared(), answeredState(0), isEnded, link});
        QVERIFY(model.address.isEmpty());
        QVERIFY(!model.connectedSeconds(noon));
    }

    void timeConnectedPassesADay()
    {
        ConnectionModel model = afterOffline({comesUp});
        QCOMPARE(*model.connectedSeconds(noon + 2000 + 90000 * qint64(1000)), qint64(90000));
        KeeperState keeper = keeperIn(KeeperPhase::connected);
        keeper.since = noon / 1000 - 100;
        model.apply(ev::KeeperTold{keeper}, noon);
        QCOMPARE(*model.connectedSeconds(noon), qint64(100));
        QCOMPARE(*model.connectedSeconds(noon - 1000000), qint64(0)); // the clock was set back
    }

    void speedsOfNoConnectionAreNotKept()
    {
        const Event speed = told(DaemonSignal::transmissionSpeed, {1000U, 50U});
        QCOMPARE(afterOffline({comesUp, speed}).speeds.samples().size(), 1);
        QVERIFY(afterOffline({speed}).speeds.samples().isEmpty());
    }

    void followsModems()
    {
        ConnectionModel model = afterOffline({told(DaemonSignal::newModemPlugged, {"M1"})});
        QCOMPARE(model.announcedModem, QStringLiteral("M1"));
        model = afterOffline({told(DaemonSignal::newModemPlugged, {"M1"}),
            told(DaemonSignal::modemPlugged, {"M1"})});
        QVERIFY(model.announcedModem.isEmpty());
        QVERIFY(*model.isModemPlugged);
        QCOMPARE(model.modemName, QStringLiteral("M1"));
        model = afterOffline(
            {told(DaemonSignal::newModemPlugged, {"M1"}), told(DaemonSignal::newModemUnplugged)});
        QVERIFY(model.announcedModem.isEmpty());
        // Pulling the modem ends the connection first.
        model = afterOffline({comesUp, isEnded, told(DaemonSignal::modemUnplugged)});
        QVERIFY(!*model.isModemPlugged);
        QCOMPARE(model.trouble, Trouble::None);
    }

    void followsBuildsAndRestarts()
    {
        QVERIFY(afterOffline({told(DaemonSignal::compilingDriver)}).isBuilding);
        QVERIFY(!afterOffline(
            {told(DaemonSignal::compilingDriver), told(DaemonSignal::compilationFinished, {false})})
                     .isBuilding);
        const Event begins = told(DaemonSignal::compilingDriver);
        const Event fails = told(DaemonSignal::compilationFinished, {false});
        const Event ends = told(DaemonSignal::compilationFinished, {true});
        QVERIFY(!afterOffline({begins}).buildResult);
        QVERIFY(afterOffline({begins, ends}).buildResult == true);
        QVERIFY(afterOffline({begins, fails}).buildResult == false);
        QVERIFY(!afterOffline({begins, fails, begins}).buildResult);
        QVERIFY(!after({ev::DaemonAppeared(), begins, fails, ev::DaemonLeft()}).buildResult);
        QVERIFY(afterOffline({told(DaemonSignal::restartModemStarted)}).isRestarting);
        QVERIFY(!afterOffline(
            {told(DaemonSignal::restartModemStarted), told(DaemonSignal::restartModemFinished)})
                     .isRestarting);
        QVERIFY(!after({ev::DaemonAppeared(), told(DaemonSignal::compilingDriver),
                           told(DaemonSignal::restartModemStarted), ev::DaemonLeft()})
                     .isBuilding);
    }

    void everySignalCanComeAtAnyTime()
    {
        const QVector<QVector<Event>> earlier{{}, {ev::DaemonLeft()}, {ev::BusLost()},
            {ev::DaemonAppeared(), comesUp}, {ev::DaemonAppeared(), attemptBegins},
            {ev::DaemonAppeared(), attemptBegins, isEnded}};
        for (const QVector<Event> &before : earlier) {
            for (const BusSignal &signal : daemonSignals) {
                ConnectionModel model = after(before);
                model.apply(ev::DaemonTold{QLatin1String(signal.name), {}}, noon);
                QVERIFY2(model.daemon == DaemonPresence::There, signal.name);
            }
        }
    }

    void theLossThatAConnectionFollowsIsKnownFromTheHistory_data()
    {
        // Away for so many seconds.
        const auto row
            = table<QString, qint64, bool, bool>("reason", "away", "isRunning", "isLoss");
        row("hung up", "hung-up", 41LL, true, true);
        row("the line", "line-lost", 3600LL, true, true);
        row("a newer keeper's word", "meteor", 0LL, true, true);
        row("wanted", "user", 41LL, true, false);
        row("slept", "sleep", 41LL, true, false);
        row("not seen", "unknown", 41LL, true, false);
        row("not back yet", "hung-up", 41LL, false, false);
        row("the clock was set back", "hung-up", -1LL, true, false);
    }
    void theLossThatAConnectionFollowsIsKnownFromTheHistory()
    {
        QFETCH(QString, reason);
        QFETCH(qint64, away);
        QFETCH(bool, isRunning);
        QFETCH(bool, isLoss);
        constexpr qint64 lostAt = noon / 1000 - 7200;
        KeeperSession before;
        before.began = lostAt - 1000;
        before.ended = lostAt;
        before.reason = reason;
        KeeperSession running;
        running.began = lostAt + away;
        if (!isRunning) {
            running.ended = running.began + 1;
        }
        ConnectionModel model
            = afterOffline({comesUp, finishesUp, ev::SessionsTold{{running, before}}});
        QCOMPARE(model.lastLoss.has_value(), isLoss);
        if (isLoss) {
            QCOMPARE(model.lastLoss->at, lostAt);
            QCOMPARE(model.lastLoss->awaySeconds, away);
        }
        model.apply(isEnded, noon);
        QVERIFY(!model.lastLoss);
        for (const QList<KeeperSession> &few : {QList<KeeperSession>(), {running}}) {
            model.apply(ev::SessionsTold{few}, noon);
            QVERIFY(!model.lastLoss);
        }
    }

    void waitingIsCountedFromItsBeginning()
    {
        ConnectionModel model = afterOffline({attemptBegins});
        QCOMPARE(model.waitSince, noon + 2000);
        model.apply(ev::Ticked(), noon + 5000);
        QCOMPARE(model.waitSince, noon + 2000);
        model.apply(waitsForLine, noon + 6000);
        QCOMPARE(model.waitSince, noon + 6000);
    }

    void timeShowsOnlyWhereSomethingIsCountedOrMoves()
    {
        QVERIFY(!ConnectionModel().doesTimeShow());
        QVERIFY(!afterOffline({}).doesTimeShow());
        QVERIFY(!after({ev::DaemonLeft()}).doesTimeShow());
        QVERIFY(afterOffline({attemptBegins}).doesTimeShow());
        QVERIFY(afterOffline({comesUp}).doesTimeShow());
        QVERIFY(!afterOffline({comesUp, isEnded}).doesTimeShow());
        QVERIFY(afterOffline({told(DaemonSignal::compilingDriver)}).doesTimeShow());
        QVERIFY(afterOffline({ev::DaemonSilent()}).doesTimeShow());
        QVERIFY(after({ev::DaemonLeft(), ev::Requested{Request::Connect}}).doesTimeShow());
        KeeperState waiting;
        waiting.nextAttempt = noon / 1000 + 60;
        QVERIFY(afterOffline({ev::KeeperTold{waiting}}).doesTimeShow());
    }

    void aPlotMovesUntilItIsEmpty()
    {
        ConnectionModel model
            = afterOffline({comesUp, told(DaemonSignal::transmissionSpeed, {1U, 1U}), isEnded});
        QVERIFY(model.doesTimeShow());
        model.apply(ev::Ticked(), noon + 10 * 60 * 1000);
        QVERIFY(!model.doesTimeShow());
    }
};

QTEST_APPLESS_MAIN(ConnectionModelTest)
#include "connection_model_test.moc"
