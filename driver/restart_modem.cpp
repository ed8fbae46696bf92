// SPDX-License-Identifier: MIT
#include "driver/restart_modem.h"

#include "daemon/settings.h"

#include <QProcess>

QString moduleToReload(int vendorId)
{
    switch (vendorId) {
    case 0:
        return QString();
    case 0x1110:
        return QStringLiteral("ueagle-atm");
    case 0x06B9:
        return QStringLiteral("speedtch");
    case 0x0483:
        return QStringLiteral("unicorn_usb_eth");
    default:
        // One family of the catalogue has many vendors; they end here, and so do unknown ones.
        return QStringLiteral("cxacru");
    }
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
