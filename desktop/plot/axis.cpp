// SPDX-License-Identifier: MIT
#include "desktop/plot/axis.h"

#include "client/say.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

namespace desktop {

namespace {

constexpr double bitsPerByte = 8;

/// 1, 2 or 5 times a power of ten, not below @p least.
double niceStep(double least)
{
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        // Not by the last bit: 0.1 times 10 is not always 1.
        if (factor * power >= least * (1 - 1e-9)) {
            return factor * power;
        }
    }
    return 10 * power;
}

} // namespace

PlotUnit speedUnit(double most)
{
    return most * bitsPerByte < 1e6 ? PlotUnit{1e3 / bitsPerByte, Say::tr("kbit/s")}
                                    : PlotUnit{1e6 / bitsPerByte, Say::tr("Mbit/s")};
}

PlotUnit rateUnit(double most)
{
    return most < 1e4 ? PlotUnit{1, Say::tr("kbit/s")} : PlotUnit{1e3, Say::tr("Mbit/s")};
}

PlotUnit trafficUnit(double most)
{
    return most < 1e6 ? PlotUnit{1e3, Say::tr("kB")}
        : most < 1e9  ? PlotUnit{1e6, Say::tr("MB")}
                      : PlotUnit{1e9, Say::tr("GB")};
}

QVector<double> ValueAxis::lines() const
{
    QVector<double> values;
    const int count = int(std::lround((top - bottom) / step));
    for (int line = 0; line <= count; ++line) {
        values.append(bottom + line * step);
    }
    return values;
}

QString ValueAxis::label(double value) const
{
    const int decimals = std::max(0, int(std::ceil(-std::log10(step) - 1e-9)));
    return QLocale().toString(value, 'f', decimals);
}

ValueAxis valueAxis(double least, double most, int mostLines)
{
    const double low = std::min(0.0, least);
    const double high = most > 0 || low < 0 ? std::max(0.0, most) : 1;
    ValueAxis axis;
    // Rounding both ends outwards may take one line more than there is room for.
    axis.step = niceStep((high - low) / std::max(1, mostLines - 1));
    const auto fits = [&] { return std::lround((axis.top - axis.bottom) / axis.step) < mostLines; };
    while (true) {
        axis.bottom = std::floor(low / axis.step + 1e-9) * axis.step;
        axis.top = std::ceil(high / axis.step - 1e-9) * axis.step;
        if (fits() || mostLines < 3) {
            return axis;
        }
        axis.step = niceStep(axis.step * 1.5);
    }
}

int everyNth(const QVector<double> &widths, double gap, double room)
{
    double widest = 0;
    for (const double width : widths) {
        widest = std::max(widest, width + gap);
    }
    const double wanted = widest * widths.size();
    return room > 0 ? std::max(1, int(std::ceil(wanted / room))) : int(widths.size());
}

} // namespace desktop
