// SPDX-License-Identifier: MIT
#include "driver/compiler_thread.h"

#include "driver/restart_modem.h"
#include "support/process/programs.h"

namespace {

// What testDriver() gives besides modprobe's exit codes.
constexpr int notLoaded = -1; // no module is set, or modprobe crashed or was ended
constexpr int notStarted = -2;

/// A bare number as the trace has always shown it, with a blank after it: who reads debug logs, of
/// users that ask for help, knows by 20 to 27 how far a build came.
void trace(int number)
{
    qDebug("%d ", number);
}

} // namespace

QList<Compiler::ModemDriver> modemDrivers()
{
    // clang-format off
    return {
        {QStringLiteral("ueagle-atm"), QStringLiteral("1.4"),
            QStringLiteral("/tmp/ueagle-atm-1.4"), QStringLiteral("ueagle-atm.ko"),
            QStringLiteral("/tmp"), QStringLiteral("/opt/norvix/drivers/ueagle-atm-1.4.tar"),
            QStringLiteral("all"), QStringLiteral("install"),
            QStringLiteral("PWD=/tmp/ueagle-atm-1.4, LC_ALL=C"), true},
        {QStringLiteral("unicorn"), QStringLiteral("neo"),
            QStringLiteral("/tmp/unicorn-neo"), QStringLiteral("unicorn_usb_eth.ko"),
            QStringLiteral("/tmp"), QStringLiteral("/opt/norvix/drivers/unicorn-neo.tar"),
            QStringLiteral("clean, modules"), QStringLiteral("modules_install"),
            QStringLiteral("PWD=/tmp/unicorn-neo, LC_ALL=C"), false},
    };
    // clang-format on
}

std::optional<Compiler::ModemDriver> driverRecord(
    const QList<Compiler::ModemDriver> &drivers, const QString &driverName)
{
    for (const Compiler::ModemDriver &driver : drivers) {
        if (driver.moduleFile == driverName + QStringLiteral(".ko")) {
            return driver;
        }
    }
    return std::nullopt;
}

int buildDriver(Compiler &compiler, const std::function<void()> &testDriver)
{
    trace(24);
    compiler.backupDriver();
    trace(25);
    compiler.extractDriver();
    trace(26);
    compiler.patchDriver();
    trace(27);
    qDebug("%s", "CompilerThread::run(): compiling driver...");
    if (compiler.compileDriver() != 0) {
        compiler.restoreDriver();
        qDebug("%s", "CompilerThread::run(): driver compilation failed!");
        return CompilerThread::CompilationFailed;
    }
    qDebug("%s", "CompilerThread::run(): installing driver...");
    if (compiler.installDriver() != 0) {
        qDebug("%s", "CompilerThread::run(): driver installation failed!");
        compiler.restoreDriver();
        return CompilerThread::InstallationFailed;
    }
    testDriver();
    return CompilerThread::Built;
}

CompilerThread::CompilerThread(Norvix_Daemon *daemon, const QString &driverName, QObject *parent)
    : QThread(parent)
    , m_drivers(modemDrivers())
    , m_driverName(driverName)
{
    Q_UNUSED(daemon)
}

int CompilerThread::testDriver()
{
    if (m_driverName.isEmpty()) {
        qDebug("%s", "CompilerThread::testDriver(): m_driverName is empty!");
        return notLoaded;
    }
    const ProgramResult result
        = runProgram(QStringLiteral("modprobe"), {m_driverName}, moduleTimeoutMs);
    return result.processId == 0 ? notStarted : result.exitCode.value_or(notLoaded);
}

void CompilerThread::run()
{
    if (m_driverName.isEmpty()) {
        qDebug("%s", "CompilerThread::run(): m_driverName is empty!");
        return;
    }
    trace(20);
    trace(21);
    trace(22);
    const std::optional<Compiler::ModemDriver> driver = driverRecord(m_drivers, m_driverName);
    if (!driver) {
        // The result stays what it was, after construction a success: clients take a failure for a
        // driver that was built and could not be, and these modems' drivers come with the kernel.
        return;
    }
    trace(23);
    const auto compiler = std::make_unique<Compiler>(*driver, nullptr);
    m_result = buildDriver(*compiler, [this] { testDriver(); });
}
