// SPDX-License-Identifier: MIT
#include "driver/compiler_thread.h"

#include <QProcess>

CompilerThread::CompilerThread(Norvix_Daemon *daemon, const QString &driverName, QObject *parent)
    : QThread(parent)
    , m_driverName(driverName)
{
    Q_UNUSED(daemon)
}

int CompilerThread::testDriver()
{
    if (m_driverName.isEmpty()) {
        qDebug("%s", "CompilerThread::testDriver(): m_driverName is empty!");
        return -1;
    }
    return QProcess::execute(QStringLiteral("modprobe"), {m_driverName});
}

void CompilerThread::run()
{
    if (m_driverName.isEmpty()) {
        qDebug("%s", "CompilerThread::run(): m_driverName is empty!");
    }
}
