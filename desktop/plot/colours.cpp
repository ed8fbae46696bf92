// SPDX-License-Identifier: MIT
#include "desktop/plot/colours.h"

#include <algorithm>
#include <cmath>

namespace desktop {

namespace {

constexpr int degrees = 360;

double luminance(const QColor &colour)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

QColor between(const QColor &first, const QColor &second, double share)
{
    const auto mixed = [share](double a, double b) { return a + (b - a) * share; };
    return QColor::fromRgbF(mixed(first.redF(), second.redF()),
        mixed(first.greenF(), second.greenF()), mixed(first.blueF(), second.blueF()));
}

} // namespace

double contrast(const QColor &first, const QColor &second)
{
    const double one = luminance(first);
    const double other = luminance(second);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

QColor withContrast(const QColor &colour, const QColor &background, double least)
{
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    const QColor end = contrast(black, background) > contrast(white, background) ? black : white;
    QColor result = colour;
    for (double share = 0.05; contrast(result, background) < least && share < 1; share += 0.05) {
        result = between(colour, end, share);
    }
    return contrast(result, background) < least ? end : result;
}

PlotColours plotColours(const QPalette &palette)
{
    const QColor &ground = palette.color(QPalette::Base);
    const QColor &text = palette.color(QPalette::WindowText);
    const QColor &window = palette.color(QPalette::Window);
    QColor first = palette.color(QPalette::Highlight).toHsl();
    if (first.hslHue() < 0 || first.hslSaturationF() < 0.3) { // a grey highlight
        first = QColor(0x2a, 0x7f, 0xd4).toHsl();
    }
    const QColor second
        = QColor::fromHslF(((first.hslHue() + degrees / 2) % degrees) / double(degrees), 0.75, 0.5);
    return {ground, withContrast(first.toRgb(), ground, shapeContrast),
        withContrast(second.toRgb(), ground, shapeContrast), between(ground, text, 0.18),
        withContrast(between(window, text, 0.65), window, textContrast)};
}

} // namespace desktop
