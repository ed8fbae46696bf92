// SPDX-License-Identifier: MIT
// What root may act upon, and folders that root makes where others can write.
#include "support/files/safe_file.h"
#include "support/files/trusted_file.h"
#include "test_files.h"
#include "test_table.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <sys/stat.h>

class TrustedFileTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    QString path(const char *name) const { return m_folder->filePath(QString::fromLatin1(name)); }

    QByteArray encoded(const char *name) const { return QFile::encodeName(path(name)); }

    QString refusalOf(const char *name) const
    {
        return openTrustedFile(path(name), geteuid(), m_folder->path()).refusal;
    }

    void write(const char *name, const QByteArray &bytes = "text") const
    {
        QVERIFY(makeFolders(QFileInfo(path(name)).path()));
        writeFile(path(name), bytes);
    }

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void aFileInFoldersThatOnlyItsOwnerWritesIsOpened()
    {
        write("a/b/file");
        const TrustedFile trusted = openTrustedFile(path("a/b/file"), geteuid(), m_folder->path());
        QCOMPARE(trusted.refusal, QString());
        char bytes[10] = {};
        QCOMPARE(read(trusted.file.get(), bytes, sizeof bytes), ssize_t(4));
        QCOMPARE(QByteArray(bytes), QByteArray("text"));
    }

    TrustedPath followed(const char *name) const
    {
        return followTrustedLinks(path(name), geteuid(), m_folder->path());
    }

    void linksAreFollowedToAFileThatOnlyItsOwnerWrites_data()
    {
        const auto row = table<QByteArray>("leadsTo");
        row("beside", "file");
        row("up and down", "../../a/./b/../b/file");
        row("another link", "second");
        row("a folder that is a link", "../../c/file");
        row("from the root", QByteArray());
    }

    void linksAreFollowedToAFileThatOnlyItsOwnerWrites()
    {
        QFETCH(QByteArray, leadsTo);
        write("a/b/file");
        QCOMPARE(symlink("file", encoded("a/b/second").constData()), 0);
        QCOMPARE(symlink("a/b", encoded("c").constData()), 0);
        const QByteArray target = leadsTo.isEmpty() ? encoded("a/b/file") : leadsTo;
        QCOMPARE(symlink(target.constData(), encoded("a/b/link").constData()), 0);
        QCOMPARE(followed("a/b/link").refusal, QString());
        QCOMPARE(followed("a/b/link").path, QFileInfo(path("a/b/file")).canonicalFilePath());
    }

    void aWayOfLinksThatOthersCouldChangeIsRefused_data()
    {
        const auto row = table<QByteArray, int>("changed", "mode");
        row("the file", "a/b/file", 0664);
        row("the file's folder", "a/b", 0777);
        row("the folder of a link on the way", "way", 01777);
        row("the folder of the first link", "etc", 0775);
    }

    void aWayOfLinksThatOthersCouldChangeIsRefused()
    {
        QFETCH(QByteArray, changed);
        QFETCH(int, mode);
        write("a/b/file");
        QVERIFY(makeFolders(path("way")) && makeFolders(path("etc")));
        QCOMPARE(symlink("../a/b/file", encoded("way/link").constData()), 0);
        QCOMPARE(symlink("../way/link", encoded("etc/link").constData()), 0);
        QCOMPARE(followed("etc/link").refusal, QString());
        QCOMPARE(chmod(encoded(changed.constData()).constData(), mode_t(mode)), 0);
        QVERIFY(followed("etc/link").refusal.endsWith(QStringLiteral("can be written by others")));
    }

    void aLinkThatLeadsToNoFileIsRefused_data()
    {
        const auto row = table<QByteArray>("leadsTo");
        row("nowhere", "nowhere");
        row("itself", "link");
        row("a folder", "a/b");
        row("below a file", "a/b/file/x");
        row("a device", "/dev/null");
    }

    void aLinkThatLeadsToNoFileIsRefused()
    {
        QFETCH(QByteArray, leadsTo);
        write("a/b/file");
        QCOMPARE(symlink(leadsTo.constData(), encoded("link").constData()), 0);
        QVERIFY(!followed("link").refusal.isEmpty());
        QCOMPARE(followed("link").path, QString());
    }

    void aLinkOfSomebodyElseIsRefused()
    {
        if (geteuid() != 0) {
            QSKIP("only root can give files away");
        }
        write("a/b/file");
        QCOMPARE(symlink("a/b/file", encoded("link").constData()), 0);
        QCOMPARE(lchown(encoded("link").constData(), 65534, 0), 0);
        QVERIFY(!followed("link").refusal.isEmpty());
    }

    void whatOthersCouldChangeIsRefused_data()
    {
        const auto row = table<QByteArray, int>("changed", "mode");
        row("file by all", "a/b/file", 0646);
        row("file by the group", "a/b/file", 0664);
        row("folder by all", "a/b", 0757);
        row("folder by the group", "a/b", 0775);
        row("sticky folder", "a/b", 01777);
        row("folder above", "a", 0777);
        row("the top", ".", 0777);
    }

    void whatOthersCouldChangeIsRefused()
    {
        QFETCH(QByteArray, changed);
        QFETCH(int, mode);
        write("a/b/file");
        QCOMPARE(refusalOf("a/b/file"), QString());
        QCOMPARE(chmod(encoded(changed.constData()).constData(), mode_t(mode)), 0);
        QVERIFY(refusalOf("a/b/file").endsWith(QStringLiteral("can be written by others")));
    }

    void whatBelongsToSomebodyElseIsRefused_data()
    {
        const auto row = table<QByteArray>("changed");
        row("file", "a/b/file");
        row("folder", "a/b");
        row("folder above", "a");
    }

    void whatBelongsToSomebodyElseIsRefused()
    {
        if (geteuid() != 0) {
            QSKIP("only root can give files away");
        }
        QFETCH(QByteArray, changed);
        write("a/b/file");
        QCOMPARE(chown(encoded(changed.constData()).constData(), 65534, 0), 0);
        QVERIFY(refusalOf("a/b/file").endsWith(QStringLiteral("is not root's")));
    }

    void inRootsFoldersAFileMayBeItsReadersOwn()
    {
        if (geteuid() != 0) {
            QSKIP("only root can give files away");
        }
        const uid_t reader = 65534;
        write("a/b/file");
        const auto refusal
            = [&] { return openTrustedFile(path("a/b/file"), reader, m_folder->path()).refusal; };
        QVERIFY(refusal().endsWith(QStringLiteral("file is somebody else's")));
        QCOMPARE(chown(encoded("a/b/file").constData(), reader, 0), 0);
        QCOMPARE(refusal(), QString());
        QCOMPARE(chown(encoded("a/b").constData(), reader, 0), 0);
        QCOMPARE(refusal(), QString());
        QCOMPARE(chown(encoded("a").constData(), reader - 1, 0), 0);
        QVERIFY(refusal().endsWith(QStringLiteral("a/ is somebody else's")));
    }

    void linksAreNotFollowed()
    {
        write("a/b/file");
        QVERIFY(QFile::link(path("a/b/file"), path("a/b/link")));
        QVERIFY(QFile::link(path("a/b"), path("a/c")));
        QVERIFY(!refusalOf("a/b/link").isEmpty());
        QVERIFY(!refusalOf("a/c/file").isEmpty());
    }

    void whatIsNoFileIsRefusedWithoutWaiting()
    {
        write("file");
        QCOMPARE(mkfifo(encoded("pipe").constData(), 0600), 0);
        QVERIFY(refusalOf("pipe").endsWith(QStringLiteral("is not a regular file")));
        QVERIFY(!refusalOf("none").isEmpty());
        QVERIFY(!refusalOf("file/below").isEmpty());
        QVERIFY(!refusalOf(".").isEmpty());
        QVERIFY(!openTrustedFile(QStringLiteral("relative"), geteuid(), m_folder->path())
                     .refusal.isEmpty());
    }

    void whateverStandsInTheWayOfAPrivateFolderIsRemoved_data()
    {
        const auto row = table<QString>("planted");
        for (const char *what : {"nothing", "file", "folder", "link", "link to nothing", "pipe"}) {
            row(what, QString::fromLatin1(what));
        }
    }

    void whateverStandsInTheWayOfAPrivateFolderIsRemoved()
    {
        QFETCH(QString, planted);
        write("victim/precious");
        if (planted == QLatin1String("file")) {
            write("build");
        } else if (planted == QLatin1String("folder")) {
            write("build/deep/er/Makefile");
            QVERIFY(QFile::link(path("victim"), path("build/deep/link")));
        } else if (planted == QLatin1String("link")) {
            QVERIFY(QFile::link(path("victim"), path("build")));
        } else if (planted == QLatin1String("link to nothing")) {
            QVERIFY(QFile::link(path("none"), path("build")));
        } else if (planted == QLatin1String("pipe")) {
            QCOMPARE(mkfifo(encoded("build").constData(), 0600), 0);
        }
        QCOMPARE(makePrivateFolder(path("build")), QString());
        const std::optional<FileAttributes> facts = attributesOf(path("build"));
        QCOMPARE(facts->mode, mode_t(S_IFDIR | 0700));
        QVERIFY(
            QDir(path("build"))
                .isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot));
        QVERIFY(QFile::exists(path("victim/precious")));
        QVERIFY(!QFile::exists(path("none")));
    }

    void aParentOfSomebodyElseIsRefused()
    {
        if (geteuid() != 0) {
            QSKIP("only root can give folders away");
        }
        QVERIFY(QDir().mkdir(path("parent")));
        QCOMPARE(chown(encoded("parent").constData(), 65534, 0), 0);
        QCOMPARE(makePrivateFolder(path("parent/build")), path("parent") + " is not root's");
    }

    void aParentWhereOthersCouldReplaceTheFolderIsRefused()
    {
        QVERIFY(QDir().mkdir(path("parent")));
        QCOMPARE(chmod(encoded("parent").constData(), 0777), 0);
        QVERIFY(!makePrivateFolder(path("parent/build")).isEmpty());
        QVERIFY(!QFile::exists(path("parent/build")));
        QCOMPARE(chmod(encoded("parent").constData(), 01777), 0);
        QCOMPARE(makePrivateFolder(path("parent/build")), QString());
        QVERIFY(QFile::link(path("parent"), path("linked")));
        QVERIFY(!makePrivateFolder(path("linked/build2")).isEmpty());
        QVERIFY(!makePrivateFolder(path("none/build")).isEmpty());
    }
};

QTEST_APPLESS_MAIN(TrustedFileTest)
#include "trusted_file_test.moc"
