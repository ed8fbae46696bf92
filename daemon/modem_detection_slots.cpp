// SPDX-License-Identifier: MIT
// Noticing that a modem is plugged or unplugged, through HAL.
#include "daemon/norvix_daemon.h"

#include "daemon/settings.h"
#include "support/process/debug.h"

#include <QDBusMessage>
#include <QTimer>
#include <utility>

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

/// The USB ids of a device; each may fail by itself.
struct UsbIds
{
    std::optional<int> vendor;
    std::optional<int> product;
};

/// Both ids, asked for in any case; empty when HAL leaves a question without an answer.
std::optional<UsbIds> usbIdsOf(const QString &udi, const QDBusConnection &bus, HalSilence &silence)
{
    HalProxy device(udi, "org.freedesktop.Hal.Device", bus);
    UsbIds ids;
    for (const auto &[id, key] : {std::pair(&ids.vendor, "usb_device.vendor_id"),
             std::pair(&ids.product, "usb_device.product_id")}) {
        *id = device.intProperty(key);
        if (device.unanswered()) {
            silence.begin(*device.unanswered());
            return std::nullopt;
        }
    }
    return ids;
}

} // namespace

bool Norvix_Daemon::getIsModemPlugged()
{
    QDBusMessage reply; // of no type: while HAL is silent, nobody waits for it again
    if (!m_listSilence.isOn()) {
        // HAL ignores the argument; stand-ins for it that declare one refuse a call without.
        reply = m_halManager.ask("GetAllDevices", "udi");
        if (m_halManager.unanswered()) {
            m_listSilence.begin(*m_halManager.unanswered());
        }
    }
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QLatin1String("as")) {
        writeLog(QStringLiteral(
            "Norvix_Daemon::getIsModemPlugged(): invalid dbus reply, returning false!"));
        return false;
    }
    const QString udi = readSettingText(settings(), "udi", QStringLiteral("#"));
    return reply.arguments().constFirst().toStringList().contains(udi);
}

// Asked about one at a time, with what others want in between: HAL may announce many at once. While
// it is silent they wait.
void Norvix_Daemon::deviceAdded(const QString &udi)
{
    if (m_deviceSilence.isOn()) {
        m_announcements.addUnlessRepeated(udi);
        return;
    }
    m_announcements.add(udi);
    m_askTimer->start();
}

void Norvix_Daemon::askNext()
{
    if (m_announcements.isEmpty() || m_deviceSilence.isOn()) {
        return;
    }
    const Announcement next = m_announcements.first();
    bool isAnswered = false;
    switch (next.kind) {
    case Announcement::Kind::Addition:
        isAnswered = acceptDevice(next.udi);
        break;
    case Announcement::Kind::Verification:
        isAnswered = examineDevice();
        break;
    }
    if (isAnswered) {
        m_announcements.removeFirst();
        m_askTimer->start();
    }
}

bool Norvix_Daemon::acceptDevice(const QString &udi)
{
    const std::optional<UsbIds> ids = usbIdsOf(udi, m_connection, m_deviceSilence);
    if (!ids) {
        return false;
    }
    if (ids->vendor && ids->product) {
        qDebug("device added: \"%s\" ", udi.toLocal8Bit().constData());
        m_addedUdi = udi;
        m_announcements.dropVerifications();
        m_verifyTimer->start(verifyDelayMs);
    }
    return true;
}

void Norvix_Daemon::verifyDevice()
{
    if (m_deviceSilence.isOn() || !examineDevice()) {
        m_announcements.addVerification();
    }
}

bool Norvix_Daemon::examineDevice()
{
    QSettings *store = settings();
    syncSettings(store);
    m_verifiedUdi = m_addedUdi;
    traceVerify(m_verifiedUdi.toLocal8Bit().constData());

    const std::optional<UsbIds> ids = usbIdsOf(m_verifiedUdi, m_connection, m_deviceSilence);
    if (!ids) {
        return false;
    }
    if (!ids->vendor && !ids->product) {
        return true;
    }
    // Keeps the leniency: one id that cannot be read counts as 0. Where a HAL never tells one of
    // them, the settings hold 0 for it, and the modem is found by the other.
    const int vendorId = ids->vendor.value_or(0);
    const int productId = ids->product.value_or(0);

    if (vendorId == readSetting(store, "vendor_id", -1).toInt()
        && productId == readSetting(store, "product_id", -1).toInt()) {
        m_modemPlugged = true;
        traceVerify("modem plugged");
        emit modemPlugged(readSettingText(store, "modem", QString()));
        // Not connect_at_modem_plug, which a client sets for a modem that is adopted: this key is
        // the user's own, who writes it into the file for the modem that is configured already.
        if (getConnectionState() == ConnectionDown
            && readSetting(store, "autoconnect", false).toBool()) {
            traceVerify("emit establishConnection()");
            establishConnection();
        }
        return true;
    }

    const ModemInfo *modem = findModem(m_modems, vendorId, productId);
    if (m_modemPlugged || modem == nullptr) {
        return true;
    }
    traceVerify("new modem plugged.");
    m_newVendorId = vendorId;
    m_newProductId = productId;
    m_newModemName = modem->name;
    m_announcedUdi = m_verifiedUdi;
    emit newModemPlugged(m_newModemName);
    return true;
}

void Norvix_Daemon::deviceRemoved(const QString &udi)
{
    m_announcements.noteRemoval();
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

AnnouncedModem Norvix_Daemon::announcedModem() const
{
    // The verified identifier is another device's as soon as one is plugged in, and "#" when the
    // modem has left; it is what would be stored.
    if (m_newModemName.isEmpty() || m_verifiedUdi != m_announcedUdi) {
        return AnnouncedModem();
    }
    return {m_newModemName, m_newVendorId, m_newProductId, m_announcedUdi};
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
