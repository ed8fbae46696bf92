// SPDX-License-Identifier: MIT
// Finding and running external programs, well-behaved and other ones.
#include "sanitized.h"
#include "script_folder.h"
#include "support/process/programs.h"
#include "test_files.h"
#include "test_table.h"
#include "without_right_to_kill.h"
#include "worker.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTest>
#include <csignal>
#include <memory>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int enough = 60000; // ms that no program here needs

bool isGone(qint64 processId)
{
    return !QFile::exists(QStringLiteral("/proc/%1").arg(processId));
}

QStringList pathEntry(const QStringList &folders)
{
    return {QStringLiteral("HOME=/"), QStringLiteral("PATH=") + folders.join(QLatin1Char(':'))};
}

} // namespace

class ProgramsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void aNameIsFoundAlongThePathOfTheEnvironment_data();
    void aNameIsFoundAlongThePathOfTheEnvironment();
    void aNameThatIsNowhereOnThePathIsNotStartedFromElsewhere();

    void theExitCodeIsGiven_data();
    void theExitCodeIsGiven();
    void whatCannotBeStartedHasNoExitCode_data();
    void whatCannotBeStartedHasNoExitCode();
    void aCrashHasNoExitCode();
    void theArgumentsArriveAsTheyAre();
    void theEnvironmentIsTheGivenOne();
    void theProgramComesFromThePathOfTheGivenEnvironment();
    void theStandardStreamsAreTheNullDevice();

    void outputIsGivenUpToItsLimit_data();
    void outputIsGivenUpToItsLimit();
    void outputOfAHangingProgramIsGivenAfterTheTimeOut();
    void anEndlessOutputCostsTheTimeOutAndNoMemory();

    void aHangingProgramIsEndedAtItsLimit();
    void aHangingProgramOfAWorkerIsEndedAtItsLimit();
    void aProgramThatCannotBeKilledIsLeftBehindAndReaped();
    void aProgramWithGraceFinishesLateOrIsEnded();
    void onlyAProgramInAGroupOfItsOwnMaySignalItsGroup();
    void aDaemonThatGoesToTheBackgroundEndsTheWait();
    void noZombieAndNoDescriptorStays();
    void severalThreadsRunProgramsAtOnce();

private:
    ScriptFolder m_scripts;
    QString m_hang;
    QString m_unkillable;
    QByteArray m_ownPath = qgetenv("PATH");
    QString m_ownFolder = QDir::currentPath();
};

void ProgramsTest::initTestCase()
{
    m_hang = m_scripts.add(QStringLiteral("hang"), "exec sleep 600");
    m_unkillable = m_scripts.add(
        QStringLiteral("unkillable"), "exec setpriv --reuid 12345 --clear-groups sleep 600");
}

void ProgramsTest::cleanup()
{
    qputenv("PATH", m_ownPath);
    QVERIFY(QDir::setCurrent(m_ownFolder));
}

void ProgramsTest::aNameIsFoundAlongThePathOfTheEnvironment_data()
{
    const auto row = table<QString, QStringList, QString>("name", "environment", "found");

    const QDir folder(m_scripts.path());
    for (const char *sub : {"a", "b", "c/tool"}) {
        QVERIFY(folder.mkpath(QString::fromLatin1(sub)));
    }
    const QString a = folder.filePath(QStringLiteral("a"));
    const QString b = folder.filePath(QStringLiteral("b"));
    const QString c = folder.filePath(QStringLiteral("c")); // holds a folder of that name
    const QString inA = m_scripts.add(QStringLiteral("a/tool"), "exit 1");
    const QString inB = m_scripts.add(QStringLiteral("b/tool"), "exit 2");
    const QString onlyB = m_scripts.add(QStringLiteral("b/only"), "exit 2");
    const QString plain = m_scripts.add(QStringLiteral("a/only"), "exit 1");
    QVERIFY(QFile::setPermissions(plain, QFile::ReadOwner | QFile::WriteOwner));
    const QString tool = QStringLiteral("tool");
    const QString only = QStringLiteral("only");

    row("in the first folder", tool, pathEntry({a, b}), inA);
    row("in the second folder", tool, pathEntry({b, a}), inB);
    row("not executable in the first", only, pathEntry({a, b}), onlyB);
    row("a folder of that name first", tool, pathEntry({c, a}), inA);
    row("missing folders first", tool, pathEntry({QStringLiteral("/nowhere"), b}), inB);
    row("the first of two paths", tool, (pathEntry({a}) + pathEntry({b})), inA);
    row("a path", inB, pathEntry({a}), inB);
    row("a relative path", "./tool", pathEntry({a}), "./tool");
    row("no path at all", tool, QStringList{QStringLiteral("MYPATH=") + a, a}, tool);
    row("empty environment", tool, QStringList(), tool);
}

void ProgramsTest::aNameIsFoundAlongThePathOfTheEnvironment()
{
    QFETCH(QString, name);
    QFETCH(QStringList, environment);
    QFETCH(QString, found);
    QCOMPARE(findProgram(name, environment), found);
}

void ProgramsTest::aNameThatIsNowhereOnThePathIsNotStartedFromElsewhere()
{
    // In the folder of the test itself, and on its own path.
    const QString tool = m_scripts.add(QStringLiteral("elsewhere"), "exit 0");
    QVERIFY(QDir::setCurrent(m_scripts.path()));
    qputenv("PATH", QFile::encodeName(m_scripts.path()) + ":" + m_ownPath);
    for (const QStringList &environment :
        {pathEntry({QStringLiteral("/nowhere")}), pathEntry({QString()}),
            pathEntry({QStringLiteral("."), QStringLiteral("/nowhere"), QStringLiteral("bin")}),
            pathEntry({QStringLiteral(".")})}) {
        QVERIFY(findProgram(QStringLiteral("elsewhere"), environment).startsWith(QLatin1Char('/')));
        const ProgramResult result
            = runProgram(QStringLiteral("elsewhere"), {}, enough, environment);
        QVERIFY(!result.exitCode);
        QCOMPARE(result.processId, qint64(0));
    }
    cleanup();
    QCOMPARE(runProgram(tool, {}, enough).exitCode.value_or(-1), 0);
}

void ProgramsTest::theExitCodeIsGiven_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 1, 2, 127, 254, 255}) {
        QTest::addRow("%d", code) << code;
    }
}

void ProgramsTest::theExitCodeIsGiven()
{
    QFETCH(int, code);
    const QString script
        = m_scripts.add(QStringLiteral("exit"), "exit " + QByteArray::number(code));
    for (const int maxOutput : {0, 10}) {
        const ProgramResult result = runProgram(script, {}, enough, QStringList(), maxOutput);
        QVERIFY(result.exitCode.has_value());
        QCOMPARE(*result.exitCode, code);
        QVERIFY(result.processId > 1); // also after it has ended
        QCOMPARE(result.output, QByteArray());
    }
}

void ProgramsTest::whatCannotBeStartedHasNoExitCode_data()
{
    const auto row = table<QString>("program");
    const QString plain = m_scripts.add(QStringLiteral("plain"), "exit 0");
    QVERIFY(QFile::setPermissions(plain, QFile::ReadOwner | QFile::WriteOwner));
    const QString broken = m_scripts.add(QStringLiteral("broken"), "");
    writeFile(broken, "#!/nowhere/interpreter\n");
    row("missing", "/nowhere/program");
    row("missing on the path", "no-such-program-here");
    row("not executable", plain);
    row("without its interpreter", broken);
    row("a folder", m_scripts.path());
}

void ProgramsTest::whatCannotBeStartedHasNoExitCode()
{
    QFETCH(QString, program);
    for (const int maxOutput : {0, 10}) {
        const ProgramResult result
            = runProgram(program, {QStringLiteral("x")}, enough, QStringList(), maxOutput);
        QVERIFY(!result.exitCode);
        QCOMPARE(result.processId, qint64(0));
        QCOMPARE(result.output, QByteArray());
    }
}

void ProgramsTest::aCrashHasNoExitCode()
{
    const QString script = m_scripts.add(QStringLiteral("crash"), "echo before; kill -9 $$");
    const ProgramResult result = runProgram(script, {}, enough, QStringList(), 100);
    QVERIFY(!result.exitCode);
    QVERIFY(result.processId > 1);
    QCOMPARE(result.output, QByteArray("before\n"));
}

void ProgramsTest::theArgumentsArriveAsTheyAre()
{
    const QString script = m_scripts.add(QStringLiteral("args"), "printf '<%s>' \"$@\"");
    const QStringList arguments = {QStringLiteral("-9"), QString(), QStringLiteral("two words"),
        QStringLiteral("$HOME;`id`\"'*"), QString(QChar(0x4d2))};
    QCOMPARE(runProgram(script, arguments, enough, QStringList(), 1000).output,
        QByteArray("<-9><><two words><$HOME;`id`\"'*><\xd3\x92>"));
}

void ProgramsTest::theEnvironmentIsTheGivenOne()
{
    const QString script = m_scripts.add(QStringLiteral("env"), "exec env");
    qputenv("NORVIX_TEST_INHERITED", "yes");
    const QByteArray inherited = runProgram(script, {}, enough, QStringList(), 100000).output;
    QVERIFY(inherited.contains("NORVIX_TEST_INHERITED=yes\n"));

    const QByteArray given = runProgram(script, {}, enough,
        {QStringLiteral("PATH=/usr/bin:/bin"), QStringLiteral("A=b c"),
            QStringLiteral("/opt/norvix/lib64")},
        100000)
                                 .output;
    QVERIFY(given.contains("A=b c\n"));
    QVERIFY(!given.contains("NORVIX_TEST_INHERITED"));
    QVERIFY(!given.contains("/opt/norvix")); // an entry without a name never arrives
    qunsetenv("NORVIX_TEST_INHERITED");
}

void ProgramsTest::theProgramComesFromThePathOfTheGivenEnvironment()
{
    m_scripts.add(QStringLiteral("true"), "exit 7"); // not the system's
    QCOMPARE(runProgram(QStringLiteral("true"), {}, enough).exitCode.value_or(-1), 0);
    QCOMPARE(runProgram(QStringLiteral("true"), {}, enough,
                 pathEntry({m_scripts.path(), QStringLiteral("/usr/bin")}))
                 .exitCode.value_or(-1),
        7);
}

void ProgramsTest::theStandardStreamsAreTheNullDevice()
{
    const QString script = m_scripts.add(QStringLiteral("streams"),
        "[ \"$(readlink /proc/$$/fd/0)\" = /dev/null ] || exit 10\n"
        "[ \"$(readlink /proc/$$/fd/2)\" = /dev/null ] || exit 12\n"
        "case $1 in null) [ \"$(readlink /proc/$$/fd/1)\" = /dev/null ] || exit 11;; esac\n"
        "cat; echo lost >&2");
    QCOMPARE(runProgram(script, {QStringLiteral("null")}, enough).exitCode.value_or(-1), 0);
    const ProgramResult result
        = runProgram(script, {QStringLiteral("pipe")}, enough, QStringList(), 10);
    QCOMPARE(result.exitCode.value_or(-1), 0);
    QCOMPARE(result.output, QByteArray());
}

void ProgramsTest::outputIsGivenUpToItsLimit_data()
{
    const auto row = table<QByteArray, int, QByteArray>("script", "limit", "output");
    row("none", "exit 0", 49, "");
    row("a short one", "echo '      00:07'", 49, "      00:07\n");
    row("exactly the limit", "printf 12345", 5, "12345");
    row("one more", "printf 123456", 5, "12345");
    row("in pieces", "printf 12; sleep 0.1; printf 34; sleep 0.1; printf 56", 5, "12345");
    row("NUL bytes", "printf 'a\\0b'", 49, QByteArray("a\0b", 3));
    row("ten megabytes", "head -c 10485760 /dev/zero | tr '\\0' x", 49, QByteArray(49, 'x'));
}

void ProgramsTest::outputIsGivenUpToItsLimit()
{
    QFETCH(QByteArray, script);
    QFETCH(int, limit);
    QFETCH(QByteArray, output);
    const ProgramResult result = runProgram(
        m_scripts.add(QStringLiteral("output"), script), {}, enough, QStringList(), limit);
    QCOMPARE(result.output, output);
    QCOMPARE(result.exitCode.value_or(-1), 0); // it could write all it had
}

void ProgramsTest::outputOfAHangingProgramIsGivenAfterTheTimeOut()
{
    const QString script = m_scripts.add(QStringLiteral("partly"), "printf 00:07; exec sleep 600");
    QElapsedTimer clock;
    clock.start();
    const ProgramResult result = runProgram(script, {}, 2000, QStringList(), 49); // time to print
    QVERIFY(clock.elapsed() >= 1999);
    QCOMPARE(result.output, QByteArray("00:07"));
    QVERIFY(!result.exitCode);
    QVERIFY(isGone(result.processId));
}

void ProgramsTest::anEndlessOutputCostsTheTimeOutAndNoMemory()
{
    const auto memory = [] {
        QFile file(QStringLiteral("/proc/self/statm"));
        return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').at(1).toInt() : 0;
    };
    const int before = memory();
    QElapsedTimer clock;
    clock.start();
    const ProgramResult result = runProgram(
        m_scripts.add(QStringLiteral("endless"), "exec yes"), {}, 1000, QStringList(), 49);
    QVERIFY(clock.elapsed() >= 999);
    QCOMPARE(result.output.left(4), QByteArray("y\ny\n"));
    QVERIFY(!result.exitCode);
    QVERIFY(isGone(result.processId));
    QVERIFY(isSanitized || (memory() - before) * 4096L < 32 * 1024 * 1024L);
}

void ProgramsTest::aHangingProgramIsEndedAtItsLimit()
{
    QElapsedTimer clock;
    clock.start();
    const ProgramResult result = runProgram(m_hang, {}, 300);
    QVERIFY(clock.elapsed() >= 299);
    QVERIFY(!result.exitCode);
    QVERIFY(result.processId > 1);
    QVERIFY(isGone(result.processId));
    QVERIFY(!result.leftBehind.isOpen());
}

void ProgramsTest::aHangingProgramOfAWorkerIsEndedAtItsLimit()
{
    ProgramResult result;
    Worker worker([&] { result = runProgram(m_hang, {}, 300); });
    worker.start();
    QVERIFY(worker.wait(enough));
    QVERIFY(result.processId > 1);
    QVERIFY(isGone(result.processId));
}

void ProgramsTest::aProgramThatCannotBeKilledIsLeftBehindAndReaped()
{
    if (geteuid() != 0) {
        QSKIP("only root can give a program to another user");
    }
    const QString script = m_scripts.add(QStringLiteral("quick"), "exit 3");
    ProgramResult result;
    int next = -1;
    Worker worker([&] {
        const WithoutRightToKill noRight;
        result = runProgram(m_unkillable, {}, 2000); // time to become the other user's
        next = runProgram(script, {}, enough).exitCode.value_or(-1);
    });
    worker.start();
    QVERIFY(worker.wait(enough)); // the thread is over, the program is not
    QVERIFY(!result.exitCode);
    QCOMPARE(next, 3);
    QCOMPARE(::kill(pid_t(result.processId), 0), 0);
    QVERIFY(result.leftBehind.isOpen());
    pollfd end = {result.leftBehind.get(), POLLIN, 0};
    QCOMPARE(poll(&end, 1, 0), 0);

    QCOMPARE(::kill(pid_t(result.processId), SIGKILL), 0); // with all rights again
    QCOMPARE(poll(&end, 1, enough), 1);
    QTRY_VERIFY_WITH_TIMEOUT(isGone(result.processId), enough);
}

void ProgramsTest::aProgramWithGraceFinishesLateOrIsEnded()
{
    const QString done = m_scripts.path() + QStringLiteral("/done");
    const QString late
        = m_scripts.add(QStringLiteral("late"), "sleep 1; echo > " + QFile::encodeName(done));
    const ProgramResult finished = runProgramWithGrace(late, {}, 100, enough);
    QVERIFY(!finished.exitCode && finished.leftBehind.isOpen());
    QTRY_VERIFY_WITH_TIMEOUT(isGone(finished.processId), enough);
    QVERIFY(QFile::exists(done));

    const ProgramResult ended = runProgramWithGrace(m_hang, {}, 100, 300);
    QCOMPARE(::kill(pid_t(ended.processId), 0), 0);
    QTRY_VERIFY_WITH_TIMEOUT(isGone(ended.processId), enough);

    const ProgramResult inTime = runProgramWithGrace(QStringLiteral("true"), {}, enough, enough);
    QCOMPARE(inTime.exitCode.value_or(-1), 0);
    QVERIFY(!inTime.leftBehind.isOpen());
}

void ProgramsTest::onlyAProgramInAGroupOfItsOwnMaySignalItsGroup()
{
    const QString group
        = m_scripts.add(QStringLiteral("group"), "[ \"$(ps -o pgid= -p $$ | tr -d ' ')\" = $$ ]");
    QCOMPARE(runProgramInOwnGroup(group, {}, enough).exitCode.value_or(-1), 0);
    QCOMPARE(runProgram(group, {}, enough).exitCode.value_or(-1), 1);

    // It ends itself by the signal, and this test goes on.
    const QString suicide = m_scripts.add(QStringLiteral("suicide"), "kill -9 0; exit 0");
    const ProgramResult result = runProgramInOwnGroup(suicide, {}, enough);
    QVERIFY(result.processId > 1);
    QVERIFY(!result.exitCode);
    QVERIFY(!runProgramInOwnGroup(QStringLiteral("/nowhere/program"), {}, enough).exitCode);
}

void ProgramsTest::aDaemonThatGoesToTheBackgroundEndsTheWait()
{
    const QString idFile = m_scripts.path() + QStringLiteral("/background.pid");
    const QString script = m_scripts.add(
        QStringLiteral("background"), "sleep 600 & echo $! > " + QFile::encodeName(idFile));
    QCOMPARE(runProgram(script, {}, enough).exitCode.value_or(-1), 0);
    QFile file(idFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const int background = file.readAll().trimmed().toInt();
    QVERIFY(background > 1);
    QCOMPARE(::kill(background, 0), 0);
    ::kill(background, SIGKILL);
}

void ProgramsTest::noZombieAndNoDescriptorStays()
{
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    const auto count
        = [&] { return descriptors.entryList(QDir::AllEntries | QDir::System).size(); };
    const QString script = m_scripts.add(QStringLiteral("short"), "echo x");
    runProgram(script, {}, enough);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const int before = count();
    for (int i = 0; i < 10; ++i) {
        const ProgramResult result = runProgram(script, {}, enough, QStringList(), i % 2 * 10);
        QVERIFY(isGone(result.processId));
        runProgram(QStringLiteral("/nowhere/program"), {}, enough);
    }
    QCOMPARE(count(), before);
}

void ProgramsTest::severalThreadsRunProgramsAtOnce()
{
    const QString script = m_scripts.add(QStringLiteral("echo"), "printf %s \"$1\"; exit \"$1\"");
    std::vector<std::unique_ptr<Worker>> threads;
    std::vector<int> right(4, 0);
    for (int i = 0; i < 4; ++i) {
        threads.push_back(std::make_unique<Worker>([&, i] {
            for (int j = 0; j < 10; ++j) {
                const ProgramResult result
                    = runProgram(script, {QString::number(i)}, enough, QStringList(), 10);
                right[size_t(i)] += result.exitCode == i && result.output.toInt() == i ? 1 : 0;
            }
        }));
        threads.back()->start();
    }
    for (const auto &thread : threads) {
        QVERIFY(thread->wait(2 * enough));
    }
    QCOMPARE(right, std::vector<int>(4, 10));
}

QTEST_GUILESS_MAIN(ProgramsTest)
#include "programs_test.moc"
