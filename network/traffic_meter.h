// SPDX-License-Identifier: MIT
// Traffic counters turned into what clients are told each second.
#pragma once

#include <QtGlobal>
#include <optional>

/// One reading of an interface's counters. They wrap modulo 2 to the 32nd.
struct TrafficReading
{
    quint32 rxBytes = 0;
    quint32 txBytes = 0;
    quint32 rxErrors = 0;
    quint32 txErrors = 0;
};

/// What one tick has to tell.
struct TrafficTick
{
    quint32 rxSpeed = 0; ///< bytes since the previous tick
    quint32 txSpeed = 0;
    std::optional<quint32>
        endedRxBytes; ///< total of a link that has ended since, for the daily log
    std::optional<quint32> endedTxBytes;
};

/// Follows the counters from tick to tick, across links. Nothing is ever reset: the first tick of a
/// new link gives a wrapped, very large speed where the counters restarted lower.
class TrafficMeter
{
public:
    TrafficTick tick(const TrafficReading &reading);

private:
    struct Sample
    {
        quint32 rxBytes;
        quint32 txBytes;
    };

    quint32 m_lastRxBytes = 0;
    quint32 m_lastTxBytes = 0;
    std::optional<Sample> m_previous; ///< empty until the first tick
};
