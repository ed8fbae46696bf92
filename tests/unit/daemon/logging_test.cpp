// SPDX-License-Identifier: MIT
// The main log, the daily log and Qt's messages in them, on the real paths in a private root.
#include "captured_stdout.h"
#include "daemon/logging.h"
#include "private_root.h"
#include "support/process/debug.h"
#include "test_files.h"
#include "test_table.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <algorithm>
#include <functional>
#include <memory>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace {

const char dailyFolder[] = "/var/log/norvix";
const QString stampFormat = QStringLiteral("dd-MM-yyyy hh:mm:ss ");

/// The main log with each line's time stamp checked and cut off.
QByteArray mainLog()
{
    QByteArray text;
    QByteArrayList lines = contentOf(mainLogPath()).split('\n');
    const QByteArray rest = lines.takeLast(); // nothing stands after the last line feed
    for (const QByteArray &line : qAsConst(lines)) {
        const QString stamp = QString::fromLatin1(line.left(20));
        const bool isStamp = QDateTime::fromString(stamp, stampFormat).isValid();
        text += (isStamp ? line.mid(20) : "no stamp: " + line) + '\n';
    }
    return text + rest;
}

/// Runs this program again as a child that does @p deed, see main(), in another locale if asked.
QProcess *child(const char *deed, const QString &locale = QStringLiteral("C"))
{
    auto *process = new QProcess;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), locale);
    process->setProcessEnvironment(environment);
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(QStringLiteral("/proc/self/exe"), {QString::fromLatin1(deed)});
    process->waitForFinished(60000);
    return process;
}

/// What the child of the next function does, by its argument.
int doDeed(const QByteArray &deed)
{
    if (deed == "fatal") {
        debugHandler(QtFatalMsg, "the end");
        puts("goes on");
        return 0;
    }
    if (deed == "qFatal") {
        installDebugHandler();
        qFatal("the end");
    }
    if (deed == "log") {
        appendToLog(QStringLiteral("x"));
        appendToDailyLog(QStringLiteral("x"));
        return 0;
    }
    return -1;
}

void runInThreads(int count, const std::function<void(int)> &work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back(work, i);
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

} // namespace

class LoggingTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everyTypeOfMessageIsPrintedAndLogged_data();
    void everyTypeOfMessageIsPrintedAndLogged();
    void messagesReachTheLogAsTheyWereFormatted();
    void aMessageIsNoFormat();
    void aFatalMessageIsLoggedAndEndsTheProcess();
    void aFatalMessageThatCannotBeLoggedDoesNotEndTheProcess();
    void aLineIsLoggedInUtf8AndPrintedOnlyWhenDebugging();
    void bytesThatAreNoTextStandAsTheyAre();
    void theStampIsTheLocalTime();
    void theLogIsMadeAnewWhenItWasRemoved();
    void aLogThatCannotBeWrittenIsSkippedSilently_data();
    void aLogThatCannotBeWrittenIsSkippedSilently();
    void linesOfSeveralThreadsNeverInterleave();
    void noDescriptorStaysOpen();
    void whatAClientSentNeverMakesALineOrTurnsOne_data();
    void whatAClientSentNeverMakesALineOrTurnsOne();
    void whatAClientSentIsCut();
    void ofALongAttemptBothEndsStay();
    void anAttemptAfterALongOneBeginsALogOfItsOwn();
    void aPipeInTheLogsPlaceHoldsNobodyUp();
    void stampsAndNamesHaveLatinDigitsInEveryLocale_data();
    void stampsAndNamesHaveLatinDigitsInEveryLocale();

    void theDailyLogHasDotsInItsLinesAndDashesInItsName();
    void eachDayHasItsOwnFile();
    void theDailyFolderIsMadeAgain();
    void aDailyLogThatCannotBeWrittenIsSkippedSilently();
    void aPipeInTheDailyLogsPlaceHoldsNobodyUp();
    void theDailyLogPrintsNothing();
};

void LoggingTest::init()
{
    debug = false;
    QDir(QStringLiteral("/opt/norvix")).removeRecursively();
    QVERIFY(QDir().mkpath(QStringLiteral("/opt/norvix")));
    QFile::remove(QString::fromLatin1(dailyFolder));
    QDir(QString::fromLatin1(dailyFolder)).removeRecursively();
}

void LoggingTest::cleanup()
{
    debug = false;
    qunsetenv("TZ");
    removeMainLog();
}

void LoggingTest::everyTypeOfMessageIsPrintedAndLogged_data()
{
    const auto row = table<int>("type");
    row("debug", int(QtDebugMsg));
    row("info", int(QtInfoMsg));
    row("warning", int(QtWarningMsg));
    row("critical", int(QtCriticalMsg));
}

void LoggingTest::everyTypeOfMessageIsPrintedAndLogged()
{
    QFETCH(int, type);
    for (const bool debugging : {false, true}) {
        debug = debugging;
        QFile::remove(mainLogPath());
        CapturedStdout capture;
        debugHandler(QtMsgType(type), "caf\xe9 \xc3\xa9");
        QCOMPARE(capture.text(), QByteArray("Debug: caf\xe9 \xc3\xa9\n"));
        QCOMPARE(mainLog(), QByteArray("Norvix_Daemon::debugHandler: caf\xe9 \xc3\xa9\n"));
    }
}

void LoggingTest::messagesReachTheLogAsTheyWereFormatted()
{
    const QtMessageHandler original = qInstallMessageHandler(nullptr);
    CapturedStdout capture;
    installDebugHandler();
    qDebug("i: %d ", 3); // the trailing blank stays
    qDebug("pid: %d ", 1234);
    qDebug("device added: \"%s\" ", "/a\"b\\c");
    qDebug("%s", "connectingRegExp");
    qWarning("%s",
        "gr\xc3\xb6\xc3\x9f"
        "er");
    qInstallMessageHandler(original);
    QCOMPARE(capture.text(),
        QByteArray("Debug: i: 3 \nDebug: pid: 1234 \nDebug: device added: \"/a\"b\\c\" \n"
                   "Debug: connectingRegExp\nDebug: gr\xc3\xb6\xc3\x9f"
                   "er\n"));
    QCOMPARE(mainLog(),
        QByteArray("Norvix_Daemon::debugHandler: i: 3 \n"
                   "Norvix_Daemon::debugHandler: pid: 1234 \n"
                   "Norvix_Daemon::debugHandler: device added: \"/a\"b\\c\" \n"
                   "Norvix_Daemon::debugHandler: connectingRegExp\n"
                   "Norvix_Daemon::debugHandler: gr\xc3\xb6\xc3\x9f"
                   "er\n"));
}

void LoggingTest::aMessageIsNoFormat()
{
    CapturedStdout capture;
    debugHandler(QtDebugMsg, "%s%n%d 100%");
    QCOMPARE(capture.text(), QByteArray("Debug: %s%n%d 100%\n"));
    QCOMPARE(mainLog(), QByteArray("Norvix_Daemon::debugHandler: %s%n%d 100%\n"));
}

void LoggingTest::aFatalMessageIsLoggedAndEndsTheProcess()
{
    for (const char *deed : {"fatal", "qFatal"}) {
        QFile::remove(mainLogPath());
        const std::unique_ptr<QProcess> process(child(deed));
        QCOMPARE(process->exitStatus(), QProcess::CrashExit);
        QCOMPARE(process->exitCode(), 6); // SIGABRT
        QCOMPARE(process->readAllStandardOutput(), QByteArray("Fatal: the end\n"));
        QCOMPARE(mainLog(), QByteArray("Norvix_Daemon::debugHandler (fatal): the end\n"));
    }
}

void LoggingTest::aFatalMessageThatCannotBeLoggedDoesNotEndTheProcess()
{
    QVERIFY(QDir().mkpath(mainLogPath()));
    std::unique_ptr<QProcess> process(child("fatal"));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->readAllStandardOutput(), QByteArray("Fatal: the end\ngoes on\n"));

    // What Qt itself does after the handler cannot be changed.
    process.reset(child("qFatal"));
    QCOMPARE(process->exitStatus(), QProcess::CrashExit);
    QCOMPARE(process->readAllStandardOutput(), QByteArray("Fatal: the end\n"));
}

void LoggingTest::aLineIsLoggedInUtf8AndPrintedOnlyWhenDebugging()
{
    const QByteArray bytes = "Norvix_Daemon::x(): %1 \xc3\xa9\xd0\x96"; // valid UTF-8
    const QString text = QString::fromLocal8Bit(bytes);
    QCOMPARE(text.size(), bytes.size() - 2);
    CapturedStdout quiet;
    appendToLog(text);
    QCOMPARE(quiet.text(), QByteArray());
    QCOMPARE(mainLog(), bytes + '\n');

    debug = true;
    CapturedStdout capture;
    appendToLog(text);
    QCOMPARE(capture.text(), bytes + '\n');
    QCOMPARE(mainLog(), bytes + '\n' + bytes + '\n');
}

void LoggingTest::bytesThatAreNoTextStandAsTheyAre()
{
    const QByteArray bytes("a\xff\xc3 b\0c", 8);
    appendBytesToLog(bytes);
    QCOMPARE(mainLog(), bytes + '\n');
    debug = true;
    CapturedStdout capture;
    appendBytesToLog("\xff");
    QCOMPARE(capture.text(), QByteArray("\xff\n"));
}

void LoggingTest::theStampIsTheLocalTime()
{
    const auto now = [] { return QDateTime::fromSecsSinceEpoch(time(nullptr)); };
    const QDateTime before = now();
    appendToLog(QStringLiteral("x"));
    const QDateTime after = now();
    const QDateTime stamp = QDateTime::fromString(
        QString::fromLatin1(contentOf(mainLogPath()).left(20)), stampFormat);
    QVERIFY(before <= stamp && stamp <= after);
}

void LoggingTest::theLogIsMadeAnewWhenItWasRemoved()
{
    appendToLog(QStringLiteral("one"));
    appendToLog(QStringLiteral("two"));
    QCOMPARE(mainLog(), QByteArray("one\ntwo\n"));
    QVERIFY(QFile::remove(mainLogPath()));
    appendToLog(QStringLiteral("three"));
    QCOMPARE(mainLog(), QByteArray("three\n"));
}

void LoggingTest::aLogThatCannotBeWrittenIsSkippedSilently_data()
{
    const auto row = table<QByteArray>("obstacle");
    row("the folder is missing", "rmdir /opt/norvix");
    row("a folder of that name", "mkdir /opt/norvix/daemon.log");
    row("the disk is full", "ln -s /dev/full /opt/norvix/daemon.log");
}

void LoggingTest::aLogThatCannotBeWrittenIsSkippedSilently()
{
    QFETCH(QByteArray, obstacle);
    QCOMPARE(QProcess::execute(QString::fromLatin1(obstacle).section(QLatin1Char(' '), 0, 0),
                 QString::fromLatin1(obstacle).split(QLatin1Char(' ')).mid(1)),
        0);
    debug = true;
    CapturedStdout capture;
    appendToLog(QStringLiteral("one"));
    debugHandler(QtWarningMsg, "two");
    QCOMPARE(capture.text(), QByteArray("one\nDebug: two\n"));
}

void LoggingTest::linesOfSeveralThreadsNeverInterleave()
{
    constexpr int threads = 4;
    constexpr int linesEach = 300;
    const QString filling(200, QLatin1Char('x'));
    CapturedStdout capture;
    runInThreads(threads, [&](int thread) {
        for (int i = 0; i < linesEach; ++i) {
            const QString text = QStringLiteral("%1 %2 %3 end").arg(thread).arg(i).arg(filling);
            if (i % 2 == 0) {
                appendToLog(text);
            } else {
                debugHandler(QtDebugMsg, text.toLatin1().constData());
            }
        }
    });
    capture.text();

    const QRegularExpression whole(
        QStringLiteral("^(?:Norvix_Daemon::debugHandler: )?([0-9]) ([0-9]+) x{200} end$"));
    std::vector<int> next(threads, 0);
    QByteArrayList lines = mainLog().split('\n');
    QCOMPARE(lines.takeLast(), QByteArray());
    QCOMPARE(lines.size(), threads * linesEach);
    for (const QByteArray &line : qAsConst(lines)) {
        const QRegularExpressionMatch match = whole.match(QString::fromLatin1(line));
        QVERIFY2(match.hasMatch(), line.constData());
        QCOMPARE(match.captured(2).toInt(), next.at(match.captured(1).toUInt())++);
    }
}

void LoggingTest::noDescriptorStaysOpen()
{
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    const auto count
        = [&] { return descriptors.entryList(QDir::AllEntries | QDir::System).size(); };
    const int before = count();
    for (int i = 0; i < 20; ++i) {
        appendToLog(QStringLiteral("x"));
        appendToDailyLog(QStringLiteral("x"));
    }
    QCOMPARE(count(), before);
}

void LoggingTest::whatAClientSentNeverMakesALineOrTurnsOne_data()
{
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("logged");
    for (const char *plain :
        {"", "ppp0", "b\xc3\xbcro \xe2\x9c\x93 \xf0\x9f\x98\x80", "a b", "%s%n%1", "\\n \"'<>&"}) {
        QTest::newRow(plain) << QString::fromUtf8(plain) << QString::fromUtf8(plain);
    }
    const auto row = [](const char *name, uint character, const char *escaped) {
        QTest::newRow(name) << QStringLiteral("a%1b").arg(QString::fromUcs4(&character, 1))
                            << QStringLiteral("a%1b").arg(QLatin1String(escaped));
    };
    row("line feed", '\n', "\\u000a");
    row("carriage return", '\r', "\\u000d");
    row("escape", 0x1b, "\\u001b");
    row("delete", 0x7f, "\\u007f");
    row("C1 control", 0x9b, "\\u009b");
    row("line separator", 0x2028, "\\u2028");
    row("paragraph separator", 0x2029, "\\u2029");
    row("right-to-left override", 0x202e, "\\u202e");
    row("tag", 0xe0041, "\\ue0041");
}

void LoggingTest::whatAClientSentNeverMakesALineOrTurnsOne()
{
    QFETCH(QString, sent);
    QTEST(loggable(sent), "logged");
}

void LoggingTest::whatAClientSentIsCut()
{
    const uint face = 0x1f600;
    for (const QString &character :
        {QStringLiteral("x"), QString(QChar(0xe9)), QString::fromUcs4(&face, 1)}) {
        QCOMPARE(loggable(character.repeated(256)), character.repeated(256));
        QCOMPARE(loggable(character.repeated(257)), character.repeated(256));
        QCOMPARE(loggable(character.repeated(1000000)), character.repeated(256));
    }
}

void LoggingTest::ofALongAttemptBothEndsStay()
{
    constexpr int megabyte = 1048576;
    const QString filling(1000, QLatin1Char('x'));
    appendToLog(QStringLiteral("before"));
    QVERIFY(QFile::setPermissions(mainLogPath(), QFile::ReadOwner | QFile::WriteOwner));
    beginLogAttempt();
    constexpr int lines = 30000;
    for (int i = 0; i < lines; ++i) {
        appendToLog(QStringLiteral("line %1 %2").arg(i).arg(filling));
        QVERIFY(QFile(mainLogPath()).size() < 4 * megabyte);
    }
    const QByteArrayList kept = mainLog().split('\n');
    QCOMPARE(kept.at(0), QByteArray("before"));
    const int note = int(std::find_if(kept.begin(), kept.end(), [](const QByteArray &line) {
        return line.contains("left out here");
    }) - kept.begin());
    QVERIFY(note > 1000 && note < 1100);
    QVERIFY(kept.size() - note > 1000);
    for (int i = 0; i < note - 1; ++i) {
        QVERIFY(kept.at(i + 1).startsWith("line " + QByteArray::number(i) + ' '));
    }
    for (int i = 0; i < 1000; ++i) {
        QVERIFY(kept.at(kept.size() - 2 - i)
                    .startsWith("line " + QByteArray::number(lines - 1 - i) + ' '));
    }
    QCOMPARE(QFile::permissions(mainLogPath()),
        QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
    QCOMPARE(QDir(QStringLiteral("/opt/norvix")).entryList(QDir::Files),
        QStringList{QStringLiteral("daemon.log")});
}

void LoggingTest::anAttemptAfterALongOneBeginsALogOfItsOwn()
{
    const QString filling(100000, QLatin1Char('x'));
    for (const char *attempt : {"one", "two", "three", "four"}) {
        beginLogAttempt();
        appendToLog(QString::fromLatin1(attempt));
        for (int i = 0; i < 15; ++i) {
            appendToLog(filling);
        }
    }
    const QString path = mainLogPath();
    QVERIFY(contentOf(path).mid(20).startsWith("four\n"));
    QVERIFY(contentOf(path + QStringLiteral(".1")).mid(20).startsWith("three\n"));
    QVERIFY(contentOf(path + QStringLiteral(".2")).mid(20).startsWith("two\n"));
    QCOMPARE(QDir(QStringLiteral("/opt/norvix")).entryList(QDir::Files).size(), 3);
    removeMainLog();
    beginLogAttempt();
    appendToLog(QStringLiteral("short"));
    beginLogAttempt();
    appendToLog(QStringLiteral("short, too"));
    QCOMPARE(mainLog(), QByteArray("short\nshort, too\n"));
}

void LoggingTest::aPipeInTheLogsPlaceHoldsNobodyUp()
{
    QCOMPARE(mkfifo("/opt/norvix/daemon.log", 0600), 0);
    CapturedStdout capture;
    appendToLog(QStringLiteral("one"));
    debugHandler(QtWarningMsg, "two");
    QCOMPARE(capture.text(), QByteArray("Debug: two\n"));
}

void LoggingTest::stampsAndNamesHaveLatinDigitsInEveryLocale_data()
{
    const auto row = table<QString>("locale");
    for (const char *locale : {"fa_IR.UTF-8", "ar_EG.UTF-8", "mr_IN.UTF-8"}) {
        row(locale, QString::fromLatin1(locale));
    }
}

void LoggingTest::stampsAndNamesHaveLatinDigitsInEveryLocale()
{
    QFETCH(QString, locale);
    const std::unique_ptr<QProcess> process(child("log", locale));
    QCOMPARE(process->exitCode(), 0);

    const QRegularExpression mainLine(QStringLiteral("^[0-9-]{10} [0-9:]{8} x\n$"));
    QVERIFY(mainLine.match(QString::fromUtf8(contentOf(mainLogPath()))).hasMatch());

    const QDir folder(QString::fromLatin1(dailyFolder));
    const QString name = folder.entryList(QDir::Files).value(0);
    const QRegularExpression dailyName(QStringLiteral("^[0-9]{2}-[0-9]{2}-[0-9]{4}\\.log$"));
    QVERIFY2(dailyName.match(name).hasMatch(), qUtf8Printable(name));
    const QRegularExpression dailyLine(QStringLiteral("^[0-9.]{10} [0-9:]{8}: x\n$"));
    QVERIFY(dailyLine.match(QString::fromUtf8(contentOf(folder.filePath(name)))).hasMatch());
}

void LoggingTest::theDailyLogHasDotsInItsLinesAndDashesInItsName()
{
    const QString text = QStringLiteral("RX bytes: 5000 ") + QChar(0xe9);
    const QDateTime before = QDateTime::currentDateTime();
    appendToDailyLog(text);
    appendToDailyLog(QStringLiteral("two"));
    const QDateTime after = QDateTime::currentDateTime();
    if (before.date() != after.date()) {
        QSKIP("midnight passed");
    }
    const QString path = QString::fromLatin1(dailyFolder)
        + before.toString(QStringLiteral("/dd-MM-yyyy")) + QStringLiteral(".log");
    const QByteArrayList lines = contentOf(path).split('\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines.at(0).mid(21), QByteArray("RX bytes: 5000 \xc3\xa9"));
    QCOMPARE(lines.at(1).mid(21), QByteArray("two"));
    for (const QByteArray &line : lines.mid(0, 2)) {
        const QString format = QStringLiteral("dd.MM.yyyy hh:mm:ss: ");
        QVERIFY(QDateTime::fromString(QString::fromLatin1(line.left(21)), format).isValid());
    }
}

void LoggingTest::eachDayHasItsOwnFile()
{
    // Zones a day apart: midnight always lies between them.
    for (const char *zone : {"AAA+12", "BBB-12"}) {
        qputenv("TZ", zone);
        appendToDailyLog(QString::fromLatin1(zone));
    }
    const QDir folder(QString::fromLatin1(dailyFolder));
    const QStringList names = folder.entryList(QDir::Files);
    QCOMPARE(names.size(), 2);
    for (const QString &name : names) {
        QCOMPARE(contentOf(folder.filePath(name)).count('\n'), 1);
    }
}

void LoggingTest::theDailyFolderIsMadeAgain()
{
    const QDir folder(QString::fromLatin1(dailyFolder));
    for (int i = 0; i < 2; ++i) {
        QVERIFY(!folder.exists());
        appendToDailyLog(QStringLiteral("x"));
        QCOMPARE(folder.entryList(QDir::Files).size(), 1);
        QVERIFY(QDir(folder).removeRecursively());
    }
}

void LoggingTest::aDailyLogThatCannotBeWrittenIsSkippedSilently()
{
    const QString file = QString::fromLatin1(dailyFolder);
    writeFile(file);
    appendToDailyLog(QStringLiteral("x"));
    QCOMPARE(contentOf(file), QByteArray());
}

void LoggingTest::aPipeInTheDailyLogsPlaceHoldsNobodyUp()
{
    const QDir folder(QString::fromLatin1(dailyFolder));
    QVERIFY(folder.mkpath(QStringLiteral(".")));
    for (int day = 0; day < 2; ++day) {
        const QString name
            = QDate::currentDate().addDays(day).toString(QStringLiteral("dd-MM-yyyy"));
        QCOMPARE(mkfifo(qPrintable(folder.filePath(name + QStringLiteral(".log"))), 0600), 0);
    }
    appendToDailyLog(QStringLiteral("x"));
}

void LoggingTest::theDailyLogPrintsNothing()
{
    debug = true;
    CapturedStdout capture;
    appendToDailyLog(QStringLiteral("x"));
    QCOMPARE(capture.text(), QByteArray());
    QCOMPARE(contentOf(mainLogPath()), QByteArray("no file"));
}

int main(int argc, char **argv)
{
    enterPrivateRoot(argv);
    const QByteArray deed = argc == 2 ? argv[1] : "";
    if (deed == "fatal" || deed == "qFatal" || deed == "log") {
        setvbuf(stdout, nullptr, _IOLBF, 0); // as the daemon does: nothing is lost by abort()
        return doDeed(deed);
    }
    QCoreApplication application(argc, argv);
    LoggingTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "logging_test.moc"
