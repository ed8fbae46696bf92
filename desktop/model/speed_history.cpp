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
    // A clock set back leaves no samples of the future.
    while (!m_samples.isEmpty() && m_samples.last().at >= now) {
        m_samples.removeLast();
    }
    m_samples.append({now, plausible(down), plausible(up)});
}

void SpeedHistory::forgetOld(qint64 now)
{
    const auto firstKept = std::find_if(m_samples.begin(), m_samples.end(),
        [now](const SpeedSample &sample) { return sample.at > now - spanMs; });
    m_samples.erase(m_samples.begin(), firstKept);
}

} // namespace desktop
