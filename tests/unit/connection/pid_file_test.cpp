// SPDX-License-Identifier: MIT
// Process ids and interface names from pid files of every make.
#include "connection/pid_file.h"
#include "test_files.h"
#include "test_table.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <climits>
#include <sys/stat.h>

namespace {

constexpr int none = -1;

int pidIn(const QByteArray &content)
{
    return parsePid(content).value_or(none);
}

} // namespace

class PidFileTest : public QObject
{
    Q_OBJECT

private slots:
    void theFirstLineGivesTheId_data();
    void theFirstLineGivesTheId();
    void aFileThatCannotBeReadGivesNone();
    void anIdIsTheCodeOfOneCharacter_data();
    void anIdIsTheCodeOfOneCharacter();
    void aLinknameFileNamesItsInterface_data();
    void aLinknameFileNamesItsInterface();
    void theFirstInterfacePidFileOfAListingCounts_data();
    void theFirstInterfacePidFileOfAListingCounts();
    void aFoldersListingIsInTheOrderOfNames();

private:
    int pidInFile(const QByteArray &content);

    QTemporaryDir m_folder;
};

int PidFileTest::pidInFile(const QByteArray &content)
{
    const QString path = m_folder.filePath(QStringLiteral("x.pid"));
    writeFile(path, content);
    return readPidFile(path).value_or(none);
}

void PidFileTest::theFirstLineGivesTheId_data()
{
    const auto row = table<QByteArray, int>("content", "pid");
    row("as pppd writes it", "1234\n", 1234);
    row("with the interface", "1234\nppp0\n", 1234);
    row("without a line feed", "1234", 1234);
    row("with carriage return", "1234\r\nppp0\r\n", 1234);
    row("padded", " \t1234 \n", 1234);
    row("leading zeros", "000042\n", 42);
    row("smallest", "2\n", 2);
    row("largest", "2147483647\n", INT_MAX);

    row("empty", "", none);
    row("only a line feed", "\n", none);
    row("on the second line", "\n1234\n", none);
    row("everybody", "-1\n", none);
    row("own group", "0\n", none);
    row("init", "1\n", none);
    row("init, padded", "0001\n", none);
    row("a group", "-1234\n", none);
    row("with a sign", "+1234\n", none);
    row("too large by one", "2147483648\n", none);
    row("wraps to a small one", "4294968530\n", none);
    row("huge", "99999999999999999999999\n", none);
    row("text", "pppd\n", none);
    row("number and text", "1234abc\n", none);
    row("two numbers", "12 34\n", none);
    row("hexadecimal", "0x4d2\n", none);
    row("fraction", "12.5\n", none);
    row("NUL behind", QByteArray("1234\0\n", 6), none);
    row("NUL within",
        QByteArray("12\0"
                   "34\n",
            6),
        none);
    row("other digits", "\xd9\xa1\xd9\xa2\n", none);
    row("blanks", "      \n", none);
    row("sixty zeros, then an id", QByteArray(60, '0') + "12345\n", 12345);
    row("a thousand digits", QByteArray(1000, '7') + "\n", none);
}

void PidFileTest::theFirstLineGivesTheId()
{
    QFETCH(QByteArray, content);
    QFETCH(int, pid);
    QCOMPARE(pidIn(content), pid);
    // The file may give up on a line that no program writes, but never read another number in it.
    const int inFile = pidInFile(content);
    QVERIFY2(inFile == pid || (inFile == none && content.size() > 60),
        qPrintable(QString::number(inFile)));
}

void PidFileTest::aFileThatCannotBeReadGivesNone()
{
    QVERIFY(!readPidFile(m_folder.filePath(QStringLiteral("missing.pid"))));
    QVERIFY(!readPidFile(m_folder.path()));
    QVERIFY(!readPidFile(QString()));
    QCOMPARE(pidInFile(QByteArray(10 * 1024 * 1024, '9')), none);
    QCOMPARE(pidInFile("1234\n" + QByteArray(10 * 1024 * 1024, '9')), 1234);
    QCOMPARE(pidInFile(QByteArray(64 * 1024 - 2, '0') + "123456"), none); // not 12

    const QString pipe = m_folder.filePath(QStringLiteral("pipe.pid"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QVERIFY(!readPidFile(pipe));
    QVERIFY(!readPidFile(QStringLiteral("/dev/zero")));
}

void PidFileTest::anIdIsTheCodeOfOneCharacter_data()
{
    // Without bytes: no character.
    const auto row = table<int, QByteArray>("id", "utf8");
    row("a digit", 48, "0");
    row("a letter", 955, "\xce\xbb");
    row("last before the surrogates", 0xd7ff, "\xed\x9f\xbf");
    row("first surrogate", 0xd800, QByteArray());
    row("last surrogate", 0xdfff, QByteArray());
    row("first after them", 0xe000, "\xee\x80\x80");
    row("the mark of the byte order", 0xfeff, "\xef\xbb\xbf");
    row("65535", 0xffff, "\xef\xbf\xbf");
    row("65536", 0x10000, "\xf0\x90\x80\x80");
    row("6 and 65536", 65536 + '6', "\xf0\x90\x80\xb6");
    row("the last one", 0x10ffff, "\xf4\x8f\xbf\xbf");
    row("beyond it", 0x110000, QByteArray());
    row("largest id", INT_MAX, QByteArray());
}

void PidFileTest::anIdIsTheCodeOfOneCharacter()
{
    QFETCH(int, id);
    QFETCH(QByteArray, utf8);
    const std::optional<QString> character = characterOfId(id);
    QCOMPARE(character.has_value(), !utf8.isEmpty());
    QCOMPARE(character.value_or(QString()).toUtf8(), utf8);
}

void PidFileTest::aLinknameFileNamesItsInterface_data()
{
    const auto row = table<QByteArray, QString>("content", "interface");
    row("as pppd writes it", "1234\nppp0\n", "ppp0");
    row("another unit", "1234\nppp7\n", "ppp7");
    row("the first of two", "1234\nppp3\nppp4\n", "ppp3");
    row("within a line", "xppp5y\n", "ppp5");
    row("one digit only", "1234\nppp12\n", "ppp1");
    row("with carriage return", "1234\r\nppp0\r\n", "ppp0");
    row("without a line feed", "1234\nppp0", "ppp0");
    row("only the id", "1234\n", "");
    row("empty", "", "");
    row("no digit", "1234\nppp\n", "");
    row("upper case", "1234\nPPP0\n", "");
    row("across two lines", "1234\nppp\n0\n", "");
    row("another name", "1234\nwan0\n", "");
    row("behind a NUL of its line", QByteArray("1234\n\0ppp0\n", 11), "");
    row("after a line with a NUL", QByteArray("1234\0x\nppp0\n", 12), "ppp0");
    row("after bytes of no encoding", "\xff\xfe\nppp0\n", "ppp0");
}

void PidFileTest::aLinknameFileNamesItsInterface()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, interface);
    QCOMPARE(interfaceInPidFile(content), interface);
}

void PidFileTest::theFirstInterfacePidFileOfAListingCounts_data()
{
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QString>("interface");
    const auto row = [](const char *entries, const char *interface) {
        QTest::newRow(entries) << QString::fromLatin1(entries).split(QLatin1Char(' '))
                               << QString::fromLatin1(interface);
    };
    row("", "");
    row(". .. crond.pid dbus", "");
    row(". .. nas0.pid ppp0.pid sshd.pid", "ppp0");
    row("ppp1.pid ppp0.pid", "ppp1"); // the listing's order
    row("ppp-norvix.pid ppp2.pid", "ppp2");
    row("ppp10.pid ppp2.pid", "ppp2");
    row("xppp0.pid", "");
    row("PPP0.pid", "");
    row("ppp0", "");
    row("ppp0xpid", "");
    row("ppp0.pid.old", "ppp0"); // only its beginning has to fit
}

void PidFileTest::theFirstInterfacePidFileOfAListingCounts()
{
    QFETCH(QStringList, entries);
    QFETCH(QString, interface);
    QCOMPARE(interfaceOfPidFiles(entries), interface);
}

void PidFileTest::aFoldersListingIsInTheOrderOfNames()
{
    const QTemporaryDir folder;
    const QDir run(folder.path());
    for (const char *name :
        {"ppp7.pid", "sshd.pid", "ppp10.pid", "ppp2.pid", "crond.pid", "NAS0.pid"}) {
        writeFile(run.filePath(QString::fromLatin1(name)));
    }
    QVERIFY(run.mkdir(QStringLiteral("dbus")));
    QCOMPARE(interfaceOfPidFiles(run.entryList()), QStringLiteral("ppp2"));
    QCOMPARE(
        interfaceOfPidFiles(QDir(run.filePath(QStringLiteral("missing"))).entryList()), QString());
}

QTEST_APPLESS_MAIN(PidFileTest)
#include "pid_file_test.moc"
