// SPDX-License-Identifier: MIT
#include "desktop/model/speed_history.h"

#include <algorithm>

namespace desktop {

namespace {

// Twice what the fastest ADSL2+ line carries, bytes per second.
constexpr quint32 mostPerSecond = 6'000'000;

std::optional<double> plausible(quint32 speed)
{
    return speed > mostPerSecond ? std::nullopt : std::optional<double>(speed);
}

} // namespace

void SpeedHistory::add(quint32 down, quint32 up, qint64 now)
{
    forgetOld(now);
    if (!m_samples.isEmpty() && m_samples.last().at == now) {
        m_samples.removeLast();
    }
    m_samples.append({now, plausible(down), plausible(up)});
}

void SpeedHistory::forgetOld(qint64 now)
{
    // What lies in the future was there before the clock was set back.
    const auto firstForgotten = std::remove_if(m_samples.begin(), m_samples.end(),
        [now](const SpeedSample &sample) { return sample.at <= now - spanMs || sample.at > now; });
    m_samples.erase(firstForgotten, m_samples.end());
}

} // namespace desktop
