// SPDX-License-Identifier: MIT
// The text of the resolver configuration: what the resolver would see, and what a repair writes.
#include "support/resolver/resolv_conf.h"
#include "test_table.h"

#include <QtTest>

namespace {

const char comment[] = "# Written by a test.";

ResolvConf parsed(const QByteArray &content)
{
    return ResolvConf(content, ResolvConf::nameserverLine(), ResolvConf::writerLine(comment));
}

} // namespace

class TestResolvConf : public QObject
{
    Q_OBJECT

private slots:
    void usableServerIsFound_data();
    void usableServerIsFound();
    void addressFitToBeWritten_data();
    void addressFitToBeWritten();
    void serversReplaceTheOldOnes_data();
    void serversReplaceTheOldOnes();
    void textIsPrintedByteForByte();
    void secondRepairChangesNothing();
};

void TestResolvConf::usableServerIsFound_data()
{
    const auto row = table<QByteArray, bool>("content", "usable");

    const auto good
        = [&](const char *name, const QByteArray &content) { row(name, content, true); };
    const auto bad
        = [&](const char *name, const QByteArray &content) { row(name, content, false); };

    good("plain", "nameserver 192.0.2.1\n");
    good("without a line feed", "nameserver 192.0.2.1");
    good("several blanks and tabs", "nameserver \t  192.0.2.1\t \n");
    good("text after the address", "nameserver 192.0.2.1 # first\n");
    good("after other lines",
        "# comment\nsearch example.org\noptions rotate\nnameserver 192.0.2.1\n");
    good("after a wrong one", "nameserver 0.0.0.0\nnameserver 192.0.2.1\n");
    good("loopback", "nameserver 127.0.0.53\n");
    good("IPv6 loopback", "nameserver ::1\n");
    good("IPv6", "nameserver 2001:db8::53\n");
    good("IPv6 with a zone", "nameserver fe80::1%eth0\n");
    good("IPv6 with an empty zone", "nameserver fe80::1%\n");
    good("IPv4 in IPv6", "nameserver ::ffff:192.0.2.1\n");
    good("hexadecimal", "nameserver 0xc0000201\n");
    good("octal", "nameserver 0300.0.2.1\n");
    good("fewer parts", "nameserver 127.1\n");
    good("a NUL byte after the address", QByteArray("nameserver 192.0.2.1\0x\n", 23));

    bad("empty file", "");
    bad("no server", "search example.org\n");
    bad("hash comment", "# nameserver 192.0.2.1\n");
    bad("hash comment without blank", "#nameserver 192.0.2.1\n");
    bad("semicolon comment", ";nameserver 192.0.2.1\n");
    bad("blank before the keyword", " nameserver 192.0.2.1\n");
    bad("tab before the keyword", "\tnameserver 192.0.2.1\n");
    bad("other letter case", "NameServer 192.0.2.1\nNAMESERVER 192.0.2.2\n");
    bad("longer keyword", "nameservers 192.0.2.1\n");
    bad("no blank after the keyword", "nameserver192.0.2.1\n");
    bad("carriage return", "nameserver 192.0.2.1\r\n");
    bad("vertical tab after the address", "nameserver 192.0.2.1\v\n");
    bad("address on the next line", "nameserver\n192.0.2.1\n");
    bad("no address", "nameserver \nnameserver\n");
    bad("name", "nameserver dns.example.org\n");
    bad("comment as address", "nameserver # 192.0.2.1\n");
    bad("number too large", "nameserver 256.0.2.1\n");
    bad("five parts", "nameserver 192.0.2.1.1\n");
    bad("port", "nameserver 192.0.2.1:53\n");
    bad("brackets", "nameserver [2001:db8::53]\n");
    bad("zone after IPv4", "nameserver 192.0.2.1%eth0\n");
    bad("unspecified", "nameserver 0.0.0.0\n");
    bad("unspecified as a number", "nameserver 0\n");
    bad("IPv6 unspecified", "nameserver ::\n");
    bad("IPv6 unspecified with a zone", "nameserver ::%1\n");
    bad("unspecified in IPv6", "nameserver ::ffff:0.0.0.0\n");
    bad("multicast", "nameserver 224.0.0.251\nnameserver 239.255.255.255\n");
    bad("IPv6 multicast", "nameserver ff02::fb\n");
    bad("broadcast", "nameserver 255.255.255.255\n");
    bad("NUL byte in the keyword", QByteArray("nameserver\0 192.0.2.1\n", 22));
    bad("NUL byte before the keyword", QByteArray("\0nameserver 192.0.2.1\n", 22));
    bad("byte order mark", "\xef\xbb\xbfnameserver 192.0.2.1\n");
}

void TestResolvConf::usableServerIsFound()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, usable);
    QCOMPARE(parsed(content).hasUsableServer(), usable);
}

void TestResolvConf::addressFitToBeWritten_data()
{
    const auto row = table<QString, bool>("address", "fit");
    for (const char *address :
        {"192.0.2.1", "127.0.0.1", "2001:db8::53", "fe80::1%eth0", "fe80::1%2", "::1"}) {
        row(address, QString::fromLatin1(address), true);
    }
    for (const char *address : {"", " ", "192.0.2.1 ", " 192.0.2.1", "192.0.2.1\n", "192.0.2",
             "0xc0000201", "0.0.0.0", "255.255.255.255", "224.0.0.1", "::", "ff02::1", "fe80::1%",
             "fe80::1%a b", "fe80::1%a\nb", "fe80::1%a%b", "fe80::1%a/b",
             "fe80::1%0123456789abcdef", "192.0.2.1%1", "dns.example.org", "::ffff:0.0.0.0"}) {
        row(address, QString::fromLatin1(address), false);
    }
    row("NUL byte", QString::fromLatin1("192.0.2.1\0x", 11), false);
    row("not ASCII", QStringLiteral(u"fe80::1%\u00e9"), false);
}

void TestResolvConf::addressFitToBeWritten()
{
    QFETCH(QString, address);
    QFETCH(bool, fit);
    QCOMPARE(isServerAddress(address), fit);
}

void TestResolvConf::serversReplaceTheOldOnes_data()
{
    const auto row = table<QByteArray, QByteArray>("content", "expected");

    const QByteArray begin = QByteArray(comment) + "\n";
    const QByteArray two = "nameserver 192.0.2.1\nnameserver 2001:db8::1\n";
    row("empty file", QByteArray(), begin + two);
    row("only old servers", "nameserver 0.0.0.0\nnameserver x\n", begin + two);
    row("other lines stay in place",
        "# mine\nsearch example.org\nnameserver 0.0.0.0\noptions rotate\n",
        begin + "# mine\nsearch example.org\n" + two + "options rotate\n");
    row("servers all over the file",
        "nameserver 10.0.0.1\nsearch a\nnameserver 10.0.0.2\noptions b\nnameserver c",
        begin + two + "search a\noptions b\n");
    row("no server: at the end", "search a\n", begin + "search a\n" + two);
    row("last line without a line feed", "search a", begin + "search a\n" + two);
    row("last other line without a line feed stays so", "nameserver x\nsearch a",
        begin + two + "search a");
    row("the writer's comment once",
        QByteArray(comment) + "\nsearch a\n" + comment + "\nnameserver x\n" + comment,
        begin + "search a\n" + two);
    row("a comment like the writer's stays", QByteArray(comment) + "!\n",
        begin + comment + "!\n" + two);
    row("lines that the resolver does not take for servers stay",
        "NAMESERVER 10.0.0.1\n nameserver 10.0.0.2\n#nameserver 10.0.0.3\nnameserver\n",
        begin + "NAMESERVER 10.0.0.1\n nameserver 10.0.0.2\n#nameserver 10.0.0.3\nnameserver\n"
            + two);
    row("foreign bytes stay", QByteArray("# caf\xe9 \0 \xff\r\n\n\n", 14),
        begin + QByteArray("# caf\xe9 \0 \xff\r\n\n\n", 14) + two);
}

void TestResolvConf::serversReplaceTheOldOnes()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, expected);
    ResolvConf configuration = parsed(content);
    configuration.setServers({QStringLiteral("192.0.2.1"), QStringLiteral("2001:db8::1")}, comment);
    QCOMPARE(configuration.toText(), expected);
    QVERIFY(configuration.hasUsableServer());
    QVERIFY(parsed(expected).hasUsableServer());
}

void TestResolvConf::textIsPrintedByteForByte()
{
    QByteArray content = "nameserver 192.0.2.1\r\n\n\tsearch a\nnameserver";
    for (int value = 0; value < 256; ++value) {
        content.append(char(value));
    }
    for (int size = 0; size <= content.size(); ++size) {
        QCOMPARE(parsed(content.left(size)).toText(), content.left(size));
    }
}

void TestResolvConf::secondRepairChangesNothing()
{
    const QStringList servers = {QStringLiteral("192.0.2.1"), QStringLiteral("192.0.2.2")};
    ResolvConf first = parsed("search a\nnameserver 0.0.0.0\noptions b\n");
    first.setServers(servers, comment);
    ResolvConf second = parsed(first.toText());
    second.setServers(servers, comment);
    QCOMPARE(second.toText(), first.toText());
}

QTEST_APPLESS_MAIN(TestResolvConf)
#include "resolv_conf_test.moc"
