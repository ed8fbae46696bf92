// SPDX-License-Identifier: MIT
// Judging tarballs by their listing and by their unpacked tree.
#include "support/driver/source_archive.h"
#include "test_files.h"
#include "test_table.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>
#include <unistd.h>

class SourceArchiveTest : public QObject
{
    Q_OBJECT

private slots:
    void listingsThatStayInTheirFolderAreAccepted_data()
    {
        const auto row = table<QByteArray, int>("listing", "topDepth");
        row("plain", "d-1/\nd-1/Makefile\nd-1/a/b.c\n", 1);
        row("no folder member", "d-1/Makefile\n", 1);
        row("led by a dot", "./d-1/\n./d-1/Makefile\n", 2);
        row("dots in names", "d-1/..a\nd-1/b..\nd-1/...\n", 1);
        row("no last line feed", "d-1/a", 1);
    }

    void listingsThatStayInTheirFolderAreAccepted()
    {
        QFETCH(QByteArray, listing);
        const ArchiveShape shape = judgeListing(listing, QStringLiteral("d-1"));
        QCOMPARE(shape.refusal, QString());
        QTEST(shape.topDepth, "topDepth");
    }

    void listingsThatLeadOutsideAreRefused_data()
    {
        const auto row = table<QByteArray, QString>("listing", "refusal");
        row("up", "d-1/a\nd-1/../../etc/x\n", "member \"d-1/../../etc/x\" leads outside");
        row("up at once", "../x\n", "member \"../x\" leads outside");
        row("up at the end", "d-1/..\n", "member \"d-1/..\" leads outside");
        row("absolute", "/d-1/x\n", "member \"/d-1/x\" has an absolute name");
        row("elsewhere", "d-1/a\nd-2/a\n", "member \"d-2/a\" is not in the folder d-1");
        row("a longer name", "d-11/a\n", "member \"d-11/a\" is not in the folder d-1");
        row("at the top", "x\n", "member \"x\" is not in the folder d-1");
        row("the top itself", "./\n", "member \"./\" is not in the folder d-1");
        row("mixed forms", "d-1/a\n./d-1/b\n", "its members are named in different ways");
        row("empty", "", "it is empty");
    }

    void listingsThatLeadOutsideAreRefused()
    {
        QFETCH(QByteArray, listing);
        QTEST(judgeListing(listing, QStringLiteral("d-1")).refusal, "refusal");
    }

    void aTreeOfFilesFoldersAndLinksInsideIsAccepted()
    {
        QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("a/b")));
        writeFile(folder.filePath(QStringLiteral("a/b/c")));
        link(folder, "a/b/c", "to-file");
        link(folder, "../b", "a/b/to-folder");
        link(folder, ".", "to-top");
        QCOMPARE(judgeTree(folder.path()), QString());
    }

    void aTreeWithALinkThatLeadsOutsideIsRefused_data()
    {
        const auto row = table<QByteArray, QString>("target", "refusal");
        row("absolute", "/etc/passwd", "has an absolute target");
        row("up", "../..", "leads outside");
        // By its text it ends at a/b; but "top" is the top itself, so ".." is outside.
        row("through a link", "a/b/top/../..", "leads outside");
        row("nowhere", "none", "leads nowhere");
        row("itself", "link", "leads nowhere");
    }

    void aTreeWithALinkThatLeadsOutsideIsRefused()
    {
        QFETCH(QByteArray, target);
        QFETCH(QString, refusal);
        QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("a/b")));
        link(folder, "../..", "a/b/top");
        link(folder, target.constData(), "link");
        const QString said = judgeTree(folder.path());
        QVERIFY2(said.endsWith(refusal), qPrintable(said));
    }

    void aTreeWithDevicesPipesOrSocketsIsRefused()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("pipe"));
        QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        QCOMPARE(judgeTree(folder.path()),
            QStringLiteral("\"%1\" is neither file nor folder").arg(path));
    }

    void aTreeThatIsNotThereIsRefused()
    {
        QCOMPARE(
            judgeTree(QStringLiteral("/nonexistent")), QStringLiteral("the folder cannot be read"));
    }

private:
    static void link(const QTemporaryDir &folder, const char *target, const char *name)
    {
        const QByteArray path = QFile::encodeName(folder.filePath(QString::fromLatin1(name)));
        QCOMPARE(symlink(target, path.constData()), 0);
    }
};

QTEST_APPLESS_MAIN(SourceArchiveTest)
#include "source_archive_test.moc"
