// SPDX-License-Identifier: MIT
// The computer's falling asleep and waking up, as events.
#pragma once

#include "desktop/model/event.h"

#include <QDBusConnection>
#include <QObject>

namespace desktop {

class SleepWatch : public QObject
{
    Q_OBJECT

public:
    /// Listens on @p systemBus; where nobody tells it, nothing comes.
    explicit SleepWatch(QDBusConnection systemBus, QObject *parent = nullptr);

signals:
    void happened(const desktop::Event &event);

private slots:
    void take(bool isAsleep) { emit happened(event::SleepTold{isAsleep}); }
};

} // namespace desktop
