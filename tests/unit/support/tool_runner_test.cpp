// SPDX-License-Identifier: MIT
// Running the tools of a build: what they are given, how their end is told.
#include "support/driver/build_log.h"
#include "support/process/tool_runner.h"
#include "test_files.h"
#include "test_table.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const QStringList plain{QStringLiteral("PATH=/usr/bin:/bin"), QStringLiteral("LC_ALL=C")};

ToolCall shell(const char *script)
{
    ToolCall call;
    call.program = QStringLiteral("sh");
    call.arguments = QStringList{QStringLiteral("-c"), QString::fromLatin1(script)};
    call.environment = plain;
    return call;
}

/// This program as a tool that leaves its process group, so that no signal to that reaches it, and
/// lives until nobody writes to the pipe "pipe" any more.
int leaveGroup()
{
    const pid_t other = fork();
    setpgid(other, other);
    setpgid(0, other);
    const FileDescriptor pipe(open("pipe", O_RDONLY));
    char byte = 0;
    return int(read(pipe.get(), &byte, 1));
}

bool hasChildren()
{
    siginfo_t info = {};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

} // namespace

class ToolRunnerTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<BuildLog> m_log;

    QString logPath() const { return m_folder->filePath(QStringLiteral("log")); }

    QByteArray logged() const { return contentOf(logPath()); }

    ToolResult run(const ToolCall &call, int lock = -1) const
    {
        return runTool(call, m_log->descriptor(), lock);
    }

    QByteArray outputOf(ToolCall call, int lock = -1) const
    {
        call.maxOutput = 10000;
        return run(call, lock).output;
    }

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_log = std::make_unique<BuildLog>();
        m_log->begin(logPath());
    }

    void anExitCodeIsTold()
    {
        QVERIFY(run(shell("exit 0")).ok());
        const ToolResult result = run(shell("exit 7"));
        QCOMPARE(result.end, ToolResult::Exited);
        QCOMPARE(result.exitCode, 7);
        QVERIFY(!result.ok());
    }

    void aCrashIsTold() { QCOMPARE(run(shell("kill -SEGV $$")).end, ToolResult::Crashed); }

    void aMissingProgramIsTold()
    {
        ToolCall call = shell("");
        call.program = QStringLiteral("no-such-program");
        QCOMPARE(run(call).end, ToolResult::NotFound);
        call.program = QStringLiteral("/no/such/program");
        QCOMPARE(run(call).end, ToolResult::NotFound);
    }

    void aProgramOfTheSystemIsFoundThoughPathLacksItsFolder()
    {
        QCOMPARE(findTool(QStringLiteral("sh"), {QStringLiteral("PATH=/nonexistent")}),
            QStringLiteral("/usr/bin/sh"));
    }

    void whatIsNoProgramIsNotFound()
    {
        const QString path = m_folder->filePath(QStringLiteral("norvix-no-program"));
        writeFile(path);
        const QStringList environment{QStringLiteral("PATH=") + m_folder->path()};
        QCOMPARE(findTool(QStringLiteral("norvix-no-program"), environment), QString());
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner));
        QCOMPARE(findTool(QStringLiteral("norvix-no-program"), environment), path);
        QCOMPARE(findTool(QStringLiteral("../bin/sh"), {}), QString());
    }

    void outputAndErrorsAreLoggedInTheOrderInWhichTheyCame()
    {
        m_log->line(QStringLiteral("first"));
        run(shell("echo out; echo err >&2; printf 'a\\0b\\377'"));
        m_log->line(QStringLiteral("last"));
        QCOMPARE(logged(), QByteArray("## first\nout\nerr\na\0b\xff## last\n", 29));
        m_log->begin(logPath());
        QCOMPARE(logged(), QByteArray());
    }

    void keptOutputIsNotLoggedAndEndsAtItsLimit()
    {
        ToolCall call = shell("echo 123456789; echo err >&2");
        call.maxOutput = 4;
        const ToolResult result = run(call);
        QCOMPARE(result.output, QByteArray("1234"));
        QCOMPARE(logged(), QByteArray("err\n"));
    }

    void aToolThatTakesTooLongIsKilledWithItsChildren()
    {
        const QString pipe = m_folder->filePath(QStringLiteral("pipe"));
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        const FileDescriptor end(open(QFile::encodeName(pipe).constData(), O_RDONLY | O_NONBLOCK));
        ToolCall call = shell("exec 5>pipe; sleep 1000 & sleep 1000");
        call.folder = m_folder->path();
        call.timeoutMs = 300;
        QCOMPARE(run(call).end, ToolResult::TimedOut);
        // The pipe ends when nobody holds its other end any more.
        char byte = 0;
        QTRY_COMPARE(read(end.get(), &byte, 1), ssize_t(0));
    }

    void aToolThatCannotBeEndedIsLeftBehindAndReapedByALaterRun()
    {
        const QByteArray pipe = QFile::encodeName(m_folder->filePath(QStringLiteral("pipe")));
        QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
        {
            const FileDescriptor alive(open(pipe.constData(), O_RDWR | O_CLOEXEC));
            ToolCall call;
            call.program = QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
            call.arguments = QStringList(QStringLiteral("--leave-group"));
            call.environment = plain;
            call.folder = m_folder->path();
            call.timeoutMs = 1000;
            QCOMPARE(run(call).end, ToolResult::TimedOut);
            QVERIFY(run(shell("exit 0")).ok());
        }
        QTRY_VERIFY(run(shell("exit 0")).ok() && !hasChildren());
    }

    void aToolGetsItsFolderAndExactlyItsEnvironment()
    {
        ToolCall call = shell("pwd -P; env | grep -v '^_=' | grep -v '^PWD=' | sort");
        call.folder = QStringLiteral("/usr/bin");
        call.environment = plain + QStringList{QStringLiteral("A=b c")};
        QCOMPARE(outputOf(call), QByteArray("/usr/bin\nA=b c\nLC_ALL=C\nPATH=/usr/bin:/bin\n"));
    }

    void aFolderThatIsNotThereIsAFailure()
    {
        ToolCall call = shell("exit 0");
        call.folder = QStringLiteral("/no/such/folder");
        QVERIFY(!run(call).ok());
    }

    void filesThatAToolMakesCanBeReadByAllWhateverOurUmask()
    {
        const mode_t before = umask(077);
        ToolCall call = shell("echo > file");
        call.folder = m_folder->path();
        run(call);
        umask(before);
        struct stat facts = {};
        stat(QFile::encodeName(m_folder->filePath(QStringLiteral("file"))).constData(), &facts);
        QCOMPARE(facts.st_mode & 0777, mode_t(0644));
    }

    void standardInputIsTheGivenFileOrNothing()
    {
        QFile file(m_folder->filePath(QStringLiteral("input")));
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.write("given");
        file.seek(0);
        ToolCall call = shell("cat");
        QCOMPARE(outputOf(call), QByteArray());
        call.input = file.handle();
        QCOMPARE(outputOf(call), QByteArray("given"));
    }

    void nothingElseIsInheritedButTheLock()
    {
        const FileDescriptor leaking(open("/etc/hostname", O_RDONLY));
        // Builtins only: a pipe or a listing would have descriptors of its own.
        const char *const list
            = "i=0; while [ $i -lt 100 ]; do [ -e /proc/$$/fd/$i ] && echo $i; i=$((i + 1)); done";
        QCOMPARE(outputOf(shell(list)), QByteArray("0\n1\n2\n"));
        const FileDescriptor lock(open("/etc/passwd", O_RDONLY | O_CLOEXEC));
        QCOMPARE(outputOf(shell(list), lock.get()), QByteArray("0\n1\n2\n3\n"));
        QCOMPARE(
            outputOf(shell("readlink /proc/self/fd/3"), lock.get()), QByteArray("/etc/passwd\n"));
    }

    void theLockIsHeldUntilTheLastDescendantHasEnded()
    {
        const QByteArray path = QFile::encodeName(m_folder->filePath(QStringLiteral("lock")));
        const QString pipe = m_folder->filePath(QStringLiteral("pipe"));
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        const FileDescriptor write(open(QFile::encodeName(pipe).constData(), O_RDWR));
        {
            const FileDescriptor lock(open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
            QCOMPARE(flock(lock.get(), LOCK_EX), 0);
            ToolCall call = shell("read word < pipe &");
            call.folder = m_folder->path();
            QVERIFY(run(call, lock.get()).ok());
        }
        const FileDescriptor second(open(path.constData(), O_RDWR | O_CLOEXEC));
        QCOMPARE(flock(second.get(), LOCK_EX | LOCK_NB), -1);
        QCOMPARE(::write(write.get(), "go\n", 3), ssize_t(3));
        QTRY_COMPARE(flock(second.get(), LOCK_EX | LOCK_NB), 0);
    }

    void aLogThatCannotBeOpenedIsNoObstacle()
    {
        BuildLog log;
        log.begin(QStringLiteral("/no/such/folder/log"));
        log.line(QStringLiteral("lost"));
        QVERIFY(runTool(shell("echo lost"), log.descriptor(), -1).ok());
    }

    void aPipeAtTheLogsPlaceIsNeitherWaitedForNorWrittenTo()
    {
        const QString pipe = m_folder->filePath(QStringLiteral("pipe"));
        const QByteArray path = QFile::encodeName(pipe);
        QCOMPARE(mkfifo(path.constData(), 0600), 0);
        const auto useLog = [&] {
            BuildLog log;
            log.begin(pipe);
            log.line(QStringLiteral("text"));
            return runTool(shell("echo text"), log.descriptor(), -1).ok();
        };
        QVERIFY(useLog());
        const FileDescriptor reader(open(path.constData(), O_RDONLY | O_NONBLOCK));
        QVERIFY(useLog());
        char byte = 0;
        QCOMPARE(read(reader.get(), &byte, 1), ssize_t(0));
    }

    void aToolWhoseInputOrOutputCannotBeGivenIsNotStarted_data()
    {
        const auto row = table<int, bool, int>("input", "hasLog", "maxOutput");
        row("input", 9999, true, 0);
        row("output and errors", -1, false, 0);
        row("errors", -1, false, 100);
    }

    void aToolWhoseInputOrOutputCannotBeGivenIsNotStarted()
    {
        QFETCH(int, input);
        QFETCH(bool, hasLog);
        QFETCH(int, maxOutput);
        ToolCall call = shell("> started");
        call.folder = m_folder->path();
        call.input = input;
        call.maxOutput = maxOutput;
        QCOMPARE(runTool(call, hasLog ? m_log->descriptor() : -1, -1).end, ToolResult::NotFound);
        QVERIFY(!QFile::exists(m_folder->filePath(QStringLiteral("started"))));
    }

    void aPlantedLogIsNotWrittenTo()
    {
        const QString victim = m_folder->filePath(QStringLiteral("victim"));
        writeFile(victim, "precious");
        const QString planted = m_folder->filePath(QStringLiteral("planted"));
        QVERIFY(QFile::link(victim, planted));
        BuildLog log;
        log.begin(planted);
        log.line(QStringLiteral("text"));
        QCOMPARE(contentOf(victim), QByteArray("precious"));
    }
};

int main(int argc, char **argv)
{
    if (argc == 2 && qstrcmp(argv[1], "--leave-group") == 0) {
        return leaveGroup();
    }
    ToolRunnerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tool_runner_test.moc"
