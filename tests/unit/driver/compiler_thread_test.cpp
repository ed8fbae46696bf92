// SPDX-License-Identifier: MIT
// The driver table, the choice of a record, and the order of a build.
#include "driver/compiler_thread.h"
#include "test_table.h"

#include <QTest>

namespace {

QStringList events;

void recordMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    events.append(message);
}

class FakeCompiler : public Compiler
{
public:
    FakeCompiler(int compileResult, int installResult)
        : Compiler(Compiler::ModemDriver(), nullptr)
        , m_compileResult(compileResult)
        , m_installResult(installResult)
    {
    }

    void backupDriver() override { events.append(QStringLiteral("backup")); }
    void extractDriver() override { events.append(QStringLiteral("extract")); }
    void patchDriver() override { events.append(QStringLiteral("patch")); }
    void restoreDriver() override { events.append(QStringLiteral("restore")); }

    int compileDriver() override
    {
        events.append(QStringLiteral("compile"));
        return m_compileResult;
    }

    int installDriver() override
    {
        events.append(QStringLiteral("install"));
        return m_installResult;
    }

private:
    int m_compileResult;
    int m_installResult;
};

} // namespace

class CompilerThreadTest : public QObject
{
    Q_OBJECT

private:
    QtMessageHandler m_handler = nullptr;

    static int build(int compileResult, int installResult)
    {
        FakeCompiler compiler(compileResult, installResult);
        events.clear();
        return buildDriver(compiler, [] { events.append(QStringLiteral("test")); });
    }

    static QStringList beginning()
    {
        return {QStringLiteral("24 "), QStringLiteral("backup"), QStringLiteral("25 "),
            QStringLiteral("extract"), QStringLiteral("26 "), QStringLiteral("patch"),
            QStringLiteral("27 "), QStringLiteral("CompilerThread::run(): compiling driver..."),
            QStringLiteral("compile")};
    }

private slots:
    void init() { m_handler = qInstallMessageHandler(recordMessage); }
    void cleanup() { qInstallMessageHandler(m_handler); }

    void theTableHasTheTwoDriversThatCanBeBuilt()
    {
        const QList<Compiler::ModemDriver> drivers = modemDrivers();
        QCOMPARE(drivers.size(), 2);
        const Compiler::ModemDriver &first = drivers.at(0);
        QCOMPARE(first.name, QStringLiteral("ueagle-atm"));
        QCOMPARE(first.version, QStringLiteral("1.4"));
        QCOMPARE(first.sourceDir, QStringLiteral("/tmp/ueagle-atm-1.4"));
        QCOMPARE(first.moduleFile, QStringLiteral("ueagle-atm.ko"));
        QCOMPARE(first.extractDir, QStringLiteral("/tmp"));
        QCOMPARE(first.tarball, QStringLiteral("/opt/norvix/drivers/ueagle-atm-1.4.tar"));
        QCOMPARE(first.buildTargets, QStringLiteral("all"));
        QCOMPARE(first.installTarget, QStringLiteral("install"));
        QCOMPARE(first.environment, QStringLiteral("PWD=/tmp/ueagle-atm-1.4, LC_ALL=C"));
        QCOMPARE(first.flag, true);
        const Compiler::ModemDriver &second = drivers.at(1);
        QCOMPARE(second.name, QStringLiteral("unicorn"));
        QCOMPARE(second.version, QStringLiteral("neo"));
        QCOMPARE(second.sourceDir, QStringLiteral("/tmp/unicorn-neo"));
        QCOMPARE(second.moduleFile, QStringLiteral("unicorn_usb_eth.ko"));
        QCOMPARE(second.extractDir, QStringLiteral("/tmp"));
        QCOMPARE(second.tarball, QStringLiteral("/opt/norvix/drivers/unicorn-neo.tar"));
        QCOMPARE(second.buildTargets, QStringLiteral("clean, modules"));
        QCOMPARE(second.installTarget, QStringLiteral("modules_install"));
        QCOMPARE(second.environment, QStringLiteral("PWD=/tmp/unicorn-neo, LC_ALL=C"));
        QCOMPARE(second.flag, false);
    }

    void theRecordIsChosenByItsModuleFile_data()
    {
        const auto row = table<QString, QString>("driverName", "record");
        row("first", "ueagle-atm", "ueagle-atm");
        row("second", "unicorn_usb_eth", "unicorn");
        row("no record", "speedtch", QString());
        row("no record either", "cxacru", QString());
        row("upper case", "UEAGLE-ATM", QString());
        row("package name", "unicorn", QString());
        row("with suffix", "ueagle-atm.ko", QString());
        row("empty", QString(), QString());
    }

    void theRecordIsChosenByItsModuleFile()
    {
        QFETCH(QString, driverName);
        const auto record = driverRecord(modemDrivers(), driverName);
        QTEST(record ? record->name : QString(), "record");
    }

    void theFirstOfTwoRecordsForAModuleIsChosen()
    {
        QList<Compiler::ModemDriver> drivers = modemDrivers();
        drivers[1].moduleFile = drivers.at(0).moduleFile;
        QCOMPARE(
            driverRecord(drivers, QStringLiteral("ueagle-atm"))->version, QStringLiteral("1.4"));
    }

    void aSuccessEndsWithATestOfTheModule()
    {
        QCOMPARE(build(0, 0), 0);
        const QStringList end{QStringLiteral("CompilerThread::run(): installing driver..."),
            QStringLiteral("install"), QStringLiteral("test")};
        QCOMPARE(events, beginning() + end);
    }

    void aFailedCompilationIsRestoredBeforeItsMessageAndNotInstalled()
    {
        QCOMPARE(build(2, 0), 1);
        const QStringList end{QStringLiteral("restore"),
            QStringLiteral("CompilerThread::run(): driver compilation failed!")};
        QCOMPARE(events, beginning() + end);
    }

    void aFailedInstallIsRestoredAfterItsMessage()
    {
        QCOMPARE(build(0, -1), 2);
        const QStringList end{QStringLiteral("CompilerThread::run(): installing driver..."),
            QStringLiteral("install"),
            QStringLiteral("CompilerThread::run(): driver installation failed!"),
            QStringLiteral("restore")};
        QCOMPARE(events, beginning() + end);
    }

    void aThreadWithoutDriverNameSaysSoAndKeepsItsResult()
    {
        CompilerThread thread(nullptr, QString(), nullptr);
        events.clear();
        thread.start();
        QVERIFY(thread.wait());
        QCOMPARE(
            events, QStringList{QStringLiteral("CompilerThread::run(): m_driverName is empty!")});
        QCOMPARE(thread.result(), 0);
    }

    void aThreadForADriverWithoutRecordCompilesNothingAndKeepsItsResult()
    {
        CompilerThread thread(nullptr, QString(), nullptr);
        thread.setDriverName(QStringLiteral("speedtch"));
        events.clear();
        thread.start();
        QVERIFY(thread.wait());
        const QStringList trace{
            QStringLiteral("20 "), QStringLiteral("21 "), QStringLiteral("22 ")};
        QCOMPARE(events, trace);
        QCOMPARE(thread.result(), 0);
    }

    void testingWithoutDriverNameRunsNothing()
    {
        CompilerThread thread(nullptr, QString(), nullptr);
        events.clear();
        QCOMPARE(thread.testDriver(), -1);
        QCOMPARE(events,
            QStringList{QStringLiteral("CompilerThread::testDriver(): m_driverName is empty!")});
    }
};

QTEST_GUILESS_MAIN(CompilerThreadTest)
#include "compiler_thread_test.moc"
