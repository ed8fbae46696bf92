// SPDX-License-Identifier: MIT
#include "driver/restart_modem.h"

#include "daemon/settings.h"
#include "support/programs.h"

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
        // One family of the catalogue has many vendors; they end here, and so do unknown ones: a
        // client may have stored the vendor of a modem that is sold under another name.
        return QStringLiteral("cxacru");
    }
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
