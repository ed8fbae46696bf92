// SPDX-License-Identifier: MIT
// What the command-line client makes of paragraphs and values.
#include "client/signal_text.h"
#include "ctl/screen/paragraph.h"
#include "ctl/screen/remedy_text.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"
#include "test_table.h"

#include <QJsonDocument>
#include <QTest>

class CtlTextTest : public QObject
{
    Q_OBJECT

private slots:
    void paragraphsWrapAtBlanks_data()
    {
        const auto row = table<QString, int, QStringList>("text", "indent", "lines");
        row("nothing", QString(), 0, QStringList{QString()});
        row("exactly the width", "12345 6789", 0, QStringList{"12345 6789"});
        row("one more", "12345 67890", 0, QStringList{"12345", "67890"});
        row("a long word stays whole", "a 12345678901 b", 0, QStringList{"a", "12345678901", "b"});
        row("line feeds stay", "a\nb", 0, QStringList{"a", "b"});
        row("later lines are indented", "1234 5678 90", 2, QStringList{"1234 5678", "  90"});
    }
    void paragraphsWrapAtBlanks()
    {
        QFETCH(QString, text);
        QFETCH(int, indent);
        QFETCH(QStringList, lines);
        QCOMPARE(wrapped(text, 10, indent), lines);
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
};

QTEST_GUILESS_MAIN(CtlTextTest)
#include "text_test.moc"
