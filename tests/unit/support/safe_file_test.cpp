// SPDX-License-Identifier: MIT
// Reading and rewriting small files: nothing waits, nothing is lost.
#include "few_descriptors.h"
#include "support/files/safe_file.h"
#include "test_files.h"
#include "test_table.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool canReserve = true;

/// Within this life no file grows beyond a size: a disk that is full from there on.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size)
    {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const struct rlimit limit = {size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    Q_DISABLE_COPY(FullDisk)
    struct rlimit m_before = {};
};

} // namespace

/// Takes the place of the C library's, so that a file system without this call can be had.
extern "C" int fallocate(int fd, int mode, off_t offset, off_t length)
{
    if (!canReserve) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return int(syscall(SYS_fallocate, fd, mode, offset, length));
}

class TestSafeFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void fileIsReadWhole_data();
    void fileIsReadWhole();
    void aFileOverTheLimitIsNotRead();
    void onlyRegularFilesAreRead_data();
    void onlyRegularFilesAreRead();
    void linkIsFollowedUnlessRefused();
    void rewritingKeepsInodeOwnerAndMode_data();
    void rewritingKeepsInodeOwnerAndMode();
    void fullDiskCostsNoOldByte_data();
    void fullDiskCostsNoOldByte();
    void replacingOnAFullDiskLeavesTheOldFileAlone();
    void copyingOntoAFullDiskLeavesTheOldFileAlone();
    void rewritingMakesNoFile();
    void rewritingRefusesLinksWhenAsked();
    void replacingHandsOnOwnerAndMode();
    void replacingALinkLeavesItsTargetAlone();
    void replacingMakesAMissingFileReadableForAll();
    void replacingSweepsWhatAKilledProcessLeft();
    void whatAnotherProcessIsStillWritingIsNotSwept();
    void aFolderIsSweptOfWhatKilledProcessesLeftOnTheirWayToAnyFile();
    void ownerAndModeAreGivenBeforeTheNewFileCanBeSeen();
    void anOwnerIsGivenThoughTheGroupStays();
    void aFileOfWhichNothingElseIsSaidIsRoots();
    void foldersThatAreMadeOnTheWayMayBeEnteredByEveryone();
    void copyingToAFolderThatCannotBeMadeFails();
    void replacingAFolderFailsAndLeavesNothingBehind();
    void plainFileIsNoMountPoint();
    void aTreeIsToldWithoutLinksToFoldersAndUnfinishedFiles();
    void aFolderThatIsMissingHasNothingBelow();
    void aTreeThatCannotBeReadWholeIsNotTold();

private:
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }
    QByteArray name(const char *file) const { return QFile::encodeName(path(file)); }
    void write(const char *name, const QByteArray &bytes);
    QByteArray bytesOf(const char *name) const;
    struct stat statusOf(const char *name) const;

    QStringList names() const
    {
        return QDir(m_folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot | QDir::System);
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

void TestSafeFile::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

void TestSafeFile::cleanup()
{
    m_folder.reset();
}

void TestSafeFile::write(const char *name, const QByteArray &bytes)
{
    writeFile(path(name), bytes);
}

QByteArray TestSafeFile::bytesOf(const char *name) const
{
    return contentOf(path(name));
}

struct stat TestSafeFile::statusOf(const char *file) const
{
    struct stat status = {};
    lstat(name(file).constData(), &status);
    return status;
}

void TestSafeFile::fileIsReadWhole_data()
{
    const auto row = table<QByteArray>("bytes");
    row("empty", QByteArray());
    row("NUL bytes", QByteArray("a\0b\0", 4));
    row("one block", QByteArray(65536, 'x'));
    row("many blocks", QByteArray(1000001, 'x'));
}

void TestSafeFile::aFileOverTheLimitIsNotRead()
{
    write("file", QByteArray(70000, 'x'));
    QVERIFY(readFileBytes(path("file"), Links::Follow, 70000));
    QVERIFY(!readFileBytes(path("file"), Links::Follow, 69999));
    QCOMPARE(errno, EFBIG);
}

void TestSafeFile::fileIsReadWhole()
{
    QFETCH(QByteArray, bytes);
    write("file", bytes);
    const std::optional<QByteArray> read = readFileBytes(path("file"));
    QVERIFY(read);
    QCOMPARE(*read, bytes);
}

void TestSafeFile::onlyRegularFilesAreRead_data()
{
    const auto row = table<QString>("kind");
    for (const char *kind : {"missing", "folder", "pipe", "dangling link", "link to itself"}) {
        row(kind, QString::fromLatin1(kind));
    }
}

void TestSafeFile::onlyRegularFilesAreRead()
{
    QFETCH(QString, kind);
    if (kind == QLatin1String("folder")) {
        QVERIFY(QDir().mkdir(path("file")));
    } else if (kind == QLatin1String("pipe")) {
        QCOMPARE(mkfifo(name("file").constData(), 0600), 0);
    } else if (kind == QLatin1String("dangling link")) {
        QCOMPARE(symlink("nowhere", name("file").constData()), 0);
    } else if (kind == QLatin1String("link to itself")) {
        QCOMPARE(symlink("file", name("file").constData()), 0);
    }
    errno = 0;
    QVERIFY(!readFileBytes(path("file")));
    QVERIFY(errno != 0);
    QCOMPARE(rewriteFileInPlace(path("file"), "", "new"), Rewrite::NotOpened);
    QVERIFY(errno != 0);
}

void TestSafeFile::linkIsFollowedUnlessRefused()
{
    write("target", "content");
    QCOMPARE(symlink("target", name("link").constData()), 0);
    QCOMPARE(readFileBytes(path("link")).value_or("none"), QByteArray("content"));
    QVERIFY(!readFileBytes(path("link"), Links::Refuse));
    QCOMPARE(errno, ELOOP);
}

void TestSafeFile::rewritingKeepsInodeOwnerAndMode_data()
{
    const auto row = table<QByteArray, QByteArray>("oldBytes", "newBytes");
    row("longer", "old", QByteArray(100000, 'n'));
    row("shorter", QByteArray(100000, 'o'), "new");
    row("to nothing", "old", QByteArray());
    row("from nothing", QByteArray(), "new");
    row("the same", "same", "same");
}

void TestSafeFile::rewritingKeepsInodeOwnerAndMode()
{
    QFETCH(QByteArray, oldBytes);
    QFETCH(QByteArray, newBytes);
    write("file", oldBytes);
    QCOMPARE(chmod(name("file").constData(), 0640), 0);
    const struct stat before = statusOf("file");
    QCOMPARE(rewriteFileInPlace(path("file"), oldBytes, newBytes), Rewrite::Done);
    const struct stat after = statusOf("file");
    QCOMPARE(bytesOf("file"), newBytes);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_uid, before.st_uid);
    QCOMPARE(after.st_gid, before.st_gid);
    QCOMPARE(after.st_mode, before.st_mode);
}

void TestSafeFile::fullDiskCostsNoOldByte_data()
{
    const auto row = table<bool>("reservable");
    row("room is refused before anything is written", true);
    row("the write stops half-way and is undone", false);
}

void TestSafeFile::fullDiskCostsNoOldByte()
{
    QFETCH(bool, reservable);
    const QByteArray oldBytes(5000, 'o');
    write("file", oldBytes);
    canReserve = reservable;
    Rewrite result = Rewrite::Done;
    int error = 0;
    {
        const FullDisk disk(6000);
        result = rewriteFileInPlace(path("file"), oldBytes, QByteArray(7000, 'n'));
        error = errno;
    }
    canReserve = true;
    QCOMPARE(result, Rewrite::NotWritten);
    QCOMPARE(error, EFBIG);
    QCOMPARE(bytesOf("file"), oldBytes);
}

void TestSafeFile::replacingOnAFullDiskLeavesTheOldFileAlone()
{
    const QByteArray oldBytes(5000, 'o');
    write("file", oldBytes);
    bool replaced = true;
    {
        const FullDisk disk(6000);
        replaced = replaceFile(path("file"), QByteArray(7000, 'n'));
    }
    QVERIFY(!replaced);
    QCOMPARE(bytesOf("file"), oldBytes);
    QCOMPARE(names(), QStringList(QStringLiteral("file")));
}

void TestSafeFile::copyingOntoAFullDiskLeavesTheOldFileAlone()
{
    write("file", "old");
    write("source", QByteArray(7000, 'n'));
    const std::optional<FileAttributes> facts = attributesOf(path("source"));
    QVERIFY(facts);
    bool copied = true;
    {
        const FullDisk disk(6000);
        copied = copyIntoPlace(path("source"), path("file"), *facts);
    }
    QVERIFY(!copied);
    QCOMPARE(bytesOf("file"), QByteArray("old"));
    QCOMPARE(names().size(), 2);
    QVERIFY(copyIntoPlace(path("source"), path("file"), *facts));
    QCOMPARE(bytesOf("file"), QByteArray(7000, 'n'));
}

void TestSafeFile::rewritingMakesNoFile()
{
    QCOMPARE(rewriteFileInPlace(path("file"), "old", "new"), Rewrite::NotOpened);
    QVERIFY(!QFile::exists(path("file")));
}

void TestSafeFile::rewritingRefusesLinksWhenAsked()
{
    write("target", "content");
    QCOMPARE(symlink("target", name("link").constData()), 0);
    QCOMPARE(rewriteFileInPlace(path("link"), "content", "new", Links::Refuse), Rewrite::NotOpened);
    QCOMPARE(bytesOf("target"), QByteArray("content"));
    QCOMPARE(rewriteFileInPlace(path("link"), "content", "new"), Rewrite::Done);
    QCOMPARE(bytesOf("target"), QByteArray("new"));
}

void TestSafeFile::replacingHandsOnOwnerAndMode()
{
    write("file", "old");
    QCOMPARE(chmod(name("file").constData(), 0604), 0);
    if (geteuid() == 0) {
        QCOMPARE(chown(name("file").constData(), 12, 34), 0);
    }
    const struct stat before = statusOf("file");
    const mode_t mask = umask(0077);
    const bool replaced = replaceFile(path("file"), "new");
    umask(mask);
    QVERIFY(replaced);
    const struct stat after = statusOf("file");
    QCOMPARE(bytesOf("file"), QByteArray("new"));
    QVERIFY(after.st_ino != before.st_ino);
    QCOMPARE(after.st_uid, before.st_uid);
    QCOMPARE(after.st_gid, before.st_gid);
    QCOMPARE(after.st_mode, before.st_mode);
}

void TestSafeFile::replacingALinkLeavesItsTargetAlone()
{
    write("target", "content");
    QCOMPARE(chmod(name("target").constData(), 0600), 0);
    QCOMPARE(symlink("target", name("file").constData()), 0);
    QVERIFY(replaceFile(path("file"), "new"));
    QCOMPARE(bytesOf("target"), QByteArray("content"));
    QCOMPARE(bytesOf("file"), QByteArray("new"));
    QCOMPARE(statusOf("file").st_mode, mode_t(S_IFREG | 0644));
}

void TestSafeFile::replacingMakesAMissingFileReadableForAll()
{
    const mode_t mask = umask(0077);
    const bool replaced = replaceFile(path("file"), "new");
    umask(mask);
    QVERIFY(replaced);
    QCOMPARE(bytesOf("file"), QByteArray("new"));
    QCOMPARE(statusOf("file").st_mode, mode_t(S_IFREG | 0644));
}

void TestSafeFile::replacingSweepsWhatAKilledProcessLeft()
{
    write("file", "old");
    write("precious", "precious");
    write(".norvix-new-file-abcdef", "unfinished");
    write(".norvix-new-other-abcdef", "another file's");
    QCOMPARE(symlink("precious", name(".norvix-new-file-ghijkl").constData()), 0);
    QVERIFY(replaceFile(path("file"), "new"));
    QCOMPARE(bytesOf("file"), QByteArray("new"));
    QCOMPARE(bytesOf("precious"), QByteArray("precious"));
    QCOMPARE(names(),
        QStringList({QStringLiteral(".norvix-new-other-abcdef"), QStringLiteral("file"),
            QStringLiteral("precious")}));
}

void TestSafeFile::whatAnotherProcessIsStillWritingIsNotSwept()
{
    const bool replaced = replaceFileWith(path("file").toStdString(), FileAttributes(), [&](int) {
        clearUnfinished(path("file"));
        return true;
    });
    QVERIFY(replaced);
    QCOMPARE(names(), QStringList(QStringLiteral("file")));
}

void TestSafeFile::aFolderIsSweptOfWhatKilledProcessesLeftOnTheirWayToAnyFile()
{
    write("file", "old");
    write(".norvix-new-file-abcdef", "unfinished");
    write(".norvix-new-other.norvix-backup-abcdef", "unfinished");
    write(".norvix", "somebody's");
    const bool replaced = replaceFileWith(path("file").toStdString(), FileAttributes(), [&](int) {
        clearUnfinishedIn(path(".").toStdString());
        return true;
    });
    QVERIFY(replaced);
    QCOMPARE(names(), QStringList({QStringLiteral(".norvix"), QStringLiteral("file")}));
}

void TestSafeFile::ownerAndModeAreGivenBeforeTheNewFileCanBeSeen()
{
    write("file", "old");
    QCOMPARE(chmod(name("file").constData(), 0604), 0);
    FileAttributes attributes;
    attributes.owner = geteuid();
    attributes.group = geteuid() == 0 ? 34 : getegid();
    attributes.mode = 0640;
    QVERIFY(replaceFile(path("file"), "new", attributes));
    QCOMPARE(statusOf("file").st_mode, mode_t(S_IFREG | 0640));
    QCOMPARE(statusOf("file").st_gid, attributes.group);
}

void TestSafeFile::aFileOfWhichNothingElseIsSaidIsRoots()
{
    if (geteuid() != 0) {
        QSKIP("needs root to give a folder to another group");
    }
    QCOMPARE(chown(name(".").constData(), 0, 34), 0);
    QCOMPARE(chmod(name(".").constData(), 02755), 0);
    QVERIFY(
        replaceFileWith(path("file").toStdString(), FileAttributes(), [](int) { return true; }));
    QCOMPARE(statusOf("file").st_uid, uid_t(0));
    QCOMPARE(statusOf("file").st_gid, gid_t(0));
}

void TestSafeFile::foldersThatAreMadeOnTheWayMayBeEnteredByEveryone()
{
    write("source", "text");
    const mode_t before = umask(077);
    const bool made = makeFolders(path("a/b"))
        && copyIntoPlace(path("source"), path("c/d/file"), *attributesOf(path("source")));
    umask(before);
    QVERIFY(made);
    for (const char *folder : {"a", "a/b", "c", "c/d"}) {
        QCOMPARE(statusOf(folder).st_mode, mode_t(S_IFDIR | 0755));
    }
}

void TestSafeFile::anOwnerIsGivenThoughTheGroupStays()
{
    if (geteuid() != 0) {
        QSKIP("needs root to give a file to another user");
    }
    FileAttributes attributes;
    attributes.owner = 33;
    attributes.group = getegid();
    attributes.mode = 0600;
    QVERIFY(replaceFile(path("file"), "text", attributes));
    QCOMPARE(statusOf("file").st_uid, attributes.owner);
    attributes.owner = geteuid();
    QVERIFY(replaceFile(path("other"), "text", attributes));
    QVERIFY(!sameFile(path("file"), path("other")));
}

void TestSafeFile::copyingToAFolderThatCannotBeMadeFails()
{
    write("file", "old");
    write("source", "new");
    QVERIFY(
        !copyIntoPlace(path("source"), path("file/below/target"), *attributesOf(path("source"))));
    QVERIFY(!copyIntoPlace(
        path("source"), QStringLiteral("/proc/norvix/target"), *attributesOf(path("source"))));
    QCOMPARE(bytesOf("file"), QByteArray("old"));
    QCOMPARE(names(), QStringList({QStringLiteral("file"), QStringLiteral("source")}));
}

void TestSafeFile::replacingAFolderFailsAndLeavesNothingBehind()
{
    QVERIFY(QDir().mkdir(path("file")));
    QVERIFY(!replaceFile(path("file"), "new"));
    QVERIFY(!replaceFile(path("missing/file"), "new"));
    QCOMPARE(names(), QStringList(QStringLiteral("file")));
}

void TestSafeFile::plainFileIsNoMountPoint()
{
    write("file", "content");
    QVERIFY(!isMountPoint(path("file")));
    QVERIFY(!isMountPoint(path("missing")));
    QVERIFY(isMountPoint(QStringLiteral("/proc")));
}

void TestSafeFile::aTreeIsToldWithoutLinksToFoldersAndUnfinishedFiles()
{
    QVERIFY(makeFolders(path("tree/b/.deep")));
    QVERIFY(makeFolders(path("tree/a")));
    write("tree/b/.deep/file", "");
    write("tree/b/.norvix-new-file-abcdef", "");
    write("tree/.hidden", "");
    QCOMPARE(mkfifo(name("tree/a/pipe").constData(), 0600), 0);
    QVERIFY(QFile::link(path("tree/b"), path("tree/to a folder")));
    QVERIFY(QFile::link(path("tree/.hidden"), path("tree/to a file")));
    QVERIFY(QFile::link(path("none"), path("tree/to nothing")));
    const std::optional<TreeContents> contents = contentsBelow(path("tree"));
    QVERIFY(contents);
    QCOMPARE(contents->files,
        QStringList({".hidden", "a/pipe", "b/.deep/file", "to a file", "to nothing"}));
    QCOMPARE(contents->folders, QStringList({"a", "b", "b/.deep"}));
}

void TestSafeFile::aFolderThatIsMissingHasNothingBelow()
{
    const std::optional<TreeContents> contents = contentsBelow(path("none"));
    QVERIFY(contents);
    QVERIFY(contents->files.isEmpty() && contents->folders.isEmpty());
}

void TestSafeFile::aTreeThatCannotBeReadWholeIsNotTold()
{
    QVERIFY(makeFolders(path("tree/a/b/c")));
    const FewDescriptors limit(2);
    QVERIFY(!contentsBelow(path("tree")));
    QVERIFY(contentsBelow(path("tree/a/b")));
}

QTEST_APPLESS_MAIN(TestSafeFile)
#include "safe_file_test.moc"
