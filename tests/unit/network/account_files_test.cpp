// SPDX-License-Identifier: MIT
// The texts of pppd's secrets and peer files: what is edited, and what stays.
#include "network/account_files.h"
#include "test_data.h"
#include "test_table.h"

#include <QRegExp>
#include <QtTest>
#include <ctime>

namespace {

const QByteArray comment = "# client\tserver\tsecret\n";

QByteArray everyByteButNul()
{
    QByteArray bytes;
    for (int value = 255; value > 0; --value) {
        bytes.append(char(value));
    }
    return bytes;
}

QString letters(int count)
{
    return QString(count, QLatin1Char('k'));
}

/// The piece-wise reading in its plainest form, without any filter before the pattern.
std::optional<Account> plainlyRead(const QByteArray &content)
{
    QRegExp pattern(QStringLiteral("\"(.{1,50})\"\\s+\\*\\s+\"(.{1,50})\"\\s+\\*"));
    pattern.setMinimal(true);
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    char piece[100];
    while (buffer.readLine(piece, sizeof piece) > 0) {
        if (pattern.indexIn(QString::fromLocal8Bit(piece)) >= 0) {
            return Account{pattern.cap(1), pattern.cap(2)};
        }
    }
    return std::nullopt;
}

} // namespace

class TestAccountFiles : public QObject
{
    Q_OBJECT

private slots:
    void secretsEntryIsReplacedOrAppended_data();
    void secretsEntryIsReplacedOrAppended();
    void loginLinesAreReplacedOrAppended_data();
    void loginLinesAreReplacedOrAppended();
    void accountIsRead_data();
    void accountIsRead();
    void shippedFilesGetAFurtherEntryAtEveryChange_data();
    void shippedFilesGetAFurtherEntryAtEveryChange();
    void everyOtherByteComesBackUnchanged();
    void aSecondChangeReplacesALoginOfManyBytes();
    void whatIsWrittenIsRead_data();
    void whatIsWrittenIsRead();
    void filterBeforeThePatternChangesNoAnswer();
    void megabytesAreEditedAndReadQuickly_data();
    void megabytesAreEditedAndReadQuickly();
    void thousandLoginLinesAreAllReplaced();
};

void TestAccountFiles::secretsEntryIsReplacedOrAppended_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("login");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("expected");

    const QByteArray old = "\"old-login@provider\" * \"old-password-of-this-account\" *";
    const QByteArray entry = "\"x\" * \"y\" *";
    const QByteArray tail = "\n# " + QByteArray(120, '-') + "\n\"other\" * \"pass\" *\n";
    const auto row = [](const char *name, const QByteArray &content, const QByteArray &expected,
                         const QString &login = QStringLiteral("x"),
                         const QString &password = QStringLiteral("y")) {
        QTest::newRow(name) << content << login << password << expected;
    };

    row("an empty file gets the entry and a line feed", "", entry + "\n");
    row("an entry at the very beginning is replaced in place", old + tail, entry + tail);
    row("no line feed is added after a replaced entry", old, entry);
    row("what follows on the entry's line stays", old + " 10.0.0.1 # home\n",
        entry + " 10.0.0.1 # home\n");
    row("an entry after a comment is left and a further one appended",
        comment + "\"a\" * \"b\" *\n", comment + "\"a\" * \"b\" *\n" + entry + "\n");
    row("an entry after an empty line is left", "\n\"a\" * \"b\" *\n",
        "\n\"a\" * \"b\" *\n" + entry + "\n");
    row("an entry after a blank is left", " " + old, " " + old + entry + "\n");
    row("a file without a final line feed gets the entry glued to its last line", "# last",
        "# last" + entry + "\n");
    row("tabs and line breaks count as white space", "\"a\"\t*\n\n\"b\" \r\n *" + tail,
        entry + tail);
    row("an entry without white space is none", "\"a\"*\"b\"*\n", "\"a\"*\"b\"*\n" + entry + "\n");
    row("an entry for one server is none", "\"a\" isp \"b\" *\n",
        "\"a\" isp \"b\" *\n" + entry + "\n");
    row("an entry without quotes is none", "a * b *\n", "a * b *\n" + entry + "\n");
    row("an entry with an empty password is none", "\"a\" * \"\" *\n",
        "\"a\" * \"\" *\n" + entry + "\n");
    row("a login of 50 characters is found", "\"" + QByteArray(50, 'l') + "\" * \"b\" *" + tail,
        entry + tail);
    row("a login of 51 characters is not found", "\"" + QByteArray(51, 'l') + "\" * \"b\" *\n",
        "\"" + QByteArray(51, 'l') + "\" * \"b\" *\n" + entry + "\n");
    row("a login of 50 characters of two bytes is found",
        "\"" + QByteArray("\xc3\xa4").repeated(50) + "\" * \"b\" *" + tail, entry + tail);
    row("a login of 51 characters of two bytes is not found",
        "\"" + QByteArray("\xc3\xa4").repeated(51) + "\" * \"b\" *\n",
        "\"" + QByteArray("\xc3\xa4").repeated(51) + "\" * \"b\" *\n" + entry + "\n");
    row("the neighbours of the entry stay, however short",
        "\"a\" * \"b\" *\n\"c\" * \"d\" *\n\"e\" * \"f\" *\n",
        entry + "\n\"c\" * \"d\" *\n\"e\" * \"f\" *\n");
    row("a neighbour on the entry's own line stays", "\"a\" * \"b\" * \"c\" * \"d\" *\n",
        entry + " \"c\" * \"d\" *\n");
    row("a long neighbour stays", old + "\n\"other-login@provider\" * \"other-password\" *\n",
        entry + "\n\"other-login@provider\" * \"other-password\" *\n");
    row("an entry with an empty login takes its neighbour's login with it",
        "\"\" * \"b\" *\n\"c\" * \"d\" *\n", entry + " \"d\" *\n");
    row("an entry with an empty password takes its neighbour's login with it",
        "\"a\" * \"\" *\n\"c\" * \"d\" *\n", entry + " \"d\" *\n");
    row("an entry for one server takes its neighbour's login with it",
        "\"a\" isp \"b\" *\n\"c\" * \"d\" *\n", entry + " \"d\" *\n");
    row("an entry with an empty value that comes later takes nothing",
        old + "\n\"a\" * \"\" *\n\"c\" * \"d\" *\n", entry + "\n\"a\" * \"\" *\n\"c\" * \"d\" *\n");
    row("the text ends at the first NUL byte", comment + QByteArray("a\0lost\n", 7),
        comment + "a" + entry + "\n");
    row("a file that begins with a NUL byte is an empty text", QByteArray("\0abc", 4),
        entry + "\n");
    row("carriage returns stay", "# a\r\n# b\r\n", "# a\r\n# b\r\n" + entry + "\n");

    row("backslash and digit in a replaced entry stand for the old values", old + tail,
        "\"old-login@provider-new\" * \"old-password-of-this-account\" *" + tail,
        QStringLiteral("\\1-new"), QStringLiteral("\\2"));
    row("backslash and digit beyond the two values stay", old, "\"\\9\" * \"\\0\" *",
        QStringLiteral("\\9"), QStringLiteral("\\0"));
    row("backslash and two digits are the first value and a digit", old,
        "\"old-login@provider2\" * \"y\" *", QStringLiteral("\\12"));
    row("backslash and digit in an appended entry stay", comment, comment + "\"\\1\" * \"\\2\" *\n",
        QStringLiteral("\\1"), QStringLiteral("\\2"));
    row("quotes are not escaped", comment, comment + "\"a\"b\" * \"\"\" *\n",
        QStringLiteral("a\"b"), QStringLiteral("\""));
    row("blanks and number signs are written as they are", comment,
        comment + "\"a b\" * \" # \" *\n", QStringLiteral("a b"), QStringLiteral(" # "));
    row("a line feed is written as it is", comment, comment + "\"a\nb\" * \"c\n\" *\n",
        QStringLiteral("a\nb"), QStringLiteral("c\n"));
    row("empty values are written as they are", comment, comment + "\"\" * \"\" *\n", QString(),
        QString());
    row("values of 51 characters are written whole", comment,
        comment + "\"" + QByteArray(51, 'k') + "\" * \"" + QByteArray(51, 'k') + "\" *\n",
        letters(51), letters(51));
    row("the entry is in the local encoding, the rest stays Latin-1", "# caf\xe9\n",
        "# caf\xe9\n\"caf\xc3\xa9\" * \"\xe2\x82\xac\" *\n", QStringLiteral(u"caf\u00e9"),
        QStringLiteral(u"\u20ac"));
    row("the old values keep their bytes when they are taken over",
        "\"caf\xe9\" * \"old-password-of-this-account-which-is-long\" *",
        "\"caf\xe9\" * \"\xc3\xa9\" *", QStringLiteral("\\1"), QStringLiteral(u"\u00e9"));
}

void TestAccountFiles::secretsEntryIsReplacedOrAppended()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, login);
    QFETCH(QString, password);
    QFETCH(QByteArray, expected);
    QCOMPARE(withSecretsEntry(content, login, password), expected);
}

void TestAccountFiles::loginLinesAreReplacedOrAppended_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("login");
    QTest::addColumn<QByteArray>("expected");

    const QByteArray options = "\nnoauth\nnoipdefault\ndefaultroute\nusepeerdns\nhide-password\n";
    const auto row = [](const char *name, const QByteArray &content, const QByteArray &expected,
                         const QString &login = QStringLiteral("x")) {
        QTest::newRow(name) << content << login << expected;
    };

    row("an empty file gets the line and a line feed", "", "user \"x\"\n");
    row("a file without a login line gets one at its end", options, options + "user \"x\"\n");
    row("a file without a final line feed gets it glued to its last line", "noauth",
        "noauthuser \"x\"\n");
    row("the line is replaced where it stands", options + "user \"old\"" + options,
        options + "user \"x\"" + options);
    row("two lines far apart are both replaced", "user \"a\"" + options + "user \"b\"" + options,
        "user \"x\"" + options + "user \"x\"" + options);
    row("two lines one after the other are both replaced", "user \"a\"\nuser \"b\"\nnoauth\n",
        "user \"x\"\nuser \"x\"\nnoauth\n");
    row("a quoted option after the line stays", "user \"a\"\nconnect \"chat -v\"\nnoauth\n",
        "user \"x\"\nconnect \"chat -v\"\nnoauth\n");
    row("an empty login takes what follows up to the next quote with it",
        "user \"\"\nconnect \"chat -v\"\n", "user \"x\"chat -v\"\n");
    row("an empty login with no quote after it is no login line", "user \"\"\nnoauth\n",
        "user \"\"\nnoauth\nuser \"x\"\n");
    row("a commented line is replaced too", "# user \"a\"" + options, "# user \"x\"" + options);
    row("a line without quotes is none", "user a\n", "user a\nuser \"x\"\n");
    row("a line with two blanks is none", "user  \"a\"\n", "user  \"a\"\nuser \"x\"\n");
    row("a longer word that ends in user counts", "pluginuser \"a\"" + options,
        "pluginuser \"x\"" + options);
    row("a login of 50 characters is found", "user \"" + QByteArray(50, 'l') + "\"\n",
        "user \"x\"\n");
    row("a login of 51 characters is not found", "user \"" + QByteArray(51, 'l') + "\"\n",
        "user \"" + QByteArray(51, 'l') + "\"\nuser \"x\"\n");
    row("the text ends at the first NUL byte", QByteArray("noauth\n\0user \"a\"\n", 17),
        "noauth\nuser \"x\"\n");
    row("carriage returns and foreign bytes stay", "# caf\xe9\r\nuser \"a\"\r\n\xff\xfe",
        "# caf\xe9\r\nuser \"x\"\r\n\xff\xfe");
    row("backslash and digit stay, the pattern has no values to give", "user \"a\"\n",
        "user \"\\1\"\n", QStringLiteral("\\1"));
    row("a line feed in the login adds a line", "user \"a\"\n", "user \"b\nnodetach\"\n",
        QStringLiteral("b\nnodetach"));
    row("a quote in the login is written as it is", "noauth\n", "noauth\nuser \"a\"b\"\n",
        QStringLiteral("a\"b"));
    row("the login is in the local encoding", "user \"a\"\n", "user \"caf\xc3\xa9\"\n",
        QStringLiteral(u"caf\u00e9"));
    row("a login of 51 characters is written whole", "user \"a\"\n",
        "user \"" + QByteArray(51, 'k') + "\"\n", letters(51));
}

void TestAccountFiles::loginLinesAreReplacedOrAppended()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, login);
    QFETCH(QByteArray, expected);
    QCOMPARE(withLoginLine(content, login), expected);
}

void TestAccountFiles::accountIsRead_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const char *name, const QByteArray &content,
                         const QStringList &expected = QStringList()) {
        QTest::newRow(name) << content << expected;
    };
    const QStringList ab = {QStringLiteral("a"), QStringLiteral("b")};

    row("an empty file holds no account", "");
    row("an entry on the first line", "\"a\" * \"b\" *\n", ab);
    row("an entry after a comment", comment + "\"a\" * \"b\" *\n", ab);
    row("the first of several entries", "\"a\" * \"b\" *\n\"c\" * \"d\" *\n", ab);
    row("an entry without a line feed", "\"a\" * \"b\" *", ab);
    row("an entry in the middle of a line", "x \"a\"\t*\t\"b\"  * 10.0.0.1\n", ab);
    row("a commented entry counts", "# \"a\" * \"b\" *\n", ab);
    row("the first of two entries on one line", "\"a\" * \"b\" * \"c\" * \"d\" *\n", ab);
    row("an entry with an empty login makes one with its neighbour on the line",
        "\"\" * \"b\" * \"c\" * \"d\" *\n", {QStringLiteral("\" * \"b"), QStringLiteral("c")});
    row("an entry with an empty login leaves the next line alone",
        "\"\" * \"b\" *\n\"c\" * \"d\" *\n", {QStringLiteral("c"), QStringLiteral("d")});
    row("an entry over two lines is none", "\"a\" *\n\"b\" *\n");
    row("a login of 51 characters is not recognised",
        "\"" + QByteArray(51, 'l') + "\" * \"b\" *\n");
    row("a password of 51 characters is not recognised",
        "\"a\" * \"" + QByteArray(51, 'p') + "\" *\n");
    row("an entry for one server is none", "\"a\" isp \"b\" *\n");
    row("a NUL byte ends its piece, not the file",
        QByteArray("\"a\" \0* \"b\" *\n", 13) + "\"c\" * \"d\" *\n",
        {QStringLiteral("c"), QStringLiteral("d")});
    row("an entry before a NUL byte counts", QByteArray("\"a\" * \"b\" *\0\n", 13), ab);
    row("an entry that ends at 99 bytes is seen", QByteArray(88, ' ') + "\"a\" * \"b\" *\n", ab);
    row("an entry that a piece's end cuts is not seen", QByteArray(89, ' ') + "\"a\" * \"b\" *\n");
    row("an entry in a long line's second piece is seen", QByteArray(99, ' ') + "\"a\" * \"b\" *\n",
        ab);
    row("values in the local encoding come back", "\"caf\xc3\xa9\" * \"\xe2\x82\xac\" *\n",
        {QStringLiteral(u"caf\u00e9"), QStringLiteral(u"\u20ac")});
}

void TestAccountFiles::accountIsRead()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expected);
    const std::optional<Account> account = accountFromSecrets(content);
    QCOMPARE(account ? QStringList({account->login, account->password}) : QStringList(), expected);
}

void TestAccountFiles::shippedFilesGetAFurtherEntryAtEveryChange_data()
{
    const auto row = table<QByteArray>("content");
    row("pap-secrets", testData(QStringLiteral("ppp/pap-secrets")));
    row("chap-secrets", testData(QStringLiteral("ppp/chap-secrets")));
}

void TestAccountFiles::shippedFilesGetAFurtherEntryAtEveryChange()
{
    QFETCH(QByteArray, content);
    QVERIFY(content.startsWith('#'));
    QVERIFY(!accountFromSecrets(content));

    const QByteArray once
        = withSecretsEntry(content, QStringLiteral("user"), QStringLiteral("first"));
    QCOMPARE(once, content + "\"user\" * \"first\" *\n");
    const QByteArray twice
        = withSecretsEntry(once, QStringLiteral("user"), QStringLiteral("second"));
    QCOMPARE(twice, once + "\"user\" * \"second\" *\n");
    QCOMPARE(accountFromSecrets(twice)->password, QStringLiteral("first"));
}

void TestAccountFiles::everyOtherByteComesBackUnchanged()
{
    const QByteArray foreign = everyByteButNul() + "\r\n" + everyByteButNul();
    const QByteArray entry = "\"x\" * \"y\" *";
    const QByteArray old = "\"" + QByteArray(50, 'l') + "\" * \"" + QByteArray(50, 'p') + "\" *";

    QCOMPARE(withSecretsEntry("#" + foreign, QStringLiteral("x"), QStringLiteral("y")),
        "#" + foreign + entry + "\n");
    QCOMPARE(
        withSecretsEntry(old + foreign, QStringLiteral("x"), QStringLiteral("y")), entry + foreign);
    QCOMPARE(withLoginLine(foreign, QStringLiteral("x")), foreign + "user \"x\"\n");
    const QByteArray login = "user \"" + QByteArray(50, 'l') + "\"";
    QCOMPARE(withLoginLine(foreign + login + foreign, QStringLiteral("x")),
        foreign + "user \"x\"" + foreign);
}

void TestAccountFiles::aSecondChangeReplacesALoginOfManyBytes()
{
    const QString login(26, QChar(0xe4));
    const QByteArray foreign = "# caf\xe9 \xc3\xa4 \xed\xb2\x80 \xf0\x9f\x94\x91 \xc3\n";
    const QByteArray once = withSecretsEntry(QByteArray(), login, QStringLiteral("first"));
    QCOMPARE(withSecretsEntry(once + foreign, login, QStringLiteral("second")),
        QByteArray(once).replace("first", "second") + foreign);
    const QByteArray peer = withLoginLine(QByteArray(), login);
    QCOMPARE(withLoginLine(foreign + peer, QStringLiteral("x")), foreign + "user \"x\"\n");
}

void TestAccountFiles::whatIsWrittenIsRead_data()
{
    const auto row = table<QString, QString, bool>("login", "password", "recognised");

    row("plain", QStringLiteral("user@isp"), QStringLiteral("secret"), true);
    row("50 characters fit only one at a time into a piece", letters(50), letters(35), true);
    row("50 and 50 characters exceed a piece", letters(50), letters(50), false);
    row("51 characters", letters(51), QStringLiteral("p"), false);
    row("blanks and number signs", QStringLiteral(" a # b "), QStringLiteral("#"), true);
    row("quotes", QStringLiteral("a\"b"), QStringLiteral("c\"d"), true);
    row("backslash and digit", QStringLiteral("a\\1"), QStringLiteral("\\2b"), true);
    row("line feed", QStringLiteral("a\nb"), QStringLiteral("c"), false);
    row("nothing", QString(), QString(), false);
    row("25 characters of two bytes", QString(25, QChar(0xe9)), QString(10, QChar(0xe9)), true);
    row("26 characters of two bytes", QString(26, QChar(0xe4)), QStringLiteral("p"), true);
    row("characters beyond 16 bits", QString::fromUcs4(U"\U0001f511", 1), QStringLiteral("p"),
        true);
}

void TestAccountFiles::whatIsWrittenIsRead()
{
    QFETCH(QString, login);
    QFETCH(QString, password);
    QFETCH(bool, recognised);
    const std::optional<Account> account
        = accountFromSecrets(withSecretsEntry(comment, login, password));
    QCOMPARE(account.has_value(), recognised);
    if (account) {
        QCOMPARE(account->login, login);
        QCOMPARE(account->password, password);
    }
}

void TestAccountFiles::filterBeforeThePatternChangesNoAnswer()
{
    const QByteArray parts[] = {"\"", "*", " ", "\t", "a", "\n", "\" * \"", "\"a\" * \"",
        QByteArray(49, 'x'), QByteArray("\0", 1), "\xa0", "\x85", "\xe9"};
    quint32 random = 12345;
    int recognised = 0;
    for (int round = 0; round < 20000; ++round) {
        QByteArray content;
        for (int i = 0; i < 12; ++i) {
            random = random * 1664525 + 1013904223;
            content += parts[(random >> 16) % (sizeof parts / sizeof parts[0])];
        }
        const std::optional<Account> plain = plainlyRead(content);
        const std::optional<Account> actual = accountFromSecrets(content);
        QVERIFY2(plain.has_value() == actual.has_value(), content.toHex().constData());
        if (plain) {
            ++recognised;
            QCOMPARE(actual->login, plain->login);
            QCOMPARE(actual->password, plain->password);
        }
    }
    QVERIFY(recognised > 100);
}

void TestAccountFiles::megabytesAreEditedAndReadQuickly_data()
{
    const auto row = table<QByteArray>("line");
    row("comments", "# a comment of some length\n");
    row("quotes", "\"");
    row("one line", "x");
    row("login lines without an end", "user \"abcd ");
    row("entries for one server", "\"login\" isp \"secret\" *\n");
}

void TestAccountFiles::megabytesAreEditedAndReadQuickly()
{
    QFETCH(QByteArray, line);
    const QByteArray content = "#\n" + line.repeated(2000000 / line.size());
    const std::clock_t start = std::clock(); // of the processor, which other programs share
    QVERIFY(withSecretsEntry(content, QStringLiteral("x"), QStringLiteral("y"))
                .endsWith("\"x\" * \"y\" *\n"));
    QVERIFY(withLoginLine(content, QStringLiteral("x")).contains("user \"x\""));
    QVERIFY(!accountFromSecrets(content));
    const double seconds = double(std::clock() - start) / CLOCKS_PER_SEC;
    QVERIFY2(seconds < 6, qPrintable(QString::number(seconds)));
}

void TestAccountFiles::thousandLoginLinesAreAllReplaced()
{
    const QByteArray options = "\nnoauth\nnoipdefault\ndefaultroute\nusepeerdns\nhide-password\n";
    const QByteArray edited
        = withLoginLine(("user \"old\"" + options).repeated(1000), QStringLiteral("new"));
    QCOMPARE(edited, ("user \"new\"" + options).repeated(1000));
}

QTEST_APPLESS_MAIN(TestAccountFiles)
#include "account_files_test.moc"
