// SPDX-License-Identifier: MIT
// The settings object on its real path, in a private root.
#include "connection/pppd_command.h"
#include "daemon/settings.h"
#include "private_root.h"
#include "test_files.h"
#include "test_table.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <atomic>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

const QString folder = QStringLiteral("/opt/norvix");
const QString path = QStringLiteral("/opt/norvix/.daemon_ng.ini");

/// Writes the file as another process would, and has the settings read again.
void writeAndRead(const QByteArray &text)
{
    writeFile(path, "[General]\n" + text);
    syncSettings(settings());
}

} // namespace

class SettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aMissingFileGivesTheDefaults();
    void aHandWrittenTextIsRead_data();
    void aHandWrittenTextIsRead();
    void aHandWrittenNumberIsRead_data();
    void aHandWrittenNumberIsRead();
    void aHandWrittenFlagIsRead_data();
    void aHandWrittenFlagIsRead();
    void thePppdArgumentsAreRead_data();
    void thePppdArgumentsAreRead();
    void keysAreCaseSensitive();
    void whatIsStoredStandsInTheFile();
    void whatIsStoredIsReadBackAtOnceAndReachesTheFileInTheLoop();
    void otherKeysSurviveAWrite();
    void whatATornWriteOfOthersLeftIsNotMerged_data();
    void whatATornWriteOfOthersLeftIsNotMerged();
    void whatStandsInTheFileIsReadAlsoWhenItMayBeTorn();
    void whatWasReadTornIsNotMergedEither();
    void aTextByHandNeedsNoLastLineFeed();
    void whoWritesInPlaceMeanwhileCostsNoSetting();
    void changesOfOthersAreSeenAfterASyncOnly();
    void theFolderIsMadeOnTheFirstWrite();
    void aFileThatCannotBeWrittenKeepsTheValueInMemory();
    void thatTheFileCannotBeWrittenIsToldOnceEachTime();
    void ownerAndModeOfTheFileSurviveAWrite_data();
    void ownerAndModeOfTheFileSurviveAWrite();
    void aFullDiskCostsNoSetting();
    void staleLocksAreRemoved();
    void unfinishedFilesAreRemoved();
    void whatCannotBeTheSettingsFileIsSetAside_data();
    void whatCannotBeTheSettingsFileIsSetAside();
    void settingsMayBeAsLargeAsTheyAreSaidToBe();
    void aValueThatIsNoPlainOneCountsAsMissing();
    void anotherStoreIsReadToo();
    void aSyncWritesAnotherStoreAndPassesOverNone();
    void workersReadWhileTheMainThreadWrites();
};

void SettingsTest::init()
{
    QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(QDir().mkpath(folder));
    for (const QString &key : settings()->allKeys()) {
        writeSetting(settings(), key.toLatin1().constData(), QVariant());
    }
    writeAndRead(QByteArray());
    QCOMPARE(settings()->allKeys(), QStringList());
}

void SettingsTest::aMissingFileGivesTheDefaults()
{
    QVERIFY(QFile::remove(path));
    syncSettings(settings());
    const QString error = QStringLiteral("error");
    for (const char *key : {"vpi", "vci", "protocol", "service"}) {
        QCOMPARE(readSettingText(settings(), key, error), error);
    }
    QCOMPARE(readSettingText(settings(), "vpi", 0), QStringLiteral("0"));
    QCOMPARE(readSetting(settings(), "connect_at_boot", false).toBool(), false);
    QCOMPARE(readSetting(settings(), "idleness", 0).toInt(), 0);
    QCOMPARE(readSetting(settings(), "vendor_id", -1).toInt(), -1);
    QCOMPARE(readSetting(settings(), "pppd_arguments").toStringList(), QStringList());
    QCOMPARE(readSettingText(settings(), "udi"), QString());
    QVERIFY(!QFile::exists(path)); // reading makes no file
}

void SettingsTest::aHandWrittenTextIsRead_data()
{
    const auto row = tableOfTexts<QByteArray, QString>("written", "text");
    row("PPPoE", "PPPoE");
    row(" PPPoE ", "PPPoE");
    row("\" PPPoE \"", " PPPoE ");
    row("8", "8");
    row("08", "08");
    row("", "");
    row("true", "true");
    row("Sagem, E4", "Sagem, E4"); // read as a list, joined again
    row("Sagem,E4", "Sagem, E4");
    row("\"Sagem, E4\"", "Sagem, E4");
    row("a;b", "a"); // a comment begins
    row("\"a;b\"", "a;b");
    row("caf\\xe9", QStringLiteral("café"));
    row("/org/freedesktop/Hal/devices/usb_device_1110_9041_noserial",
        "/org/freedesktop/Hal/devices/usb_device_1110_9041_noserial");
}

void SettingsTest::aHandWrittenTextIsRead()
{
    QFETCH(QByteArray, written);
    QFETCH(QString, text);
    writeAndRead("protocol=" + written + "\n");
    QCOMPARE(readSettingText(settings(), "protocol", QStringLiteral("error")), text);
}

void SettingsTest::aHandWrittenNumberIsRead_data()
{
    const auto row = tableOfTexts<QByteArray, int>("written", "number");
    row("4368", 4368);
    row("-1", -1);
    row("\"4368\"", 4368);
    row("0x1110", 0); // decimal only
    row("12abc", 0);
    row("1.5", 0);
    row("", 0);
    row("1,2", 0);
}

void SettingsTest::aHandWrittenNumberIsRead()
{
    QFETCH(QByteArray, written);
    QFETCH(int, number);
    writeAndRead("vendor_id=" + written + "\n");
    QCOMPARE(readSetting(settings(), "vendor_id", 77).toInt(), number);
}

void SettingsTest::aHandWrittenFlagIsRead_data()
{
    const auto row = tableOfTexts<QByteArray, bool>("written", "flag");
    row("true", true);
    row("false", false);
    row("FALSE", false);
    row("1", true);
    row("0", false);
    row("", false);
    row("no", true); // any other text
}

void SettingsTest::aHandWrittenFlagIsRead()
{
    QFETCH(QByteArray, written);
    QFETCH(bool, flag);
    writeAndRead("autoconnect=" + written + "\n");
    QCOMPARE(readSetting(settings(), "autoconnect", !flag).toBool(), flag);
}

void SettingsTest::thePppdArgumentsAreRead_data()
{
    const auto row = tableOfTexts<QByteArray, QStringList>("written", "arguments");
    row("", {}); // the file says "an empty text", which is no argument
    row("@Invalid()", {});
    row("lock", {"lock"});
    row("mtu, 1400", {"mtu", "1400"});
    row("mtu,1400,,lock", {"mtu", "1400", "", "lock"});
    row("\"two words\", b", {"two words", "b"});
    row("\"a, b\"", {"a, b"});
    row("two words", {"two words"});
}

void SettingsTest::thePppdArgumentsAreRead()
{
    QFETCH(QByteArray, written);
    QFETCH(QStringList, arguments);
    writeAndRead("pppd_arguments=" + written + "\n");
    const QStringList read = readSetting(settings(), "pppd_arguments").toStringList();
    QCOMPARE(pppdArguments(QStringLiteral("norvix"), read).mid(5), arguments);
}

void SettingsTest::keysAreCaseSensitive()
{
    writeAndRead("Protocol=PPPoE\n");
    QCOMPARE(
        readSettingText(settings(), "protocol", QStringLiteral("error")), QStringLiteral("error"));
}

void SettingsTest::whatIsStoredStandsInTheFile()
{
    writeSetting(settings(), "vendor_id", 4368);
    writeSetting(settings(), "connect_at_boot", true);
    writeSetting(settings(), "connect_at_modem_plug", false);
    writeSetting(settings(), "modem", QStringLiteral("Sagem F@st 800, E4"));
    syncSettings(settings());
    QCOMPARE(contentOf(path),
        QByteArray("[General]\n"
                   "connect_at_boot=true\n"
                   "connect_at_modem_plug=false\n"
                   "modem=\"Sagem F@st 800, E4\"\n"
                   "vendor_id=4368\n"));
}

void SettingsTest::whatIsStoredIsReadBackAtOnceAndReachesTheFileInTheLoop()
{
    writeSetting(settings(), "idleness", 42);
    QCOMPARE(readSetting(settings(), "idleness", 0).toInt(), 42);
    QVERIFY(!contentOf(path).contains("idleness"));
    QTRY_VERIFY_WITH_TIMEOUT(contentOf(path).contains("idleness=42\n"), 30000);
}

void SettingsTest::otherKeysSurviveAWrite()
{
    writeAndRead("vpi=8\nvci=35\nunknown=x\n");
    writeSetting(settings(), "idleness", 1);
    syncSettings(settings());
    QCOMPARE(contentOf(path), QByteArray("[General]\nidleness=1\nunknown=x\nvci=35\nvpi=8\n"));
}

void SettingsTest::whatATornWriteOfOthersLeftIsNotMerged_data()
{
    const auto row = table<QByteArray>("torn");
    row("nothing", "");
    row("a part of a section", "[Gene");
    row("a part of a key", "[General]\nvp");
    row("a part of a value", "[General]\nservice=x\nvci=3");
    row("a part of a new key's value", "[General]\nnew=on");
    row("new values and the part of one", "[General]\nnew=1\nvci=36\nvpi=");
}

void SettingsTest::whatATornWriteOfOthersLeftIsNotMerged()
{
    QFETCH(QByteArray, torn);
    writeAndRead("service=x\nvci=35\nvpi=8\n");
    writeFile(path, torn);
    writeSetting(settings(), "idleness", 1);
    QVERIFY(syncSettings(settings()));
    QCOMPARE(contentOf(path), QByteArray("[General]\nidleness=1\nservice=x\nvci=35\nvpi=8\n"));
}

void SettingsTest::whatStandsInTheFileIsReadAlsoWhenItMayBeTorn()
{
    writeAndRead("vci=35\nvpi=8\n");
    writeFile(path, "[General]\nvci=37");
    QVERIFY(syncSettings(settings()));
    QCOMPARE(readSettingText(settings(), "vci"), QStringLiteral("37"));
    QCOMPARE(readSettingText(settings(), "vpi"), QString());
    QCOMPARE(contentOf(path), QByteArray("[General]\nvci=37")); // whoever is writing goes on
    writeFile(path, "[General]\nvci=36\n");
    QVERIFY(syncSettings(settings()));
    QCOMPARE(readSettingText(settings(), "vci"), QStringLiteral("36"));
    QCOMPARE(readSettingText(settings(), "vpi"), QString());
}

void SettingsTest::whatWasReadTornIsNotMergedEither()
{
    writeAndRead("vci=35\nvpi=8\n");
    writeFile(path, "");
    QVERIFY(syncSettings(settings()));
    QCOMPARE(readSettingText(settings(), "vci"), QString());
    writeSetting(settings(), "idleness", 1);
    QVERIFY(syncSettings(settings()));
    QCOMPARE(contentOf(path), QByteArray("[General]\nidleness=1\nvci=35\nvpi=8\n"));
    QCOMPARE(readSettingText(settings(), "vci"), QStringLiteral("35"));
}

void SettingsTest::aTextByHandNeedsNoLastLineFeed()
{
    writeAndRead("service=x\nvci=35\nvpi=8\n");
    writeFile(path, "[General]\nservice=x\nvci=36\nvpi=9");
    writeSetting(settings(), "idleness", 1);
    QVERIFY(syncSettings(settings()));
    QCOMPARE(contentOf(path), QByteArray("[General]\nidleness=1\nservice=x\nvci=36\nvpi=9\n"));
}

void SettingsTest::whoWritesInPlaceMeanwhileCostsNoSetting()
{
    writeAndRead("service=x\nvpi=0\n");
    std::atomic<bool> isOver{false};
    std::thread other([&] {
        for (int number = 1; !isOver; ++number) {
            writeFile(path, "[General]\nservice=x\nvpi=" + QByteArray::number(number) + '\n');
        }
    });
    QByteArray lost;
    for (int number = 1; number <= 100; ++number) {
        writeSetting(settings(), "idleness", number);
        syncSettings(settings());
        const QByteArray text = contentOf(path);
        if (text.endsWith('\n') && !text.contains("service=x\n")) {
            lost = text;
        }
    }
    isOver = true;
    other.join();
    QCOMPARE(lost, QByteArray());
}

void SettingsTest::changesOfOthersAreSeenAfterASyncOnly()
{
    writeAndRead("protocol=PPPoA\n");
    writeFile(path, "[General]\nprotocol=PPPoE over it\n");
    QCOMPARE(readSettingText(settings(), "protocol"), QStringLiteral("PPPoA"));
    syncSettings(settings());
    QCOMPARE(readSettingText(settings(), "protocol"), QStringLiteral("PPPoE over it"));

    QVERIFY(QFile::remove(path));
    syncSettings(settings());
    QCOMPARE(
        readSettingText(settings(), "protocol", QStringLiteral("error")), QStringLiteral("error"));
}

void SettingsTest::theFolderIsMadeOnTheFirstWrite()
{
    QVERIFY(QDir(folder).removeRecursively());
    writeSetting(settings(), "idleness", 3);
    syncSettings(settings());
    QCOMPARE(contentOf(path), QByteArray("[General]\nidleness=3\n"));
}

void SettingsTest::aFileThatCannotBeWrittenKeepsTheValueInMemory()
{
    QVERIFY(QFile::remove(path));
    QVERIFY(QDir().mkpath(path));
    writeSetting(settings(), "idleness", 5);
    QVERIFY(!syncSettings(settings()));
    QCOMPARE(readSetting(settings(), "idleness", 0).toInt(), 5);
    QVERIFY(QDir(path).removeRecursively());
}

QStringList told;

void SettingsTest::thatTheFileCannotBeWrittenIsToldOnceEachTime()
{
    const QtMessageHandler handler = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { told.append(text); });
    const QString message
        = QStringLiteral("Settings: /opt/norvix/.daemon_ng.ini could not be written");
    for (int time = 1; time <= 2; ++time) {
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkpath(path));
        writeSetting(settings(), "idleness", time);
        QVERIFY(!syncSettings(settings()));
        QVERIFY(!syncSettings(settings()));
        QCOMPARE(told.count(message), time);
        QVERIFY(QDir(path).removeRecursively());
        writeSetting(settings(), "idleness", time + 2);
        QVERIFY(syncSettings(settings()));
        QVERIFY(syncSettings(settings()));
        QCOMPARE(told.count(message), time);
    }
    qInstallMessageHandler(handler);
}

void SettingsTest::ownerAndModeOfTheFileSurviveAWrite_data()
{
    const auto row = table<uint, uint>("owner", "group");
    row("another user and group", 1000U, 1001U);
    row("our user, another group", geteuid(), 1001U);
    row("another user, our group", 1000U, getegid());
}

void SettingsTest::ownerAndModeOfTheFileSurviveAWrite()
{
    QFETCH(uint, owner);
    QFETCH(uint, group);
    if (!canChangeOwners()) {
        QSKIP("needs root to give a file to another user");
    }
    writeAndRead("vpi=8\n");
    const QByteArray name = QFile::encodeName(path);
    QCOMPARE(chown(name.constData(), owner, group), 0);
    QCOMPARE(chmod(name.constData(), 0640), 0);
    struct stat info = {};
    for (const bool bySync : {true, false}) {
        writeSetting(settings(), "idleness", bySync ? 11 : 12);
        if (bySync) {
            syncSettings(settings());
        }
        QTRY_VERIFY_WITH_TIMEOUT(
            contentOf(path).contains(bySync ? "idleness=11\n" : "idleness=12\n"), 30000);
        QCOMPARE(stat(name.constData(), &info), 0);
        QCOMPARE(info.st_uid, owner);
        QCOMPARE(info.st_gid, group);
        QCOMPARE(info.st_mode & 07777, mode_t(0640));
    }
}

void SettingsTest::aFullDiskCostsNoSetting()
{
    const QByteArray others = "vpi=" + QByteArray(3000, '8') + "\n";
    writeAndRead(others);
    signal(SIGXFSZ, SIG_IGN);
    struct rlimit before = {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    const struct rlimit full = {1000, before.rlim_max}; // enough for the lock
    writeSetting(settings(), "idleness", 5);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &full), 0);
    const bool isStored = syncSettings(settings());
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
    QVERIFY(!isStored);
    QCOMPARE(contentOf(path), "[General]\n" + others);
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden),
        QStringList(QStringLiteral(".daemon_ng.ini")));
    QVERIFY(syncSettings(settings())); // as soon as there is room
    QCOMPARE(contentOf(path), "[General]\nidleness=5\n" + others);
}

void SettingsTest::unfinishedFilesAreRemoved()
{
    writeAndRead("vpi=8\n");
    const QStringList names = {QStringLiteral(".daemon_ng.ini"), QStringLiteral("daemon.log")};
    for (const char *name :
        {"daemon.log", ".daemon_ng.ini.kGbXwQ", ".norvix-new-.daemon_ng.ini-a1B2c3"}) {
        writeFile(folder + QLatin1Char('/') + QLatin1String(name));
    }
    clearStaleSettingsFiles();
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), names);
}

void SettingsTest::whatCannotBeTheSettingsFileIsSetAside_data()
{
    const auto row = table<QString>("kind");
    for (const char *kind : {"two million keys", "pipe", "device"}) {
        row(kind, QString::fromLatin1(kind));
    }
}

void SettingsTest::whatCannotBeTheSettingsFileIsSetAside()
{
    QFETCH(QString, kind);
    const QByteArray name = QFile::encodeName(path);
    if (kind == QLatin1String("two million keys")) {
        QByteArray text = "[General]\n";
        for (int i = 0; i < 2000000; ++i) {
            text += 'k' + QByteArray::number(i) + "=\n";
        }
        writeFile(path, text);
    } else {
        QVERIFY(QFile::remove(path));
        QCOMPARE(kind == QLatin1String("pipe") ? mkfifo(name.constData(), 0600)
                                               : symlink("/dev/zero", name.constData()),
            0);
    }
    struct stat before = {};
    struct stat after = {};
    QCOMPARE(lstat(name.constData(), &before), 0);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("has been set aside as")));
    writeSetting(settings(), "idleness", 4);
    QVERIFY(syncSettings(settings()));
    QCOMPARE(contentOf(path), QByteArray("[General]\nidleness=4\n"));
    QCOMPARE(lstat((name + ".set-aside").constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
}

void SettingsTest::settingsMayBeAsLargeAsTheyAreSaidToBe()
{
    const int others = QByteArray("[General]\nvpi=8\n").size();
    const QByteArray most = "vpi=8\n" + QByteArray(64 * 1024 - others, '\n');
    writeAndRead(most);
    QCOMPARE(readSettingText(settings(), "vpi", 0), QStringLiteral("8"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("has been set aside as")));
    writeAndRead(most + '\n');
    QCOMPARE(readSettingText(settings(), "vpi", 0), QStringLiteral("0"));
}

void SettingsTest::aValueThatIsNoPlainOneCountsAsMissing()
{
    const QByteArray text = "pppd_arguments=@Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)\nvpi=8\n";
    writeAndRead(text);
    QCOMPARE(readSetting(settings(), "pppd_arguments").toStringList(), QStringList());
    QCOMPARE(readSetting(settings(), "pppd_arguments", 7).toInt(), 7);
    writeSetting(settings(), "idleness", 1);
    QVERIFY(syncSettings(settings()));
    QCOMPARE(contentOf(path), "[General]\nidleness=1\n" + text);
}

void SettingsTest::staleLocksAreRemoved()
{
    const QStringList locks
        = {path + QStringLiteral(".lock"), path + QStringLiteral(".lock.rmlock")};
    for (const QString &lock : locks) {
        writeFile(lock);
    }
    clearStaleSettingsFiles();
    for (const QString &lock : locks) {
        QVERIFY(!QFile::exists(lock));
    }
    clearStaleSettingsFiles(); // nothing there is fine
    QVERIFY(QFile::exists(path));
}

void SettingsTest::anotherStoreIsReadToo()
{
    QSettings other(QStringLiteral("/opt/other.ini"), QSettings::IniFormat);
    writeSetting(&other, "protocol", QStringLiteral("PPPoE"));
    syncSettings(&other);
    QCOMPARE(readSettingText(&other, "protocol"), QStringLiteral("PPPoE"));
    QCOMPARE(readSettingText(settings(), "protocol"), QString());
}

void SettingsTest::aSyncWritesAnotherStoreAndPassesOverNone()
{
    QSettings other(QStringLiteral("/opt/written.ini"), QSettings::IniFormat);
    writeSetting(&other, "protocol", QStringLiteral("PPPoE"));
    QVERIFY(!QFile::exists(other.fileName()));
    syncSettings(nullptr);
    syncSettings(&other);
    QVERIFY(QFile::exists(other.fileName()));
}

void SettingsTest::workersReadWhileTheMainThreadWrites()
{
    std::atomic<int> wrong = 0;
    std::atomic<bool> stop = false;
    const auto read = [&] {
        int last = 0;
        while (!stop) {
            syncSettings(settings());
            const int now = readSetting(settings(), "idleness", 0).toInt();
            wrong += now < last ? 1 : 0;
            last = now;
        }
    };
    std::thread first(read);
    std::thread second(read);
    for (int i = 1; i <= 300; ++i) {
        writeSetting(settings(), "idleness", i);
        QCoreApplication::processEvents();
    }
    stop = true;
    first.join();
    second.join();
    syncSettings(settings());
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(contentOf(path), QByteArray("[General]\nidleness=300\n"));
}

int main(int argc, char **argv)
{
    enterPrivateRoot(argv);
    QCoreApplication application(argc, argv);
    SettingsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "settings_test.moc"
