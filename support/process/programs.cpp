// SPDX-License-Identifier: MIT
#include "support/process/programs.h"

#include "support/process/my_process.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTimer>
#include <memory>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// How long a killed process may take to be gone; it does not need a hundredth of it.
constexpr int killedWithinMs = 250;

bool isExecutableFile(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

/// Whose child leads a process group of its own.
class GroupLeader : public QProcess
{
protected:
    void setupChildProcess() override { setpgid(0, 0); }
};

/// Leaves a process to the main thread, which reaps it whenever it ends. The descriptor tells the
/// end.
FileDescriptor leaveBehind(std::unique_ptr<QProcess> process)
{
    FileDescriptor end(int(syscall(SYS_pidfd_open, pid_t(process->processId()), 0)));
    QProcess *left = process.release();
    QObject::connect(left, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), left,
        &QObject::deleteLater);
    if (QCoreApplication::instance() != nullptr) {
        left->moveToThread(QCoreApplication::instance()->thread());
    }
    return end;
}

/// Ends a process that exceeded its time. One that does not even go by SIGKILL waits in the kernel,
/// perhaps for ever: it is left behind.
FileDescriptor endOrLeave(std::unique_ptr<QProcess> process)
{
    process->kill();
    return process->waitForFinished(killedWithinMs) ? FileDescriptor()
                                                    : leaveBehind(std::move(process));
}

/// Reads until @p maxOutput bytes are there, the program ends or the time is over; what comes after
/// them is thrown away, however much it is.
QByteArray readBeginning(QProcess &process, int maxOutput, const QDeadlineTimer &deadline)
{
    while (process.bytesAvailable() < maxOutput && process.state() != QProcess::NotRunning) {
        if (!process.waitForReadyRead(int(deadline.remainingTime()))) {
            break;
        }
    }
    QByteArray beginning = process.read(maxOutput);
    process.closeReadChannel(QProcess::StandardOutput);
    return beginning;
}

/// Runs @p program with @p process, an object that nothing has been started with.
ProgramResult run(std::unique_ptr<QProcess> process, const QString &program,
    const QStringList &arguments, int timeoutMs, const QStringList &environment, int maxOutput,
    int graceMs = 0)
{
    const QDeadlineTimer deadline(timeoutMs, Qt::PreciseTimer);
    ProgramResult result;

    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    if (maxOutput == 0) {
        process->setStandardOutputFile(QProcess::nullDevice());
    }
    QString path = program;
    if (!environment.isEmpty()) {
        process->setEnvironment(environment);
        path = findProgram(program, environment);
    }
    childStarts.ref();
    process->start(path, arguments, maxOutput == 0 ? QIODevice::ReadWrite : QIODevice::ReadOnly);
    childStarts.deref();
    result.processId = process->processId();
    if (maxOutput > 0) {
        result.output = readBeginning(*process, maxOutput, deadline);
    }
    if (process->state() != QProcess::NotRunning) {
        process->waitForFinished(int(deadline.remainingTime()));
    }
    if (process->state() != QProcess::NotRunning) {
        if (graceMs > 0) {
            QTimer::singleShot(graceMs, process.get(), &QProcess::kill);
            result.leftBehind = leaveBehind(std::move(process));
        } else {
            result.leftBehind = endOrLeave(std::move(process));
        }
    } else if (process->error() == QProcess::FailedToStart) {
        result.processId = 0; // it was that of the child which could not become the program
    } else if (process->exitStatus() == QProcess::NormalExit) {
        result.exitCode = process->exitCode();
    }
    return result;
}

} // namespace

QString findProgram(const QString &name, const QStringList &environment)
{
    if (name.contains(QLatin1Char('/'))) {
        return name;
    }
    const QString prefix = QStringLiteral("PATH=");
    for (const QString &entry : environment) {
        if (!entry.startsWith(prefix)) {
            continue;
        }
        // Where the path has it nowhere: the bare name would be looked up again, along our own
        // path.
        QString path = QLatin1Char('/') + name;
        const QStringList folders = entry.mid(prefix.size()).split(QLatin1Char(':'));
        for (const QString &folder : folders) {
            // Others mean the current folder to a shell; root must not run what lies there.
            if (!folder.startsWith(QLatin1Char('/'))) {
                continue;
            }
            path = folder + QLatin1Char('/') + name;
            if (isExecutableFile(path)) {
                return path;
            }
        }
        return path;
    }
    return name;
}

ProgramResult runProgram(const QString &program, const QStringList &arguments, int timeoutMs,
    const QStringList &environment, int maxOutput)
{
    // Exactly QProcess, no subclass: its child never waits for us between fork and exec.
    return run(std::make_unique<QProcess>(), program, arguments, timeoutMs, environment, maxOutput);
}

ProgramResult runProgramWithGrace(
    const QString &program, const QStringList &arguments, int timeoutMs, int graceMs)
{
    return run(std::make_unique<QProcess>(), program, arguments, timeoutMs, {}, 0, graceMs);
}

ProgramResult runProgramInOwnGroup(
    const QString &program, const QStringList &arguments, int timeoutMs)
{
    return run(std::make_unique<GroupLeader>(), program, arguments, timeoutMs, {}, 0);
}
