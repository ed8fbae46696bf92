// SPDX-License-Identifier: MIT
// The check of the resolver configuration after each connection, and its repair.
#include "daemon/norvix_daemon.h"

void Norvix_Daemon::verifyDNS()
{
    if (m_dnsManager.isFileCorrect()) {
        return;
    }
    emit incorrectDNS();
    setOpenDNS();
}

void Norvix_Daemon::setOpenDNS()
{
    QStringList servers = {QStringLiteral("208.67.222.222"), QStringLiteral("208.67.220.220")};
    emit settingOpenDNS(m_dnsManager.setServers(servers));
}
