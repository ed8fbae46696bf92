// SPDX-License-Identifier: MIT
// What the keeper reads from the kernel, from files and from logs.
#include "keeper/daemon_log.h"
#include "keeper/line/line_quality.h"
#include "keeper/line/loss_judge.h"
#include "keeper/memory_file.h"
#include "keeper/notices/interface_table.h"
#include "keeper/settings.h"
#include "keeper/system_facts.h"
#include "test_data.h"
#include "test_files.h"
#include "test_table.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/rtnetlink.h>
#include <random>
#include <sys/resource.h>

using namespace keeper;

Q_DECLARE_METATYPE(keeper::Cause)
Q_DECLARE_METATYPE(keeper::Unheard)

namespace {

QByteArray attribute(int type, const QByteArray &bytes)
{
    rtattr head = {};
    head.rta_type = quint16(type);
    head.rta_len = quint16(RTA_LENGTH(bytes.size()));
    QByteArray whole(reinterpret_cast<const char *>(&head), sizeof head);
    whole += bytes;
    return whole.leftJustified(int(RTA_ALIGN(whole.size())), '\0');
}

template <typename Head>
QByteArray message(int type, const Head &head, const QByteArray &attributes)
{
    QByteArray content(reinterpret_cast<const char *>(&head), sizeof head);
    content = content.leftJustified(int(NLMSG_ALIGN(sizeof head)), '\0') + attributes;
    nlmsghdr outer = {};
    outer.nlmsg_type = quint16(type);
    outer.nlmsg_len = quint32(NLMSG_LENGTH(content.size()));
    const QByteArray whole
        = QByteArray(reinterpret_cast<const char *>(&outer), sizeof outer) + content;
    return whole.leftJustified(int(NLMSG_ALIGN(whole.size())), '\0');
}

QByteArray link(int type, int index, const char *name, quint64 received = 0, int kind = ARPHRD_PPP,
    uint flags = 0)
{
    ifinfomsg head = {};
    head.ifi_flags = flags;
    head.ifi_index = index;
    head.ifi_type = quint16(kind);
    rtnl_link_stats64 counters = {};
    counters.rx_bytes = received;
    return message(type, head,
        attribute(IFLA_IFNAME, QByteArray(name) + '\0')
            + attribute(IFLA_STATS64,
                QByteArray(reinterpret_cast<const char *>(&counters), sizeof counters)));
}

QByteArray address(int type, int index, const QByteArray &own)
{
    ifaddrmsg head = {};
    head.ifa_family = AF_INET;
    head.ifa_index = quint32(index);
    return message(type, head,
        attribute(IFA_ADDRESS, QByteArray("\x0a\x40\x00\x01", 4)) + attribute(IFA_LOCAL, own));
}

const QByteArray ours("\x0a\x40\x00\x64", 4);

QByteArray asLogged(const QByteArray &pppdText)
{
    QByteArray log;
    for (const QByteArray &line : pppdText.split('\n')) {
        log += "21-11-2026 20:00:00 Norvix_Daemon::debugConnecting(): " + line + '\n';
    }
    return log;
}

/// What the daemon logs while it ends a link.
QByteArray disconnectAt(const char *time)
{
    QByteArray log;
    for (int step = 1; step <= 5; ++step) {
        const QByteArray begin
            = QByteArray("21-11-2026 ") + time + " Norvix_Daemon::debugHandler: ";
        log += begin + QByteArray::number(step) + " \n";
        if (step == 1) {
            log += begin + "pid: 77 \n";
        }
    }
    return log;
}

} // namespace

class FactsTest : public QObject
{
    Q_OBJECT

private slots:
    // ---- the kernel's notices

    void aLinkComesAndGoes()
    {
        InterfaceTable table;
        QVERIFY(table.take(link(RTM_NEWLINK, 5, "ppp0") + address(RTM_NEWADDR, 5, ours)).isChange);
        QCOMPARE(addressText(*table.named(QStringLiteral("ppp0"))), QStringLiteral("10.64.0.100"));
        table.take(address(RTM_DELADDR, 5, ours));
        QVERIFY(table.named(QStringLiteral("ppp0"))->addresses.isEmpty());
        const InterfaceTable::News news = table.take(link(RTM_DELLINK, 5, "ppp0", 21'560));
        QCOMPARE(news.gone.size(), 1);
        QCOMPARE(news.gone.first().received, quint64(21'560));
        QVERIFY(!table.named(QStringLiteral("ppp0")));
    }

    void aLinkIsUpWithoutAnAddressThatWeKnow()
    {
        InterfaceTable table;
        table.take(link(RTM_NEWLINK, 5, "ppp0"));
        QVERIFY(!table.interfaces().first().isUp);
        table.take(link(RTM_NEWLINK, 5, "ppp0", 0, ARPHRD_PPP, IFF_UP | IFF_POINTOPOINT));
        QVERIFY(table.interfaces().first().isUp);
        table.take(link(RTM_NEWLINK, 5, "ppp0", 0, ARPHRD_PPP, IFF_POINTOPOINT));
        QVERIFY(!table.interfaces().first().isUp);
    }

    void othersAreToldApart_data()
    {
        const auto row = table<QByteArray, int, bool>("name", "kind", "isPpp");
        row("ppp", "vpn", int(ARPHRD_PPP), true);
        row("by name", "ppp12", int(ARPHRD_NONE), true);
        row("pppoe-wan", "pppoe-wan", int(ARPHRD_ETHER), false);
        row("ethernet", "nas0", int(ARPHRD_ETHER), false);
    }

    void othersAreToldApart()
    {
        QFETCH(QByteArray, name);
        QFETCH(int, kind);
        InterfaceTable table;
        table.take(link(RTM_NEWLINK, 3, name.constData(), 0, kind));
        QTEST(table.interfaces().first().isPpp, "isPpp");
    }

    void cutOffMessagesDoNoHarm()
    {
        const QByteArray whole = link(RTM_NEWLINK, 5, "ppp0", 9) + address(RTM_NEWADDR, 5, ours)
            + link(RTM_DELLINK, 5, "ppp0", 10);
        for (int size = 0; size <= whole.size(); ++size) {
            InterfaceTable table;
            table.take(whole.left(size));
        }
        std::mt19937 random(3);
        for (int run = 0; run < 20'000; ++run) {
            QByteArray broken = whole;
            for (int i = 0; i < 4; ++i) {
                broken[int(random() % uint(broken.size()))] = char(random());
            }
            InterfaceTable table;
            table.take(broken);
        }
    }

    // ---- why a link was lost

    void aLossIsJudgedByWhatIsLeft()
    {
        LossFacts facts;
        QCOMPARE(judgeLoss(facts), Cause::HungUp);
        facts.carrier = true;
        facts.hadDevice = facts.hasDevice = true;
        facts.hadBridge = facts.hasBridge = true;
        QCOMPARE(judgeLoss(facts), Cause::HungUp);
        facts.isStill = true;
        QCOMPARE(judgeLoss(facts), Cause::Silent);
        facts.hasBridge = false;
        QCOMPARE(judgeLoss(facts), Cause::BridgeGone);
        facts.carrier = false;
        QCOMPARE(judgeLoss(facts), Cause::LineLost);
        // The bridge is ended with the device that it was made for.
        facts.carrier.reset();
        facts.hasDevice = false;
        QCOMPARE(judgeLoss(facts), Cause::Unplugged);
    }

    void aCounterIsStillAfterTwentyFiveSeconds()
    {
        Stillness stillness;
        stillness.add(0, 100);
        QVERIFY(!stillness.isStill(24'999, 100));
        QVERIFY(stillness.isStill(25'000, 100));
        QVERIFY(!stillness.isStill(25'000, 132));
        for (int i = 1; i < 100; ++i) { // answers to echoes
            stillness.add(i * 10'000, quint64(100 + i * 32));
        }
        QVERIFY(!stillness.isStill(992'000, 100 + 99 * 32));
        QVERIFY(stillness.isStill(1'016'000, 100 + 99 * 32));
    }

    void cellsAreCountedOverAtm()
    {
        const QByteArray text
            = "Itf Type    ESI/\"MAC\"addr AAL(TX,err,RX,err,drop) ...               [refcnt]\n"
              "  0 cxacru  000102030405  0 ( 0 0 0 0 0 )  5 ( 271 0 4711 1 0 )  [3]\n";
        QCOMPARE(cellsReceived(text).value(), quint64(4711));
        QVERIFY(!cellsReceived(QByteArray()));
    }

    void theLinkFileNamesTheInterface()
    {
        QCOMPARE(linkFileFrom("123\nppp0\n")->interface, QStringLiteral("ppp0"));
        for (const char *text : {"", "123\n", "x\nppp0\n", "-1\nppp0\n", "1\nppp0\n"}) {
            QVERIFY(!linkFileFrom(text));
        }
    }

    // ---- the line

    void everyDriversLineIsRead()
    {
        QMap<QByteArray, QByteArray> files{{"carrier", "1\n"}, {"link_rate", "8127656\n"}};
        const AttributeReader read = [&files](const char *name) -> std::optional<QByteArray> {
            return files.contains(name) ? std::optional<QByteArray>(files[name]) : std::nullopt;
        };
        QCOMPARE(lineQuality(read).carrier.value(), true);
        QCOMPARE(lineQuality(read).downRate.value(), 8127.656);
        QVERIFY(!lineQuality(read).upRate);
        files["device/downstream_rate"] = "8128\n";
        files["device/upstream_snr_margin"] = "12.50\n";
        files["device/downstream_crc_errors"] = "7\n";
        QCOMPARE(lineQuality(read).downRate.value(), 8128.0);
        QCOMPARE(lineQuality(read).upMargin.value(), 12.5);
        QCOMPARE(lineQuality(read).downErrors.value(), 7.0);
        files.remove("device/downstream_rate");
        files["device/stat_dsrate"] = "00001fc0\n";
        files["device/stat_usrate"] = "00000340\n";
        QCOMPARE(lineQuality(read).downRate.value(), 8128.0);
        QCOMPARE(lineQuality(read).upRate.value(), 832.0);
        files["carrier"] = "0\n";
        files["device/stat_usrate"] = "rubbish";
        QCOMPARE(lineQuality(read).carrier.value(), false);
        QVERIFY(!lineQuality(read).upRate);
    }

    void theModemIsTheFirstAtmDevice()
    {
        QTemporaryDir folder;
        const auto add = [&folder](const QString &name, const QByteArray &number, bool isUsb) {
            const QString path = folder.filePath(name);
            QVERIFY(QDir().mkpath(path + (isUsb ? QStringLiteral("/device") : QString())));
            writeFile(path + QStringLiteral("/atmindex"), number);
        };
        add(QStringLiteral("adummy"), "0\n", false);
        // A second one on USB is none that a connection goes through.
        add(QStringLiteral("another1"), "1\n", true);
        QCOMPARE(atmDeviceFolder(folder.path()), QString());
        add(QStringLiteral("speedtch0"), "0\n", true);
        QCOMPARE(atmDeviceFolder(folder.path()), folder.filePath(QStringLiteral("speedtch0")));
    }

    // ---- the daemon's log

    void theReasonIsTheOneThatTheDoctorTells_data()
    {
        const auto row = tableOfTexts<QString, Cause>("recording", "cause");
        row("c1-chap-wrong-password", Cause::AccountRefused);
        row("c3-pap-wrong-password", Cause::AccountRefused);
        row("c2-chap-no-secret-for-user", Cause::PasswordMissing);
        row("d1-no-concentrator", Cause::NoConcentrator);
        row("f1-no-noauth-in-peer", Cause::PeerMustAuthenticate);
    }

    void theReasonIsTheOneThatTheDoctorTells()
    {
        QFETCH(QString, recording);
        const QByteArray text = testData(QStringLiteral("pppd/%1.txt").arg(recording));
        QTEST(causeInLog(asLogged(text)), "cause");
    }

    void aCircuitThatNobodyHasSetIsTold_data()
    {
        const auto row = table<QByteArray, Cause>("circuit", "cause");
        row("neither", "0.0", Cause::CircuitMissing);
        row("no VCI", "8.0", Cause::CircuitMissing);
        row("VPI 0 is one", "0.33", Cause::BridgeMissing);
        row("both", "8.35", Cause::BridgeMissing);
    }

    void aCircuitThatNobodyHasSetIsTold()
    {
        QFETCH(QByteArray, circuit);
        const QByteArray log = "21-11-2026 20:00:00 ConnectThread::prepareBridging(): VPI.VCI: "
            + circuit + '\n' + asLogged("pppd: unrecognized option 'nic-nas0'");
        QTEST(causeInLog(log), "cause");
    }

    void whatNobodyHeardIsToldApart_data()
    {
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<bool>("wasPlugged");
        QTest::addColumn<Unheard>("unheard");
        const QByteArray early = disconnectAt("20:00:01");
        const QByteArray late = disconnectAt("21:30:00");
        const QByteArray later = disconnectAt("21:40:00");
        const QByteArray plugged = "21-11-2026 21:50:00 Norvix_Daemon::debugHandler: device added: "
                                   "\"/devices/modem\" \n";
        const QByteArray mouse = "21-11-2026 21:50:00 Norvix_Daemon::debugHandler: device added: "
                                 "\"/devices/mouse\" \n";
        const auto row
            = [](const char *name, const QByteArray &log, Unheard unheard, bool wasPlugged = true) {
                  QTest::newRow(name) << log << wasPlugged << unheard;
              };
        row("nothing", "", Unheard::Nothing);
        row("an old disconnect", early, Unheard::Nothing);
        row("a disconnect", early + late, Unheard::DisconnectOrUnplugged);
        row("no modem to unplug", late, Unheard::Disconnect, false);
        row("unplugged and plugged again", late + plugged, Unheard::Nothing);
        row("something else was plugged in", late + mouse, Unheard::DisconnectOrUnplugged);
        row("the modem came back without it", late + plugged, Unheard::Disconnect, false);
        row("disconnected, then unplugged", late + later, Unheard::Disconnect);
        row("disconnected, unplugged, plugged again", late + later + plugged, Unheard::Disconnect);
        row("unplugged, plugged again, disconnected", late + plugged + disconnectAt("22:00:00"),
            Unheard::DisconnectOrUnplugged);
    }

    void whatNobodyHeardIsToldApart()
    {
        QFETCH(QByteArray, log);
        QFETCH(bool, wasPlugged);
        const QDateTime heard(QDate(2026, 11, 21), QTime(21, 0));
        QTEST(unheardInLog(log, heard.toSecsSinceEpoch(), "/devices/modem", wasPlugged), "unheard");
    }

    void onlyAWholeDisconnectCounts()
    {
        const auto unheard = [](const QByteArray &log) { return unheardInLog(log, 0, "x", true); };
        QCOMPARE(unheard(asLogged("local  IP address 10.64.0.100")), Unheard::Nothing);
        // The bridge's process id is written the same way.
        QCOMPARE(
            unheard("21-11-2026 20:00:00 Norvix_Daemon::debugHandler: 3 \n"), Unheard::Nothing);
        QCOMPARE(unheard(disconnectAt("20:00:01") + asLogged("Connect: ppp0 <--> nas0")),
            Unheard::DisconnectOrUnplugged);
    }

    void aRequestIsDroppedAfterTheLastDisconnect_data()
    {
        const QByteArray dropped
            = "21-11-2026 20:00:02 Can not establish connection, thread is still running!\n";
        const auto row = table<QByteArray, bool>("log", "wasDropped");
        row("nobody asked again", disconnectAt("20:00:01"), false);
        row("somebody did", disconnectAt("20:00:01") + dropped, true);
        row("before it was ended", dropped + disconnectAt("20:00:03"), false);
        row("and ended it once more", disconnectAt("20:00:01") + dropped + disconnectAt("20:00:03"),
            false);
    }

    void aRequestIsDroppedAfterTheLastDisconnect()
    {
        QFETCH(QByteArray, log);
        QTEST(wasRequestDropped(log), "wasDropped");
    }

    // ---- files of our own

    void aFullDiskLeavesWhatWasStored()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("memory.json"));
        Stored stored;
        stored.limit = 1;
        QVERIFY(writeStored(path, stored));
        signal(SIGXFSZ, SIG_IGN);
        rlimit before = {};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit full = {10, before.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &full), 0);
        const bool isWritten = writeStored(path, Stored());
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
        QVERIFY(!isWritten);
        QVERIFY(readStored(path) == stored);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
            QStringList(QStringLiteral("memory.json")));
    }

    void whatAKilledKeeperLeftIsRemoved()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("memory.json"));
        QVERIFY(writeStored(path, Stored()));
        QVERIFY(
            QFile::copy(path, folder.filePath(QStringLiteral(".norvix-new-memory.json-abcdef"))));
        static_cast<void>(readStored(path));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
            QStringList(QStringLiteral("memory.json")));
    }

    void onlyItsUserReadsWhatIsStored()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("memory.json"));
        QVERIFY(writeStored(path, Stored()));
        QCOMPARE(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), 0);
    }

    void whatIsStoredComesBack()
    {
        Stored stored;
        stored.memory.keep = false;
        stored.memory.isWanted = true;
        stored.memory.lastUpWall = 1'795'307'218;
        stored.memory.modemRestartedWall = 1'795'300'000;
        stored.wasModemPlugged = false;
        stored.boot = QStringLiteral("boot-1");
        stored.heardUntil = 1'795'307'219;
        stored.limit = 50'000'000'000;
        stored.billingDay = 15;
        QVERIFY(Stored::from(Stored::textOf(stored)) == stored);
        QVERIFY(!Stored::from("rubbish").memory.isWanted);
        QVERIFY(Stored::from("rubbish").memory.keep);
        QVERIFY(Stored::from("rubbish").wasModemPlugged);
        QCOMPARE(Stored::from("{\"billing_day\": 99}").billingDay, 31);
    }

    void settingsAreSecondsAndMistakesAreTold()
    {
        const Settings settings = settingsFrom("# comment\n\n  pause_unanswered = 7.5\r\n"
                                               "pause_hung_up=0\npause_unknown = 3\n"
                                               "pause_after_a_day = -1\npause_refused_most\n");
        QCOMPARE(settings.pauses.unanswered, qint64(7'500));
        QCOMPARE(settings.pauses.hungUp, qint64(0));
        QCOMPARE(settings.pauses.afterADay, Pauses().afterADay);
        QCOMPARE(settings.problems.size(), 3);
        QVERIFY(settings.problems.first().startsWith(QStringLiteral("line 5: ")));
    }
};

QTEST_APPLESS_MAIN(FactsTest)
#include "keeper_facts_test.moc"
