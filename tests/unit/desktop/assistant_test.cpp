// SPDX-License-Identifier: MIT
// What the assistant knows and says, without its windows.
#include "desktop/assistant/connect_progress.h"
#include "desktop/assistant/draft.h"
#include "desktop/assistant/modem_advice.h"
#include "desktop/assistant/permission.h"

#include "dbus/contract.h"
#include "test_table.h"

#include <QTest>

using namespace desktop;

namespace {

const UsbId speedtouch{0x06B9, 0x4061};
const UsbId eagle{0x1110, 0x9041};
const UsbId eagleBefore{0x1110, 0x9042};

UsbModem modem(UsbId id)
{
    return {id, familyOf(id), QStringLiteral("1-1")};
}

/// A modem that was plugged in before the daemon began; nothing else is wrong.
ModemFacts plugged(UsbId id = speedtouch)
{
    ModemFacts facts;
    facts.system.modems = {modem(id)};
    facts.system.kernel = QStringLiteral("6.1.0");
    facts.system.driver = QString::fromLatin1(familyOf(id)->driver);
    facts.system.driverModule = facts.system.atmModule = facts.system.usbatmModule
        = Module::Available;
    facts.system.firmware = QStringLiteral("x.fw");
    facts.system.firmwarePackage = QStringLiteral("firmware-x");
    facts.system.areSettingsReadable = true;
    facts.daemon = DaemonPresence::There;
    facts.isSeen = false;
    return facts;
}

using Change = std::function<void(ModemFacts &)>;

ConnectionModel modelThat(const std::function<void(ConnectionModel &)> &change)
{
    ConnectionModel model;
    model.daemon = DaemonPresence::There;
    model.state = ConnectionDown;
    change(model);
    return model;
}

QString picture(const ConnectProgress &progress)
{
    QString text;
    for (const Progress stage : progress.stages) {
        text += QLatin1Char(" .~+x"[int(stage) + 1]);
    }
    return text;
}

} // namespace

Q_DECLARE_METATYPE(Change)
Q_DECLARE_METATYPE(ModemFacts)
Q_DECLARE_METATYPE(ModemStanding)
Q_DECLARE_METATYPE(PermissionFacts)
Q_DECLARE_METATYPE(Permission)
Q_DECLARE_METATYPE(ConnectionModel)
Q_DECLARE_METATYPE(DeedKind)

class AssistantTest : public QObject
{
    Q_OBJECT

private slots:
    void eachPageIsFollowedByTheNextAndLedBackFrom()
    {
        for (size_t place = 0; place < allSteps.size(); ++place) {
            const AssistantStep step = allSteps.at(place);
            QCOMPARE(stepAfter(step).has_value(), place + 1 < allSteps.size());
            QCOMPARE(stepBefore(step).has_value(), place > 0);
            if (const auto after = stepAfter(step)) {
                QVERIFY(stepBefore(*after) == step);
            }
            QVERIFY(stepNamed(stepWord(step)) == step);
        }
        QVERIFY(!stepNamed(QString()));
        QVERIFY(!stepNamed(QStringLiteral("Modem")));
    }

    void whatWasEnteredIsHandedOver()
    {
        Draft draft;
        draft.country = QStringLiteral("IT");
        draft.provider = QStringLiteral("TIM (Alice)");
        draft.protocol = QStringLiteral("PPPoE");
        draft.vpi = 8;
        draft.vci = 35;
        draft.login = QStringLiteral("ü\"\\@isp");
        draft.password = QStringLiteral("pass word\n");
        const auto found = handOverFrom(handOverText({AssistantStep::Account, draft}));
        QVERIFY(found);
        QVERIFY(found->step == AssistantStep::Account);
        QCOMPARE(found->draft.login, draft.login);
        QCOMPARE(found->draft.password, draft.password);
        QCOMPARE(found->draft.vci, 35);
        QVERIFY(!handOverFrom(handOverText({{}, draft}))->step);
    }

    void foreignBytesAreNoHandOver()
    {
        const QByteArray good = handOverText({AssistantStep::Modem, {}});
        for (const QByteArray &bytes : {QByteArray(), QByteArray("x"), good.left(good.size() - 1),
                 good + 'x', QByteArray(64, '\xff'), QByteArray(1 << 16, '\0')}) {
            QVERIFY(!handOverFrom(bytes));
        }
    }

    void whoMayAndWhoHasToDoWhat_data()
    {
        const auto row = table<PermissionFacts, Permission>("facts", "permission");
        const auto yes = Answer::Yes;
        const auto no = Answer::No;
        const auto unknown = Answer::Unknown;
        // The bus, root, group, member, member in this process.
        row("the bus lets through", {yes, false, true, false, false}, Permission::Allowed);
        row("root", {unknown, true, false, false, false}, Permission::Allowed);
        row("no group", {no, false, false, false, false}, Permission::NoGroup);
        row("no member", {no, false, true, false, false}, Permission::Join);
        row("no member, no daemon", {unknown, false, true, false, false}, Permission::Join);
        row("a member since now", {no, false, true, true, false}, Permission::StartAnew);
        row("since now, no daemon", {unknown, false, true, true, false}, Permission::StartAnew);
        row("a member, no daemon", {unknown, false, true, true, true}, Permission::Allowed);
        row("by sg only", {unknown, false, true, false, true}, Permission::Allowed);
        row("refused all the same", {no, false, true, true, true}, Permission::RefusedMember);
    }

    void whoMayAndWhoHasToDoWhat()
    {
        QFETCH(PermissionFacts, facts);
        QFETCH(Permission, permission);
        QVERIFY(permissionOf(facts) == permission);
        QVERIFY(!permissionText(permission).isEmpty());
    }

    void theModemPageSaysWhatIsTheMatter_data()
    {
        QTest::addColumn<ModemFacts>("facts");
        QTest::addColumn<ModemStanding>("standing");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, ModemStanding standing, const char *text,
                             const Change &change, UsbId id = speedtouch) {
            ModemFacts facts = plugged(id);
            change(facts);
            QTest::newRow(name) << facts << standing << QString::fromLatin1(text);
        };
        row("it was there before the daemon", ModemStanding::PlugAnew, "this one was there before",
            [](ModemFacts &) {});
        row("none", ModemStanding::NoModem, "No modem",
            [](ModemFacts &facts) { facts.system.modems.clear(); });
        row("none, no daemon", ModemStanding::NoModem, "No modem", [](ModemFacts &facts) {
            facts.system.modems.clear();
            facts.daemon = DaemonPresence::Away;
        });
        row("just plugged in", ModemStanding::Settling, "just plugged in",
            [](ModemFacts &facts) { facts.pluggedForMs = 3000; });
        row("plugged in and never announced", ModemStanding::PlugAnew, "plug it in again",
            [](ModemFacts &facts) { facts.pluggedForMs = 60000; });
        row("announced", ModemStanding::Announced, "was found",
            [](ModemFacts &facts) { facts.announced = QStringLiteral("A modem"); });
        row("announced before it is seen here", ModemStanding::Announced, "A modem was found",
            [](ModemFacts &facts) {
                facts.announced = QStringLiteral("A modem");
                facts.system.modems.clear();
            });
        row("announced without its driver", ModemStanding::Announced, "was found",
            [](ModemFacts &facts) {
                facts.announced = QStringLiteral("A modem");
                facts.system.driverModule = Module::Missing;
            });
        row(
            "announced before its firmware", ModemStanding::BeforeFirmware, "its firmware",
            [](ModemFacts &facts) { facts.announced = QStringLiteral("A modem"); }, eagleBefore);
        row(
            "about to get its firmware", ModemStanding::Settling, "some seconds",
            [](ModemFacts &facts) { facts.pluggedForMs = 2000; }, eagleBefore);
        row("no driver", ModemStanding::NoDriver, "no driver speedtch", [](ModemFacts &facts) {
            facts.system.driverModule = Module::Missing;
            facts.system.configured = speedtouch;
        });
        row(
            "no driver, so no firmware", ModemStanding::NoDriver, "no driver ueagle-atm",
            [](ModemFacts &facts) { facts.system.driverModule = Module::Missing; }, eagleBefore);
        row("its driver is built", ModemStanding::DriverIsBuilt, "built",
            [](ModemFacts &facts) { facts.system.isCompiling = true; });
        row("in use and seen", ModemStanding::Ready, "is ready", [](ModemFacts &facts) {
            facts.system.configured = speedtouch;
            facts.isSeen = true;
        });
        row("in use, not seen", ModemStanding::NotSeen, "does not find it",
            [](ModemFacts &facts) { facts.system.configured = speedtouch; });
        row("in use, just plugged in", ModemStanding::Settling, "just", [](ModemFacts &facts) {
            facts.system.configured = speedtouch;
            facts.pluggedForMs = 1000;
        });
        row("in use, not asked yet", ModemStanding::Looking, "Looking", [](ModemFacts &facts) {
            facts.system.configured = speedtouch;
            facts.isSeen.reset();
        });
        row("another one in use", ModemStanding::PlugAnew, "plug it in again",
            [](ModemFacts &facts) { facts.system.configured = eagle; });
        row("no daemon", ModemStanding::DaemonAway, "is not running",
            [](ModemFacts &facts) { facts.daemon = DaemonPresence::Away; });
        row("no bus", ModemStanding::DaemonAway, "is not running",
            [](ModemFacts &facts) { facts.daemon = DaemonPresence::NoBus; });
        row("a silent daemon", ModemStanding::DaemonSilent, "does not answer",
            [](ModemFacts &facts) { facts.daemon = DaemonPresence::Silent; });
        row("a silent daemon that had announced", ModemStanding::DaemonSilent, "does not answer",
            [](ModemFacts &facts) {
                facts.daemon = DaemonPresence::Silent;
                facts.announced = QStringLiteral("A modem");
            });
    }

    void theModemPageSaysWhatIsTheMatter()
    {
        QFETCH(ModemFacts, facts);
        QFETCH(ModemStanding, standing);
        QFETCH(QString, text);
        const ModemAdvice advice = modemAdviceOf(facts);
        QCOMPARE(int(advice.standing), int(standing));
        QVERIFY2(advice.text.contains(text), qPrintable(advice.text));
        QVERIFY2(!advice.text.contains(QLatin1Char('%')), qPrintable(advice.text));
    }

    void whatHelpsTheModemIsNamed()
    {
        ModemFacts facts = plugged(eagleBefore);
        QVERIFY(modemAdviceOf(facts).remedy.kind == RemedyKind::InstallFirmwarePackage);
        facts.daemon = DaemonPresence::Away;
        facts.system.modems = {modem(speedtouch)};
        QVERIFY(modemAdviceOf(facts).remedy.kind == RemedyKind::StartDaemon);
        facts.system.driverModule = Module::Missing;
        facts.system.hasDriverSource = true;
        QVERIFY(modemAdviceOf(facts).remedy.kind == RemedyKind::InstallHeaders);
    }

    void ofSeveralModemsTheOneInUseCounts()
    {
        const QList<UsbModem> both{modem(eagleBefore), modem(speedtouch), modem(eagle)};
        QVERIFY(modemThatCounts(both, eagle)->id.product == eagle.product);
        QVERIFY(modemThatCounts(both, {0, 0})->id.product == speedtouch.product);
        QVERIFY(modemThatCounts({modem(eagleBefore)}, {0, 0})->id.product == eagleBefore.product);
        QVERIFY(!modemThatCounts({}, eagle));
    }

    void connectingIsTickedOff_data()
    {
        QTest::addColumn<ConnectionModel>("model");
        QTest::addColumn<QString>("stages");
        QTest::addColumn<DeedKind>("deed");
        const auto row = [](const char *name, const char *stages, DeedKind deed,
                             const std::function<void(ConnectionModel &)> &change) {
            QTest::newRow(name) << modelThat(change) << QString::fromLatin1(stages) << deed;
        };
        const DeedKind none = DeedKind::None;
        row("at rest", "+...", none, [](auto &) {});
        row("no daemon yet", "....", none, [](auto &m) { m.daemon = DaemonPresence::Away; });
        row("the daemon is started", "~...", none, [](auto &m) {
            m.daemon = DaemonPresence::Away;
            m.pending = Request::Connect;
        });
        row("waiting for the line", "+~..", none, [](auto &m) {
            m.state = ConnectionConnecting;
            m.step = ConnectingStep::WaitingForLine;
        });
        row("calling", "++~.", none, [](auto &m) {
            m.state = ConnectionConnecting;
            m.step = ConnectingStep::Started;
        });
        row("up without an address", "+++~", none, [](auto &m) { m.state = ConnectionUp; });
        row("up", "++++", none, [](auto &m) {
            m.state = ConnectionUp;
            m.address = QStringLiteral("192.0.2.1");
        });
        row("no line", "+x..", DeedKind::ShowHow,
            [](auto &m) { m.trouble = Trouble::LineNotSynchronised; });
        row("no provider", "++x.", DeedKind::OpenAssistant,
            [](auto &m) { m.trouble = Trouble::ProviderSilent; });
        row("no modem", "+x..", DeedKind::OpenAssistant, [](auto &m) {
            m.trouble = Trouble::NotUp;
            m.isModemPlugged = false;
        });
        row("a wrong password", "++x.", DeedKind::OpenAssistant,
            [](auto &m) { m.trouble = Trouble::AccountRefused; });
        row("something else", "++x.", DeedKind::OpenPage,
            [](auto &m) { m.trouble = Trouble::NotUp; });
        row("the next attempt after that", "++~.", none, [](auto &m) {
            m.trouble = Trouble::NotUp;
            m.pending = Request::Connect;
        });
        row("a frozen daemon", "x...", DeedKind::Rights,
            [](auto &m) { m.daemon = DaemonPresence::Silent; });
        row("not allowed", "x...", DeedKind::OpenAssistant, [](auto &m) {
            m.requestFailure = {FailureKind::NotPermitted, QString()};
        });
        row("a frozen keeper", "+x..", DeedKind::Rights, [](auto &m) {
            m.requestFailure = {FailureKind::KeeperNoAnswer, QString()};
        });
        row("not to be started", "x...", DeedKind::StartDaemon, [](auto &m) {
            m.daemon = DaemonPresence::Away;
            m.requestFailure = {FailureKind::NotStarted, QString()};
        });
    }

    void connectingIsTickedOff()
    {
        QFETCH(ConnectionModel, model);
        QFETCH(QString, stages);
        QFETCH(DeedKind, deed);
        const ConnectProgress progress = connectProgressOf(model, std::nullopt, 0);
        QCOMPARE(picture(progress), stages);
        QVERIFY(progress.deed.kind == deed);
        QCOMPARE(progress.cause.isEmpty(), deed == DeedKind::None);
    }

    void aLineThatTheKernelSeesDownIsWaitedFor()
    {
        const ConnectionModel model = modelThat([](ConnectionModel &m) {
            m.state = ConnectionConnecting;
            m.step = ConnectingStep::Started;
        });
        QCOMPARE(picture(connectProgressOf(model, false, 0)), QStringLiteral("+~.."));
        QCOMPARE(picture(connectProgressOf(model, true, 0)), QStringLiteral("++~."));
    }
};

QTEST_GUILESS_MAIN(AssistantTest)
#include "assistant_test.moc"
