// SPDX-License-Identifier: MIT
#include "support/programs.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QProcess>

namespace {

bool isExecutableFile(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

/// Leaves a process that exceeded its time to the main thread, which reaps it. Deleting it here
/// would kill it: a bridge daemon that is merely slow would be lost.
void letGo(QProcess *process)
{
    process->setParent(nullptr);
    QObject::connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
        process, &QObject::deleteLater);
    if (QCoreApplication::instance() != nullptr) {
        process->moveToThread(QCoreApplication::instance()->thread());
    }
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
    const QDeadlineTimer deadline(timeoutMs, Qt::PreciseTimer);
    ProgramResult result;

    // Exactly QProcess, no subclass: its child never waits for us between fork and exec.
    auto *process = new QProcess;
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
    process->start(path, arguments, maxOutput == 0 ? QIODevice::ReadWrite : QIODevice::ReadOnly);
    result.processId = process->processId();
    if (maxOutput > 0) {
        result.output = readBeginning(*process, maxOutput, deadline);
    }
    if (process->state() != QProcess::NotRunning) {
        process->waitForFinished(int(deadline.remainingTime()));
    }
    if (process->state() != QProcess::NotRunning) {
        letGo(process);
        return result;
    }
    if (process->error() == QProcess::FailedToStart) {
        result.processId = 0; // it was that of the child which could not become the program
    } else if (process->exitStatus() == QProcess::NormalExit) {
        result.exitCode = process->exitCode();
    }
    delete process;
    return result;
}
