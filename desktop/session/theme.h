// SPDX-License-Identifier: MIT
// Dark or light, and without movement, as the desktop wants it; changed while the program runs.
#pragma once

#include "desktop/bus/async_bus.h"

#include <QDBusVariant>
#include <QPalette>
#include <QProxyStyle>

namespace desktop {

QPalette darkPalette();
QPalette lightPalette();

/// The platform's style, but for what its users could not see, or do not want to.
class OwnStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// Takes @p base, or the platform's own for nothing.
    explicit OwnStyle(QStyle *base = nullptr)
        : QProxyStyle(base)
    {
    }

    /// Whether everything stands still.
    void setCalm(bool isCalm) { m_isCalm = isCalm; }

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
        QStyleHintReturn *returned) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget = nullptr) const override;

private:
    bool m_isCalm = false;
};

/// Follows the desktop's portal. Without one the platform's own colours stay.
class Theme : public QObject
{
    Q_OBJECT

public:
    explicit Theme(AsyncBus &sessionBus, QObject *parent = nullptr);

    void start();

private slots:
    void takeChange(const QString &space, const QString &key, const QDBusVariant &value);

private:
    void ask(const QString &space, const QString &key);
    void take(const QString &key, const QVariant &value);

    AsyncBus &m_bus;
    OwnStyle *m_style; ///< the application has it
};

} // namespace desktop
