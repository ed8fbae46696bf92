// SPDX-License-Identifier: MIT
// The judgements of the check-up, fact by fact, in the words of this program.
#include "client/doctor_checks.h"
#include "ctl/screen/remedy_text.h"
#include "test_table.h"

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

/// A neighbour whose file is hidden by another.
Neighbour withAHiddenFile()
{
    Neighbour neighbour = withItsFile(Answer::Unknown);
    neighbour.hiddenBy = "/etc/x.conf";
    return neighbour;
}

Neighbour withoutItsFile(bool isFileOurs = true)
{
    Neighbour neighbour;
    neighbour.isPresent = true;
    neighbour.file = "/usr/lib/x";
    neighbour.isFileOurs = isFileOurs;
    return neighbour;
}

using Spoil = std::function<void(Facts &)>;

/// Lets this neighbour be there.
Spoil beside(Neighbour Neighbours::*which, const Neighbour &neighbour)
{
    return [which, neighbour](Facts &facts) { facts.neighbours.*which = neighbour; };
}

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
        // The words stand in text or remedy.
        const auto row = table<QString, QString, QString, Spoil>("id", "verdict", "words", "spoil");
        row("no bus", "daemon", "fault", "start dbus", [](Facts &f) { f.isBusThere = false; });
        row("no daemon", "daemon", "fault", "start norvix-daemon",
            [](Facts &f) { f.isDaemonRunning = false; });
        row("a daemon that hangs", "daemon", "fault", "restart norvix-daemon",
            [](Facts &f) { f.doesDaemonAnswer = false; });
        row("no companion", "companion", "fault", "norvix-hald",
            [](Facts &f) { f.isHalAnswering = Answer::No; });
        row("no policy", "policy", "fault", "reload dbus", [](Facts &f) { f.hasPolicy = false; });
        row("no group", "permission", "fault", "groupadd", [](Facts &f) {
            f.isUserAllowed = Answer::No;
            f.hasGroup = f.isMember = false;
        });
        row("not in the group", "permission", "fault", "usermod -a -G", [](Facts &f) {
            f.isUserAllowed = Answer::No;
            f.isMember = false;
        });
        row("a session from before", "permission", "fault", "Log out",
            [](Facts &f) { f.isUserAllowed = Answer::No; });
        row("no modem", "modem", "fault", "Plug it in", [](Facts &f) { f.modems.clear(); });
        row("another modem", "modem", "fault", "adopt", [](Facts &f) { f.configured = {0, 0}; });
        row("a modem that the daemon does not see", "modem", "warning", "does not see it",
            [](Facts &f) { f.doesDaemonSeeModem = Answer::No; });
        row("no driver", "driver", "fault", "full kernel",
            [](Facts &f) { f.driverModule = Module::Missing; });
        row("a kernel without ATM", "driver", "fault",
            "atm, usbatm, cxacru. Install the distribution's full kernel", [](Facts &f) {
                f.atmModule = f.usbatmModule = f.driverModule = Module::Missing;
                f.hasDriverSource = true; // which could not be built either
            });
        row("a driver without what it stands on", "driver", "fault", "needs: usbatm.",
            [](Facts &f) { f.usbatmModule = Module::Missing; });
        row("a driver that can be built", "driver", "fault", "linux-headers-6.1.0", [](Facts &f) {
            f.driverModule = Module::Missing;
            f.hasDriverSource = true;
        });
        row("a driver that is being built", "driver", "warning", "being built",
            [](Facts &f) { f.isCompiling = true; });
        row("before the firmware", "firmware", "fault", "1110:9042", [](Facts &f) {
            f.modems = {{{0x1110, 0x9042}, familyOf({0x1110, 0x9042}), QString()}};
        });
        row("firmware that failed", "firmware", "fault", "/lib/firmware", [](Facts &f) {
            f.line = LineStatus{Line::FirmwareFailed, {}, {}, QString()};
        });
        row("firmware that is missing", "firmware", "warning", "speedtch-2.bin is missing",
            [](Facts &f) { f.firmware = QStringLiteral("speedtch-2.bin"); });
        row("a line that trains", "line", "warning", "synchronising", [](Facts &f) {
            f.line = LineStatus{Line::Synchronising, {}, {}, QString()};
        });
        row("a line that is down", "line", "fault", "telephone cable", [](Facts &f) {
            f.line = LineStatus{Line::Down, {}, {}, QString()};
        });
        row("a log that is not readable, and no carrier", "line", "warning", "no carrier",
            [](Facts &f) {
                f.line.reset();
                f.carrier = false;
            });
        row("a log that is not readable", "line", "not-checked", "sudo",
            [](Facts &f) { f.line.reset(); });
        row("no line settings", "line-settings", "fault", "line set",
            [](Facts &f) { f.protocol = f.vpi = f.vci = QString(); });
        row("PPPoE without VCI", "line-settings", "fault", "line set",
            [](Facts &f) { f.vci.clear(); });
        row("0.0", "line-settings", "fault", "both 0",
            [](Facts &f) { f.vpi = f.vci = QStringLiteral("0"); });
        row("a protocol nobody knows", "line-settings", "warning", "means PPPoA",
            [](Facts &f) { f.protocol = QStringLiteral("pppoe"); });
        row("no pppd", "ppp", "fault", "apt install ppp", [](Facts &f) { f.hasPppd = false; });
        row("a kernel without PPP", "ppp", "fault", "needs: ppp_generic.",
            [](Facts &f) { f.pppModule = Module::Missing; });
        row("a kernel without PPP over ATM", "ppp", "fault", "needs: pppoatm.", [](Facts &f) {
            f.protocol = QStringLiteral("PPPoA");
            f.protocolModule = Module::Missing;
        });
        row("a kernel without PPP over Ethernet", "ppp", "fault", "needs: pppoe.",
            [](Facts &f) { f.protocolModule = Module::Missing; });
        row("no bridge program", "bridge", "fault", "ln -s /usr/sbin/br2684ctl",
            [](Facts &f) { f.hasBridgeTool = false; });
        row("no bridge module", "bridge", "fault", "br2684",
            [](Facts &f) { f.bridgeModule = Module::Missing; });
        row("no peer file", "peer", "fault", "missing", [](Facts &f) { f.peer.exists = false; });
        row("nothing to put in place of a peer file", "peer", "fault", "install norvix again",
            [](Facts &f) { f.peer.exists = f.hasShippedPeers = false; });
        row("a peer file that detaches at once", "peer", "fault", "updetach",
            [](Facts &f) { f.peer.content->replace("updetach\n", ""); });
        row("a peer file that is not readable", "peer", "not-checked", "sudo",
            [](Facts &f) { f.peer.content.reset(); });
        row("no secrets", "secrets", "fault", "doctor --fix",
            [](Facts &f) { f.papSecrets.exists = false; });
        row("secrets for all to read", "secrets", "fault", "doctor --fix",
            [](Facts &f) { f.chapSecrets.mode = 0644; });
        row("secrets of another user", "secrets", "fault", "doctor --fix",
            [](Facts &f) { f.papSecrets.owner = 1000; });
        row("comments before the entry", "secrets", "fault", "does not begin",
            [](Facts &f) { f.chapSecrets.content->prepend("# comment\n"); });
        row("no account yet", "secrets", "fault", "account set", [](Facts &f) {
            f.papSecrets.content = f.chapSecrets.content = "\"login\" * \"password\" *\n";
        });
        row("no user line", "peer", "fault",
            "peers/norvix: There is no “user” line: set the account with “norvixctl account",
            [](Facts &f) { f.peer.content->replace("user \"me\"\n", ""); });
        row("another login in the peer file", "secrets", "fault", "is not the login",
            [](Facts &f) { f.peer.content->replace("\"me\"", "\"you\""); });
        row("no server", "resolver", "warning", "names no server",
            [](Facts &f) { f.resolver.servers.clear(); });
        row("another pppd", "other-pppd", "warning", "77", [](Facts &f) {
            f.pppds = {{77, QString(), false}};
        });
        row("a refused account", "last-attempt", "warning", "account set", [](Facts &f) {
            f.log.content = "x Norvix_Daemon::debugConnecting(): CHAP authentication failed\n";
        });
        row("another default route", "route", "warning",
            "through wlan0. Choose: end the connection of wlan0",
            [](Facts &f) { f.routes = linkBeside(600); });
        row("another default route that cannot be outdone", "route", "warning",
            "End the connection of wlan0, then", [](Facts &f) { f.routes = linkBeside(0); });
        row("no default route", "route", "warning", "ip route add default dev ppp0", [](Facts &f) {
            f.routes = linkBeside(600);
            f.routes.ipv4.clear();
        });
        row("the link's default route", "route", "ok", "through ppp0", [](Facts &f) {
            f.routes = linkBeside(600);
            f.routes.ipv4.first().interface = f.routes.link;
        });
        row("routes that cannot be read", "route", "not-checked", "can not be read",
            [](Facts &f) { f.routes.isReadable = false; });
        row("the provider's server through another connection", "resolver", "warning",
            "203.0.113.1 is the provider's, but is asked through wlan0", [](Facts &f) {
                f.routes = linkBeside(600);
                f.routes.servers = f.routes.providersServers = QStringList{"203.0.113.1"};
            });
        row("networkmanager without its file", "networkmanager", "warning", "/usr/lib/x is missing",
            beside(&Neighbours::networkManager, withoutItsFile()));
        row("networkd without its file", "networkd", "warning", "/usr/lib/x is missing",
            beside(&Neighbours::networkd, withoutItsFile()));
        row("resolved without its file", "resolved", "warning", "/usr/lib/x is missing",
            beside(&Neighbours::resolved, withoutItsFile()));
        row("resolvconf without its file", "resolvconf", "warning", "--reinstall resolvconf",
            beside(&Neighbours::resolvconf, withoutItsFile(false)));
        row("a file that hides networkmanager's", "networkmanager", "warning",
            "Give /etc/x.conf another name",
            beside(&Neighbours::networkManager, withAHiddenFile()));
        row("networkmanager that manages the modem's interfaces", "networkmanager", "warning",
            "disconnect and connect again",
            beside(&Neighbours::networkManager, withItsFile(Answer::No)));
        row("networkmanager that does as it is told", "networkmanager", "ok", "alone",
            beside(&Neighbours::networkManager, withItsFile(Answer::Yes)));
        row("a file that hides networkd's", "networkd", "warning", "Give /etc/x.conf another name",
            beside(&Neighbours::networkd, withAHiddenFile()));
        row("networkd that manages the modem's interfaces", "networkd", "warning",
            "disconnect and connect again", beside(&Neighbours::networkd, withItsFile(Answer::No)));
        row("networkd that does as it is told", "networkd", "ok", "alone",
            beside(&Neighbours::networkd, withItsFile(Answer::Yes)));
        row("resolved without the provider's servers", "resolved", "warning", "norvixctl connect",
            beside(&Neighbours::resolved, withItsFile(Answer::No)));
        row("resolved with its file, and no link", "resolved", "ok", "is told",
            beside(&Neighbours::resolved, withItsFile(Answer::Unknown)));
        row("resolvconf with its hook", "resolvconf", "ok", "is told",
            beside(&Neighbours::resolvconf, withItsFile(Answer::Unknown)));
        row("no keeper", "keeper", "warning", "apt install norvix-keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperMissing; });
        row("a keeper that is stopped", "keeper", "warning", "enable --now norvix-keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperStopped; });
        row("a keeper that hangs", "keeper", "warning", "restart norvix-keeper",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperNoAnswer; });
        row("a keeper that talks nonsense", "keeper", "warning", "not understood",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperNotUnderstood; });
        row("a keeper that answers with an error", "keeper", "warning", "not understood",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::KeeperError; });
        row("a keeper that one may not ask", "keeper", "warning", "reload dbus",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::NotPermitted; });
        row("no bus to a keeper", "keeper", "not-checked", "without the system bus",
            [](Facts &f) { f.keeper.failure.kind = FailureKind::NoBus; });
        row("a keeper that the daemon refuses", "keeper", "warning",
            "usermod -a -G norvix norvix-keeper",
            [](Facts &f) { f.keeper.value.reason = "request-refused"; });
        row("a keeper that waits after a failure", "keeper", "warning",
            "refused login or password. Now: waiting for the next attempt", [](Facts &f) {
                f.keeper.value.isWanted = true;
                f.keeper.value.phase = "waiting";
                f.keeper.value.reason = "account-refused";
            });
        row("a keeper that is switched off", "keeper", "ok", "switched off", [](Facts &f) {
            f.keeper.value.isKeeping = false;
            f.keeper.value.phase = "off";
            f.keeper.value.reason = "hung-up";
        });
        row("a keeper whose history is of another version", "keeper", "warning", "newer version",
            [](Facts &f) { f.keeper.value.history = "newer"; });
    }
    void eachFactIsJudged()
    {
        QFETCH(QString, id);
        QFETCH(QString, verdict);
        QFETCH(QString, words);
        QFETCH(Spoil, spoil);
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
