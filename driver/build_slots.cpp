// SPDX-License-Identifier: MIT
// What the daemon tells of the driver build.
#include "daemon/norvix_daemon.h"

#include "driver/compiler_thread.h"

void Norvix_Daemon::compilationStarted()
{
    m_isCompiling = true;
    emit compilingDriver();
}

void Norvix_Daemon::compilationFinished()
{
    m_isCompiling = false;
    switch (static_cast<CompilerThread::Result>(m_compilerThread->result())) {
    case CompilerThread::Built:
        emit compilationFinished(true);
        break;
    case CompilerThread::CompilationFailed:
    case CompilerThread::InstallationFailed:
        emit compilationFinished(false);
        break;
    }
}

bool Norvix_Daemon::getIsCompiling()
{
    return m_isCompiling;
}
