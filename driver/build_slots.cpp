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
    switch (m_compilerThread->result()) {
    case 0:
        emit compilationFinished(true);
        break;
    case 1:
    case 2:
        emit compilationFinished(false);
        break;
    default:
        break;
    }
}

bool Norvix_Daemon::getIsCompiling()
{
    return m_isCompiling;
}
