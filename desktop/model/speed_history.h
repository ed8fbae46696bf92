// SPDX-License-Identifier: MIT
// The speeds of the last five minutes.
#pragma once

#include <QVector>
#include <optional>

namespace desktop {

struct SpeedSample
{
    qint64 at; ///< milliseconds since 1970
    std::optional<double> down; ///< bytes per second; nothing when the counter has begun anew
    std::optional<double> up;
};

class SpeedHistory
{
public:
    static constexpr qint64 spanMs = 5 * 60 * 1000;

    /// Takes what the daemon tells each second. A difference that has wrapped is known by its size:
    /// no ADSL line carries it.
    void add(quint32 down, quint32 up, qint64 now);
    /// Drops what has become too old, or lies in the future.
    void forgetOld(qint64 now);
    void clear() { m_samples.clear(); }

    const QVector<SpeedSample> &samples() const { return m_samples; }

private:
    QVector<SpeedSample> m_samples;
};

} // namespace desktop
