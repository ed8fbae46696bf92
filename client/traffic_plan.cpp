// SPDX-License-Identifier: MIT
#include "client/traffic_plan.h"

#include "client/say.h"
#include "client/text_format.h"

#include <algorithm>

std::optional<PlanUse> planUse(
    const KeeperPlan &plan, const KeeperTraffic &month, const QDate &today)
{
    if (plan.limit == 0 || !today.isValid() || today < month.begin || today > month.end) {
        return std::nullopt;
    }
    PlanUse use;
    use.used = month.total();
    use.left = plan.limit - std::min(plan.limit, use.used);
    use.daysLeft = int(today.daysTo(month.end)) + 1;
    use.leftPerDay = use.left / quint64(use.daysLeft);
    use.isReached = use.used >= plan.limit;
    return use;
}

QString planUseText(const KeeperPlan &plan, const KeeperTraffic &month, const QDate &today)
{
    const QString used = bytesText(double(month.total()));
    const QString end = month.end.toString(Qt::ISODate);
    const std::optional<PlanUse> use = planUse(plan, month, today);
    if (!use) {
        return Say::tr("In the billing month until %1: %2.").arg(end, used);
    }
    const QString limit = bytesText(double(plan.limit));
    return use->isReached
        ? Say::tr("In the billing month until %1: %2, and the limit is %3.").arg(end, used, limit)
        : Say::tr("In the billing month until %1: %2 of %3; what is left is %4 a day.")
              .arg(end, used, limit, bytesText(double(use->leftPerDay)));
}
