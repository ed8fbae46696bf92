// SPDX-License-Identifier: MIT
// When the window is seen, the tray item is there, and the program ends.
#pragma once

#include "desktop/bus/async_bus.h"
#include "desktop/bus/sleep_watch.h"
#include "desktop/model/notice.h"
#include "desktop/session/preferences.h"
#include "desktop/session/theme.h"
#include "desktop/tray/notifier.h"
#include "desktop/tray/tray.h"
#include "desktop/tray/tray_host.h"
#include "desktop/window/main_window.h"

#include <QTimer>

namespace desktop {

class Controller;

class Presence : public QObject
{
    Q_OBJECT

public:
    Presence(Controller &controller, Preferences &preferences, const QDBusConnection &sessionBus,
        QObject *parent = nullptr);

    /// Shows the window, or with @p isBackground waits a moment for a tray to begin in. It is never
    /// out of sight without one.
    void start(bool isBackground);

    /// Shows the window and brings it to the front, with a desktop's token where there is one.
    void showWindow(const QString &token = QString());

    MainWindow &window() { return m_window; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void takeHost(bool isThere);
    void takeEvent(const Event &event);
    bool isSeen() const;
    void beOutOfSight();
    void quit();
    void sayOnce(const QString &what, const QString &title, const QString &text,
        const std::function<void()> &then);

    Controller &m_controller;
    Preferences &m_preferences;
    AsyncBus m_bus;
    Theme m_theme;
    MainWindow m_window;
    TrayHost m_host;
    Tray m_tray;
    Notifier m_notifier;
    SleepWatch m_sleep;
    NoticeDecision m_decision;
    QTimer m_grace; ///< the window is out of sight and waits for a tray
};

} // namespace desktop
