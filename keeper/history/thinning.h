// SPDX-License-Identifier: MIT
// How samples of the line are thinned with their age.
#pragma once

#include <QVector>

namespace keeper {

constexpr int minuteSpan = 60; ///< seconds that a sample stands for
constexpr int quarterSpan = 900;
constexpr int daySpan = 86400;

/// Samples of one span that are so old become fewer ones of a longer span.
struct Thinning
{
    int span;
    int intoSpan;
    qint64 before; ///< seconds since 1970, a border of the longer span
};

/// What is to be thinned at @p now (seconds since 1970): a minute stays for two days, a quarter of
/// an hour for sixty, a day for ever. In this order.
QVector<Thinning> thinningPlan(qint64 now);

} // namespace keeper
