// SPDX-License-Identifier: MIT
// The bus methods that read and store settings.
#include "daemon/norvix_daemon.h"

#include "daemon/settings.h"
#include "dbus/contract.h"

namespace {

// What a client sees of a line parameter that was never configured.
const QString unset = QLatin1String(Bus::unset);

} // namespace

bool Norvix_Daemon::getConnectAtBoot()
{
    return readSetting(settings(), "connect_at_boot", false).toBool();
}

void Norvix_Daemon::setConnectAtBoot(bool connect)
{
    writeSetting(settings(), "connect_at_boot", connect);
}

bool Norvix_Daemon::getConnectAtModemPlug()
{
    return readSetting(settings(), "connect_at_modem_plug", false).toBool();
}

void Norvix_Daemon::setConnectAtModemPlug(bool connect)
{
    writeSetting(settings(), "connect_at_modem_plug", connect);
}

int Norvix_Daemon::getIdlenessTime()
{
    return readSetting(settings(), "idleness", 0).toInt();
}

void Norvix_Daemon::setIdlenessTime(int idleness)
{
    writeSetting(settings(), "idleness", idleness);
}

QString Norvix_Daemon::getVPI()
{
    return readSettingText(settings(), "vpi", unset);
}

QString Norvix_Daemon::getVCI()
{
    return readSettingText(settings(), "vci", unset);
}

QString Norvix_Daemon::getProtocol()
{
    return readSettingText(settings(), "protocol", unset);
}

QString Norvix_Daemon::getService()
{
    return readSettingText(settings(), "service", unset);
}
