// SPDX-License-Identifier: MIT
// Keeping, replacing and putting back installed modules, also cut off at every step.
#include "cut_off.h"
#include "few_descriptors.h"
#include "support/driver/module_backup.h"
#include "support/files/safe_file.h"
#include "test_files.h"
#include "test_table.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace {

void write(const QString &path, const QByteArray &bytes, mode_t mode = 0644)
{
    QVERIFY(makeFolders(QFileInfo(path).path()));
    writeFile(path, bytes);
    chmod(QFile::encodeName(path).constData(), mode);
}

/// All that modprobe could find below a folder: paths with mode and bytes.
QMap<QString, QByteArray> contents(const QString &folder)
{
    QMap<QString, QByteArray> all;
    const std::optional<TreeContents> found = contentsBelow(folder);
    for (const QString &file : found ? found->files : QStringList()) {
        QFile opened(folder + QLatin1Char('/') + file);
        [&] { QVERIFY(opened.open(QIODevice::ReadOnly)); }();
        struct stat facts = {};
        fstat(opened.handle(), &facts);
        all.insert(file, QByteArray::number(facts.st_mode, 8) + ' ' + opened.readAll());
    }
    return all;
}

} // namespace

class ModuleBackupTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_root;

    ModuleBackup backup() const
    {
        return ModuleBackup(m_folder->filePath(QStringLiteral("backup/ueagle-atm.ko")),
            ModuleTree(m_root), QStringLiteral("ueagle-atm.ko"));
    }

    QString inTree(const QString &file) const { return m_root + QLatin1Char('/') + file; }

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_root = m_folder->filePath(QStringLiteral("modules"));
        write(inTree(QStringLiteral("kernel/net/other.ko")), "other");
        write(inTree(QStringLiteral("modules.dep")), "index");
    }

    void aSpoiltMarkerRemovesNothingOutsideTheModuleFolder()
    {
        const QString outside = m_folder->filePath(QStringLiteral("outside"));
        write(outside, "precious");
        write(m_folder->filePath(QStringLiteral("backup/ueagle-atm.ko/installing")),
            "../outside\nkernel/../../outside\n/" + outside.toUtf8() + "\nextra/new.ko");
        write(inTree(QStringLiteral("extra/new.ko")), "new");
        QVERIFY(backup().putBack());
        QVERIFY(QFile::exists(outside));
        QVERIFY(!QFile::exists(inTree(QStringLiteral("extra/new.ko"))));
    }

    void copiesAreFoundWhateverTheirCompressionAndDashes()
    {
        write(inTree(QStringLiteral("kernel/ueagle-atm.ko.xz")), "1");
        write(inTree(QStringLiteral("extra/ueagle_atm.ko")), "2");
        write(inTree(QStringLiteral("updates/ueagle-atm.ko.zst")), "3");
        write(inTree(QStringLiteral("weak/ueagle-atm.ko.gz")), "4");
        write(inTree(QStringLiteral("extra/ueagle-atm.ko.bak")), "no");
        write(inTree(QStringLiteral("extra/my-ueagle-atm.ko")), "no");
        write(m_folder->filePath(QStringLiteral("headers/ueagle-atm.ko")), "no");
        QVERIFY(QFile::link(
            m_folder->filePath(QStringLiteral("headers")), inTree(QStringLiteral("build"))));
        const auto found = ModuleTree(m_root).copiesOf(QStringLiteral("ueagle-atm.ko"));
        const QStringList expected{QStringLiteral("extra/ueagle_atm.ko"),
            QStringLiteral("kernel/ueagle-atm.ko.xz"), QStringLiteral("updates/ueagle-atm.ko.zst"),
            QStringLiteral("weak/ueagle-atm.ko.gz")};
        QVERIFY(found);
        QCOMPARE(*found, expected);
    }

    void aFileIsInTheTreeUnderEitherNameOfItsFolder()
    {
        const ModuleTree tree(QStringLiteral("/lib/modules/6.12"));
        const QString module = QStringLiteral("updates/ueagle-atm.ko.xz");
        QCOMPARE(tree.placeOf(QStringLiteral("/lib/modules/6.12/") + module).value_or(QString()),
            module);
        QCOMPARE(
            tree.placeOf(QStringLiteral("/usr/lib/modules/6.12/") + module).value_or(QString()),
            module);
        for (const char *elsewhere :
            {"/lib/modules/6.1/extra/a.ko", "/lib/modules/6.12.1/extra/a.ko",
                "/opt/lib/modules/6.12/extra/a.ko", "/lib/modules/6.12"}) {
            QVERIFY2(!tree.placeOf(QString::fromLatin1(elsewhere)), elsewhere);
        }
    }

    void aModuleComesBackAsOldAsItWas()
    {
        const QString module = inTree(QStringLiteral("extra/ueagle-atm.ko"));
        write(module, "old");
        const timespec longAgo[2] = {{1000000000, 0}, {1000000000, 5}};
        const QByteArray name = QFile::encodeName(module);
        QCOMPARE(utimensat(AT_FDCWD, name.constData(), longAgo, 0), 0);
        ModuleBackup kept = backup();
        QVERIFY(kept.take());
        QVERIFY(kept.beginInstall({}));
        write(module, "new");
        QVERIFY(kept.putBack());
        struct stat facts = {};
        QCOMPARE(stat(name.constData(), &facts), 0);
        QCOMPARE(facts.st_mtim.tv_sec, longAgo[1].tv_sec);
        QCOMPARE(facts.st_mtim.tv_nsec, longAgo[1].tv_nsec);
    }

    void halfAModuleThatAKilledBuildLeftGoes()
    {
        ModuleBackup kept = backup();
        QVERIFY(kept.take());
        const QString half = inTree(QStringLiteral("extra/.norvix-new-ueagle-atm.ko-a1B2c3"));
        write(half, "half");
        QVERIFY(kept.putBack());
        QVERIFY(!QFile::exists(half));
        QVERIFY(QFile::exists(inTree(QStringLiteral("kernel/net/other.ko"))));
    }

    void whatAnInstallHasReplacedByItselfIsNotKeptForTheFormerOne()
    {
        const QString module = QStringLiteral("extra/ueagle-atm.ko");
        write(inTree(module), "old");
        ModuleBackup kept = backup();
        QVERIFY(kept.take());
        QVERIFY(kept.beginInstall({}));
        write(inTree(module), "half of a new one");
        QVERIFY(kept.beginInstall({module}));
        QVERIFY(kept.putBack());
        QCOMPARE(contents(m_root).value(module), QByteArray("100644 old"));
    }

    void aModuleComesBackWhateverCompressionTookItsPlace_data()
    {
        const auto row = table<QString, QString>("former", "built");
        row("a compressed one for a plain one", "extra/ueagle-atm.ko", "updates/ueagle-atm.ko.xz");
        row("a plain one for a compressed one", "updates/ueagle-atm.ko.xz", "extra/ueagle-atm.ko");
        row("in the same folder", "kernel/ueagle-atm.ko.xz", "kernel/ueagle-atm.ko");
        row("over itself", "updates/ueagle-atm.ko.xz", "updates/ueagle-atm.ko.xz");
    }

    void aModuleComesBackWhateverCompressionTookItsPlace()
    {
        QFETCH(QString, former);
        QFETCH(QString, built);
        write(inTree(former), QByteArray("\3757zXZ\0old", 9), 0640);
        const auto before = contents(m_root);
        QVERIFY(backup().take());
        QVERIFY(backup().beginInstall({built}));
        write(inTree(built), "new");
        if (built != former) {
            QVERIFY(QFile::remove(inTree(former)));
        }
        QVERIFY(backup().putBack());
        QCOMPARE(contents(m_root), before);
    }

    void aReplacedModuleComesBackByteForByteWithItsMode()
    {
        const QString file = inTree(QStringLiteral("kernel/ueagle-atm.ko.xz"));
        write(file, QByteArray("\0old\xff", 5), 0640);
        const auto before = contents(m_root);
        const std::optional<FileAttributes> facts = attributesOf(file);
        QVERIFY(backup().take());
        QVERIFY(backup().beginInstall({}));
        write(file, "new", 0600);
        QVERIFY(backup().putBack());
        QCOMPARE(contents(m_root), before);
        QCOMPARE(attributesOf(file)->changed.tv_sec, facts->changed.tv_sec);
    }

    void ownerAndGroupComeBack()
    {
        if (geteuid() != 0) {
            QSKIP("only root can give files away");
        }
        const QString file = inTree(QStringLiteral("kernel/ueagle-atm.ko"));
        write(file, "old");
        QCOMPARE(chown(QFile::encodeName(file).constData(), 3, 4), 0);
        QVERIFY(backup().take());
        QVERIFY(QFile::remove(file));
        QVERIFY(backup().putBack());
        QCOMPARE(attributesOf(file)->owner, uid_t(3));
        QCOMPARE(attributesOf(file)->group, gid_t(4));
    }

    void aLinkedModuleComesBackAsTheLinkItWas()
    {
        write(inTree(QStringLiteral("extra/real.bin")), "real");
        const QString link = inTree(QStringLiteral("weak-updates/ueagle-atm.ko"));
        QVERIFY(makeFolders(QFileInfo(link).path()));
        QCOMPARE(symlink("../extra/real.bin", QFile::encodeName(link).constData()), 0);
        QVERIFY(backup().take());
        QVERIFY(QFile::remove(link));
        QVERIFY(backup().putBack());
        QCOMPARE(QFile::symLinkTarget(link), inTree(QStringLiteral("extra/real.bin")));
    }

    void aModuleWhereThereWasNoneIsRemovedWithWhatCameWithIt()
    {
        const auto before = contents(m_root);
        QVERIFY(backup().take());
        QVERIFY(backup().beginInstall({QStringLiteral("extra/helper.ko")}));
        write(inTree(QStringLiteral("extra/ueagle-atm.ko")), "half");
        write(inTree(QStringLiteral("extra/helper.ko")), "helper");
        QVERIFY(backup().putBack());
        QCOMPARE(contents(m_root), before);
        QVERIFY(!QFile::exists(inTree(QStringLiteral("extra"))));
    }

    void aFolderThatWasMadeForAModuleThatNeverCameIsRemoved()
    {
        QVERIFY(backup().take());
        QVERIFY(backup().beginInstall({QStringLiteral("extra/ueagle-atm.ko")}));
        QVERIFY(makeFolders(inTree(QStringLiteral("extra")))); // and then the disk was full
        QVERIFY(backup().putBack());
        QVERIFY(!QFile::exists(inTree(QStringLiteral("extra"))));
    }

    void aFolderThatAnInstallMadeByItselfIsRemovedOnceItIsEmpty()
    {
        QVERIFY(makeFolders(inTree(QStringLiteral("empty"))));
        QVERIFY(backup().take());
        QVERIFY(backup().beginInstall({}));
        QVERIFY(makeFolders(inTree(QStringLiteral("extra/deep")))); // and then it was killed
        write(inTree(QStringLiteral("updates/theirs.ko")), "another's");
        write(inTree(QStringLiteral("empty/ueagle-atm.ko")), "new");
        QVERIFY(backup().putBack());
        QVERIFY(!QFile::exists(inTree(QStringLiteral("extra"))));
        QVERIFY(QFile::exists(inTree(QStringLiteral("updates/theirs.ko"))));
        QVERIFY(QFile::exists(inTree(QStringLiteral("empty")))); // it was there before
        QVERIFY(!QFile::exists(inTree(QStringLiteral("empty/ueagle-atm.ko"))));
    }

    void aModuleThatMayBeWhereNothingCanBeReadIsNotTakenForKept()
    {
        const QString module = QStringLiteral("kernel/drivers/usb/atm/ueagle-atm.ko");
        write(inTree(module), "old");
        {
            const FewDescriptors limit(2);
            QVERIFY(!ModuleTree(m_root).copiesOf(QStringLiteral("ueagle-atm.ko")));
            QVERIFY(!backup().take());
        }
        QVERIFY(backup().take());
        QVERIFY(backup().beginInstall({}));
        QVERIFY(QFile::remove(inTree(module)));
        QVERIFY(backup().putBack());
        QCOMPARE(contents(m_root).value(module), QByteArray("100644 old"));
    }

    void puttingBackIsNotDoneWhereNotAllCanBeRead()
    {
        const QString module = QStringLiteral("kernel/drivers/usb/atm/ueagle-atm.ko");
        QVERIFY(backup().take());
        QVERIFY(backup().beginInstall({}));
        write(inTree(module), "new");
        {
            const FewDescriptors limit(2);
            QVERIFY(!backup().putBack());
        }
        QVERIFY(backup().wasInterrupted());
        QVERIFY(backup().putBack());
        QVERIFY(!QFile::exists(inTree(module)));
        QVERIFY(!QFile::exists(inTree(QStringLiteral("kernel/drivers"))));
    }

    void aBackupOfAnEarlierReleaseKnowsNoFoldersAndRemovesNone()
    {
        write(m_folder->filePath(QStringLiteral("backup/ueagle-atm.ko/installing")), "");
        QVERIFY(makeFolders(inTree(QStringLiteral("empty"))));
        QVERIFY(backup().putBack());
        QVERIFY(QFile::exists(inTree(QStringLiteral("empty"))));
    }

    void aFurtherFileThatTheInstallReplacesIsKeptToo()
    {
        write(inTree(QStringLiteral("extra/helper.ko")), "old helper");
        const auto before = contents(m_root);
        QVERIFY(backup().take());
        QVERIFY(backup().beginInstall({QStringLiteral("extra/helper.ko")}));
        write(inTree(QStringLiteral("extra/helper.ko")), "new helper");
        QVERIFY(backup().putBack());
        QCOMPARE(contents(m_root), before);
    }

    void anInstallUnderWayIsKnownAfterwardsUntilItIsConcluded()
    {
        QVERIFY(backup().take());
        QVERIFY(!backup().wasInterrupted());
        QVERIFY(backup().beginInstall({}));
        QVERIFY(backup().wasInterrupted());
        backup().conclude();
        QVERIFY(!backup().wasInterrupted());
    }

    void onlyTheOwnerCanEnterTheBackup()
    {
        write(inTree(QStringLiteral("kernel/ueagle-atm.ko")), "old", 0666);
        QVERIFY(backup().take());
        for (const char *folder : {"backup", "backup/ueagle-atm.ko", "backup/ueagle-atm.ko/kept"}) {
            const mode_t mode = attributesOf(m_folder->filePath(QString::fromLatin1(folder)))->mode;
            QCOMPARE(mode & 0777, mode_t(0700));
        }
    }

    void cutOffAnywhereAReplacedFileIsTheOldOneOrTheNewOne()
    {
        const QString file = inTree(QStringLiteral("kernel/ueagle-atm.ko"));
        const QString fresh = m_folder->filePath(QStringLiteral("fresh.ko"));
        const QByteArray oldBytes(100000, 'o');
        const QByteArray newBytes(300000, 'n');
        write(fresh, newBytes);
        write(file, oldBytes);
        int calls = 1;
        int olds = 0;
        while (cutOffAt(calls++, [&] { copyIntoPlace(fresh, file, *attributesOf(fresh)); })) {
            const QByteArray bytes = contentOf(file);
            QVERIFY2(bytes == oldBytes || bytes == newBytes, qPrintable(QString::number(calls)));
            olds += int(bytes == oldBytes);
            write(file, oldBytes);
        }
        QVERIFY(calls > 15);
        QVERIFY(olds > 10 && olds < calls - 1);
    }

    void cutOffAnywhereTheModuleFolderCanStillBePutBack()
    {
        write(inTree(QStringLiteral("kernel/ueagle-atm.ko.xz")), "old", 0640);
        write(inTree(QStringLiteral("extra/helper.ko")), "old helper");
        const auto before = contents(m_root);
        const QStringList added{
            QStringLiteral("extra/ueagle-atm.ko"), QStringLiteral("extra/helper.ko")};
        const QString fresh = m_folder->filePath(QStringLiteral("fresh.ko"));
        write(fresh, "fresh");
        int calls = 1;
        const auto build = [&] {
            ModuleBackup own = backup();
            if (own.take() && own.beginInstall(added)) {
                for (const QString &file : added) {
                    copyIntoPlace(fresh, inTree(file), *attributesOf(fresh));
                }
                removeFile(inTree(QStringLiteral("kernel/ueagle-atm.ko.xz")));
            }
        };
        int interrupted = 0;
        while (cutOffAt(calls++, build)) {
            if (backup().wasInterrupted()) {
                ++interrupted;
                QVERIFY(backup().putBack());
                backup().conclude();
            }
            QVERIFY2(contents(m_root) == before, qPrintable(QString::number(calls)));
        }
        QVERIFY(calls > 60);
        QVERIFY(interrupted > 30);
    }

    void puttingBackThatIsCutOffAnywhereCanBeDoneAgain()
    {
        const QString old = inTree(QStringLiteral("kernel/ueagle-atm.ko.xz"));
        write(old, "old", 0640);
        const auto before = contents(m_root);
        QVERIFY(backup().take());
        QVERIFY(backup().beginInstall({QStringLiteral("extra/helper.ko")}));
        bool more = true;
        for (int call = 1; more; ++call) {
            QFile::remove(old);
            write(inTree(QStringLiteral("extra/ueagle-atm.ko")), "new");
            write(inTree(QStringLiteral("extra/helper.ko")), "new");
            more = cutOffAt(call, [&] { backup().putBack(); });
            // In between there is always a module that can be loaded.
            QVERIFY(!ModuleTree(m_root).copiesOf(QStringLiteral("ueagle-atm.ko"))->isEmpty());
            QVERIFY(backup().wasInterrupted());
            QVERIFY(backup().putBack());
            QVERIFY2(contents(m_root) == before, qPrintable(QString::number(call)));
        }
    }
};

QTEST_GUILESS_MAIN(ModuleBackupTest)
#include "module_backup_test.moc"
