// SPDX-License-Identifier: MIT
// What the daemon understands of pppd's output, real transcripts first.
#include "connection/pppd_line.h"
#include "support/process/line_cutter.h"
#include "test_data.h"
#include "test_table.h"

#include <QTest>
#include <array>

namespace {

/// A recorded transcript and its events, each with the number of its line.
struct Transcript
{
    const char *name;
    const char *events;
};

// clang-format off
constexpr std::array<Transcript, 39> transcripts = {{
    {"a1-bare-peer", ""},
    {"a2-nodetach", "19 Link, 58 LocalAddress"},
    {"a3-updetach", "19 Link"},
    {"a4-logfd1", ""},
    {"a5-nodetach-logfd1", "19 Link, 58 LocalAddress"},
    {"a6-nodetach-logfd2", ""},
    {"a7-nodetach-logfile", ""},
    {"a8-updetach-logfd1", "19 Link"},
    {"b1-success-then-sigterm", "19 Link, 54 LocalAddress"},
    {"b2-success-then-sigkill", "19 Link, 54 LocalAddress"},
    {"c1-chap-wrong-password", "19 Link, 34 AuthenticationFailed"},
    {"c2-chap-no-secret-for-user", "19 Link"},
    {"c3-pap-wrong-password", "19 Link, 33 AuthenticationFailed"},
    {"c4-mschapv2-wrong-password", "19 Link, 35 AuthenticationFailed"},
    {"c5-chap-unknown-user", "19 Link, 34 AuthenticationFailed"},
    {"c6-pap-success-then-sigterm", "19 Link, 53 LocalAddress"},
    {"c7-chap-permission-denied", "19 Link, 31 AuthenticationFailed, 32 AuthenticationFailed, 34 AuthenticationFailed"},
    {"d1-no-concentrator", "11 DiscoveryTimeout"},
    {"d2-interface-down", "15 DiscoveryTimeout"},
    {"d3-interface-missing", ""},
    {"e1-peer-hangs-up", "19 Link, 54 LocalAddress"},
    {"e2-peer-dies-padt", "19 Link, 54 LocalAddress"},
    {"e3-lcp-echo-failure", "19 Link, 54 LocalAddress"},
    {"e4-nas0-set-down", "19 Link, 54 LocalAddress"},
    {"f1-no-noauth-in-peer", "19 Link"},
    {"f2-peer-file-missing", ""},
    {"f3-bad-option", ""},
    {"g1-persist-peer-hangs-up", "19 Link, 54 LocalAddress, 86 Link, 121 LocalAddress"},
    {"h1-pppoe-over-real-nas0", "19 Link, 54 LocalAddress"},
    {"i1-pppoa-success", "31 LocalAddress"},
    {"i2-pppoa-wrong-password", "19 AuthenticationFailed"},
    {"i3-pppoa-no-device", ""},
    {"j0-pppoe-nas0-traffic", "19 Link, 54 LocalAddress"},
    {"j1-pppoe-nas0-cells-lost", "19 Link, 54 LocalAddress"},
    {"j2-pppoe-nas0-unplugged", "19 Link, 54 LocalAddress"},
    {"j3-pppoa-unplugged", "32 LocalAddress"},
    {"j4-pppoa-line-down", "31 LocalAddress"},
    {"j5-pppoe-nas0-no-far-end", "11 DiscoveryTimeout"},
    {"j6-pppoa-no-answer", ""},
}};
// clang-format on

PppdEvent classify(const QByteArray &line)
{
    static const QRegExp link = linkPattern();
    static const QRegExp localAddress = localAddressPattern();
    static const QRegExp authenticationFailed = authenticationFailedPattern();
    return classifyPppdLine(line, link, localAddress, authenticationFailed);
}

const char *nameOf(PppdEvent event)
{
    switch (event) {
    case PppdEvent::None:
        return "None";
    case PppdEvent::Link:
        return "Link";
    case PppdEvent::LocalAddress:
        return "LocalAddress";
    case PppdEvent::AuthenticationFailed:
        return "AuthenticationFailed";
    case PppdEvent::DiscoveryTimeout:
        return "DiscoveryTimeout";
    }
    return "?";
}

/// The events of a transcript, each with the number of its line.
QByteArray eventsOf(const QByteArrayList &lines)
{
    QByteArrayList events;
    for (int i = 0; i < lines.size(); ++i) {
        const PppdEvent event = classify(lines.at(i));
        if (event != PppdEvent::None) {
            events.append(QByteArray::number(i + 1) + ' ' + nameOf(event));
        }
    }
    return events.join(", ");
}

} // namespace

class PppdLineTest : public QObject
{
    Q_OBJECT

private slots:
    void aTranscriptGivesItsEvents_data();
    void aTranscriptGivesItsEvents();
    void everyTranscriptIsInTheTable();
    void aLineHasItsMeaning_data();
    void aLineHasItsMeaning();
    void theLinkPatternStandsAsWrittenAndIsMadeToMatch();
    void noPieceOfADecisiveLineIsMistakenForIt();
    void aLineOfAMegabyteIsClassified();
};

void PppdLineTest::aTranscriptGivesItsEvents_data()
{
    const auto row = table<QByteArray>("events");
    for (const Transcript &transcript : transcripts) {
        row(transcript.name, QByteArray(transcript.events));
    }
}

void PppdLineTest::aTranscriptGivesItsEvents()
{
    QFETCH(QByteArray, events);
    const QByteArray text
        = testData(QStringLiteral("pppd/%1.txt").arg(QString::fromLatin1(QTest::currentDataTag())));

    LineCutter whole;
    QByteArrayList lines = whole.feed(text);
    lines.append(whole.takeRest());
    QCOMPARE(eventsOf(lines), events);

    LineCutter byteByByte;
    lines.clear();
    for (const char byte : text) {
        lines += byteByByte.feed(QByteArray(1, byte));
    }
    lines.append(byteByByte.takeRest());
    QCOMPARE(eventsOf(lines), events);
}

void PppdLineTest::everyTranscriptIsInTheTable()
{
    const QStringList names = testDataNames(QStringLiteral("pppd"), QStringLiteral("*.txt"));
    QCOMPARE(names.size(), int(transcripts.size()));
}

void PppdLineTest::aLineHasItsMeaning_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("event");
    const auto row = [](const QByteArray &line, PppdEvent event) {
        QTest::newRow(QByteArray(line).replace('\0', "NUL").left(80).constData())
            << line << int(event);
    };
    // The link: two to four letters and one character that is a digit or a closing brace.
    row("Connect: ppp0 <--> nas0", PppdEvent::Link);
    row("Connect: ppp9 <--> ab0", PppdEvent::Link);
    row("Connect:\tppp0  <-->\t\tnas0", PppdEvent::Link);
    row("Connect: ppp0 <--> nas0 and more", PppdEvent::Link);
    row("Connect: ppp0 <--> nas12", PppdEvent::Link);
    row("Connect: ppp} <--> nas}", PppdEvent::Link);
    row("Connect: ppp0 <--> /dev/pts/0", PppdEvent::None);
    row("Connect: ppp0 <--> 8.35", PppdEvent::None);
    row("Connect: ppp10 <--> nas0", PppdEvent::None);
    row("Connect: ppp{ <--> nas0", PppdEvent::None);
    row("Connect: p0 <--> nas0", PppdEvent::None);
    row("Connect: abcde0 <--> nas0", PppdEvent::None);
    row("Connect: PPP0 <--> nas0", PppdEvent::None);
    row("Connect:ppp0 <--> nas0", PppdEvent::None);
    row(" Connect: ppp0 <--> nas0", PppdEvent::None);
    row("connect: ppp0 <--> nas0", PppdEvent::None);
    row("Connect: ppp0 <-> nas0", PppdEvent::None);
    row("Connect: ppp0 <--> ", PppdEvent::None);

    // The address; nothing checks its range.
    row("local  IP address 10.64.0.100", PppdEvent::LocalAddress);
    row("local IP address 1.2.3.4", PppdEvent::LocalAddress);
    row("local\tIP\taddress\t9999.9999.9999.9999", PppdEvent::LocalAddress);
    row("local  IP address 10.64.0.100 at last", PppdEvent::LocalAddress);
    row("local  IP address 10.64.0", PppdEvent::None);
    row("local  IP address 99999.1.1.1", PppdEvent::None);
    row("local  LL address fe80::1", PppdEvent::None);
    row("remote IP address 10.64.0.1", PppdEvent::None);
    row(" local  IP address 10.64.0.100", PppdEvent::None);
    row("Local  IP address 10.64.0.100", PppdEvent::None);

    // The refusals; only the first form has to stand at the beginning of the line.
    row("rcvd [CHAP Failure id=0xf \"permission denied\"]", PppdEvent::AuthenticationFailed);
    row("rcvd [CHAP Failure id=1 \"permission denied\"]", PppdEvent::AuthenticationFailed);
    row("rcvd [CHAP Failure id=0x1ff \"permission denied\"]", PppdEvent::AuthenticationFailed);
    row("rcvd [CHAP Failure id=0x1fff \"permission denied\"]", PppdEvent::None);
    row("rcvd [CHAP Failure id= \"permission denied\"]", PppdEvent::None);
    row("rcvd [CHAP Failure id=0xf \"Access denied\"]", PppdEvent::None);
    row("rcvd [CHAP Failure id=0xf \"Permission denied\"]", PppdEvent::None);
    row("12:00 rcvd [CHAP Failure id=0xf \"permission denied\"]", PppdEvent::None);
    row("CHAP authentication failed: permission denied", PppdEvent::AuthenticationFailed);
    row("12:00 CHAP authentication failed: permission denied.", PppdEvent::AuthenticationFailed);
    row("CHAP authentication failed: Access denied", PppdEvent::None);
    row("PAP authentication failed", PppdEvent::None);
    row("sent [LCP TermReq id=0x2 \"Failed to authenticate ourselves to peer\"]",
        PppdEvent::AuthenticationFailed);
    row("12:00 sent [LCP TermReq id=0x2 \"Failed to authenticate ourselves to peer\"]",
        PppdEvent::AuthenticationFailed);
    row("sent [LCP TermReq id=0x2 \"User request\"]", PppdEvent::None);
    row("rcvd [LCP TermReq id=0x2 \"Failed to authenticate ourselves to peer\"]", PppdEvent::None);
    row("LCP terminated by peer (peer refused to authenticate)", PppdEvent::None);

    // The discovery, anywhere in the raw bytes.
    row("Timeout waiting for PADO packets", PppdEvent::DiscoveryTimeout);
    row("12:00 Timeout waiting for PADO packets.", PppdEvent::DiscoveryTimeout);
    row("timeout waiting for PADO packets", PppdEvent::None);
    row("Timeout waiting for PADS packets", PppdEvent::None);

    // The first that matches decides.
    row("Connect: ppp0 <--> nas0 CHAP authentication failed: permission denied", PppdEvent::Link);
    row("local IP address 1.2.3.4 CHAP authentication failed: permission denied",
        PppdEvent::LocalAddress);
    row("CHAP authentication failed: permission denied Timeout waiting for PADO packets",
        PppdEvent::AuthenticationFailed);

    // Foreign bytes, each one character; a zero byte ends nothing.
    row("", PppdEvent::None);
    row(QByteArray("a\0Timeout waiting for PADO packets", 34), PppdEvent::DiscoveryTimeout);
    row(QByteArray("\0Connect: ppp0 <--> nas0", 24), PppdEvent::None);
    row(QByteArray("Connect: ppp0 <--> nas0\0x", 25), PppdEvent::Link);
    row(QByteArray("x\0CHAP authentication failed: permission denied", 47),
        PppdEvent::AuthenticationFailed);
    row(QByteArray("x\0sent [LCP TermReq id=\0 \"Failed to authenticate ourselves to peer\"]", 68),
        PppdEvent::AuthenticationFailed);
    row("rcvd [CHAP Failure id=\xff\xc3\xe4\xfc\xf6 \"permission denied\"]",
        PppdEvent::AuthenticationFailed);
    row("rcvd [CHAP Failure id=\xc3\xa4\xc3\xa4\xc3\xa4 \"permission denied\"]", PppdEvent::None);
    row("sent [LCP TermReq id=\xff\xfe \"Failed to authenticate ourselves to peer\"]",
        PppdEvent::AuthenticationFailed);
    row("\xff\xc3 Timeout waiting for PADO packets \x80", PppdEvent::DiscoveryTimeout);
}

void PppdLineTest::aLineHasItsMeaning()
{
    QFETCH(QByteArray, line);
    QFETCH(int, event);
    QCOMPARE(nameOf(classify(line)), nameOf(PppdEvent(event)));
}

void PppdLineTest::theLinkPatternStandsAsWrittenAndIsMadeToMatch()
{
    const QString text
        = QStringLiteral("^Connect:\\s+[a-z]{2,4}[0-9}{1}\\s+<-->\\s+[a-z]{2,4}[0-9}{1}");
    QCOMPARE(linkPatternText(), text);

    const QRegExp asWritten(text); // why it cannot be used as it stands
    QVERIFY(!asWritten.isValid());
    QCOMPARE(asWritten.indexIn(QStringLiteral("Connect: ppp0 <--> nas0")), -1);
    QVERIFY(linkPattern().isValid());
    QVERIFY(localAddressPattern().isValid());
    QVERIFY(authenticationFailedPattern().isValid());
}

void PppdLineTest::noPieceOfADecisiveLineIsMistakenForIt()
{
    for (const char *text : {"Connect: ppp0 <--> nas0", "local  IP address 10.64.0.1",
             "rcvd [CHAP Failure id=0xf \"permission denied\"]",
             "CHAP authentication failed: permission denied",
             "sent [LCP TermReq id=0x2 \"Failed to authenticate ourselves to peer\"]",
             "Timeout waiting for PADO packets"}) {
        const QByteArray line(text);
        QVERIFY(classify(line) != PppdEvent::None);
        for (int i = 0; i < line.size(); ++i) {
            QCOMPARE(nameOf(classify(line.left(i))), "None");
        }
    }
}

void PppdLineTest::aLineOfAMegabyteIsClassified()
{
    const QByteArray filler(1024 * 1024, 'x');
    QCOMPARE(nameOf(classify(filler)), "None");
    QCOMPARE(nameOf(classify("Connect: ppp0 <--> nas0 " + filler)), "Link");
    QCOMPARE(nameOf(classify(filler + "CHAP authentication failed: permission denied")),
        "AuthenticationFailed");
    QCOMPARE(nameOf(classify(filler + "Timeout waiting for PADO packets")), "DiscoveryTimeout");
    QCOMPARE(nameOf(classify("Connect:" + QByteArray(1024 * 1024, ' '))), "None");
    QCOMPARE(nameOf(classify(QByteArray("sent [LCP TermReq id=").repeated(50000))), "None");
}

QTEST_APPLESS_MAIN(PppdLineTest)
#include "pppd_line_test.moc"
