// SPDX-License-Identifier: MIT
// Dark or light, and without movement, as the desktop wants it; changed while the program runs.
#pragma once

#include "desktop/bus/async_bus.h"

#include <QDBusVariant>
#include <QPalette>

namespace desktop {

QPalette darkPalette();
QPalette lightPalette();

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
};

} // namespace desktop
