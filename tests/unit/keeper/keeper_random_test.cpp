// SPDX-License-Identifier: MIT
// The keeper against a world in which anything happens at any moment: what must never be, never is,
// and when the world has calmed down the link is as the wish is.
#include "keeper_story.h"

#include <QtTest>
#include <random>

using namespace keeper;
using Kind = Action::Kind;

namespace {

/// Daemon, modem and provider, as far as they show; and the keeper among them.
class World
{
public:
    explicit World(unsigned seed)
        : m_random(seed)
    {
        story.tell(event::DaemonAppeared{false, true, false, false});
        look();
    }

    /// Something happens.
    void happen()
    {
        story.now.dice = double(roll(101)) / 100;
        switch (roll(18)) {
        case 0:
            userConnects();
            break;
        case 1:
            userDisconnects();
            break;
        case 2:
            loseLink();
            break;
        case 3:
            provider = Provider(roll(4));
            break;
        case 4:
            plug(roll(2) == 0);
            break;
        case 5:
            restartDaemon();
            break;
        case 6:
            sleep();
            break;
        case 7:
            story.tell(event::KeepSet{roll(4) != 0});
            break;
        case 8:
            story.tell(event::LineSeen{isPlugged, isLineUp});
            break;
        case 9:
            isLineUp = roll(3) != 0;
            break;
        case 10:
            hasForeign = roll(4) == 0;
            look();
            break;
        case 11:
            story.tell(event::AccountChanged());
            break;
        case 12:
            story.tell(event::Tick());
            break;
        case 13:
            story.tell(roll(2) == 0 ? Event(event::BuildBegan()) : Event(event::BuildEnded()));
            break;
        default:
            pass(roll(60'000));
        }
        serve();
    }

    /// Everything works again, and a day passes.
    void calmDown()
    {
        provider = Provider::Fine;
        isLineUp = true;
        hasForeign = false;
        plug(true);
        if (!isDaemonThere) {
            restartDaemon();
        }
        story.tell(event::KeepSet{true});
        story.tell(event::BuildEnded());
        look();
        for (int i = 0; i < 3000; ++i) {
            serve();
            pass(30'000);
            story.tell(event::LineSeen{isPlugged, isLineUp});
        }
    }

    bool isUp() const { return isLinkUp; }
    QString fault; ///< what must never be and was; empty

    Story story;
    bool isConnectionWanted = false; ///< by the user

private:
    enum class Provider
    {
        Fine,
        Away,
        Refuses,
        HangsUp,
    };

    int roll(int sides) { return int(m_random() % unsigned(sides)); }

    void blame(bool isBad, const char *what)
    {
        if (isBad && fault.isEmpty()) {
            fault = QString::fromLatin1(what);
        }
    }

    /// Lets time pass in both worlds.
    void pass(qint64 ms)
    {
        while (ms > 0) {
            const qint64 step = qMin(ms, qint64(1'000));
            story.wait(step);
            ms -= step;
            if (isAttempting && story.now.ms >= attemptEnd) {
                endAttempt();
            }
            serve();
        }
    }

    void look()
    {
        story.tell(event::LinkSeen{isLinkUp ? Link::Up : Link::Gone, hasForeign, Cause::HungUp});
    }

    /// Carries out what the keeper wants.
    void serve()
    {
        while (!story.actions.isEmpty()) {
            const Action action = story.actions.takeFirst();
            switch (action.kind) {
            case Kind::AskDaemon:
                answerQuestion();
                break;
            case Kind::Connect:
                takeRequest();
                break;
            case Kind::EndLink:
                blame(!story.state.memory.keep, "ended a link although switched off");
                blame(isConnectionWanted && !story.state.asleepUntil, "ended a wanted link");
                terminate();
                story.tell(event::EndAnswered());
                break;
            case Kind::RestartModem:
                blame(!isPlugged, "restarted a modem that is not there");
                blame(hasForeign, "restarted the modem beside somebody else's link");
                terminate();
                story.tell(event::RestartBegan());
                story.tell(event::RestartEnded());
                break;
            case Kind::LookAtLinks:
                look();
                break;
            case Kind::LetSleep:
                isHeld = false;
                break;
            case Kind::HoldSleep:
            case Kind::BeginSession:
            case Kind::EndSession:
            case Kind::TellLoss:
            case Kind::NoteAttempt:
                break;
            }
        }
    }

    void answerQuestion()
    {
        if (!isDaemonThere) {
            story.tell(event::DaemonAnswered{std::nullopt, false});
            return;
        }
        const bool seemsUp = isLinkUp || hasForeign;
        story.tell(event::DaemonAnswered{isAttempting ? 1 : seemsUp ? 0 : 2, false});
    }

    void takeRequest()
    {
        blame(!isConnectionWanted, "connected although nobody wants it");
        blame(!story.state.memory.keep, "connected although switched off");
        blame(isLinkUp, "asked for a second session");
        blame(isAttempting, "asked for a second attempt");
        blame(bool(story.state.asleepUntil), "connected on the way to sleep");
        blame(!isDaemonThere, "asked a daemon that is not there");
        story.tell(event::RequestAnswered{isDaemonThere});
        beginAttempt();
    }

    void beginAttempt()
    {
        if (isAttempting || !isDaemonThere) {
            return;
        }
        isAttempting = true;
        attemptEnd = story.now.ms + 2'000 + roll(10'000);
        story.tell(event::AttemptBegan());
        if (!isLineUp) {
            attemptEnd = story.now.ms + 35'000;
            story.tell(event::LineAwaited());
        }
    }

    void endAttempt()
    {
        isAttempting = false;
        if (isLinkUp) {
            story.tell(event::AttemptEnded{0, Cause::None});
            return;
        }
        if (!isLineUp || !isPlugged) {
            story.tell(event::AttemptTold{Cause::LineNotSynchronised});
            story.tell(event::AttemptEnded{2, Cause::Unknown});
        } else if (provider == Provider::Fine) {
            isLinkUp = true;
            story.tell(event::AttemptEnded{0, Cause::None});
            look();
        } else {
            const Cause cause = provider == Provider::Away ? Cause::NoConcentrator
                : provider == Provider::Refuses            ? Cause::AccountRefused
                                                           : Cause::PeerTerminated;
            story.tell(event::AttemptEnded{2, cause});
        }
    }

    void terminate()
    {
        if (!isDaemonThere) {
            return;
        }
        story.tell(event::Terminated());
        const bool wasUp = isLinkUp;
        isLinkUp = false;
        if (wasUp) {
            look();
        }
    }

    void userConnects()
    {
        if (!isDaemonThere || isAttempting) {
            return; // it would be dropped
        }
        if (!isLinkUp) {
            isConnectionWanted = true;
            beginAttempt();
        }
    }

    void userDisconnects()
    {
        if (isDaemonThere) {
            isConnectionWanted = false;
            terminate();
            pass(2'500); // nothing excuses it
        }
    }

    void loseLink()
    {
        if (isLinkUp) {
            isLinkUp = false;
            look();
        }
    }

    void plug(bool isIn)
    {
        if (isIn == isPlugged) {
            return;
        }
        isPlugged = isIn;
        if (isIn) {
            story.tell(event::ModemPlugged());
        } else if (isDaemonThere) {
            story.tell(event::Terminated());
            story.tell(event::ModemUnplugged());
            loseLink();
        }
    }

    void restartDaemon()
    {
        if (isDaemonThere) {
            story.tell(event::DaemonGone());
            isAttempting = false;
        } else {
            story.tell(event::DaemonAppeared{false, isPlugged, false, false});
        }
        isDaemonThere = !isDaemonThere;
    }

    void sleep()
    {
        isHeld = true;
        story.tell(event::SleepComing());
        serve();
        story.wait(1'000);
        serve();
        blame(isHeld, "held up sleep for longer than a second");
        story.wait(roll(10) * 60'000);
        story.tell(event::Woke());
    }

    std::mt19937 m_random;
    Provider provider = Provider::Fine;
    bool isDaemonThere = true;
    bool isPlugged = true;
    bool isLineUp = true;
    bool hasForeign = false;
    bool isLinkUp = false;
    bool isAttempting = false;
    bool isHeld = false;
    qint64 attemptEnd = 0;
};

} // namespace

class RandomTest : public QObject
{
    Q_OBJECT

private slots:
    void whateverHappensItEndsWhereTheWishIs()
    {
        for (unsigned seed = 1; seed <= 300; ++seed) {
            World world(seed);
            for (int i = 0; i < 120 && world.fault.isEmpty(); ++i) {
                world.happen();
            }
            world.calmDown();
            const QByteArray where = "seed " + QByteArray::number(seed);
            QVERIFY2(world.fault.isEmpty(), where + ": " + world.fault.toLatin1());
            QVERIFY2(world.isUp() == world.isConnectionWanted, where);
            QVERIFY2(isWanted(world.story.state) == world.isConnectionWanted, where);
        }
    }

    /// All states that differ in what matters to an action, whether they can be reached or not, and
    /// every event in each of them.
    void everyEventInEveryStateKeepsTheRules()
    {
        const QVector<Event> events = everyEvent();
        const Moment now{1'000'000, 1'800'000'000, 0.5};
        qint64 steps = 0;
        for (const State &state : everyState(now)) {
            for (const Event &what : events) {
                const Decision decision = decide(state, what, now);
                QVERIFY2(areAllowed(decision.actions, state, decision.state, what),
                    qPrintable(QStringLiteral("step %1").arg(steps)));
                QCOMPARE(decide(decision.state, event::Tick(), now).actions.size(), 0);
                const std::optional<qint64> next = nextTick(decision.state, now.ms);
                QVERIFY(!next || *next > now.ms);
                ++steps;
            }
        }
        QVERIFY(steps > 1'000'000);
    }

    /// Events that fit no world at all, in any order: no deadline may stay in the past, no question
    /// may be asked twice.
    void nonsenseDoesNotConfuseIt()
    {
        std::mt19937 random(7);
        Memory memory;
        memory.isWanted = true;
        for (int run = 0; run < 300; ++run) {
            Story story(memory);
            for (int i = 0; i < 300; ++i) {
                const int before = story.count(Kind::Connect);
                const bool wasAllowed = isWanted(story.state) && story.state.memory.keep
                    && !story.state.isInSession && !story.state.asleepUntil
                    && story.state.task == Task::Asking && story.state.isDaemonThere;
                story.tell(anything(random));
                QVERIFY(story.count(Kind::Connect) == before || wasAllowed);
                const std::optional<qint64> next = nextTick(story.state, story.now.ms);
                QVERIFY(!next || *next > story.now.ms);
                story.wait(qint64(random() % 4000));
            }
        }
    }

private:
    static QVector<Event> everyEvent()
    {
        QVector<Event> events{event::DaemonGone{}, event::AttemptBegan{}, event::LineAwaited{},
            event::Terminated{}, event::ModemPlugged{}, event::ModemUnplugged{},
            event::RestartBegan{}, event::RestartEnded{}, event::BuildBegan{}, event::BuildEnded{},
            event::AccountChanged{}, event::SettingsChanged{}, event::EndAnswered{},
            event::SleepComing{}, event::Woke{}, event::ConnectAsked{}, event::Tick{},
            event::LineSeen{true, true}, event::LineSeen{false, std::nullopt},
            event::DaemonAppeared{true, true, false, false},
            event::DaemonAppeared{false, true, false, true}, event::DaemonAnswered{},
            event::RequestAnswered{true}, event::RequestAnswered{false}, event::KeepSet{true},
            event::KeepSet{false}, event::AttemptTold{Cause::AccountRefused}};
        for (const Link link : {Link::Gone, Link::Bare, Link::Up}) {
            events.append(event::LinkSeen{link, false, Cause::HungUp});
            events.append(event::LinkSeen{link, false, Cause::Unplugged});
        }
        for (const int state : {0, 1, 2}) {
            events.append(event::DaemonAnswered{state, false});
            events.append(event::AttemptEnded{state, Cause::NoConcentrator});
        }
        return events;
    }

    static QVector<State> everyState(const Moment &now)
    {
        QVector<State> states;
        for (int flags = 0; flags < 512; ++flags) {
            for (const Task task : {Task::None, Task::Asking, Task::Requested, Task::Running}) {
                for (const Link link : {Link::Gone, Link::Bare, Link::Up}) {
                    for (const Pause pause :
                        {Pause::None, Pause::Unanswered, Pause::Refused, Pause::Settings}) {
                        for (const Modem modem : {Modem::There, Modem::Gone}) {
                            State state;
                            state.memory.keep = (flags & 1) == 0;
                            state.memory.isWanted = (flags & 2) == 0;
                            state.isDaemonThere = (flags & 4) == 0;
                            state.isInSession = (flags & 8) != 0;
                            state.isUnwanted = state.isInSession && (flags & 16) != 0;
                            state.isThreadRunning = (flags & 16) != 0;
                            state.hasForeignLink = (flags & 32) != 0;
                            if ((flags & 64) != 0) {
                                state.asleepUntil = now.ms + 100'000;
                                state.isSleepHeld = true;
                                state.letSleepAt = now.ms + 500;
                            }
                            if ((flags & 128) != 0) {
                                state.termination = Termination{now.ms - 100, true};
                            }
                            state.isBuilding = (flags & 256) != 0;
                            state.isLinkKnown = true;
                            state.task = task;
                            state.taskUntil = now.ms + 3000;
                            state.link = link;
                            state.bareSince = now.ms - 500;
                            state.pause = pause;
                            state.modem = modem;
                            state.nextAttempt = pause == Pause::None ? now.ms : now.ms + 7000;
                            states.append(state);
                        }
                    }
                }
            }
        }
        return states;
    }

    static bool mayAct(const State &state) { return state.memory.keep && state.isDaemonThere; }

    static bool areAllowed(
        const QVector<Action> &actions, const State &before, const State &after, const Event &what)
    {
        int attempts = 0;
        for (const Action &action : actions) {
            switch (action.kind) {
            case Kind::Connect:
                if (!std::holds_alternative<event::DaemonAnswered>(what)
                    || before.task != Task::Asking) {
                    return false;
                }
                [[fallthrough]];
            case Kind::AskDaemon:
                ++attempts;
                if (!mayAct(after) || !isWanted(after) || after.isInSession
                    || after.link == Link::Up || after.isThreadRunning || after.asleepUntil
                    || after.isBuilding || after.modem == Modem::Gone
                    || after.pause == Pause::Settings) {
                    return false;
                }
                break;
            case Kind::EndLink:
                if (!mayAct(after) || after.link != Link::Up
                    || !(after.isUnwanted || (after.asleepUntil && !after.hasForeignLink))) {
                    return false;
                }
                break;
            case Kind::RestartModem:
                if (!mayAct(after) || after.hasForeignLink) {
                    return false;
                }
                break;
            case Kind::LookAtLinks:
            case Kind::HoldSleep:
            case Kind::LetSleep:
            case Kind::BeginSession:
            case Kind::EndSession:
            case Kind::TellLoss:
            case Kind::NoteAttempt:
                break;
            }
        }
        return attempts <= 1;
    }

    static Event anything(std::mt19937 &random)
    {
        const auto flip = [&random] { return random() % 2 == 0; };
        const auto cause = [&random] { return Cause(random() % 27); };
        const QVector<Event> all{event::DaemonAppeared{flip(), flip(), flip(), flip()},
            event::DaemonGone{}, event::LinkSeen{Link(random() % 3), flip(), cause(), flip()},
            event::LineSeen{flip(), flip()}, event::AttemptBegan{}, event::LineAwaited{},
            event::AttemptTold{cause()}, event::AttemptEnded{int(random() % 3), cause()},
            event::Terminated{}, event::ModemPlugged{}, event::ModemUnplugged{},
            event::RestartBegan{}, event::RestartEnded{}, event::BuildBegan{}, event::BuildEnded{},
            event::AccountChanged{}, event::SettingsChanged{},
            event::DaemonAnswered{int(random() % 3), flip()}, event::RequestAnswered{flip()},
            event::EndAnswered{}, event::SleepComing{}, event::Woke{}, event::KeepSet{flip()},
            event::ConnectAsked{}, event::Tick{}};
        return all.at(int(random() % unsigned(all.size())));
    }
};

QTEST_APPLESS_MAIN(RandomTest)
#include "keeper_random_test.moc"
