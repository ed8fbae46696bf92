// SPDX-License-Identifier: MIT
#include "keeper/history/billing.h"

#include <algorithm>

namespace keeper {

namespace {

QDate beginIn(const QDate &month, int billingDay)
{
    return QDate(month.year(), month.month(), std::clamp(billingDay, 1, month.daysInMonth()));
}

} // namespace

BillingMonth billingMonth(const QDate &day, int billingDay)
{
    const QDate first(day.year(), day.month(), 1);
    QDate begin = beginIn(first, billingDay);
    QDate next = beginIn(first.addMonths(1), billingDay);
    if (begin > day) {
        next = begin;
        begin = beginIn(first.addMonths(-1), billingDay);
    }
    return {begin, next.addDays(-1)};
}

} // namespace keeper
