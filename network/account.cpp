// SPDX-License-Identifier: MIT
// The PPP account in the secrets and peer files.
#include "daemon/norvix_daemon.h"

QStringList Norvix_Daemon::getLoginAndPassword()
{
    return QStringList();
}

void Norvix_Daemon::setAccountData(QString login, QString password)
{
    Q_UNUSED(login)
    Q_UNUSED(password)
}
