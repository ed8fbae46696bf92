// SPDX-License-Identifier: MIT
#include "support/process/my_process.h"

#include "support/process/programs.h"

#include <sys/stat.h>

QAtomicInt childStarts;

MyProcess::MyProcess(QObject *parent)
    : QProcess(parent)
{
    // Option errors of pppd go to standard error only.
    setProcessChannelMode(QProcess::MergedChannels);
    connect(this, &QProcess::readyReadStandardOutput, this, &MyProcess::readLines);
    connect(this, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
        &MyProcess::finishLines);
}

void MyProcess::start(const QString &program, const QStringList &arguments)
{
    if (state() == NotRunning) {
        m_lines.takeRest();
    }
    const QString path = findProgram(program, environment());
    childStarts.ref();
    QProcess::start(path, arguments);
    childStarts.deref();
}

void MyProcess::setupChildProcess()
{
    umask(022);
}

void MyProcess::readLines()
{
    const QByteArrayList lines = m_lines.feed(readAllStandardOutput());
    for (const QByteArray &line : lines) {
        emit lineAvailable(line);
    }
}

void MyProcess::finishLines()
{
    readLines();
    const QByteArray rest = m_lines.takeRest();
    if (!rest.isEmpty()) {
        emit lineAvailable(rest);
    }
}
