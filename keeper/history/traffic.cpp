// SPDX-License-Identifier: MIT
#include "keeper/history/traffic.h"

namespace keeper {

namespace {

quint64 growth(quint64 last, quint64 now)
{
    return now >= last ? now - last : now;
}

} // namespace

Traffic newTraffic(const std::optional<Traffic> &last, const Traffic &now)
{
    const Traffic before = last.value_or(Traffic());
    return {growth(before.received, now.received), growth(before.sent, now.sent)};
}

} // namespace keeper
