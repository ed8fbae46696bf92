// SPDX-License-Identifier: MIT
// norvixctl usage
#include "client/daemon_bus.h"
#include "client/keeper_bus.h"
#include "client/say.h"
#include "client/text_format.h"
#include "client/traffic_plan.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/report.h"

#include <algorithm>

namespace {

constexpr int usualEntries = 14;
constexpr int mostEntries = 10000;

/// What is to be stored; nothing for what is to stay.
struct NewPlan
{
    std::optional<quint64> limit;
    std::optional<int> billingDay;
};

std::optional<quint64> limitOf(const QString &word)
{
    return word == QLatin1String("off") ? std::optional<quint64>(0) : bytesFromText(word);
}

int change(const NewPlan &plan, const KeeperBus &keeper, const Terminal &terminal)
{
    Failure failure;
    if (plan.limit) {
        failure = keeper.setLimit(*plan.limit);
    }
    if (!failure && plan.billingDay) {
        failure = keeper.setBillingDay(*plan.billingDay);
    }
    if (failure) {
        return terminal.fail(failure);
    }
    if (plan.limit) {
        terminal.paragraph(*plan.limit == 0
                ? Say::tr("There is no limit any more.")
                : Say::tr("The limit is %1 in a billing month. It warns and ends no connection.")
                      .arg(bytesText(double(*plan.limit))));
    }
    if (plan.billingDay) {
        terminal.paragraph(
            Say::tr("A billing month begins on day %1 from now on.").arg(*plan.billingDay));
    }
    return Ok;
}

Table tableOf(const QList<KeeperTraffic> &traffic, bool isByMonth)
{
    Table table(isByMonth ? QStringLiteral("months") : QStringLiteral("days"),
        {QStringLiteral("begin"), QStringLiteral("end"), QStringLiteral("receivedBytes"),
            QStringLiteral("sentBytes")},
        {isByMonth ? Say::tr("Billing month") : Say::tr("Day"), Say::tr("Received"),
            Say::tr("Sent"), Say::tr("Together")});
    for (const KeeperTraffic &entry : traffic) {
        const QString begin = entry.begin.toString(Qt::ISODate);
        const QString end = entry.end.toString(Qt::ISODate);
        table.add({begin, end, qint64(entry.received), qint64(entry.sent)},
            {isByMonth ? Say::tr("%1 to %2").arg(begin, end) : begin,
                bytesText(double(entry.received)), bytesText(double(entry.sent)),
                bytesText(double(entry.total()))});
    }
    return table;
}

int show(bool isByMonth, int most, const KeeperBus &keeper, const Terminal &terminal)
{
    const auto plan = keeper.plan();
    if (!plan.ok()) {
        return terminal.fail(plan.failure);
    }
    // The newest is the running month, whatever is shown.
    const auto months = keeper.months(isByMonth ? quint32(std::max(most, 1)) : 1);
    if (!months.ok()) {
        return terminal.fail(months.failure);
    }
    const auto days = isByMonth ? months : keeper.days(quint32(most));
    if (!days.ok()) {
        return terminal.fail(days.failure);
    }
    const Table table = tableOf(days.value.mid(0, most), isByMonth);
    if (terminal.form == Form::Json) {
        QJsonObject object = table.toJson();
        object[QStringLiteral("limitBytes")] = plan.value.limit == 0
            ? QJsonValue(QJsonValue::Null)
            : QJsonValue(qint64(plan.value.limit));
        object[QStringLiteral("billingDay")] = plan.value.billingDay;
        printJson(terminal, object);
        return Ok;
    }
    if (terminal.form == Form::Terse || !table.isEmpty()) {
        table.print(terminal);
    }
    if (terminal.form == Form::Human) {
        if (!table.isEmpty()) {
            terminal.line();
        }
        terminal.paragraph(months.value.isEmpty()
                ? Say::tr("No traffic has been counted yet.")
                : planUseText(plan.value, months.value.constFirst(), QDate::currentDate()));
    }
    return Ok;
}

} // namespace

int runUsage(const Invocation &invocation, const Terminal &terminal)
{
    NewPlan plan;
    if (invocation.has("limit")) {
        plan.limit = limitOf(invocation.value("limit"));
        if (!plan.limit) {
            return terminal.fail(
                BadUsage, Say::tr("--limit takes a number with its unit, such as 50GB, or “off”."));
        }
    }
    if (invocation.has("billing-day")) {
        const auto day = wholeNumber(invocation.value("billing-day"), 1, 31);
        if (!day) {
            return terminal.fail(
                BadUsage, Say::tr("--billing-day takes a whole number from 1 to 31."));
        }
        plan.billingDay = *day;
    }
    const auto most = linesWanted(invocation, usualEntries, mostEntries);
    if (!most) {
        return terminal.fail(BadUsage, Say::tr("--lines takes a whole number."));
    }
    const DaemonBus bus;
    const KeeperBus keeper(bus);
    return plan.limit || plan.billingDay ? change(plan, keeper, terminal)
                                         : show(invocation.has("month"), *most, keeper, terminal);
}
