// SPDX-License-Identifier: MIT
#include "client/line_status.h"

#include <QtGlobal>

namespace {

std::optional<bool> carrierOf(const std::optional<LineSample> &sample)
{
    constexpr double half = 0.5;
    return sample && sample->carrier ? std::optional<bool>(*sample->carrier >= half) : std::nullopt;
}

std::optional<int> wholeKbit(const std::optional<double> &rate)
{
    const int kbit = qRound(rate.value_or(0));
    return kbit > 0 ? std::optional<int>(kbit) : std::nullopt;
}

} // namespace

LineStatus lineStatusOf(const LineSources &sources)
{
    LineStatus status = sources.log.value_or(LineStatus());
    const std::optional<bool> sampled = carrierOf(sources.sample);
    if (status.line == Line::Unknown) {
        if (const std::optional<bool> carrier = sources.carrier ? sources.carrier : sampled) {
            status.line = *carrier ? Line::Up : Line::Down;
        }
    }
    // Drivers go on telling the rates of a line that is lost.
    if (status.line == Line::Up && !status.downKbit && sampled.value_or(false)) {
        status.downKbit = wholeKbit(sources.sample->downRate);
        status.upKbit = wholeKbit(sources.sample->upRate);
    }
    return status;
}
