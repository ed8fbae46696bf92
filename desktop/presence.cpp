// SPDX-License-Identifier: MIT
#include "desktop/presence.h"

#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/icons/icons.h"
#include "desktop/window/preferences_page.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>

namespace desktop {

namespace {

// Panels come later than what is begun with the session, and a new one a moment after the old.
constexpr int graceMs = 5000;
// For saying something before the end; a service that hangs must not keep the program.
constexpr int farewellMs = 1000;

} // namespace

Presence::Presence(Controller &controller, Preferences &preferences,
    const QDBusConnection &sessionBus, QObject *parent)
    : QObject(parent)
    , m_controller(controller)
    , m_preferences(preferences)
    , m_bus(sessionBus)
    , m_theme(m_bus)
    , m_window(controller)
    , m_host(m_bus)
    , m_tray(controller)
    , m_notifier(m_bus)
    , m_sleep(controller.bus().connection())
    , m_decision(QDateTime::currentMSecsSinceEpoch())
{
    m_grace.setSingleShot(true);
    m_window.installEventFilter(this);
    m_window.setWindowIcon(programIcon());
    m_window.add(new PreferencesPage(controller, preferences));
    connect(&m_grace, &QTimer::timeout, this, [this] {
        if (!m_tray.isShown() && !m_window.isVisible()) {
            m_window.setAttribute(Qt::WA_ShowWithoutActivating); // nobody has asked for it now
            m_window.show();
            m_window.setAttribute(Qt::WA_ShowWithoutActivating, false);
        }
    });
    connect(&m_host, &TrayHost::changed, this, &Presence::takeHost);
    connect(&m_tray, &Tray::windowWanted, this, [this] { showWindow(); });
    connect(&m_tray, &Tray::quitWanted, this, &QCoreApplication::quit);
    connect(&m_notifier, &Notifier::activated, this, &Presence::showWindow);
    connect(&m_sleep, &SleepWatch::happened, &controller, &Controller::take);
    connect(&controller, &Controller::happened, this, &Presence::takeEvent);
    connect(&controller, &Controller::pageWanted, this, [this] { showWindow(); });
}

void Presence::start(bool isBackground)
{
    m_theme.start();
    m_host.start();
    if (isBackground && m_bus.connection().isConnected()) {
        beOutOfSight();
    } else {
        m_window.show();
    }
}

void Presence::showWindow(const QString &token)
{
    // A toolkit for Wayland that knows such tokens looks for it there. On X it takes none from a
    // program that runs already, so that the window manager alone decides.
    constexpr char variable[] = "XDG_ACTIVATION_TOKEN";
    if (!token.isEmpty()) {
        qputenv(variable, token.toUtf8());
    }
    if (m_window.isMinimized()) {
        m_window.showNormal();
    }
    m_window.show();
    m_window.raise();
    m_window.activateWindow();
    qunsetenv(variable); // it is for this window once, and not for programs that are started later
}

void Presence::takeHost(bool isThere)
{
    m_tray.setShown(isThere);
    if (isThere) {
        m_grace.stop();
    } else if (!m_window.isVisible()) {
        beOutOfSight();
    }
}

void Presence::beOutOfSight()
{
    if (!m_tray.isShown()) {
        m_grace.start(graceMs);
    }
}

bool Presence::isSeen() const
{
    return m_window.isVisible() && QApplication::activeWindow() != nullptr;
}

void Presence::takeEvent(const Event &event)
{
    const std::optional<Notice> notice = m_decision.take(
        event, m_controller.model(), QDateTime::currentMSecsSinceEpoch(), isSeen());
    if (notice && m_preferences.isTold(notice->kind)) {
        m_notifier.tell(notice->title, notice->text);
    }
}

bool Presence::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != &m_window || event->type() != QEvent::Close) {
        return QObject::eventFilter(watched, event);
    }
    if (m_tray.isShown()) {
        sayOnce(QStringLiteral("hidden_in_tray"), Say::tr("The window is in the tray"),
            Say::tr("A click on the icon there opens it again; “Quit” ends the program."), [] {});
        return false; // it is hidden
    }
    quit();
    return false;
}

/// Closing the window ends the program where there is no tray.
void Presence::quit()
{
    if (m_controller.model().state != ConnectionUp) {
        QCoreApplication::quit();
        return;
    }
    QTimer::singleShot(farewellMs, qApp, &QCoreApplication::quit);
    sayOnce(QStringLiteral("connection_stays"), Say::tr("The connection stays"),
        Say::tr("Only the window has ended. To end the connection, choose “Disconnect” before."),
        [] { QCoreApplication::quit(); });
}

/// Says it unless it was said before, and @p then in either case.
void Presence::sayOnce(const QString &what, const QString &title, const QString &text,
    const std::function<void()> &then)
{
    if (m_preferences.wasSaid(what)) {
        then();
        return;
    }
    m_notifier.tell(title, text, [this, what, then](bool isTaken) {
        if (isTaken) {
            m_preferences.setSaid(what);
        }
        then();
    });
}

} // namespace desktop
