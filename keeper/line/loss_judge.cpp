// SPDX-License-Identifier: MIT
#include "keeper/line/loss_judge.h"

#include <QRegularExpression>

namespace keeper {

namespace {

constexpr qint64 keptMs = 60'000;

} // namespace

Cause judgeLoss(const LossFacts &facts)
{
    if (facts.hadDevice && !facts.hasDevice) {
        return Cause::Unplugged;
    }
    if (facts.carrier == false) {
        return Cause::LineLost;
    }
    if (facts.hadBridge && !facts.hasBridge) {
        return Cause::BridgeGone;
    }
    return facts.isStill ? Cause::Silent : Cause::HungUp;
}

void Stillness::add(qint64 ms, quint64 value)
{
    while (!m_samples.isEmpty() && m_samples.first().ms < ms - keptMs) {
        m_samples.removeFirst();
    }
    m_samples.append({ms, value});
}

bool Stillness::isStill(qint64 now, quint64 value) const
{
    for (const Sample &sample : m_samples) {
        if (sample.ms <= now - enoughMs && sample.value == value) {
            return true;
        }
    }
    return false;
}

std::optional<quint64> cellsReceived(const QByteArray &atmDevices)
{
    // "  5 ( sent errors received errors dropped )": the adaptation layer that PPP uses.
    static const QRegularExpression layer(
        QStringLiteral(" 5 \\( -?\\d{1,20} -?\\d{1,20} (-?\\d{1,20}) "));
    const QRegularExpressionMatch match = layer.match(QString::fromLatin1(atmDevices));
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    return quint64(match.captured(1).toLongLong());
}

} // namespace keeper
