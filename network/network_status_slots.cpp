// SPDX-License-Identifier: MIT
// Address, default route and traffic of the connection.
#include "daemon/norvix_daemon.h"

#include "daemon/logging.h"
#include "dbus/contract.h"
#include "network/number_file.h"
#include "network/route_table.h"
#include "support/process/debug.h"
#include "support/resolver/interface_address.h"

#include <QFile>

namespace {

/// One of the interface's counters, cut to the 32 bits that are kept of it; 0 when it cannot be
/// read.
template <typename Number>
quint32 readCounter(
    const QString &interface, const char *counter, bool (*read)(const QString &, Number &))
{
    const QString path
        = QStringLiteral("/sys/class/net/%1/statistics/%2").arg(interface, QLatin1String(counter));
    Number value = 0;
    if (!read(path, value) && debug) {
        printf("Norvix_Daemon::getTransmissionStatistics(): could not get %s for interface %s\n",
            counter, interface.toLocal8Bit().constData());
    }
    return quint32(value);
}

QString readRouteTable()
{
    QFile file(QStringLiteral("/proc/net/route"));
    if (!file.open(QIODevice::ReadOnly)) {
        return QString();
    }
    return QString::fromLatin1(file.readAll().constData());
}

} // namespace

QString Norvix_Daemon::getIP(QString interface)
{
    if (interface.isEmpty()) {
        interface = getInterface();
    }
    const std::optional<QString> address = firstAddressOf(interface);
    if (!address) {
        writeLog(QStringLiteral("Norvix_Daemon::getIP(): interface %1 is invalid!")
                     .arg(loggable(interface)));
    }
    const QString none = QLatin1String(Bus::none);
    QString ip = address && !address->isEmpty() ? *address : none;
    if (debug) {
        printf("Norvix_Daemon::getIP(): returning IP: %s\n", ip.toLocal8Bit().constData());
    }
    return ip;
}

QString Norvix_Daemon::getDefaultRoute()
{
    QString interface = interfaceOfLastRoute(readRouteTable());
    if (interface.isEmpty()) {
        interface = QLatin1String(Bus::none);
    }
    if (debug) {
        // Keeps the name "getIP" in this operation's message: who filters the debug output for the
        // connection's facts finds both by it.
        printf("Norvix_Daemon::getIP(): returning Default Route: %s\n",
            interface.toLocal8Bit().constData());
    }
    return interface;
}

void Norvix_Daemon::getTransmissionStatistics(QString interface)
{
    if (interface.isEmpty()) {
        interface = getInterface();
    }
    TrafficReading reading;
    reading.rxBytes = readCounter(interface, "rx_bytes", readUnsignedLong);
    reading.txBytes = readCounter(interface, "tx_bytes", readUnsignedLong);
    reading.rxErrors = readCounter(interface, "rx_errors", readUnsigned);
    reading.txErrors = readCounter(interface, "tx_errors", readUnsigned);

    const TrafficTick tick = m_trafficMeter.tick(reading);
    if (tick.endedRxBytes) {
        writeDailyLog(QStringLiteral("RX bytes: %1").arg(*tick.endedRxBytes));
    }
    if (tick.endedTxBytes) {
        writeDailyLog(QStringLiteral("TX bytes: %1").arg(*tick.endedTxBytes));
    }
    emit transmissionSpeed(tick.rxSpeed, tick.txSpeed);
    emit transmissionErrors(reading.rxErrors, reading.txErrors);
    emit transmissionBytes(reading.rxBytes, reading.txBytes);

    if (m_connectionTime.isValid()) {
        m_connectionTime = m_connectionTime.addSecs(1);
        emit connectionTime(
            m_connectionTime.hour(), m_connectionTime.minute(), m_connectionTime.second());
    }
}
