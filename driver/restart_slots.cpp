// SPDX-License-Identifier: MIT
// Restarting the modem at a client's wish.
#include "daemon/norvix_daemon.h"

#include "driver/restart_modem.h"

void Norvix_Daemon::restartModem()
{
    if (m_restartThread->isRunning()) {
        writeLog(QStringLiteral(
            "Norvix_Daemon::restartModem(): Can not restart modem, thread is still running!"));
        return;
    }
    if (getConnectionState() != ConnectionDown) {
        terminateConnection();
    }
    m_restartThread->start(QThread::InheritPriority);
}
