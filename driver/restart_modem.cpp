// SPDX-License-Identifier: MIT
#include "driver/restart_modem.h"

#include "daemon/settings.h"
#include "support/modem_families.h"

#include <QProcess>

QString moduleToReload(int vendorId)
{
    return QString::fromLatin1(driverOfVendor(vendorId));
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
    // Both wait as long as the kernel needs, and whether they succeed does not matter here.
    QProcess::execute(QStringLiteral("rmmod"), {module});
    QProcess::execute(QStringLiteral("modprobe"), {module});
}
