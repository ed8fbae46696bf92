// SPDX-License-Identifier: MIT
// What the provider counts by.
#pragma once

#include <QDate>

namespace keeper {

struct BillingMonth
{
    QDate begin; ///< its first day
    QDate end; ///< its last day
};

/// The billing month that @p day lies in, when one begins on day @p billingDay (1 to 31) of each
/// calendar month, or on its last day where it is shorter.
BillingMonth billingMonth(const QDate &day, int billingDay);

} // namespace keeper
