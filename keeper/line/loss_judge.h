// SPDX-License-Identifier: MIT
// What a lost link looked like.
#pragma once

#include "keeper/decision/cause.h"

#include <QByteArray>
#include <QVector>
#include <optional>

namespace keeper {

/// What the kernel showed when the link was lost.
struct LossFacts
{
    std::optional<bool> carrier; ///< of the ATM device; nothing without one
    bool hadDevice = false; ///< the link ran over an ATM device
    bool hasDevice = false; ///< which is still there
    bool hadBridge = false; ///< the link ran over a bridge interface
    bool hasBridge = false; ///< which is still there
    bool isStill = false; ///< nothing has come in for 25 s
};

/// The most telling of the facts. The end of the modem itself is told by the daemon, too, but what
/// goes with the modem may be seen first.
Cause judgeLoss(const LossFacts &facts);

/// Remembers for how long a counter has not moved.
class Stillness
{
public:
    static constexpr qint64 enoughMs = 25'000;

    void clear() { m_samples.clear(); }
    /// The counter is @p value at @p ms.
    void add(qint64 ms, quint64 value);
    /// Whether the counter, @p value now, has not moved for 25 s at least. False while it has not
    /// been watched for as long.
    bool isStill(qint64 now, quint64 value) const;

private:
    struct Sample
    {
        qint64 ms;
        quint64 value;
    };
    QVector<Sample> m_samples; ///< of the last minute
};

/// The received cells of the first ATM device by /proc/net/atm/devices; nothing without one.
std::optional<quint64> cellsReceived(const QByteArray &atmDevices);

} // namespace keeper
