// SPDX-License-Identifier: MIT
// Whether something shows tray items now.
#pragma once

#include "desktop/bus/async_bus.h"

namespace desktop {

class TrayHost : public QObject
{
    Q_OBJECT

public:
    explicit TrayHost(AsyncBus &sessionBus, QObject *parent = nullptr);

    /// Begins to look. Nobody waits for the answer: a host may hang.
    void start();

    bool isThere() const { return m_isThere; }

signals:
    /// Told for each new host, also where one takes another's place.
    void changed(bool isThere);

private slots:
    void look();

private:
    void take(bool isThere);

    AsyncBus &m_bus;
    unsigned m_generation = 0; ///< of questions: the last one's answer counts
    bool m_isThere = false;
};

} // namespace desktop
