// SPDX-License-Identifier: MIT
#include "desktop/plot/plot.h"

#include "desktop/plot/colours.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <algorithm>
#include <cmath>

namespace desktop {

namespace {

constexpr int pageStep = 10;
constexpr double barShare = 0.7;

QFont boldOf(QFont font)
{
    font.setBold(true);
    return font;
}

} // namespace

/// Draws one plot; made anew for each picture.
struct Plot::Painter
{
    const Plot &plot;
    QPainter painter;
    const PlotContent &content;
    const PlotScale scale;
    const PlotColours colours;
    const QFontMetricsF metrics;
    const double lineWidth;

    explicit Painter(Plot &shown)
        : plot(shown)
        , painter(&shown)
        , content(shown.m_content)
        , scale(shown.scale())
        , colours(plotColours(shown.palette()))
        , metrics(shown.font())
        , lineWidth(std::max(1.0, metrics.height() / 11))
    {
        painter.setRenderHint(QPainter::Antialiasing);
    }

    double gap() const { return metrics.averageCharWidth(); }

    /// A place of a layout from left to right, where it is in this one.
    QRectF placed(const QRectF &place) const
    {
        return scale.isMirrored
            ? QRectF(plot.width() - place.right(), place.top(), place.width(), place.height())
            : place;
    }

    QPen penOf(bool isFirst) const
    {
        QPen pen(isFirst ? colours.first : colours.second, lineWidth);
        pen.setJoinStyle(Qt::RoundJoin);
        if (!isFirst) {
            pen.setDashPattern({4, 2.5});
        }
        return pen;
    }

    void text(const QRectF &place, Qt::Alignment alignment, const QString &words, const QColor &pen)
    {
        painter.setPen(pen);
        painter.drawText(place, int(alignment) | Qt::TextDontClip, words);
    }

    /// One entry of the legend from @p x on; where it ends.
    double legendEntry(double x, double y, const PlotSeries &series, bool isFirst)
    {
        const double height = metrics.height();
        const QRectF swatch = placed(QRectF(x, y + height * 0.2, height * 1.6, height * 0.6));
        if (content.shape == PlotShape::Bars) {
            bar(swatch, isFirst);
        } else {
            painter.setPen(penOf(isFirst));
            painter.drawLine(QPointF(swatch.left(), swatch.center().y()),
                QPointF(swatch.right(), swatch.center().y()));
        }
        x += height * 1.6 + gap();
        const QFont plain = painter.font();
        painter.setFont(boldOf(plain));
        const double nameWidth = QFontMetricsF(painter.font()).horizontalAdvance(series.name);
        text(placed(QRectF(x, y, nameWidth, height)), Qt::AlignCenter, series.name,
            plot.palette().color(QPalette::WindowText));
        painter.setFont(plain);
        x += nameWidth + gap();
        const double width = metrics.horizontalAdvance(series.present);
        text(placed(QRectF(x, y, width, height)), Qt::AlignCenter, series.present,
            plot.palette().color(QPalette::WindowText));
        return x + width + 3 * gap();
    }

    /// The names with the present values, and what the axis counts. On two lines where one is too
    /// short.
    void legend()
    {
        double x = placed(scale.area).left();
        if (!content.first.name.isEmpty()) {
            x = legendEntry(x, 0, content.first, true);
        }
        if (!content.second.name.isEmpty()) {
            x = legendEntry(x, 0, content.second, false);
        }
        const QString unit = content.unit.isEmpty() || content.span.isEmpty()
            ? content.unit + content.span
            : content.unit + QStringLiteral(", ") + content.span;
        const double width = metrics.horizontalAdvance(unit);
        const double left = plot.width() - gap() - width;
        text(placed(QRectF(left, left < x ? metrics.lineSpacing() : 0, width, metrics.height())),
            Qt::AlignCenter, unit, colours.mutedText);
    }

    void axes()
    {
        painter.fillRect(scale.area, colours.ground);
        marks();
        if (isEmpty(content)) {
            return; // nothing is counted, and lines would strike out the words
        }
        const double labelRoom = placed(scale.area).left() - gap();
        for (const double value : scale.values.lines()) {
            const double y = scale.yOf(value);
            painter.setPen(QPen(colours.line, std::max(1.0, lineWidth / 2)));
            painter.drawLine(QPointF(scale.area.left(), y), QPointF(scale.area.right(), y));
            text(placed(QRectF(0, y - metrics.height() / 2, labelRoom, metrics.height())),
                Qt::AlignVCenter | (scale.isMirrored ? Qt::AlignLeft : Qt::AlignRight),
                scale.values.label(value), colours.mutedText);
        }
    }

    void marks()
    {
        QVector<double> widths;
        for (const PlotMark &mark : content.marks) {
            widths.append(metrics.horizontalAdvance(mark.text));
        }
        const int step = everyNth(widths, 2 * gap(), scale.area.width());
        for (int place = 0; place < content.marks.size(); place += step) {
            const double width = widths.at(place);
            const double middle = scale.xOf(content.marks.at(place).at);
            // Not below the values' labels.
            const double first = scale.isMirrored ? 0 : scale.area.left();
            const double last = scale.isMirrored ? scale.area.right() : plot.width();
            const double left
                = std::clamp(middle - width / 2, first, std::max(first, last - width));
            text(QRectF(left, scale.area.bottom() + gap() / 2, width, metrics.height()),
                Qt::AlignCenter, content.marks.at(place).text, colours.mutedText);
        }
    }

    void lines(bool isFirst)
    {
        for (const QVector<QPointF> &piece : linePieces(content, scale, isFirst)) {
            if (piece.size() == 1) {
                dot(piece.first(), isFirst);
                continue;
            }
            if (isFirst) {
                QPolygonF ground(piece);
                const double zero = scale.yOf(0);
                ground.append(QPointF(piece.last().x(), zero));
                ground.append(QPointF(piece.first().x(), zero));
                QColor fill = colours.first;
                fill.setAlphaF(0.2);
                painter.setPen(Qt::NoPen);
                painter.setBrush(fill);
                painter.drawPolygon(ground);
            }
            painter.setBrush(Qt::NoBrush);
            painter.setPen(penOf(isFirst));
            painter.drawPolyline(piece.constData(), piece.size());
        }
    }

    void dot(const QPointF &middle, bool isFirst)
    {
        painter.setPen(QPen(colours.ground, lineWidth / 2));
        painter.setBrush(isFirst ? colours.first : colours.second);
        painter.drawEllipse(middle, lineWidth * 1.8, lineWidth * 1.8);
    }

    void bar(const QRectF &place, bool isFirst)
    {
        painter.setPen(Qt::NoPen);
        if (isFirst) {
            painter.fillRect(place, colours.first);
            return;
        }
        painter.fillRect(place, colours.ground);
        painter.fillRect(place, QBrush(colours.second, Qt::BDiagPattern));
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(colours.second, std::max(1.0, lineWidth / 2)));
        painter.drawRect(place);
    }

    void bars()
    {
        const double width = scale.area.width() / (scale.end - scale.begin) * barShare;
        for (const PlotPoint &point : content.points) {
            const double x = scale.xOf(point.at) - width / 2;
            const double middle = scale.yOf(point.first.value_or(0));
            if (point.first.value_or(0) > 0) {
                bar(QRectF(x, middle, width, scale.yOf(0) - middle), true);
            }
            if (point.second.value_or(0) > 0) {
                const double top = scale.yOf(point.first.value_or(0) + point.second.value_or(0));
                bar(QRectF(x, top, width, middle - top), false);
            }
        }
    }

    void readout(int place)
    {
        const PlotPoint &point = content.points.at(place);
        const double x = scale.xOf(point.at);
        painter.setPen(QPen(plot.palette().color(QPalette::Text), std::max(1.0, lineWidth / 2)));
        painter.drawLine(QPointF(x, scale.area.top()), QPointF(x, scale.area.bottom()));
        if (content.shape == PlotShape::Lines) {
            if (point.first) {
                dot(QPointF(x, scale.yOf(*point.first)), true);
            }
            if (point.second) {
                dot(QPointF(x, scale.yOf(*point.second)), false);
            }
        }
        const QString words = pointText(content, place);
        const double most = std::max(1.0, scale.area.width() - 4 * gap());
        QRectF box = metrics.boundingRect(
            QRectF(0, 0, most, scale.area.height()), Qt::AlignCenter | Qt::TextWordWrap, words);
        box.adjust(-gap(), -gap() / 2, gap(), gap() / 2);
        // Beside the line, so that it hides none of the point.
        const bool hasRoomRight = x + gap() + box.width() <= scale.area.right();
        box.moveTop(scale.area.top() + gap() / 2);
        box.moveLeft(
            hasRoomRight ? x + gap() : std::max(scale.area.left(), x - gap() - box.width()));
        painter.setPen(QPen(plot.palette().color(QPalette::ToolTipText), 1));
        painter.setBrush(plot.palette().color(QPalette::ToolTipBase));
        painter.drawRoundedRect(box, gap() / 2, gap() / 2);
        painter.drawText(box, Qt::AlignCenter | Qt::TextWordWrap, words);
    }

    void all()
    {
        axes();
        if (isEmpty(content)) {
            const QRectF room = scale.area.adjusted(gap(), 0, -gap(), 0);
            painter.setPen(withContrast(colours.mutedText, colours.ground, textContrast));
            painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, content.whenEmpty);
            return;
        }
        legend();
        painter.save();
        painter.setClipRect(scale.area.adjusted(0, -lineWidth * 2, 0, lineWidth * 2));
        if (content.shape == PlotShape::Bars) {
            bars();
        } else {
            lines(true);
            lines(false);
        }
        painter.restore();
        const int place = plot.readPlace();
        if (place >= 0) {
            readout(place);
        }
    }
};

Plot::Plot(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void Plot::setContent(const PlotContent &content)
{
    m_content = content;
    setAccessibleName(content.span.isEmpty() ? content.title
                                             : content.title + QStringLiteral(", ") + content.span);
    update();
}

int Plot::readPlace() const
{
    return m_readAt ? pointNear(m_content, *m_readAt) : -1;
}

QString Plot::valueText() const
{
    const int place = readPlace();
    return place >= 0 ? pointText(m_content, place) : plotText(m_content);
}

QSize Plot::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * 70, fontMetrics().height() * 14};
}

QSize Plot::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 30, fontMetrics().height() * 9};
}

double Plot::legendHeight() const
{
    const QFontMetricsF metrics(boldOf(font()));
    return 2 * metrics.lineSpacing() + metrics.height() / 4;
}

PlotScale Plot::scale() const
{
    const QFontMetricsF metrics(font());
    const double top = legendHeight();
    const double bottom = metrics.height() * 1.4;
    const double room = std::max(1.0, height() - top - bottom);
    PlotScale scale;
    scale.values = valueAxisOf(m_content, std::clamp(int(room / (metrics.height() * 2)), 2, 6));
    double labels = 0;
    for (const double value : scale.values.lines()) {
        labels = std::max(labels, metrics.horizontalAdvance(scale.values.label(value)));
    }
    const double left = labels + 1.5 * metrics.averageCharWidth();
    const double right = metrics.averageCharWidth();
    scale.isMirrored = layoutDirection() == Qt::RightToLeft;
    scale.area
        = QRectF(scale.isMirrored ? right : left, top, std::max(1.0, width() - left - right), room);
    scale.begin = m_content.begin;
    scale.end = m_content.end;
    return scale;
}

void Plot::paintEvent(QPaintEvent * /*event*/)
{
    Painter(*this).all();
    if (hasFocus()) {
        QPainter painter(this);
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.backgroundColor = palette().color(QPalette::Window);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void Plot::readAt(std::optional<double> at)
{
    if (at == m_readAt) {
        return;
    }
    m_readAt = at;
    update();
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}

void Plot::mouseMoveEvent(QMouseEvent *event)
{
    const PlotScale shown = scale();
    if (shown.area.contains(event->localPos())) {
        readAt(shown.timeAt(event->localPos().x()));
    } else {
        readAt(std::nullopt);
    }
}

void Plot::leaveEvent(QEvent *event)
{
    if (!hasFocus()) {
        readAt(std::nullopt);
    }
    QWidget::leaveEvent(event);
}

void Plot::keyPressEvent(QKeyEvent *event)
{
    const int last = m_content.points.size() - 1;
    const int place = readPlace();
    const int forward = layoutDirection() == Qt::RightToLeft ? -1 : 1;
    // The first key reads the newest, whatever the direction.
    const auto moved = [&](int by) { return place < 0 ? last : std::clamp(place + by, 0, last); };
    int wanted = -1;
    switch (event->key()) {
    case Qt::Key_Left:
        wanted = moved(-forward);
        break;
    case Qt::Key_Right:
        wanted = moved(forward);
        break;
    case Qt::Key_PageUp:
        wanted = moved(-pageStep);
        break;
    case Qt::Key_PageDown:
        wanted = moved(pageStep);
        break;
    case Qt::Key_Home:
        wanted = 0;
        break;
    case Qt::Key_End:
        wanted = last;
        break;
    case Qt::Key_Escape:
        if (place >= 0) {
            readAt(std::nullopt);
            return;
        }
        QWidget::keyPressEvent(event);
        return;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    if (last >= 0) {
        readAt(m_content.points.at(wanted).at);
    }
}

void Plot::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void Plot::focusOutEvent(QFocusEvent *event)
{
    readAt(std::nullopt);
    QWidget::focusOutEvent(event);
}

} // namespace desktop
