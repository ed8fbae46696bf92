// SPDX-License-Identifier: MIT
#include "keeper/bus_face.h"

#include "dbus/contract.h"
#include "keeper/history/billing.h"
#include "keeper/keeper.h"

#include <QDBusMetaType>

namespace keeper {

namespace {

constexpr uint mostEntries = 100'000;

int bounded(uint most)
{
    return int(qMin(most, mostEntries));
}

} // namespace

BusFace::BusFace(Keeper *keeper, const QDBusConnection &bus)
    : QDBusAbstractAdaptor(keeper)
    , m_keeper(keeper)
    , m_bus(bus)
{
    qRegisterMetaType<Rows>("keeper::Rows");
    qDBusRegisterMetaType<Rows>();
    connect(keeper, &Keeper::linkLost, this, &BusFace::LinkLost);
    connect(keeper, &Keeper::changed, this, &BusFace::announce);
}

QVariant BusFace::told(const char *property) const
{
    return m_keeper->properties().value(QLatin1String(property));
}

void BusFace::announce(const QVariantMap &properties)
{
    QDBusMessage signal = QDBusMessage::createSignal(QLatin1String(Bus::keeperPath),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    signal << QLatin1String(Bus::keeperInterface) << properties << QStringList();
    m_bus.send(signal);
}

void BusFace::SetKeep(bool keep)
{
    m_keeper->setKeep(keep);
}

void BusFace::Connect()
{
    m_keeper->connectLink();
}

Rows BusFace::GetSessions(uint most)
{
    return m_keeper->history().sessions(bounded(most));
}

Rows BusFace::GetAttempts(uint most)
{
    return m_keeper->history().attempts(bounded(most));
}

Rows BusFace::GetDays(uint most)
{
    return m_keeper->history().days(bounded(most));
}

Rows BusFace::GetMonths(uint most)
{
    keeper::History &history = m_keeper->history();
    const QDate first = history.firstDay();
    Rows months;
    BillingMonth month = billingMonth(QDate::currentDate(), m_keeper->billingDay());
    while (months.size() < bounded(most)) {
        const Traffic used = history.trafficBetween(month.begin, month.end);
        months.append({{QStringLiteral("begin"), month.begin.toString(Qt::ISODate)},
            {QStringLiteral("end"), month.end.toString(Qt::ISODate)},
            {QStringLiteral("received"), qint64(used.received)},
            {QStringLiteral("sent"), qint64(used.sent)}});
        if (!first.isValid() || month.begin <= first) {
            break;
        }
        month = billingMonth(month.begin.addDays(-1), m_keeper->billingDay());
    }
    return months;
}

Rows BusFace::GetLineQuality(qlonglong from, qlonglong until)
{
    return m_keeper->history().lineBetween(from, until);
}

QVariantMap BusFace::GetPlan()
{
    return {{QStringLiteral("limit"), qulonglong(m_keeper->limit())},
        {QStringLiteral("billing_day"), uint(m_keeper->billingDay())}};
}

void BusFace::SetLimit(qulonglong bytes)
{
    m_keeper->setLimit(bytes);
}

void BusFace::SetBillingDay(uint day, const QDBusMessage &message)
{
    if (day >= 1 && day <= 31) {
        m_keeper->setBillingDay(int(day));
        return;
    }
    message.setDelayedReply(true);
    m_bus.send(message.createErrorReply(QLatin1String(Bus::keeperRefused),
        QStringLiteral("A day of the month is a number from 1 to 31.")));
}

} // namespace keeper
