// SPDX-License-Identifier: MIT
#include "keeper/history/thinning.h"

namespace keeper {

namespace {

constexpr qint64 minutesFor = qint64(2) * daySpan;
constexpr qint64 quartersFor = qint64(60) * daySpan;

Thinning step(int span, int intoSpan, qint64 before)
{
    return {span, intoSpan, before - before % intoSpan};
}

} // namespace

QVector<Thinning> thinningPlan(qint64 now)
{
    return {step(minuteSpan, quarterSpan, now - minutesFor),
        step(quarterSpan, daySpan, now - quartersFor)};
}

} // namespace keeper
