// SPDX-License-Identifier: MIT
// The judgements of the check-up, fact by fact, in the words of this program.
#include "client/doctor_checks.h"
#include "ctl/screen/remedy_text.h"

#include <QTest>
#include <functional>

namespace {

SeenFile file(const char *path, const QByteArray &content, unsigned mode = 0600)
{
    return {QString::fromLatin1(path), true, mode, 0, content};
}

/// A system on which nothing is wrong.
Facts soundFacts()
{
    Facts facts;
    facts.isBusThere = facts.isDaemonRunning = facts.doesDaemonAnswer = true;
    facts.isHalAnswering = facts.isUserAllowed = facts.doesDaemonSeeModem = Answer::Yes;
    facts.hasGroup = facts.isMember = facts.hasPolicy = facts.areSettingsReadable = true;
    facts.configured = {0x0572, 0xCAFE};
    facts.modems = {{facts.configured, familyOf(facts.configured), QStringLiteral("1-1")}};
    facts.kernel = QStringLiteral("6.1.0");
    facts.driver = QStringLiteral("cxacru");
    facts.driverModule = facts.atmModule = facts.usbatmModule = Module::Loaded;
    facts.pppModule = facts.protocolModule = facts.bridgeModule = Module::Loaded;
    facts.line = LineStatus{Line::Up, 8128, 832, QString()};
    facts.protocol = QStringLiteral("PPPoE");
    facts.vpi = QStringLiteral("8");
    facts.vci = QStringLiteral("35");
    facts.hasPppd = facts.hasPppDevice = facts.hasBridgeTool = facts.hasShippedPeers = true;
    facts.bridgeTool = QStringLiteral("/opt/norvix/bin/br2684ctl_amd64");
    facts.peer = file("/etc/ppp/peers/norvix",
        "plugin pppoe.so\nnic-nas0\nuser \"me\"\nnoauth\nupdetach\nnoipv6\n", 0640);
    facts.papSecrets = file("/etc/ppp/pap-secrets", "\"me\" * \"pw\" *\n");
    facts.chapSecrets = file("/etc/ppp/chap-secrets", "\"me\" * \"pw\" *\n");
    facts.resolver
        = {QStringLiteral("/etc/resolv.conf"), QString(), true, {QStringLiteral("1.1.1.1")}};
    facts.log = file("/opt/norvix/daemon.log", "");
    facts.routes.isReadable = true;
    facts.keeper.value.phase = QStringLiteral("idle");
    facts.keeper.value.isKeeping = true;
    return facts;
}

/// A link beside a Wi-Fi with the default route of this metric.
RouteFacts linkBeside(quint32 metric)
{
    RouteFacts routes;
    routes.isReadable = true;
    routes.link = QStringLiteral("ppp0");
    routes.ipv4 = {{QStringLiteral("wlan0"), QByteArray(4, '\0'), 0, metric}};
    return routes;
}

/// A neighbour with its file in place.
Neighbour withItsFile(Answer answer)
{
    Neighbour neighbour;
    neighbour.isPresent = neighbour.hasFile = true;
    neighbour.isInForce = answer;
    return neighbour;
}

using Spoil = std::function<void(Facts &)>;

} // namespace

Q_DECLARE_METATYPE(Spoil)

class CtlDoctorTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsSaidAgainstASoundSystem()
    {
        for (const Finding &finding : examine(soundFacts())) {
            QVERIFY2(finding.verdict == Verdict::Good,
                qPrintable(finding.check + QLatin1String(": ") + factsText(finding)));
            QVERIFY(finding.remedy.kind == RemedyKind::None);
        }
    }

    void whatTheModemAndTheProtocolDoNotNeedIsNotMissed()
    {
        Facts overAtm = soundFacts();
        overAtm.protocol = QStringLiteral("PPPoA");
        overAtm.bridgeModule = Module::Missing;
        Facts unicorn = soundFacts();
        unicorn.configured = {0x0483, 0x0138};
        unicorn.driver = QStringLiteral("unicorn_usb_eth");
        unicorn.atmModule = unicorn.usbatmModule = unicorn.bridgeModule = Module::Missing;
        for (const Facts &facts : {overAtm, unicorn}) {
            for (const Finding &finding : examine(facts)) {
                if (finding.check == QLatin1String("driver")
                    || finding.check == QLatin1String("ppp")
                    || finding.check == QLatin1String("bridge")) {
                    QVERIFY2(finding.verdict == Verdict::Good, qPrintable(factsText(finding)));
                }
            }
        }
    }

    void theModuleThatCarriesPppFollowsFromModemAndProtocol()
    {
        Facts facts = soundFacts();
        QCOMPARE(facts.protocolModuleName(), "pppoe");
        facts.protocol = QStringLiteral("PPPoA");
        QCOMPARE(facts.protocolModuleName(), "pppoatm");
        facts.configured = {0x0483, 0x0138};
        QCOMPARE(facts.protocolModuleName(), "pppoe");
    }

    void nobodyIsToldToReplaceADefaultRoute()
    {
        for (int kind = 0; kind <= int(RemedyKind::ConnectLater); ++kind) {
            const QString text = remedyText({RemedyKind(kind), QStringLiteral("wlan0 ppp0")});
            QVERIFY2(!text.contains("replace", Qt::CaseInsensitive), qPrintable(text));
        }
    }

    void everyRemedyButNoneIsTold()
    {
        for (int kind = 1; kind <= int(RemedyKind::ConnectLater); ++kind) {
            QVERIFY(!remedyText({RemedyKind(kind), QString()}).isEmpty());
        }
        QCOMPARE(remedyText({}), QString());
    }

    void eachFactIsJudged_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<Spoil>("spoil");
        QTest::addColumn<QString>("verdict");
        QTest::addColumn<QString>("words"); // in text or remedy
        const auto row = [](const char *name, const char *id, const Spoil &spoil,
                             const char *verdict, const char *words) {
            QTest::newRow(name) << QString::fromLatin1(id) << spoil << QString::fromLatin1(verdict)
                                << QString::fromUtf8(words);
        };
        row(
            "no bus", "daemon", [](Facts &f) { f.isBusThere = false; }, "fault", "start dbus");
        row(
            "no daemon", "daemon", [](Facts &f) { f.isDaemonRunning = false; }, "fault",
            "start norvix-daemon");
        row(
            "a daemon that hangs", "daemon", [](Facts &f) { f.doesDaemonAnswer = false; }, "fault",
            "restart norvix-daemon");
        row(
            "no companion", "companion", [](Facts &f) { f.isHalAnswering = Answer::No; }, "fault",
            "norvix-hald");
        row(
            "no policy", "policy", [](Facts &f) { f.hasPolicy = false; }, "fault", "reload dbus");
        row(
            "no group", "permission",
            [](Facts &f) {
                f.isUserAllowed = Answer::No;
                f.hasGroup = f.isMember = false;
            },
            "fault", "groupadd");
        row(
            "not in the group", "permission",
            [](Facts &f) {
                f.isUserAllowed = Answer::No;
                f.isMember = false;
            },
            "fault", "usermod -a -G");
        row(
            "a session from before", "permission", [](Facts &f) { f.isUserAllowed = Answer::No; },
            "fault", "Log out");
        row(
            "no modem", "modem", [](Facts &f) { f.modems.clear(); }, "fault", "Plug it in");
        row(
            "another modem", "modem",
            [](Facts &f) {
                f.configured = {0, 0};
            },
            "fault", "adopt");
        row(
            "a modem that the daemon does not see", "modem",
            [](Facts &f) { f.doesDaemonSeeModem = Answer::No; }, "warning", "does not see it");
        row(
            "no driver", "driver", [](Facts &f) { f.driverModule = Module::Missing; }, "fault",
            "full kernel");
        row(
            "a kernel without ATM", "driver",
            [](Facts &f) {
                f.atmModule = f.usbatmModule = f.driverModule = Module::Missing;
                f.hasDriverSource = true; // which could not be built either
            },
            "fault", "atm, usbatm, cxacru. Install the distribution's full kernel");
        row(
            "a driver without what it stands on", "driver",
            [](Facts &f) { f.usbatmModule = Module::Missing; }, "fault", "needs: usbatm.");
        row(
            "a driver that can be built", "driver",
            [](Facts &f) {
                f.driverModule = Module::Missing;
                f.hasDriverSource = true;
            },
            "fault", "linux-headers-6.1.0");
        row(
            "a driver that is being built", "driver", [](Facts &f) { f.isCompiling = true; },
            "warning", "being built");
        row(
            "before the firmware", "firmware",
            [](Facts &f) {
                f.modems = {{{0x1110, 0x9042}, familyOf({0x1110, 0x9042}), QString()}};
            },
            "fault", "1110:9042");
        row(
            "firmware that failed", "firmware",
            [](Facts &f) {
                f.line = LineStatus{Line::FirmwareFailed, {}, {}, QString()};
            },
            "fault", "/lib/firmware");
        row(
            "firmware that is missing", "firmware",
            [](Facts &f) { f.firmware = QStringLiteral("speedtch-2.bin"); }, "warning",
            "speedtch-2.bin is missing");
        row(
            "a line that trains", "line",
            [](Facts &f) {
                f.line = LineStatus{Line::Synchronising, {}, {}, QString()};
            },
            "warning", "synchronising");
        row(
            "a line that is down", "line",
            [](Facts &f) {
                f.line = LineStatus{Line::Down, {}, {}, QString()};
            },
            "fault", "telephone cable");
        row(
            "a log that is not readable, and no carrier", "line",
            [](Facts &f) {
                f.line.reset();
                f.carrier = false;
            },
            "warning", "no carrier");
        row(
            "a log that is not readable", "line", [](Facts &f) { f.line.reset(); }, "not-checked",
            "sudo");
        row(
            "no line settings", "line-settings",
            [](Facts &f) { f.protocol = f.vpi = f.vci = QString(); }, "fault", "line set");
        row(
            "PPPoE without VCI", "line-settings", [](Facts &f) { f.vci.clear(); }, "fault",
            "line set");
        row(
            "0.0", "line-settings", [](Facts &f) { f.vpi = f.vci = QStringLiteral("0"); }, "fault",
            "both 0");
        row(
            "a protocol nobody knows", "line-settings",
            [](Facts &f) { f.protocol = QStringLiteral("pppoe"); }, "warning", "means PPPoA");
        row(
            "no pppd", "ppp", [](Facts &f) { f.hasPppd = false; }, "fault", "apt install ppp");
        row(
            "a kernel without PPP", "ppp", [](Facts &f) { f.pppModule = Module::Missing; }, "fault",
            "needs: ppp_generic.");
        row(
            "a kernel without PPP over ATM", "ppp",
            [](Facts &f) {
                f.protocol = QStringLiteral("PPPoA");
                f.protocolModule = Module::Missing;
            },
            "fault", "needs: pppoatm.");
        row(
            "a kernel without PPP over Ethernet", "ppp",
            [](Facts &f) { f.protocolModule = Module::Missing; }, "fault", "needs: pppoe.");
        row(
            "no bridge program", "bridge", [](Facts &f) { f.hasBridgeTool = false; }, "fault",
            "ln -s /usr/sbin/br2684ctl");
        row(
            "no bridge module", "bridge", [](Facts &f) { f.bridgeModule = Module::Missing; },
            "fault", "br2684");
        row(
            "no peer file", "peer", [](Facts &f) { f.peer.exists = false; }, "fault", "missing");
        row(
            "nothing to put in place of a peer file", "peer",
            [](Facts &f) { f.peer.exists = f.hasShippedPeers = false; }, "fault",
            "install norvix again");
        row(
            "a peer file that detaches at once", "peer",
            [](Facts &f) { f.peer.content->replace("updetach\n", ""); }, "fault", "updetach");
        row(
            "a peer file that is not readable", "peer", [](Facts &f) { f.peer.content.reset(); },
            "not-checked", "sudo");
        row(
            "no secrets", "secrets", [](Facts &f) { f.papSecrets.exists = false; }, "fault",
            "doctor --fix");
        row(
            "secrets for all to read", "secrets", [](Facts &f) { f.chapSecrets.mode = 0644; },
            "fault", "doctor --fix");
        row(
            "secrets of another user", "secrets", [](Facts &f) { f.papSecrets.owner = 1000; },
            "fault", "doctor --fix");
        row(
            "comments before the entry", "secrets",
            [](Facts &f) { f.chapSecrets.content->prepend("# comment\n"); }, "fault",
            "does not begin");
        row(
            "no account yet", "secrets",
            [](Facts &f) {
                f.papSecrets.content = f.chapSecrets.content = "\"login\" * \"password\" *\n";
            },
            "fault", "account set");
        row(
            "no user line", "peer", [](Facts &f) { f.peer.content->replace("user \"me\"\n", ""); },
            "fault",
            "peers/norvix: There is no “user” line: set the account with “norvixctl account");
        row(
            "another login in the peer file", "secrets",
            [](Facts &f) { f.peer.content->replace("\"me\"", "\"you\""); }, "fault",
            "is not the login");
        row(
            "no server", "resolver", [](Facts &f) { f.resolver.servers.clear(); }, "warning",
            "names no server");
        row(
            "another pppd", "other-pppd",
            [](Facts &f) {
                f.pppds = {{77, QString(), false}};
            },
            "warning", "77");
        row(
            "a refused account", "last-attempt",
            [](Facts &f) {
                f.log.content = "x Norvix_Daemon::debugConnecting(): CHAP authentication failed\n";
            },
            "warning", "account set");
        row(
            "another default route", "route", [](Facts &f) { f.routes = linkBeside(600); },
            "warning", "through wlan0. Choose: end the connection of wlan0");
        row(
            "another default route that cannot be outdone", "route",
            [](Facts &f) { f.routes = linkBeside(0); }, "warning",
            "End the connection of wlan0, then");
        row(
            "no default route", "route",
            [](Facts &f) {
                f.routes = linkBeside(600);
                f.routes.ipv4.clear();
            },
            "warning", "ip route add default dev ppp0");
        row(
            "the link's default route", "route",
            [](Facts &f) {
                f.routes = linkBeside(600);
                f.routes.ipv4.first().interface = f.routes.link;
            },
            "ok", "through ppp0");
        row(
            "routes that cannot be read", "route", [](Facts &f) { f.routes.isReadable = false; },
            "not-checked", "can not be read");
        row(
            "the provider's server through another connection", "resolver",
            [](Facts &f) {
                f.routes = linkBeside(600);
                f.routes.servers = f.routes.providersServers = QStringList{"203.0.113.1"};
            },
            "warning", "203.0.113.1 is the provider's, but is asked through wlan0");
        row(
            "networkmanager without its file", "networkmanager",
            [](Facts &f) {
                f.neighbours.networkManager.isPresent = true;
                f.neighbours.networkManager.file = "/usr/lib/x";
                f.neighbours.networkManager.isFileOurs = true;
            },
            "warning", "/usr/lib/x is missing");
        row(
            "networkd without its file", "networkd",
            [](Facts &f) {
                f.neighbours.networkd.isPresent = true;
                f.neighbours.networkd.file = "/usr/lib/x";
                f.neighbours.networkd.isFileOurs = true;
            },
            "warning", "/usr/lib/x is missing");
        row(
            "resolved without its file", "resolved",
            [](Facts &f) {
                f.neighbours.resolved.isPresent = true;
                f.neighbours.resolved.file = "/usr/lib/x";
                f.neighbours.resolved.isFileOurs = true;
            },
            "warning", "/usr/lib/x is missing");
        row(
            "resolvconf without its file", "resolvconf",
            [](Facts &f) {
                f.neighbours.resolvconf.isPresent = true;
                f.neighbours.resolvconf.file = "/usr/lib/x";
                f.neighbours.resolvconf.isFileOurs = false;
            },
            "warning", "--reinstall resolvconf");
        row(
            "a file that hides networkmanager's", "networkmanager",
            [](Facts &f) {
                f.neighbours.networkManager = withItsFile(Answer::Unknown);
                f.neighbours.networkManager.hiddenBy = "/etc/x.conf";
            },
            "warning", "Give /etc/x.conf another name");
        row(
            "networkmanager that manages the modem's interfaces", "networkmanager",
            [](Facts &f) { f.neighbours.networkManager = withItsFile(Answer::No); }, "warning",
            "disconnect and connect again");
        row(
            "networkmanager that does as it is told", "networkmanager",
            [](Facts &f) { f.neighbours.networkManager = withItsFile(Answer::Yes); }, "ok",
            "alone");
        row(
            "a file that hides networkd's", "networkd",
            [](Facts &f) {
                f.neighbours.networkd = withItsFile(Answer::Unknown);
                f.neighbours.networkd.hiddenBy = "/etc/x.conf";
            },
            "warning", "Give /etc/x.conf another name");
        row(
            "networkd that manages the modem's interfaces", "networkd",
            [](Facts &f) { f.neighbours.networkd = withItsFile(Answer::No); }, "warning",
            "disconnect and connect again");
        row(
            "networkd that does as it is told", "networkd",
            [](Facts &f) { f.neighbours.networkd = withItsFile(Answer::Yes); }, "ok", "alone");
        row(
            "resolved without the provider's servers", "resolved",
            [](Facts &f) { f.neighbours.resolved = withItsFile(Answer::No); }, "warning",
            "norvixctl connect");
        row(
            "resolved with its file, and no link", "resolved",
            [](Facts &f) { f.neighbours.resolved = withItsFile(Answer::Unknown); }, "ok",
            "is told");
        row(
            "resolvconf with its hook", "resolvconf",
            [](Facts &f) { f.neighbours.resolvconf = withItsFile(Answer::Unknown); }, "ok",
            "is told");
        row(
            "no keeper", "keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperMissing; }, "warning",
            "apt install norvix-keeper");
        row(
            "a keeper that is stopped", "keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperStopped; }, "warning",
            "enable --now norvix-keeper");
        row(
            "a keeper that hangs", "keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperNoAnswer; }, "warning",
            "restart norvix-keeper");
        row(
            "a keeper that talks nonsense", "keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperNotUnderstood; }, "warning",
            "not understood");
        row(
            "a keeper that answers with an error", "keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperError; }, "warning",
            "not understood");
        row(
            "a keeper that one may not ask", "keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::NotPermitted; }, "warning",
            "reload dbus");
        row(
            "no bus to a keeper", "keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::NoBus; }, "not-checked",
            "without the system bus");
        row(
            "a keeper that the daemon refuses", "keeper",
            [](Facts &f) { f.keeper.value.reason = "request-refused"; }, "warning",
            "usermod -a -G norvix norvix-keeper");
        row(
            "a keeper that waits after a failure", "keeper",
            [](Facts &f) {
                f.keeper.value.isWanted = true;
                f.keeper.value.phase = "waiting";
                f.keeper.value.reason = "account-refused";
            },
            "warning", "refused login or password. Now: waiting for the next attempt");
        row(
            "a keeper that is switched off", "keeper",
            [](Facts &f) {
                f.keeper.value.isKeeping = false;
                f.keeper.value.phase = "off";
                f.keeper.value.reason = "hung-up";
            },
            "ok", "switched off");
        row(
            "a keeper whose history is of another version", "keeper",
            [](Facts &f) { f.keeper.value.history = "newer"; }, "warning", "newer version");
    }
    void eachFactIsJudged()
    {
        QFETCH(QString, id);
        QFETCH(Spoil, spoil);
        QFETCH(QString, verdict);
        QFETCH(QString, words);
        Facts facts = soundFacts();
        spoil(facts);
        for (const Finding &finding : examine(facts)) {
            if (finding.check == id) {
                QCOMPARE(verdictWord(finding.verdict), verdict);
                const QString remedy = remedyText(finding.remedy);
                const QString said = factsText(finding) + QLatin1Char(' ') + remedy;
                QVERIFY2(said.contains(words), qPrintable(said));
                QVERIFY(finding.verdict != Verdict::Fault || !remedy.isEmpty());
                return;
            }
        }
        QFAIL("no such check");
    }
};

QTEST_GUILESS_MAIN(CtlDoctorTest)
#include "doctor_test.moc"
