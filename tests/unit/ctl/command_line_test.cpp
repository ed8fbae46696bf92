// SPDX-License-Identifier: MIT
// From the words on the command line to a command of the client.
#include "ctl/command_line.h"
#include "test_table.h"

#include <QTest>

class ClientCommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void wordsAreUnderstood_data()
    {
        const auto row = table<QString, QString, QStringList, QStringList>(
            "words", "path", "options", "arguments");
        row("a command", "status", "status", QStringList{}, QStringList{});
        row("a switch", "status --json", "status", QStringList{"json="}, QStringList{});
        row("an option before the command", "--color never status", "status",
            QStringList{"color=never"}, QStringList{});
        row("a command of a group", "line set --vpi 8 --vci=35", "line set",
            QStringList{"vci=35", "vpi=8"}, QStringList{});
        row("a group alone shows", "line", "line show", QStringList{}, QStringList{});
        row("a letter", "connect -w -t 5", "connect", QStringList{"timeout=5", "wait="},
            QStringList{});
        row("an argument", "idle 30", "idle", QStringList{}, QStringList{"30"});
        row("an argument that looks like an option", "account set -- -user", "account set",
            QStringList{}, QStringList{"-user"});
        row("the options end before the command", "--terse -- line show", "line show",
            QStringList{"terse="}, QStringList{});
    }
    void wordsAreUnderstood()
    {
        QFETCH(QString, words);
        QFETCH(QString, path);
        QFETCH(QStringList, options);
        QFETCH(QStringList, arguments);
        const ParsedLine parsed = parseCommandLine(words.split(QLatin1Char(' ')));
        QCOMPARE(parsed.error, QString());
        QVERIFY(parsed.invocation.command != nullptr);
        QCOMPARE(QString::fromLatin1(parsed.invocation.command->path), path);
        QStringList found;
        const QMap<QString, QString> &map = parsed.invocation.options;
        for (auto option = map.begin(); option != map.end(); ++option) {
            found.append(option.key() + QLatin1Char('=') + option.value());
        }
        QCOMPARE(found, options);
        QCOMPARE(parsed.invocation.arguments, arguments);
    }

    void whatIsNotUnderstoodIsSaid_data()
    {
        const auto row = table<QString, QString>("words", "error");
        row("an unknown command", "frobnicate", "There is no command “frobnicate”");
        row("an unknown command of a group", "line frob", "There is no command “line frob”");
        row("an unknown option", "status --frob", "There is no option “--frob” here");
        row("an option of another command", "connect --json", "There is no option “--json” here");
        row("a missing value", "connect --timeout", "“--timeout” needs a value");
        row("a value too many", "connect --wait=1", "“--wait” takes no value");
        row("a value that is not possible", "line set --protocol IPoE",
            "Possible are: PPPoE PPPoA");
        row("a word too many", "status now", "“now” is one word too many");
        row("both forms", "status --json --terse", "either --json or --terse");
    }
    void whatIsNotUnderstoodIsSaid()
    {
        QFETCH(QString, words);
        QFETCH(QString, error);
        const ParsedLine parsed = parseCommandLine(words.split(QLatin1Char(' ')));
        QVERIFY2(parsed.error.contains(error), qPrintable(parsed.error));
    }

    void aGroupWithoutACommandThatShowsIsNamed()
    {
        QVERIFY(isGroup(QStringLiteral("account")));
        QVERIFY(!isGroup(QStringLiteral("status")));
        QVERIFY(!isGroup(QStringLiteral("acc")));
    }

    void numbersAreDigitsWithinTheirRange_data()
    {
        // -1: refused.
        const auto row = table<QString, int>("text", "number");
        row("least", "0", 0);
        row("most", "255", 255);
        row("too many", "256", -1);
        row("negative", "-1", -1);
        row("signed", "+1", -1);
        row("blank", " 1", -1);
        row("empty", "", -1);
        row("hexadecimal", "0x10", -1);
        row("beyond an integer", "99999999999", -1);
    }
    void numbersAreDigitsWithinTheirRange()
    {
        QFETCH(QString, text);
        QFETCH(int, number);
        QCOMPARE(wholeNumber(text, 0, 255).value_or(-1), number);
    }

    void noTwoOptionsOfACommandShareNameOrLetter()
    {
        for (const Command &command : commandTable()) {
            QStringList seen;
            for (const Option &option : optionsOf(command)) {
                QVERIFY2(!seen.contains(QLatin1String(option.name)), command.path);
                seen.append(QLatin1String(option.name));
                if (option.letter != 0) {
                    const QString letter(QLatin1Char(option.letter));
                    QVERIFY2(!seen.contains(letter), command.path);
                    seen.append(letter);
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(ClientCommandLineTest)
#include "command_line_test.moc"
