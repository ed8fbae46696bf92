// SPDX-License-Identifier: MIT
// Noticing that a modem is plugged or unplugged, through HAL.
#include "daemon/norvix_daemon.h"

#include "daemon/settings.h"
#include "support/debug.h"

#include <QDBusMessage>
#include <QTimer>

namespace {

constexpr int verifyDelayMs = 5000;

void traceVerify(const char *text)
{
    if (debug) {
        printf("Norvix_Daemon::verifyDevice: %s\n", text);
    }
}

void traceRemoved(const char *text)
{
    if (debug) {
        printf("Norvix_Daemon::deviceRemoved: %s\n", text);
    }
}

/// The USB ids of a device; both are asked for in any case, each may fail by itself.
struct UsbIds
{
    std::optional<int> vendor;
    std::optional<int> product;
};

UsbIds usbIdsOf(const QString &udi, const QDBusConnection &bus)
{
    HalProxy device(udi, "org.freedesktop.Hal.Device", bus);
    UsbIds ids;
    ids.vendor = device.intProperty("usb_device.vendor_id");
    ids.product = device.intProperty("usb_device.product_id");
    return ids;
}

} // namespace

bool Norvix_Daemon::getIsModemPlugged()
{
    // HAL ignores the argument; it is sent all the same.
    const QDBusMessage reply
        = m_halManager.call(QStringLiteral("GetAllDevices"), QStringLiteral("udi"));
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QLatin1String("as")) {
        writeLog(QStringLiteral(
            "Norvix_Daemon::getIsModemPlugged(): invalid dbus reply, returning false!"));
        return false;
    }
    const QString udi = readSettingText(settings(), "udi", QStringLiteral("#"));
    return reply.arguments().constFirst().toStringList().contains(udi);
}

void Norvix_Daemon::deviceAdded(const QString &udi)
{
    const UsbIds ids = usbIdsOf(udi, m_connection);
    if (!ids.vendor || !ids.product) {
        return;
    }
    qDebug("device added: \"%s\" ", udi.toLocal8Bit().constData());
    m_addedUdi = udi;
    m_verifyTimer->start(verifyDelayMs);
}

void Norvix_Daemon::verifyDevice()
{
    QSettings *store = settings();
    syncSettings(store);
    m_verifiedUdi = m_addedUdi;
    traceVerify(m_verifiedUdi.toLocal8Bit().constData());

    const UsbIds ids = usbIdsOf(m_verifiedUdi, m_connection);
    if (!ids.vendor && !ids.product) {
        return;
    }
    // Keeps the leniency: one id that cannot be read counts as 0.
    const int vendorId = ids.vendor.value_or(0);
    const int productId = ids.product.value_or(0);

    if (vendorId == readSetting(store, "vendor_id", -1).toInt()
        && productId == readSetting(store, "product_id", -1).toInt()) {
        m_modemPlugged = true;
        traceVerify("modem plugged");
        emit modemPlugged(readSettingText(store, "modem", QString()));
        if (getConnectionState() == ConnectionDown
            && readSetting(store, "autoconnect", false).toBool()) {
            traceVerify("emit establishConnection()");
            establishConnection();
        }
        return;
    }

    const ModemInfo *modem = findModem(m_modems, vendorId, productId);
    if (m_modemPlugged || modem == nullptr) {
        return;
    }
    traceVerify("new modem plugged.");
    m_newVendorId = vendorId;
    m_newProductId = productId;
    m_newModemName = modem->name;
    emit newModemPlugged(m_newModemName);
}

void Norvix_Daemon::deviceRemoved(const QString &udi)
{
    syncSettings(settings());
    if (udi == readSettingText(settings(), "udi")) {
        traceRemoved("modem removed");
        m_modemPlugged = false;
        terminateConnection();
        emit modemUnplugged();
        return;
    }
    if (udi == m_verifiedUdi) {
        traceRemoved("new modem removed");
        emit newModemUnplugged();
        m_verifiedUdi = QStringLiteral("#");
    }
}

void Norvix_Daemon::useNewModem()
{
    QSettings *store = settings();
    emit modemPlugged(m_newModemName);
    writeSetting(store, "modem", m_newModemName);
    writeSetting(store, "vendor_id", m_newVendorId);
    writeSetting(store, "product_id", m_newProductId);
    writeSetting(store, "udi", m_verifiedUdi);

    m_newModemName.clear();
    m_newVendorId = 0;
    m_newProductId = 0;
    m_verifiedUdi.clear();
    if (readSetting(store, "connect_at_modem_plug", false).toBool()) {
        establishConnection();
    }
}
