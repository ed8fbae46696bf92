// SPDX-License-Identifier: MIT
#include "network/traffic_meter.h"

namespace {

/// Stores @p now in @p last; gives the old value when the counter went back.
std::optional<quint32> totalOfEndedLink(quint32 now, quint32 &last)
{
    const quint32 before = last;
    last = now;
    return now < before ? std::optional<quint32>(before) : std::nullopt;
}

} // namespace

TrafficTick TrafficMeter::tick(const TrafficReading &reading)
{
    TrafficTick tick;
    tick.endedRxBytes = totalOfEndedLink(reading.rxBytes, m_lastRxBytes);
    tick.endedTxBytes = totalOfEndedLink(reading.txBytes, m_lastTxBytes);

    const Sample now = {reading.rxBytes, reading.txBytes};
    const Sample previous = m_previous.value_or(now);
    tick.rxSpeed = now.rxBytes - previous.rxBytes;
    tick.txSpeed = now.txBytes - previous.txBytes;
    m_previous = now;
    return tick;
}
