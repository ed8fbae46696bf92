// SPDX-License-Identifier: MIT
// A plot for those who do not see it.
#include "desktop/plot/plot.h"

#include <QAccessibleWidget>

namespace desktop {

namespace {

class AccessiblePlot : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit AccessiblePlot(Plot *plot)
        : QAccessibleWidget(plot, QAccessible::Chart)
    {
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    /// The value is the description as well: the accessibility bus has numbers only as values.
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value || kind == QAccessible::Description
            ? plot().valueText()
            : QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override
    {
        const QVector<PlotPoint> &points = plot().content().points;
        const int place = plot().readPlace();
        if (place >= 0) {
            return points.at(place).first.value_or(0);
        }
        return points.isEmpty() ? 0 : points.last().first.value_or(0);
    }
    void setCurrentValue(const QVariant & /*value*/) override { }
    QVariant maximumValue() const override { return valueAxisOf(plot().content(), 2).top; }
    QVariant minimumValue() const override { return valueAxisOf(plot().content(), 2).bottom; }
    QVariant minimumStepSize() const override { return 0; }

private:
    const Plot &plot() const { return *static_cast<const Plot *>(widget()); }
};

QAccessibleInterface *accessiblePlot(const QString & /*className*/, QObject *object)
{
    auto *plot = qobject_cast<Plot *>(object);
    return plot == nullptr ? nullptr : new AccessiblePlot(plot);
}

} // namespace

void makePlotsAccessible()
{
    QAccessible::installFactory(accessiblePlot);
}

} // namespace desktop
