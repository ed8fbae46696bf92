// SPDX-License-Identifier: MIT
// The one sentence and its buttons, for all that can be.
#include "dbus/contract.h"
#include "desktop/model/headline.h"

#include <QSet>
#include <QTest>
#include <functional>

using namespace desktop;

namespace {

constexpr qint64 noon = 1763809200000; // 11:00 UTC

using Change = std::function<void(ConnectionModel &)>;

ConnectionModel offline()
{
    ConnectionModel model;
    model.daemon = DaemonPresence::There;
    model.state = ConnectionDown;
    model.isModemPlugged = true;
    model.waitSince = noon;
    return model;
}

KeeperState keeping(const char *phase, const char *reason)
{
    KeeperState keeper;
    keeper.phase = QLatin1String(phase);
    keeper.isWanted = true;
    keeper.isKeeping = true;
    keeper.reason = QLatin1String(reason);
    return keeper;
}

Change trouble(Trouble what)
{
    return [what](ConnectionModel &model) {
        model.trouble = what;
        model.troubleAt = noon - 60000;
    };
}

Change failure(FailureKind kind)
{
    return [kind](ConnectionModel &model) {
        model.requestFailure = {kind, QStringLiteral("detail")};
    };
}

Change keeper(const char *phase, const char *reason, qint64 nextIn = 0)
{
    return [=](ConnectionModel &model) {
        model.keeper = keeping(phase, reason);
        if (nextIn != 0) {
            model.keeper->nextAttempt = noon / 1000 + nextIn;
        }
    };
}

Change daemonIs(DaemonPresence presence)
{
    return [presence](ConnectionModel &model) {
        model.daemon = presence;
        model.state.reset();
    };
}

Change stateIs(int state, ConnectingStep step = ConnectingStep::None)
{
    return [=](ConnectionModel &model) {
        model.state = state;
        model.step = step;
    };
}

Change both(const Change &first, const Change &second)
{
    return [=](ConnectionModel &model) {
        first(model);
        second(model);
    };
}

} // namespace

Q_DECLARE_METATYPE(Change)
Q_DECLARE_METATYPE(desktop::Standing)
Q_DECLARE_METATYPE(desktop::Action)

class HeadlineTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "UTC");
        tzset();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    }

    void saysHowItStandsAndWhatToDo_data()
    {
        using A = Action;
        using P = DaemonPresence;
        using S = Standing;
        using T = Trouble;
        QTest::addColumn<Change>("change");
        QTest::addColumn<Standing>("standing");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("reason"); // a part of it
        QTest::addColumn<Action>("primary");
        QTest::addColumn<Action>("secondary");
        const auto row = [](const char *name, const Change &change, S standing, const char *title,
                             const char *reason, A primary, A secondary = A::None) {
            QTest::newRow(name) << change << standing << QString::fromUtf8(title)
                                << QString::fromUtf8(reason) << primary << secondary;
        };
        const auto up = stateIs(ConnectionUp);
        row("not looked yet", daemonIs(P::Unknown), S::Connecting, "Looking\342\200\246", "",
            A::None);
        row("no bus", daemonIs(P::NoBus), S::DaemonAway, "No system bus", "Nothing on this system",
            A::None);
        row("daemon away", daemonIs(P::Away), S::DaemonAway, "Not connected", "starts it",
            A::Connect, A::CheckUp);
        row("daemon away, link left",
            both(daemonIs(P::Away), [](ConnectionModel &model) { model.isLinkLeft = true; }),
            S::DaemonAway, "Daemon away", "The connection stays", A::CheckUp);
        row("daemon away, the keeper sees the link",
            both(daemonIs(P::Away), keeper(KeeperPhase::connected, "")), S::DaemonAway,
            "Daemon away", "The connection stays", A::CheckUp);
        row("daemon is started",
            both(daemonIs(P::Away),
                [](ConnectionModel &model) { model.pending = Request::Connect; }),
            S::Connecting, "Connecting", "The daemon is started.", A::None);
        row("daemon could not be started",
            both(daemonIs(P::Away), failure(FailureKind::NotStarted)), S::DaemonAway,
            "Not connected", "could not be started", A::Connect, A::CheckUp);
        row("daemon silent", daemonIs(P::Silent), S::DaemonAway, "No answer", "does not answer",
            A::RestartDaemon, A::CheckUp);
        row(
            "offline", [](ConnectionModel &) {}, S::Offline, "Not connected", "", A::Connect);
        row(
            "state not told yet", [](ConnectionModel &model) { model.state.reset(); }, S::Offline,
            "Not connected", "", A::Connect);
        row(
            "asked for", [](ConnectionModel &model) { model.pending = Request::Connect; },
            S::Connecting, "Connecting", "asked for", A::None);
        row(
            "no modem", [](ConnectionModel &model) { model.isModemPlugged = false; }, S::Offline,
            "Not connected", "not set up yet", A::SetUp, A::CheckUp);
        row(
            "new modem",
            [](ConnectionModel &model) {
                model.isModemPlugged = false;
                model.announcedModem = QStringLiteral("M1");
            },
            S::Offline, "Not connected", "A new modem was found: M1.", A::SetUp, A::CheckUp);
        row(
            "built", [](ConnectionModel &model) { model.isBuilding = true; }, S::Connecting,
            "Driver is built", "some minutes", A::ShowBuild);
        row(
            "not built", [](ConnectionModel &model) { model.buildResult = false; }, S::Attention,
            "Not connected", "could not be built", A::ShowBuild, A::Connect);
        row(
            "restarted", [](ConnectionModel &model) { model.isRestarting = true; }, S::Connecting,
            "Modem restarts", "loaded anew", A::None);
        row("attempt", stateIs(1, ConnectingStep::Started), S::Connecting, "Connecting",
            "The provider is called.", A::Cancel);
        row("attempt waits", stateIs(1, ConnectingStep::WaitingForLine), S::Connecting,
            "Connecting", "Waiting for the line", A::Cancel);
        row("attempt ends", stateIs(1, ConnectingStep::Ending), S::Connecting, "Ending",
            "ends as soon as it can", A::None);
        row("connected", up, S::Connected, "Connected", "", A::Disconnect);
        row("connected, built beside",
            both(up, [](ConnectionModel &model) { model.isBuilding = true; }), S::Connected,
            "Connected", "", A::Disconnect);
        row("connected, resolver wrong", both(up, trouble(T::ResolverWrong)), S::Attention,
            "Connected", "names are not resolved", A::Disconnect, A::CheckUp);
        row("connected, foreign link",
            both(up, keeper(KeeperPhase::waiting, KeeperReason::foreignLink)), S::Attention,
            "Connected", "another program", A::Disconnect, A::CheckUp);
        row("connected, limit reached",
            both(up,
                [](ConnectionModel &model) {
                    model.keeper = keeping(KeeperPhase::connected, "");
                    model.keeper->isLimitReached = true;
                }),
            S::Attention, "Connected", "limit is reached", A::Disconnect);
        row("connected, who may not has tried to end it",
            both(up, failure(FailureKind::NotPermitted)), S::Attention, "Connected", "not allowed",
            A::Disconnect, A::SetUp);
        row("connected, the wish to end it was not answered",
            both(up, failure(FailureKind::NoAnswer)), S::Attention, "Connected", "does not answer",
            A::Disconnect, A::CheckUp);
        row("attempt, who may not has tried to end it",
            both(stateIs(1, ConnectingStep::Started), failure(FailureKind::NotPermitted)),
            S::Connecting, "Connecting", "not allowed", A::Cancel, A::SetUp);
        row("refused", trouble(T::AccountRefused), S::Attention, "Not connected",
            "10:59: The provider refused login or password.", A::CheckAccount, A::Connect);
        row("refused, kept",
            both(trouble(T::AccountRefused),
                keeper(KeeperPhase::waiting, KeeperReason::accountRefused, 720)),
            S::Attention, "Not connected", "refused login or password. Next try in 12 min.",
            A::CheckAccount, A::TryNow);
        row("provider silent", trouble(T::ProviderSilent), S::Attention, "Not connected",
            "does not answer", A::CheckLine, A::Connect);
        row("no line", trouble(T::LineNotSynchronised), S::Attention, "Not connected",
            "telephone cable", A::CheckUp, A::Connect);
        row("not up", trouble(T::NotUp), S::Attention, "Not connected", "The check-up tells why",
            A::CheckUp, A::Connect);
        row("not up, the keeper knows why",
            both(trouble(T::NotUp), keeper(KeeperPhase::waiting, KeeperReason::noConcentrator, 5)),
            S::Attention, "Not connected", "Next try in 5 s.", A::CheckLine, A::TryNow);
        row("lost", trouble(T::Lost), S::Attention, "Not connected",
            "10:59: The connection was lost.", A::Connect);
        row("lost, with a reason",
            both(trouble(T::Lost),
                [](ConnectionModel &model) { model.lossReason = QStringLiteral("hung-up"); }),
            S::Attention, "Not connected", "10:59: The provider hung up.", A::Connect);
        row("kept, of before the window", keeper(KeeperPhase::waiting, KeeperReason::hungUp, 30),
            S::Attention, "Not connected", "The provider hung up. Next try in 30 s.", A::TryNow);
        row("kept, next try far away",
            keeper(KeeperPhase::waiting, KeeperReason::accountRefused, 4 * 3600), S::Attention,
            "Not connected", "Next try at 15:00.", A::CheckAccount, A::TryNow);
        row("kept, next try now", keeper(KeeperPhase::waiting, KeeperReason::hungUp, -1),
            S::Attention, "Not connected", "The next try begins now.", A::TryNow);
        row("kept, waits for settings",
            keeper(KeeperPhase::waitingForSettings, KeeperReason::passwordMissing), S::Attention,
            "Not connected", "Now: waiting until the settings are corrected.", A::CheckAccount,
            A::TryNow);
        row("kept, asleep", keeper(KeeperPhase::asleep, KeeperReason::sleep), S::Attention,
            "Not connected", "Now: asleep", A::TryNow);
        row(
            "not wanted",
            [](ConnectionModel &model) {
                model.keeper = keeping(KeeperPhase::idle, KeeperReason::user);
                model.keeper->isWanted = false;
            },
            S::Offline, "Not connected", "", A::Connect);
        row(
            "not kept",
            [](ConnectionModel &model) {
                model.keeper = keeping(KeeperPhase::off, "");
                model.keeper->isKeeping = false;
            },
            S::Offline, "Not connected", "", A::Connect);
        row("not allowed", failure(FailureKind::NotPermitted), S::Attention, "Not connected",
            "not allowed", A::SetUp);
        row("the keeper hangs",
            both(keeper(KeeperPhase::waiting, KeeperReason::hungUp),
                failure(FailureKind::KeeperNoAnswer)),
            S::Attention, "Not connected", "The keeper does not answer.", A::CheckUp, A::TryNow);
        for (const FailureKind kind : {FailureKind::NoBus, FailureKind::NoDaemon,
                 FailureKind::NotStarted, FailureKind::NoAnswer, FailureKind::DaemonError,
                 FailureKind::DaemonRefused, FailureKind::FileUnreadable}) {
            QTest::newRow(qPrintable(QStringLiteral("failure %1").arg(int(kind))))
                << failure(kind) << S::Attention << QStringLiteral("Not connected")
                << requestFailureText({kind, QStringLiteral("detail")}) << A::Connect << A::None;
        }
    }
    void saysHowItStandsAndWhatToDo()
    {
        QFETCH(Change, change);
        QFETCH(Standing, standing);
        QFETCH(QString, title);
        QFETCH(QString, reason);
        QFETCH(Action, primary);
        QFETCH(Action, secondary);
        ConnectionModel model = offline();
        change(model);
        const Headline headline = headlineOf(model, noon);
        QCOMPARE(headline.standing, standing);
        QCOMPARE(headline.title, title);
        QVERIFY2(headline.reason.contains(reason), qPrintable(headline.reason));
        QCOMPARE(headline.reason.isEmpty(), reason.isEmpty());
        QCOMPARE(headline.primary, primary);
        QCOMPARE(headline.secondary, secondary);
    }

    void everyReasonOfTheKeeperIsSaidWithAWayOut()
    {
        for (const char *reason : KeeperReason::all) {
            ConnectionModel model = offline();
            model.keeper = keeping(KeeperPhase::waiting, reason);
            const Headline headline = headlineOf(model, noon);
            QVERIFY2(!headline.reason.isEmpty(), reason);
            QVERIFY2(headline.primary != Action::None, reason);
        }
    }

    void everyPhaseOfTheKeeperCanBeShown()
    {
        for (const char *phase : KeeperPhase::all) {
            for (const int state : {0, 1, 2}) {
                ConnectionModel model = offline();
                model.state = state;
                model.keeper = keeping(phase, "");
                QVERIFY2(!headlineOf(model, noon).title.isEmpty(), phase);
            }
        }
    }

    void whatIsWaitedForSaysHowLongAlready()
    {
        ConnectionModel model = offline();
        stateIs(1, ConnectingStep::WaitingForLine)(model);
        QCOMPARE(headlineOf(model, noon + 1000).reason,
            QStringLiteral("Waiting for the line to synchronise."));
        QCOMPARE(headlineOf(model, noon + 12000).reason,
            QStringLiteral("Waiting for the line to synchronise. 12 s so far."));
    }

    void theTimeConnectedIsSaid()
    {
        ConnectionModel model = offline();
        model.state = ConnectionUp;
        model.upSince = noon - (2 * 3600 + 14 * 60) * 1000;
        QCOMPARE(headlineOf(model, noon).reason, QStringLiteral("For 2 h 14 min."));
    }

    void theLossBeforeIsSaidForADayUnlessSomethingIsTheMatter()
    {
        ConnectionModel model = offline();
        model.state = ConnectionUp;
        model.upSince = noon - (2 * 3600 + 14 * 60) * 1000;
        model.lastLoss = Loss{noon / 1000 - (2 * 3600 + 14 * 60) - 41, 41};
        const QString both
            = QStringLiteral("For 2 h 14 min. The connection was lost at 08:45, back after 41 s.");
        QCOMPARE(headlineOf(model, noon).reason, both);
        QVERIFY(headlineOf(model, noon).standing == Standing::Connected);
        QCOMPARE(headlineOf(model, noon + 22 * 3600 * 1000).reason, QStringLiteral("For 1 d 0 h."));
        model.trouble = Trouble::ResolverWrong;
        QVERIFY(!headlineOf(model, noon).reason.contains(QLatin1String("lost")));
    }

    void durationsAreSaidAsPeopleDo()
    {
        QCOMPARE(durationText(0), QStringLiteral("0 s"));
        QCOMPARE(durationText(59), QStringLiteral("59 s"));
        QCOMPARE(durationText(60), QStringLiteral("1 min"));
        QCOMPARE(durationText(3600), QStringLiteral("1 h 0 min"));
        QCOMPARE(durationText(86400), QStringLiteral("1 d 0 h"));
        QCOMPARE(durationText(3 * 86400 + 5 * 3600), QStringLiteral("3 d 5 h"));
    }

    void everyActionHasItsOwnWords()
    {
        QSet<QString> words;
        for (int action = int(Action::Connect); action <= int(Action::RestartDaemon); ++action) {
            words.insert(actionText(Action(action)));
        }
        QVERIFY(!words.contains(QString()));
        QCOMPARE(words.size(), int(Action::RestartDaemon) - int(Action::None));
    }
};

QTEST_APPLESS_MAIN(HeadlineTest)
#include "headline_test.moc"
