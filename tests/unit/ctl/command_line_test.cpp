// SPDX-License-Identifier: MIT
// From the words on the command line to a command of the client.
#include "ctl/command_line.h"

#include <QTest>

class ClientCommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void wordsAreUnderstood_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("a command") << "status"
                                   << "status" << QStringList{} << QStringList{};
        QTest::newRow("a switch") << "status --json"
                                  << "status" << QStringList{"json="} << QStringList{};
        QTest::newRow("an option before the command")
            << "--color never status"
            << "status" << QStringList{"color=never"} << QStringList{};
        QTest::newRow("a command of a group")
            << "line set --vpi 8 --vci=35"
            << "line set" << QStringList{"vci=35", "vpi=8"} << QStringList{};
        QTest::newRow("a group alone shows") << "line"
                                             << "line show" << QStringList{} << QStringList{};
        QTest::newRow("a letter") << "connect -w -t 5"
                                  << "connect" << QStringList{"timeout=5", "wait="}
                                  << QStringList{};
        QTest::newRow("an argument") << "idle 30"
                                     << "idle" << QStringList{} << QStringList{"30"};
        QTest::newRow("an argument that looks like an option")
            << "account set -- -user"
            << "account set" << QStringList{} << QStringList{"-user"};
        QTest::newRow("the options end before the command")
            << "--terse -- line show"
            << "line show" << QStringList{"terse="} << QStringList{};
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
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("error");
        QTest::newRow("an unknown command") << "frobnicate"
                                            << "There is no command “frobnicate”";
        QTest::newRow("an unknown command of a group") << "line frob"
                                                       << "There is no command “line frob”";
        QTest::newRow("an unknown option") << "status --frob"
                                           << "There is no option “--frob” here";
        QTest::newRow("an option of another command") << "connect --json"
                                                      << "There is no option “--json” here";
        QTest::newRow("a missing value") << "connect --timeout"
                                         << "“--timeout” needs a value";
        QTest::newRow("a value too many") << "connect --wait=1"
                                          << "“--wait” takes no value";
        QTest::newRow("a value that is not possible") << "line set --protocol IPoE"
                                                      << "Possible are: PPPoE PPPoA";
        QTest::newRow("a word too many") << "status now"
                                         << "“now” is one word too many";
        QTest::newRow("both forms") << "status --json --terse"
                                    << "either --json or --terse";
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
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("number"); // -1: refused
        QTest::newRow("least") << "0" << 0;
        QTest::newRow("most") << "255" << 255;
        QTest::newRow("too many") << "256" << -1;
        QTest::newRow("negative") << "-1" << -1;
        QTest::newRow("signed") << "+1" << -1;
        QTest::newRow("blank") << " 1" << -1;
        QTest::newRow("empty") << "" << -1;
        QTest::newRow("hexadecimal") << "0x10" << -1;
        QTest::newRow("beyond an integer") << "99999999999" << -1;
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
