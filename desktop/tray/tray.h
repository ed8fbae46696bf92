// SPDX-License-Identifier: MIT
// The item in the tray. It exists only while a host shows it.
#pragma once

#include "desktop/model/headline.h"

#include <QMenu>
#include <QSystemTrayIcon>
#include <memory>
#include <optional>

namespace desktop {

class Controller;

class Tray : public QObject
{
    Q_OBJECT

public:
    explicit Tray(Controller &controller, QObject *parent = nullptr);
    ~Tray() override;

    /// Puts the item up, or takes it away. The toolkit waits for the host when it does: only for
    /// one that has just answered.
    void setShown(bool isShown);
    bool isShown() const { return m_icon != nullptr; }

signals:
    void windowWanted();
    void quitWanted();

private:
    void refresh();

    Controller &m_controller;
    // An item that has begun without a host never shows itself: each host has a new one.
    std::unique_ptr<QSystemTrayIcon> m_icon;
    QMenu m_menu;
    QAction *m_primary;
    QAction *m_quit;
    Action m_primaryAction = Action::None;
    std::optional<Standing> m_standing;
};

} // namespace desktop
