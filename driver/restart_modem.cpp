// SPDX-License-Identifier: MIT
#include "driver/restart_modem.h"

#include "daemon/settings.h"
#include "dbus/modem_families.h"
#include "support/process/programs.h"

#include <QProcess>

QString moduleToReload(int vendorId)
{
    return QString::fromLatin1(driverOfVendor(vendorId));
}

void reloadModule(const QString &module, int timeoutMs)
{
    // Whether they succeed does not matter here: the line state tells.
    runProgram(QStringLiteral("rmmod"), {module}, timeoutMs);
    runProgram(QStringLiteral("modprobe"), {module}, timeoutMs);
}

RestartModem::RestartModem(QSettings *settings, QObject *parent)
    : QThread(parent)
    , m_settings(settings)
    , m_process(std::make_unique<QProcess>())
{
    m_process->moveToThread(this);
}

RestartModem::~RestartModem() = default;

void RestartModem::run()
{
    syncSettings(m_settings);
    const QString module = moduleToReload(readSetting(m_settings, "vendor_id", 0).toInt());
    if (module.isEmpty()) {
        return;
    }
    reloadModule(module, moduleTimeoutMs);
}
