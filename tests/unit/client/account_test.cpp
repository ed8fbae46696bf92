// SPDX-License-Identifier: MIT
// Which accounts the client lets through, and what it makes of pppd's files and lines.
#include "client/account_rules.h"
#include "client/ppp_files.h"
#include "client/pppd_explain.h"
#include "client/pppd_words.h"
#include "network/account_files.h"
#include "test_data.h"
#include "test_table.h"

#include <QRandomGenerator>
#include <QRegExp>
#include <QRegularExpression>
#include <QTest>

namespace {

const char *const goodPeer
    = "plugin pppoe.so\nnic-nas0\nuser \"me@isp\"\nnoauth\nupdetach\nnoipv6\n";

} // namespace

namespace {

QRegExp minimal(const char *pattern)
{
    QRegExp expression(QString::fromLatin1(pattern));
    expression.setMinimal(true);
    return expression;
}

/// The files before and after the daemon has replaced the account in them, and what is read then.
void checkStored(const QString &login, const QString &password)
{
    const QString user = encodedLogin(login);
    const QString secret = encodedPassword(password);
    const QString entry = QStringLiteral("\"%1\" * \"%2\" *");
    const QString others = QStringLiteral("\n\"x\" * \"y\" *\n# \"z\" * \"1\" *\n");
    const QRegExp first = minimal("^\"(.{1,50})\"\\s+\\*\\s+\"(.{1,50})\"\\s+\\*");
    QString secrets = entry.arg(QStringLiteral("old"), QStringLiteral("gone")) + others;
    for (int time = 0; time < 2; ++time) { // the second time in place of itself
        secrets.replace(first, entry.arg(user, secret));
        QCOMPARE(secrets, entry.arg(user, secret) + others);
    }
    QRegExp reading = minimal("\"(.{1,50})\"\\s+\\*\\s+\"(.{1,50})\"\\s+\\*");
    QCOMPARE(reading.indexIn(secrets), 0);
    QCOMPARE(decodedWord(reading.cap(1)), login);
    QCOMPARE(decodedWord(reading.cap(2)), password);

    QString peer = QStringLiteral("noauth\nuser \"old\"\nupdetach\n");
    for (int time = 0; time < 2; ++time) {
        peer.replace(minimal("user \".{1,50}\""), QStringLiteral("user \"%1\"").arg(user));
        QCOMPARE(peer, QStringLiteral("noauth\nuser \"%1\"\nupdetach\n").arg(user));
    }
    QCOMPARE(peerLogin(peer.toUtf8()), QString::fromLatin1(user.toUtf8()));

    const QByteArray written = withSecretsEntry("\"old\" * \"gone\" *\n# c\n", user, secret);
    QVERIFY(hasEntryAtStart(written));
    const SecretsEntry found = secretsEntries(written).constFirst();
    QCOMPARE(decodedWord(QString::fromUtf8(found.login)), login);
    QCOMPARE(decodedWord(QString::fromUtf8(found.password)), password);
}

} // namespace

class ClientAccountTest : public QObject
{
    Q_OBJECT

private slots:
    void whileOneTypesNothingIsSaidOfAnEmptyField()
    {
        const QString good = QStringLiteral("me");
        const QString bad = QStringLiteral("a\nb");
        TypedAccount typed = typedAccount(QString(), QString());
        QVERIFY(typed.loginObjection.isEmpty() && typed.passwordObjection.isEmpty());
        QVERIFY(!typed.canBeStored);
        QVERIFY(typedAccount(good, good).canBeStored);
        typed = typedAccount(bad, QString());
        QVERIFY(!typed.loginObjection.isEmpty() && typed.passwordObjection.isEmpty());
        typed = typedAccount(good, bad);
        QVERIFY(typed.loginObjection.isEmpty() && !typed.passwordObjection.isEmpty());
        QVERIFY(!typed.canBeStored);
        const QString fifty(50, QLatin1Char('x'));
        typed = typedAccount(fifty, fifty);
        QVERIFY2(typed.passwordObjection.contains(QLatin1String("line of")),
            qPrintable(typed.passwordObjection));
        QVERIFY(!typed.canBeStored);
    }

    void harmfulValuesAreRefused_data()
    {
        // No objection: it is let through.
        const auto row = table<QString, QString>("value", "objection");
        row("usual", "user@isp", "");
        row("fifty", QString(50, QLatin1Char('x')), "");
        row("blanks and signs", "a b $%&'#*", "");
        row("letters of other languages", QStringLiteral("müller"), "");
        row("empty", "", "is empty");
        row("fifty-one", QString(51, QLatin1Char('x')), "51 characters");
        row("line feed", "a\nplugin /tmp/x.so", "line feed");
        row("carriage return", "a\rb", "line feed");
        row("quote", "a\"b", "");
        row("backslash", "a\\1", "");
        row("forty-nine and a backslash", QString(49, QLatin1Char('x')) + QLatin1Char('\\'),
            "51 characters in pppd's files");
        row("a surrogate without its half", QString(QChar(0xD800)), "not valid text");
        row("beyond sixteen bits", QStringLiteral("\U0001F511"), "");
        row("escape", "a\x1b", "control character");
        row("NUL", QString(QStringLiteral("a") + QChar(0)), "control character");
        row("delete", "a\x7f", "control character");
        row("C1", QString(QChar(0x85)), "control character");
        row("broken UTF-8", QString::fromUtf8("a\xff"), "not valid text");
    }
    void harmfulValuesAreRefused()
    {
        QFETCH(QString, value);
        QFETCH(QString, objection);
        for (const Failure &found : {passwordObjection(value), loginObjection(value)}) {
            QCOMPARE(found.kind == FailureKind::None, objection.isEmpty());
            QVERIFY2(found.detail.contains(objection), qPrintable(found.detail));
            QVERIFY(value.size() < 2 || !found.detail.contains(value));
        }
    }

    void aPasswordThatNamesAFileIsRefused()
    {
        QVERIFY(passwordObjection(QStringLiteral("@/x"))
                    .detail.contains(QLatin1String("name of a file")));
        QVERIFY(!passwordObjection(QStringLiteral("@x/")));
        QVERIFY(!loginObjection(QStringLiteral("@/x")));
    }

    void anEntryThatIsReadInPiecesIsRefused()
    {
        const QString fifty(50, QLatin1Char('x'));
        QVERIFY(!accountObjection(fifty, fifty.left(40)));
        const QString objection = accountObjection(fifty, fifty.left(41)).detail;
        QVERIFY2(objection.contains(QLatin1String("100 bytes")), qPrintable(objection));
        QVERIFY(bool(accountObjection(fifty.left(26), QString(26, QChar(0x20AC)))));
    }

    void pppdsWordsAreReadAsPppdReadsThem_data()
    {
        // What is read was recorded from pppd.
        const auto row = table<QString, QString>("word", "read");
        row("plain", "a b#c", "a b#c");
        row("letters", "\\a\\b\\f\\n\\r\\s\\t", "\a\b\f\n\r \t");
        row("other signs", "\\_\\e\\\"\\\\\\8", "_e\"\\8");
        row("octal", "\\1\\42z\\0421\\1341", "\x01\"z\"1\\1");
        row("hexadecimal", "\\x5c1\\x5cg\\xag", "\\1\\g\ng");
        row("bytes of a character", "\\303\\244", QStringLiteral("ä"));
        row("zero ends it", "a\\0b", "a");
        row("no digits", "a\\xyz", "a");
        row("too large", "a\\400b", "a");
    }
    void pppdsWordsAreReadAsPppdReadsThem()
    {
        QFETCH(QString, word);
        QTEST(decodedWord(word), "read");
    }

    void whatWasSetIsWhatTheProviderSees()
    {
        QRandomGenerator random(20261121);
        const QString alphabet = QStringLiteral("\"\"\"\\\\\\  **0129xasn@#é²٣\u00a0\u2003");
        const auto text = [&](int most) {
            QString value;
            for (int left = random.bounded(1, most + 1); left > 0; --left) {
                value += alphabet.at(random.bounded(alphabet.size()));
            }
            return value;
        };
        int stored = 0;
        for (int round = 0; round < 4000; ++round) {
            const QString login = text(20);
            const QString password = text(20);
            if (loginObjection(login) || passwordObjection(password)
                || accountObjection(login, password)) {
                continue;
            }
            ++stored;
            checkStored(login, password);
        }
        QVERIFY2(stored > 3000, qPrintable(QString::number(stored)));
    }

    void onlyTheVeryBeginningCounts()
    {
        QVERIFY(hasEntryAtStart("\"a\" * \"b\" *\n# comment\n"));
        QVERIFY(hasEntryAtStart("\"a\" * \"b\" *"));
        QVERIFY(!hasEntryAtStart("# comment\n\"a\" * \"b\" *\n"));
        QVERIFY(!hasEntryAtStart("\n\"a\" * \"b\" *\n"));
        QVERIFY(!hasEntryAtStart(""));
        QVERIFY(!hasEntryAtStart("a * b *\n"));
    }

    void mendingMovesTheNewestEntryToTheBeginning_data()
    {
        const auto row = table<QByteArray, QByteArray>("before", "after");
        row("comments first", "# c\n\"a\" * \"b\" *\n", "\"a\" * \"b\" *\n# c\n");
        row("older entries of the login go",
            "# c\n\"a\" * \"1\" *\n\"x\" * \"y\" *\n\"a\" * \"2\" *\n",
            "\"a\" * \"2\" *\n# c\n\"x\" * \"y\" *\n");
        row("others' lines stay", "# c\nguest isp secret\n\"a\" * \"b\" *\n",
            "\"a\" * \"b\" *\n# c\nguest isp secret\n");
        row("no entry: a placeholder", "# c\n", "\"login\" * \"password\" *\n# c\n");
        row("empty: a placeholder", QByteArray(), "\"login\" * \"password\" *\n");
        row("bytes of another character set stay", "# \xe4\n\"\xfc\" * \"\xff\" *\n",
            "\"\xfc\" * \"\xff\" *\n# \xe4\n");
    }
    void mendingMovesTheNewestEntryToTheBeginning()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        after.insert(after.indexOf('\n') + 1, guardLines() + '\n');
        QCOMPARE(mendedSecrets(before), after);
        QVERIFY(hasEntryAtStart(after));
        // Lines that somebody has put above: there is still only one guard.
        QCOMPARE(mendedSecrets("# above\n" + after).count(guardLines()), 1);
    }

    void theGuardShieldsWhatFollowsFromAnEmptyAccount()
    {
        // Other clients may have the daemon store one; its pattern then looks for a value further
        // on.
        const QByteArray account = "\"\" * \"\" *\n";
        const QByteArray others = "\"d\" * \"e\" *\n";
        const QByteArray guarded = account + guardLines() + '\n' + others;
        QVERIFY(!withSecretsEntry(account + others, "a", "b").endsWith(others));
        QCOMPARE(withSecretsEntry(guarded, "a", "b"), guarded + "\"a\" * \"b\" *\n");
    }

    void aShippedPeerFileIsFittedAndKnownAgain()
    {
        const QByteArray pppoa = "# c\nplugin pppoatm.so\n8.35\nuser \"login\"\nnoauth\n";
        const QByteArray pppoe = "# c\nplugin pppoe.so\nnic-nas0\nuser \"login\"\nnoauth\n";
        const QList<QByteArray> shipped = {pppoe, pppoa};
        const QByteArray fitted = peerFromTemplate(pppoa, "me@isp", QStringLiteral("0.38"));
        QCOMPARE(fitted, QByteArray("# c\nplugin pppoatm.so\n0.38\nuser \"me@isp\"\nnoauth\n"));
        QCOMPARE(peerFromTemplate(pppoa, "", QString()), pppoa);
        for (const QByteArray &ours : {fitted, pppoa, pppoe, peerFromTemplate(pppoe, "x", {})}) {
            QVERIFY(isShippedPeer(ours, shipped));
        }
        for (const QByteArray &others :
            {fitted + "mtu 1400\n", QByteArray("plugin pppoatm.so\n"), QByteArray()}) {
            QVERIFY(!isShippedPeer(others, shipped));
        }
    }

    void peerFilesAreJudged_data()
    {
        // No fault: a good file.
        const auto row = table<QByteArray, bool, QString>("content", "isPppoe", "fault");
        const QByteArray good = goodPeer;
        const auto without = [&](const char *line) { return QByteArray(good).replace(line, ""); };
        row("good", good, true, "");
        row("nodetach is good, too", QByteArray(good).replace("updetach\nnoipv6\n", "nodetach\n"),
            true, "");
        row("no plugin", without("plugin pppoe.so\n"), true, "plugin pppoe.so");
        row("a comment is no option", QByteArray(good).replace("plugin", "#plugin"), true,
            "plugin pppoe.so");
        row("no interface", without("nic-nas0\n"), true, "nic-nas0");
        row("no updetach", without("updetach\n"), true, "updetach");
        row("no noipv6", without("noipv6\n"), true, "noipv6");
        row("no noauth", without("noauth\n"), true, "noauth");
        row("no user", without("user \"me@isp\"\n"), true, "user");
        row("logfile", good + "logfile /tmp/x\n", true, "logfile");
        row("PPPoE's file for PPPoA", good, false, "pppoatm.so");
        const QByteArray pppoa = "plugin pppoatm.so\n8.35\nuser \"u\"\nnoauth\nnodetach\n";
        row("PPPoA", pppoa, false, "");
        row("another circuit", QByteArray(pppoa).replace("8.35", "1.32"), false, "8.35");
    }
    void peerFilesAreJudged()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, isPppoe);
        QFETCH(QString, fault);
        const PeerKind kind = isPppoe ? PeerKind::Bridge : PeerKind::Atm;
        QString said;
        for (const Fact &found : peerFaults(content, kind, QStringLiteral("8.35"))) {
            said += found.text + QLatin1Char(' ');
        }
        QCOMPARE(said.isEmpty(), fault.isEmpty());
        QVERIFY2(said.contains(fault), qPrintable(said));
    }

    void aModemWithItsOwnInterfaceNeedsNeitherBridgeNorCircuit()
    {
        const QByteArray peer = "nic-dsl0\nuser \"me\"\nnoauth\nupdetach\nnoipv6\n";
        QVERIFY(peerFaults(peer, PeerKind::OwnInterface, QString()).isEmpty());
        QCOMPARE(peerFaults("user me\nnoauth\n", PeerKind::OwnInterface, QString()).size(), 1);
    }

    void theLoginOfAPeerFileIsFound()
    {
        QCOMPARE(peerLogin(goodPeer), QStringLiteral("me@isp"));
        QCOMPARE(peerLogin("# user \"x\"\n"), QString());
        QCOMPARE(peerLogin("  user me\n"), QStringLiteral("me"));
    }

    void recordedAttemptsAreExplained_data()
    {
        const auto row = table<QString>("meaning");
        const QString refused = QStringLiteral("The provider refused login or password.");
        const QString silent = QStringLiteral("No concentrator of the provider answered.");
        row("b2-success-then-sigkill", "The link came up.");
        row("c1-chap-wrong-password", refused);
        row("c3-pap-wrong-password", refused);
        row("c4-mschapv2-wrong-password", refused);
        row("c5-chap-unknown-user", refused);
        row("c7-chap-permission-denied", refused);
        row("c2-chap-no-secret-for-user",
            "No password is stored for the login that the peer file names.");
        row("d1-no-concentrator", silent);
        row("j5-pppoe-nas0-no-far-end", silent);
        row("e1-peer-hangs-up", "The provider ended the connection.");
        row("f1-no-noauth-in-peer", "pppd demanded that the provider authenticates itself.");
        row("i3-pppoa-no-device", "There is no ATM device: the modem or its driver is missing.");
        row("j6-pppoa-no-answer", "The far end did not answer the PPP negotiation.");
    }
    void recordedAttemptsAreExplained()
    {
        QFETCH(QString, meaning);
        const QByteArray text
            = testData(QStringLiteral("pppd/%1.txt").arg(QLatin1String(QTest::currentDataTag())));
        QByteArray log;
        for (const QByteArray &line : text.split('\n')) {
            log += "21-11-2026 01:02:03 Norvix_Daemon::debugConnecting(): " + line + '\n';
        }
        QCOMPARE(explainPppd(pppdLinesOfLog(log)).meaning, meaning);
    }

    void onlyTheNewestAttemptCounts()
    {
        const QByteArray prefix = "21-11-2026 01:02:03 Norvix_Daemon::debugConnecting(): ";
        const QByteArray log = prefix + "Plugin pppoe.so loaded.\n" + prefix
            + "Timeout waiting for PADO packets\nother line\n" + prefix
            + "Plugin pppoe.so loaded.\n" + prefix + "local  IP address 10.0.0.1\n";
        QCOMPARE(pppdLinesOfLog(log).size(), 2);
        QVERIFY(explainPppd(pppdLinesOfLog(log)).isGood);
    }

    void silenceIsNotExplained() { QVERIFY(explainPppd({QStringLiteral("x")}).line.isEmpty()); }
};

QTEST_GUILESS_MAIN(ClientAccountTest)
#include "account_test.moc"
