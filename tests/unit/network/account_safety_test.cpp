// SPDX-License-Identifier: MIT
// What may go into pppd's files without becoming an option of a pppd that runs as root.
#include "network/account_safety.h"

#include "network/account_files.h"
#include "test_table.h"

#include <QRandomGenerator>
#include <QtTest>

Q_DECLARE_METATYPE(AccountFault)

namespace {

const QByteArray entryFirst = "\"login\" * \"password\" *\n# rest\nother * secret *\n";
const QByteArray peerFile = "plugin pppoe.so\nnic-nas0\nuser \"login\"\nnoauth\n";

QByteArrayList textsOf(const QList<PppdWord> &words)
{
    QByteArrayList texts;
    for (const PppdWord &word : words) {
        texts.append((word.startsLine ? "^" : "") + word.text);
    }
    return texts;
}

} // namespace

class TestAccountSafety : public QObject
{
    Q_OBJECT

private slots:
    void wordsAreCutAsPppdCutsThem_data();
    void wordsAreCutAsPppdCutsThem();
    void wordsAreTheSameInTextAndPlaceTogether();
    void valuesAreJudged_data();
    void valuesAreJudged();
    void anEscapedQuotationMarkMayBeInAPassword_data();
    void anEscapedQuotationMarkMayBeInAPassword();
    void aValueThatNamesThePreviousAccountIsRefused();
    void aPasswordThatNamesAFileToPppdIsRefused();
    void whatAnEscapedQuotationMarkLeftBehindIsNotLetOut();
    void aFileThatDoesNotEndInALineFeedIsNotGluedTo();
    void aLoginDoesNotBecomeAnOptionBehindOneWithoutItsValue();
    void aLoginLineThatIsOnlyACommentDoesNotCount();
    void whateverIsAcceptedChangesNothingButTheAccount();
};

void TestAccountSafety::wordsAreCutAsPppdCutsThem_data()
{
    const auto row = table<QByteArray, QByteArrayList>("content", "words");
    row("nothing", QByteArray(), QByteArrayList());
    row("options", peerFile,
        QByteArrayList{"^plugin", "pppoe.so", "^nic-nas0", "^user", "login", "^noauth"});
    row("secrets", entryFirst,
        QByteArrayList{"^login", "*", "password", "*", "^other", "*", "secret", "*"});
    row("comment after a word", "a # b\n c", QByteArrayList{"^a", "^c"});
    row("comment glued to a word", "a#b\nc", QByteArrayList{"^a", "^c"});
    row("underscore", "a_b c", QByteArrayList{"^a_b", "c"});
    row("number sign in quotes", "\"a # b\" c", QByteArrayList{"^a # b", "c"});
    row("other quotes", "'a \" b' c", QByteArrayList{"^a \" b", "c"});
    row("quoted line feed", "\"a\nb\" c", QByteArrayList{"^a\nb", "c"});
    row("escaped quotation mark", "\"a\\\" b\" c", QByteArrayList{"^a\\\" b", "c"});
    row("escaped blank", "a\\ b c", QByteArrayList{"^a\\ b", "c"});
    row("never ending", "\"a\\\"\nb c\n", QByteArrayList{"^a\\\"\nb c\n"});
    row("glued", "\"a\"b", QByteArrayList{"^a", "b"});
    row("up to a zero byte", QByteArray("a b\0c", 5), QByteArrayList{"^a", "b"});
    row("last backslash", "a\\", QByteArrayList{"^a\\"});
}

void TestAccountSafety::wordsAreCutAsPppdCutsThem()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArrayList, words);
    QCOMPARE(textsOf(pppdWords(content)), words);
}

void TestAccountSafety::wordsAreTheSameInTextAndPlaceTogether()
{
    const PppdWord word{"user", true};
    QVERIFY(word == (PppdWord{"user", true}));
    QVERIFY(!(word == (PppdWord{"user", false})));
    QVERIFY(!(word == (PppdWord{"noauth", true})));
}

void TestAccountSafety::valuesAreJudged_data()
{
    const auto row = table<QString, AccountFault>("value", "fault");
    row("usual", "user@isp.example", AccountFault::None);
    row("blank, number sign, quote", "a b#c'd", AccountFault::None);
    row("50 characters", QString(50, 'x'), AccountFault::None);
    row("26 umlauts", QString(26, QChar(0xe4)), AccountFault::None);
    row("encoded quotation mark", "a\\042b", AccountFault::None);
    row("two backslashes", "a\\\\b", AccountFault::None);
    row("two backslashes at the end", "a\\\\", AccountFault::None);
    row("empty", "", AccountFault::Empty);
    row("51 characters", QString(51, 'x'), AccountFault::TooLong);
    row("line feed", "a\nplugin evil.so", AccountFault::ControlCharacter);
    row("carriage return", "a\rb", AccountFault::ControlCharacter);
    row("zero", QString("a").append(QChar(0)), AccountFault::ControlCharacter);
    row("delete", "a\x7f", AccountFault::ControlCharacter);
    row("C1 control", QString(QChar(0x85)), AccountFault::ControlCharacter);
    row("line separator", QString(QChar(0x2028)), AccountFault::ControlCharacter);
    row("quotation mark", "a\" plugin evil.so \"", AccountFault::QuotationMark);
    row("escaped quotation mark", "a\\\" plugin evil.so", AccountFault::QuotationMark);
    row("backslash at the end", "a\\", AccountFault::Backslash);
    row("three at the end", "a\\\\\\", AccountFault::Backslash);
}

void TestAccountSafety::valuesAreJudged()
{
    QFETCH(QString, value);
    QFETCH(AccountFault, fault);
    QCOMPARE(faultInSecrets(entryFirst, value, QStringLiteral("password")), fault);
    QCOMPARE(faultInSecrets(QByteArray(), value, QStringLiteral("password")), fault);
    QCOMPARE(faultInSecrets(entryFirst, QStringLiteral("login"), value), fault);
    QCOMPARE(faultInPeerFile(peerFile, value), fault);
    QCOMPARE(faultInPeerFile(QByteArray(), value), fault);
    QCOMPARE(accountFaultText(fault).isEmpty(), fault == AccountFault::None);
}

void TestAccountSafety::anEscapedQuotationMarkMayBeInAPassword_data()
{
    const auto row = table<QString, AccountFault>("password", "fault");
    row("inside", "a\\\"b", AccountFault::None);
    row("at the end", "a\\\"", AccountFault::None);
    row("behind an escaped backslash", "a\\\\\"b", AccountFault::QuotationMark);
    row("escaped behind an escaped backslash", "a\\\\\\\"b", AccountFault::None);
    row("behind two escaped backslashes", "a\\\\\\\\\"b", AccountFault::QuotationMark);
    row("not escaped", "a\"b", AccountFault::QuotationMark);
    row("before a blank", "a\\\" * \\\"b", AccountFault::QuotationMark);
}

void TestAccountSafety::anEscapedQuotationMarkMayBeInAPassword()
{
    QFETCH(QString, password);
    QFETCH(AccountFault, fault);
    QCOMPARE(faultInSecrets(entryFirst, "login", password), fault);
    const QByteArray stored = withSecretsEntry(entryFirst, "login", password);
    if (fault == AccountFault::None) {
        QCOMPARE(faultInSecrets(stored, "other", "secret"), AccountFault::None);
        QCOMPARE(withSecretsEntry(stored, "login", "password"), entryFirst);
    }
}

void TestAccountSafety::aValueThatNamesThePreviousAccountIsRefused()
{
    for (const char *value : {"\\1", "a\\2b", "\\\\1"}) {
        const QString text = QString::fromLatin1(value);
        QCOMPARE(faultInSecrets(entryFirst, "login", text), AccountFault::Backslash);
        QCOMPARE(faultInSecrets(entryFirst, text, "password"), AccountFault::Backslash);
        QCOMPARE(faultInSecrets("# comment\n", "login", text), AccountFault::None); // appended
    }
}

void TestAccountSafety::aPasswordThatNamesAFileToPppdIsRefused()
{
    for (const char *value : {"@/etc/shadow", "\\@/x", "@\\/x", "\\x40/x", "\\x40\\x2Fx", "\\100/x",
             "\\500/x", "@\\057x", "@\\57/x", "@\\457x",
             // of more digits than an escape has, the next one stands for itself
             "@\\0577", "@\\x2F2"}) {
        const QString text = QString::fromLatin1(value);
        QCOMPARE(faultInSecrets("# comment\n", "login", text), AccountFault::FileName);
        QCOMPARE(faultInSecrets("# comment\n", text, "password"), AccountFault::None);
    }
    for (const char *value : {"@", "/@", "@x/", "a@/x", "@\\\\/x", "\\\\@/x", " @/x", "\\0@/x"}) {
        const QString text = QString::fromLatin1(value);
        QCOMPARE(faultInSecrets("# comment\n", "login", text), AccountFault::None);
    }
}

void TestAccountSafety::whatAnEscapedQuotationMarkLeftBehindIsNotLetOut()
{
    // Root once stored such a login; replacing it would leave the rest of it behind as options.
    QCOMPARE(faultInPeerFile("user \"a\\\" plugin evil.so \"\nnoauth\n", "login"),
        AccountFault::FileDisagrees);
    QCOMPARE(faultInSecrets("\"a\" * \"b\\\" * \\\"c\" *\n", "login", "password"),
        AccountFault::FileDisagrees);
    QCOMPARE(
        faultInPeerFile("connect \"chat user \"x\" y\"\n", "login"), AccountFault::FileDisagrees);
}

void TestAccountSafety::aFileThatDoesNotEndInALineFeedIsNotGluedTo()
{
    QCOMPARE(faultInPeerFile("noauth", "login"), AccountFault::FileDisagrees);
    QCOMPARE(faultInSecrets("# comment", "login", "password"), AccountFault::FileDisagrees);
}

void TestAccountSafety::aLoginDoesNotBecomeAnOptionBehindOneWithoutItsValue()
{
    QCOMPARE(faultInPeerFile("noauth\nuser\n", "login"), AccountFault::FileDisagrees);
    QCOMPARE(faultInPeerFile("user user\n", "login"), AccountFault::None);
    // The value of the first is "user", and what follows that an option, whatever its quotes.
    QCOMPARE(faultInPeerFile("user\nuser \"debug\"\n", "plugin"), AccountFault::FileDisagrees);
}

void TestAccountSafety::aLoginLineThatIsOnlyACommentDoesNotCount()
{
    QCOMPARE(faultInPeerFile("# user \"x\"\nnoauth\n", "login"), AccountFault::FileDisagrees);
}

void TestAccountSafety::whateverIsAcceptedChangesNothingButTheAccount()
{
    QRandomGenerator random(20261121);
    const auto text = [&](const QByteArray &alphabet, int most) {
        QByteArray made;
        for (int left = random.bounded(most + 1); left > 0; --left) {
            made.append(alphabet.at(random.bounded(alphabet.size())));
        }
        return made;
    };
    int accepted = 0;
    for (int round = 0; round < 50000; ++round) {
        const QByteArray content
            = (round % 2 == 0 ? "user \"" : "") + text("ab\"\\'# \n*12", 24) + "\nnoauth\n";
        const QString login = QString::fromLatin1(text("xy\"\\'# \n12", 6));
        if (faultInPeerFile(content, login) != AccountFault::None) {
            continue;
        }
        ++accepted;
        const QList<PppdWord> before = pppdWords(content);
        const QList<PppdWord> after = pppdWords(withLoginLine(content, login));
        QVERIFY(after.size() == before.size() || after.size() == before.size() + 2);
        QVERIFY(after.contains({login.toLatin1(), false}));
        for (int index = 0; index < before.size(); ++index) {
            QVERIFY(
                after.at(index) == before.at(index) || after.at(index).text == login.toLatin1());
        }
    }
    QVERIFY(accepted > 500);
}

QTEST_APPLESS_MAIN(TestAccountSafety)
#include "account_safety_test.moc"
