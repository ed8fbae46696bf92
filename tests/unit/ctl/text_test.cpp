// SPDX-License-Identifier: MIT
// What the command-line client makes of numbers, paragraphs and values.
#include "client/signal_text.h"
#include "client/text_format.h"
#include "ctl/screen/remedy_text.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

#include <QJsonDocument>
#include <QTest>

class ClientTextTest : public QObject
{
    Q_OBJECT

private slots:
    void bytesHaveTheUnitThatFits_data()
    {
        QTest::addColumn<double>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << 0.0 << "0 B";
        QTest::newRow("just below a unit") << 999.0 << "999 B";
        QTest::newRow("a unit") << 1000.0 << "1.0 kB";
        QTest::newRow("rounding never shows a thousand") << 999950.0 << "1.0 MB";
        QTest::newRow("all that 32 bits hold") << 4294967295.0 << "4.3 GB";
    }
    void bytesHaveTheUnitThatFits()
    {
        QFETCH(double, bytes);
        QFETCH(QString, text);
        QCOMPARE(bytesText(bytes), text);
        QCOMPARE(rateText(bytes), text + QLatin1String("/s"));
    }

    void timeGoesBeyondADay()
    {
        QCOMPARE(clockText(0), QStringLiteral("00:00:00"));
        QCOMPARE(clockText(3723), QStringLiteral("01:02:03"));
        QCOMPARE(clockText(100 * 3600), QStringLiteral("100:00:00"));
    }

    void paragraphsWrapAtBlanks_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("indent");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("nothing") << QString() << 0 << QStringList{QString()};
        QTest::newRow("exactly the width") << "12345 6789" << 0 << QStringList{"12345 6789"};
        QTest::newRow("one more") << "12345 67890" << 0 << QStringList{"12345", "67890"};
        QTest::newRow("a long word stays whole")
            << "a 12345678901 b" << 0 << QStringList{"a", "12345678901", "b"};
        QTest::newRow("line feeds stay") << "a\nb" << 0 << QStringList{"a", "b"};
        QTest::newRow("later lines are indented")
            << "1234 5678 90" << 2 << QStringList{"1234 5678", "  90"};
    }
    void paragraphsWrapAtBlanks()
    {
        QFETCH(QString, text);
        QFETCH(int, indent);
        QFETCH(QStringList, lines);
        QCOMPARE(wrapped(text, 10, indent), lines);
    }

    void foreignTextCanNotSteerTheTerminal()
    {
        QCOMPARE(printable(QStringLiteral("a\x1b[2Jb\r")), QStringLiteral("a\uFFFD[2Jb\uFFFD"));
        for (const ushort sign : {0x0, 0x1b, 0x7f, 0x85, 0x9b, 0x61c, 0x200e, 0x200f, 0x2028,
                 0x202a, 0x202e, 0x2066, 0x2069}) {
            QCOMPARE(printable(QChar(sign)), QStringLiteral("\uFFFD"));
        }
        const QString harmless = QStringLiteral("é “€” \u200d\u2027\u202f\u2065");
        QCOMPARE(printable(harmless), harmless);
    }

    void linesKeepTheirFeedsAndOurOwnSequences()
    {
        const QString text = QStringLiteral("\x1b[1ma\tb\n\x1b[2Jc\x1b[1mz");
        QCOMPARE(printableLines(text), QStringLiteral("\uFFFD[1ma\tb\n\uFFFD[2Jc\uFFFD[1mz"));
        QCOMPARE(printableLines(text, {QStringLiteral("\x1b[1m")}),
            QStringLiteral("\x1b[1ma\tb\n\uFFFD[2Jc\x1b[1mz"));
    }

    void jsonEscapesWhatSteers()
    {
        const QJsonObject object = {{QStringLiteral("a"), QStringLiteral("x\u009b\u202e\ny")}};
        QCOMPARE(jsonText(object, true), QStringLiteral("{\"a\":\"x\\u009b\\u202e\\ny\"}"));
        QCOMPARE(QJsonDocument::fromJson(jsonText(object, false).toUtf8()).object(), object);
    }

    void dotsInKeysMakeObjects()
    {
        Report report;
        report.add(QStringLiteral("a.b"), 1);
        report.add(QStringLiteral("a.c.d"), true);
        report.add(QStringLiteral("e"), QJsonValue());
        const QJsonObject expected
            = {{QStringLiteral("a"),
                   QJsonObject{{QStringLiteral("b"), 1},
                       {QStringLiteral("c"), QJsonObject{{QStringLiteral("d"), true}}}}},
                {QStringLiteral("e"), QJsonValue()}};
        QCOMPARE(report.toJson(), expected);
        QCOMPARE(report.toTerse(), (QStringList{"a.b=1", "a.c.d=true", "e="}));
    }

    void terseValuesStayOnOneLine()
    {
        QCOMPARE(terseText(QStringLiteral("a\nb\tc")), QStringLiteral("a b c"));
        QCOMPARE(terseText(QJsonArray{1, QStringLiteral("x")}), QStringLiteral("1,x"));
        QCOMPARE(terseText(4294967295.0), QStringLiteral("4294967295"));
    }

    void tablesAlignAndWrapTheirLastColumn()
    {
        Table table(QStringLiteral("rows"), {QStringLiteral("a"), QStringLiteral("b")},
            {QStringLiteral("A"), QStringLiteral("B")});
        table.add({QStringLiteral("long name"), QStringLiteral("one two three four five six")});
        QCOMPARE(table.toHuman(32),
            (QStringList{"A          B", "long name  one two three four\n           five six"}));
        QCOMPARE(table.toTerse(), QStringList{"long name\tone two three four five six"});
    }

    void everySignalHasASentence_data()
    {
        QTest::addColumn<QString>("signal");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("text");
        QTest::newRow("speed") << "transmissionSpeed" << QVariantList{1500u, 20u}
                               << "speed: 1.5 kB/s down, 20 B/s up";
        QTest::newRow("totals") << "transmissionBytes" << QVariantList{2e6, 1.0}
                                << "totals: 2.0 MB received, 1 B sent";
        QTest::newRow("time") << "connectionTime" << QVariantList{1, 2, 3}
                              << "connected for 01:02:03";
        QTest::newRow("state") << "connectionState" << QVariantList{2}
                               << "connection state: not connected";
        QTest::newRow("a percent sign in a value")
            << "modemPlugged" << QVariantList{"%1 %2"} << "modem plugged: %1 %2";
        QTest::newRow("an escape sequence in a value")
            << "modemPlugged" << QVariantList{"\x1b[2J"} << "modem plugged: \uFFFD[2J";
        QTest::newRow("success") << "settingOpenDNS" << QVariantList{true}
                                 << "writing the OpenDNS resolvers: success";
        QTest::newRow("one that is not known")
            << "somethingNew" << QVariantList{7, "x"} << "somethingNew 7 x";
    }
    void everySignalHasASentence()
    {
        QFETCH(QString, signal);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, text);
        QCOMPARE(signalText(signal, arguments), text);
    }

    void everySignalOfTheInterfaceHasOneOfItsOwn()
    {
        for (const BusSignal &signal : daemonSignals) {
            const QString name = QLatin1String(signal.name);
            const QString text = signalText(name, {1, 2, 3});
            QVERIFY2(!text.startsWith(name + QLatin1Char(' ')), signal.name);
        }
    }

    void aNewModemsSentenceNamesTheCommand()
    {
        const QString name = QStringLiteral("%1 modem");
        QCOMPARE(signalText(QLatin1String(DaemonSignal::newModemPlugged), {name}),
            QStringLiteral("new modem plugged: %1 modem"));
        QCOMPARE(signalWithRemedy(QLatin1String(DaemonSignal::newModemPlugged), {name}),
            QStringLiteral("new modem plugged: %1 modem – “norvixctl modem adopt” takes it into "
                           "use"));
        QCOMPARE(signalWithRemedy(QLatin1String(DaemonSignal::modemUnplugged), {}),
            signalText(QLatin1String(DaemonSignal::modemUnplugged), {}));
    }

    void argumentsAreNamedAsInTheInterfaceDescription()
    {
        const QJsonObject expected = {{QStringLiteral("rx"), 1}, {QStringLiteral("tx"), 2}};
        QCOMPARE(signalArguments(QStringLiteral("transmissionErrors"), {1u, 2u}), expected);
    }
};

QTEST_GUILESS_MAIN(ClientTextTest)
#include "text_test.moc"
