// SPDX-License-Identifier: MIT
#include "desktop/window/standing_picture.h"

#include "client/say.h"
#include "desktop/plot/colours.h"

#include <QPainter>
#include <QPainterPath>

namespace desktop {

namespace {

QColor colourOf(Standing standing)
{
    switch (standing) {
    case Standing::Connected:
        return {0x2e, 0x9e, 0x5b};
    case Standing::Attention:
        return {0xd3, 0x4a, 0x3e};
    case Standing::Connecting:
        return {0x2a, 0x7f, 0xd4};
    case Standing::Offline:
    case Standing::DaemonAway:
        break;
    }
    return {0x7a, 0x7f, 0x85};
}

/// The sign within a circle of the diameter 100; drawn as strokes.
QPainterPath signOf(Standing standing)
{
    constexpr double threeQuarters = 270;
    QPainterPath path;
    switch (standing) {
    case Standing::Connected: // a tick
        path.moveTo(28, 52);
        path.lineTo(44, 67);
        path.lineTo(72, 35);
        break;
    case Standing::Attention: // an exclamation mark
        path.moveTo(50, 24);
        path.lineTo(50, 56);
        path.moveTo(50, 75);
        path.lineTo(50, 75.5);
        break;
    case Standing::Connecting: // an open ring
        path.arcMoveTo(27, 27, 46, 46, 90);
        path.arcTo(27, 27, 46, 46, 90, -threeQuarters);
        break;
    case Standing::Offline: // a dash
        path.moveTo(28, 50);
        path.lineTo(72, 50);
        break;
    case Standing::DaemonAway: // a question mark
        path.moveTo(35, 38);
        path.cubicTo(36, 18, 66, 20, 65, 38);
        path.cubicTo(64, 48, 50, 47, 50, 60);
        path.moveTo(50, 76);
        path.lineTo(50, 76.5);
        break;
    }
    return path;
}

} // namespace

QPixmap standingPicture(Standing standing, const QPalette &palette, int size, double ratio)
{
    constexpr double diameter = 100;
    QPixmap pixmap(int(size * ratio), int(size * ratio));
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / diameter, size / diameter);
    const QColor ground
        = withContrast(colourOf(standing), palette.color(QPalette::Window), shapeContrast);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawEllipse(QRectF(2, 2, diameter - 4, diameter - 4));
    const bool isWhiteBetter = contrast(Qt::white, ground) >= shapeContrast;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(
        isWhiteBetter ? Qt::white : Qt::black, 10, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(signOf(standing));
    return pixmap;
}

QString standingWord(Standing standing)
{
    switch (standing) {
    case Standing::Offline:
        return Say::tr("not connected");
    case Standing::Connecting:
        return Say::tr("under way");
    case Standing::Connected:
        return Say::tr("connected");
    case Standing::Attention:
        return Say::tr("needs attention");
    case Standing::DaemonAway:
        return Say::tr("not known");
    }
    return {};
}

} // namespace desktop
