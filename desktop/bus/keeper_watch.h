// SPDX-License-Identifier: MIT
// The keeper's coming, going and telling, as events.
#pragma once

#include "desktop/bus/async_bus.h"
#include "desktop/model/event.h"

#include <QDBusMessage>

namespace desktop {

class KeeperWatch : public QObject
{
    Q_OBJECT

public:
    explicit KeeperWatch(AsyncBus &bus, QObject *parent = nullptr);

    /// Begins to listen; the first events come later.
    void start();

signals:
    void happened(const desktop::Event &event);

private slots:
    void takeChange(const QDBusMessage &message);
    void takeLoss(const QString &reason);

private:
    void takeOwner(const QString &owner);

    AsyncBus &m_bus;
    unsigned m_generation = 0;
    std::optional<KeeperState> m_state;
};

} // namespace desktop
