// SPDX-License-Identifier: MIT
// The single-instance lock, between real processes.
#include "support/files/lock_file.h"
#include "test_files.h"
#include "test_table.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <memory>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// Another process that calls lockFile(), see main(). It lives until it is told to end.
class Instance
{
public:
    explicit Instance(const QString &path, const char *after = "wait")
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral("/proc/self/exe"),
            {QStringLiteral("--lock"), path, QString::fromLatin1(after)});
        m_result = readNumber();
    }
    ~Instance()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /// What lockFile() gave there.
    int result() const { return m_result; }
    bool hasLock() const { return m_result >= 0; }

    /// A further number that it prints.
    int readNumber()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(60000)) {
                qFatal("the other instance says nothing");
            }
        }
        return m_process.readLine().trimmed().toInt();
    }

    qint64 processId() const { return m_process.processId(); }

    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
    int m_result = 0;
};

/// The other instance's life after lockFile().
int liveOn(const QByteArray &after)
{
    if (after == "exec") {
        execlp("cat", "cat", nullptr);
    }
    if (after == "fork" || after == "spawn") {
        const pid_t child = fork();
        if (child == 0 && after == "spawn") {
            execlp("sleep", "sleep", "600", nullptr);
        }
        if (child == 0) {
            pause();
        }
        printf("%d\n", int(child));
        fflush(stdout);
    }
    getchar(); // until killed
    return 0;
}

mode_t modeOf(const QString &path)
{
    struct stat info = {};
    return lstat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode : 0;
}

} // namespace

class LockFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aSecondInstanceIsRefused();
    void theLockDiesWithTheProcess();
    void theFileHoldsTheIdAndIsOurs();
    void anOldFileIsTakenOver();
    void theLockDoesNotOutliveAnExec();
    void aSurvivingChildDoesNotKeepTheLock_data();
    void aSurvivingChildDoesNotKeepTheLock();
    void theFolderIsMade();
    void whatOthersLeftIsNeitherFollowedNorWritten_data();
    void whatOthersLeftIsNeitherFollowedNorWritten();
    void aFileOfAnotherUserIsReplaced();
    void aRemovedFileIsMadeAgain();
    void ofManyAtOnceOneGetsTheLock();
    void ofHundredsOfPlantedNamesNoneKeepsTheLockAway();
    void aPathThatChangesNowAndThenKeepsNoLockAway();
    void whereNoLockCanBeMadeTheInstanceIsToldSo();
    void aFileSystemWithoutLocksIsNoOtherInstance();
    void aPlantedFolderThatCannotBePutAsideStaysWhole_data();
    void aPlantedFolderThatCannotBePutAsideStaysWhole();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

void LockFileTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_path = m_folder->filePath(QStringLiteral("norvixdaemon"));
}

void LockFileTest::aSecondInstanceIsRefused()
{
    const Instance first(m_path);
    QVERIFY(first.hasLock());
    for (int i = 0; i < 3; ++i) {
        const Instance second(m_path);
        QVERIFY(second.result() < 0);
    }
    // The refused ones left the lock and the file alone.
    QCOMPARE(contentOf(m_path), QByteArray::number(first.processId()) + '\n');
    QVERIFY(!Instance(m_path).hasLock());
}

void LockFileTest::theLockDiesWithTheProcess()
{
    Instance first(m_path);
    QVERIFY(first.hasLock());
    first.kill();
    QVERIFY(QFile::exists(m_path));
    QVERIFY(Instance(m_path).hasLock());
}

void LockFileTest::theFileHoldsTheIdAndIsOurs()
{
    const Instance first(m_path);
    QCOMPARE(contentOf(m_path), QByteArray::number(first.processId()) + '\n');
    // Whoever may read it could lock it for reading, and keep us out.
    QCOMPARE(modeOf(m_path), mode_t(S_IFREG | 0600));
}

void LockFileTest::anOldFileIsTakenOver()
{
    writeFile(m_path, "a long text that was here before\n");
    QCOMPARE(chmod(QFile::encodeName(m_path).constData(), 0666), 0);
    const Instance first(m_path);
    QVERIFY(first.hasLock());
    QCOMPARE(contentOf(m_path), QByteArray::number(first.processId()) + '\n');
    QCOMPARE(modeOf(m_path), mode_t(S_IFREG | 0600));
    QVERIFY(!Instance(m_path).hasLock());
}

void LockFileTest::theLockDoesNotOutliveAnExec()
{
    const Instance first(m_path, "exec");
    QVERIFY(first.hasLock());
    // It printed its number before the exec.
    QTRY_VERIFY_WITH_TIMEOUT(Instance(m_path).hasLock(), 60000);
    QCOMPARE(::kill(pid_t(first.processId()), 0), 0);
}

void LockFileTest::aSurvivingChildDoesNotKeepTheLock_data()
{
    const auto row = table<QByteArray>("how");
    row("another program", "spawn");
    row("a copy of the daemon", "fork");
}

void LockFileTest::aSurvivingChildDoesNotKeepTheLock()
{
    QFETCH(QByteArray, how);
    Instance first(m_path, how.constData());
    QVERIFY(first.hasLock());
    const int child = first.readNumber();
    QVERIFY(child > 1);
    QVERIFY(!Instance(m_path).hasLock());
    first.kill();
    QCOMPARE(::kill(child, 0), 0);
    QVERIFY(Instance(m_path).hasLock());
    ::kill(child, SIGKILL);
}

void LockFileTest::theFolderIsMade()
{
    const QString path = m_folder->filePath(QStringLiteral("run/lock/norvixdaemon"));
    const Instance first(path);
    QVERIFY(first.hasLock());
    QVERIFY(QFile::exists(path));
    QVERIFY(!Instance(path).hasLock());
}

void LockFileTest::whatOthersLeftIsNeitherFollowedNorWritten_data()
{
    const auto row = table<QByteArray>("what");
    for (const char *what :
        {"link", "dangling link", "link to itself", "hard link", "folder", "full folder", "pipe"}) {
        row(what, QByteArray(what));
    }
}

void LockFileTest::whatOthersLeftIsNeitherFollowedNorWritten()
{
    QFETCH(QByteArray, what);
    const QString victim = m_folder->filePath(QStringLiteral("victim"));
    const QByteArray path = QFile::encodeName(m_path);
    const QByteArray target = QFile::encodeName(victim);
    if (what.contains("link") && what != "dangling link") {
        writeFile(victim, "precious");
    }
    if (what == "link" || what == "dangling link") {
        QCOMPARE(symlink(target.constData(), path.constData()), 0);
    } else if (what == "link to itself") {
        QCOMPARE(symlink(path.constData(), path.constData()), 0);
    } else if (what == "hard link") {
        QCOMPARE(link(target.constData(), path.constData()), 0);
    } else if (what == "pipe") {
        QCOMPARE(mkfifo(path.constData(), 0666), 0);
    } else {
        QVERIFY(QDir().mkpath(m_path + QLatin1String(what == "folder" ? "" : "/sub/folder")));
    }

    const Instance first(m_path);
    QVERIFY(first.hasLock());
    QCOMPARE(modeOf(m_path), mode_t(S_IFREG | 0600));
    QCOMPARE(contentOf(m_path), QByteArray::number(first.processId()) + '\n');
    QVERIFY(!Instance(m_path).hasLock());

    QCOMPARE(contentOf(victim),
        QByteArray(what == "dangling link" || !what.contains("link") ? "no file" : "precious"));
    if (what == "full folder") {
        const QStringList aside = QDir(m_folder->path()).entryList({QStringLiteral("*.foreign-*")});
        QCOMPARE(aside.size(), 1);
        QVERIFY(QFile::exists(
            m_folder->filePath(aside.at(0)) + QStringLiteral("/norvixdaemon/sub/folder")));
    }
}

void LockFileTest::aFileOfAnotherUserIsReplaced()
{
    writeFile(m_path, "not ours");
    const QByteArray path = QFile::encodeName(m_path);
    if (chown(path.constData(), 65534, 65534) != 0) {
        QSKIP("needs root to give a file to another user");
    }
    // Its owner holds it locked for good.
    const int fd = open(path.constData(), O_RDWR | O_CLOEXEC);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    QCOMPARE(fcntl(fd, F_SETLK, &lock), 0);

    const Instance first(m_path);
    QVERIFY(first.hasLock());
    struct stat info = {};
    QCOMPARE(stat(path.constData(), &info), 0);
    QCOMPARE(info.st_uid, geteuid());
    QCOMPARE(pread(fd, std::array<char, 1>().data(), 1, 7), ssize_t(1)); // "not ours", whole
    close(fd);
}

void LockFileTest::aRemovedFileIsMadeAgain()
{
    {
        const Instance first(m_path);
        QVERIFY(QFile::remove(m_path));
    }
    const Instance second(m_path);
    QVERIFY(second.hasLock());
    QCOMPARE(contentOf(m_path), QByteArray::number(second.processId()) + '\n');
}

void LockFileTest::ofManyAtOnceOneGetsTheLock()
{
    for (int round = 0; round < 5; ++round) {
        QVERIFY(round == 0 || QFile::remove(m_path));
        std::vector<std::unique_ptr<QProcess>> instances;
        for (int i = 0; i < 8; ++i) {
            instances.push_back(std::make_unique<QProcess>());
            instances.back()->start(QStringLiteral("/proc/self/exe"),
                {QStringLiteral("--lock"), m_path, QStringLiteral("wait")});
        }
        int holders = 0;
        for (const auto &instance : instances) {
            QVERIFY(instance->waitForReadyRead(60000));
            holders += instance->readLine().trimmed().toInt() >= 0 ? 1 : 0;
        }
        QCOMPARE(holders, 1);
        for (const auto &instance : instances) {
            instance->kill();
            instance->waitForFinished();
        }
    }
}

void LockFileTest::ofHundredsOfPlantedNamesNoneKeepsTheLockAway()
{
    QVERIFY(QDir().mkpath(m_path + QStringLiteral("/sub")));
    for (int i = 0; i < 1000; ++i) {
        QVERIFY(QDir().mkdir(m_path + QStringLiteral(".foreign%1").arg(i)));
    }
    const Instance first(m_path);
    QVERIFY(first.result() > 0);
    QVERIFY(!Instance(m_path).hasLock());
}

void LockFileTest::aPathThatChangesNowAndThenKeepsNoLockAway()
{
    QProcess other;
    other.start(
        QStringLiteral("/proc/self/exe"), {QStringLiteral("--change-now-and-then"), m_path});
    QVERIFY(other.waitForReadyRead(60000));
    // Whoever changes it at each look within one try wins; on a busy machine that happens by
    // chance.
    int locked = 0;
    for (int i = 0; i < 500; ++i) {
        const int fd = lockFile(m_path);
        if (fd > 0) {
            ++locked;
            close(fd);
        }
    }
    QVERIFY2(locked >= 490, QByteArray::number(locked).constData());
    QCOMPARE(other.state(), QProcess::Running);
    other.kill();
    QVERIFY(other.waitForFinished());
}

void LockFileTest::whereNoLockCanBeMadeTheInstanceIsToldSo()
{
    // Nobody can make files there, root neither.
    QProcess instance;
    instance.start(QStringLiteral("/proc/self/exe"),
        {QStringLiteral("--lock"), QStringLiteral("/sys/norvixdaemon"), QStringLiteral("wait")});
    QVERIFY(instance.waitForReadyRead(60000));
    QCOMPARE(instance.readLine(), QByteArray("0\n"));
    instance.kill();
    QVERIFY(instance.waitForFinished());
    const QByteArray warning = instance.readAllStandardError();
    QVERIFY2(warning.contains("cannot make the lock file /sys/norvixdaemon"), warning.constData());
}

void LockFileTest::aFileSystemWithoutLocksIsNoOtherInstance()
{
    QProcess instance;
    instance.start(QStringLiteral("/proc/self/exe"),
        {QStringLiteral("--lock-without"), QStringLiteral("locks"), m_path});
    QVERIFY(instance.waitForFinished(60000));
    QCOMPARE(instance.readAllStandardOutput(), QByteArray("0\n"));
    QVERIFY(instance.readAllStandardError().contains("No locks available"));
}

void LockFileTest::aPlantedFolderThatCannotBePutAsideStaysWhole_data()
{
    const auto row = table<QString>("without");
    row("no place for it", "mkdir");
    row("not to be moved", "rename");
}

void LockFileTest::aPlantedFolderThatCannotBePutAsideStaysWhole()
{
    QFETCH(QString, without);
    QVERIFY(QDir().mkpath(m_path + QStringLiteral("/sub")));
    QProcess instance;
    instance.start(
        QStringLiteral("/proc/self/exe"), {QStringLiteral("--lock-without"), without, m_path});
    QVERIFY(instance.waitForFinished(60000));
    QCOMPARE(instance.readAllStandardOutput(), QByteArray("0\n"));
    QVERIFY(instance.readAllStandardError().contains("cannot make the lock file"));
    QVERIFY(QFile::exists(m_path + QStringLiteral("/sub")));
    const QStringList left = QDir(m_folder->path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QCOMPARE(left, QStringList(QStringLiteral("norvixdaemon")));
}

/// From here on the kernel answers one kind of call with an error: that of locks as some network
/// file systems do.
bool forbid(const QByteArray &what)
{
    const bool isLocks = what == "locks";
    const quint32 call = isLocks ? SYS_fcntl : what == "mkdir" ? SYS_mkdir : SYS_rename;
    const quint32 error = isLocks ? ENOLCK : EPERM;
    // Of fcntl only the commands that lock; the others have no second argument to look at.
    std::array<sock_filter, 7> rules = {{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, quint32(offsetof(seccomp_data, nr))),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 4),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, quint32(SYS_fcntl), 0, 2),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, quint32(offsetof(seccomp_data, args[1]))),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, quint32(F_SETLK), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog program = {rules.size(), rules.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

int main(int argc, char **argv)
{
    if (argc == 4 && qstrcmp(argv[1], "--lock-without") == 0) {
        if (!forbid(argv[2])) {
            return 1;
        }
        printf("%d\n", lockFile(QFile::decodeName(argv[3])));
        return 0;
    }
    if (argc == 3 && qstrcmp(argv[1], "--change-now-and-then") == 0) {
        puts("begun");
        fflush(stdout);
        // Not faster: twenty attempts in a row must not all meet a change.
        for (;; usleep(100)) {
            (void)(symlink("nowhere", argv[2]) == 0);
            usleep(100);
            unlink(argv[2]);
        }
    }
    if (argc == 4 && qstrcmp(argv[1], "--lock") == 0) {
        printf("%d\n", lockFile(QFile::decodeName(argv[2])));
        fflush(stdout);
        return liveOn(argv[3]);
    }
    QCoreApplication application(argc, argv);
    LockFileTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "lock_file_test.moc"
