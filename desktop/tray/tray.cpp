// SPDX-License-Identifier: MIT
#include "desktop/tray/tray.h"

#include "client/say.h"
#include "desktop/controller.h"
#include "desktop/icons/icons.h"
#include "desktop/model/tray_facts.h"

#include <QDateTime>

namespace desktop {

Tray::Tray(Controller &controller, QObject *parent)
    : QObject(parent)
    , m_controller(controller)
{
    QAction *open = m_menu.addAction(Say::tr("Open the window"));
    m_primary = m_menu.addAction(QString());
    m_menu.addSeparator();
    m_quit = m_menu.addAction(QString());
    connect(open, &QAction::triggered, this, &Tray::windowWanted);
    connect(
        m_primary, &QAction::triggered, this, [this] { m_controller.perform(m_primaryAction); });
    connect(m_quit, &QAction::triggered, this, &Tray::quitWanted);
    connect(&controller, &Controller::changed, this, &Tray::refresh);
}

Tray::~Tray() = default;

void Tray::setShown(bool isShown)
{
    if (!isShown) {
        m_icon.reset();
        return;
    }
    m_icon = std::make_unique<QSystemTrayIcon>();
    m_icon->setContextMenu(&m_menu);
    connect(m_icon.get(), &QSystemTrayIcon::activated, this,
        [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) {
                emit windowWanted();
            }
        });
    m_standing.reset();
    refresh();
    m_icon->show();
}

/// Says only what has changed: each word goes over the bus.
void Tray::refresh()
{
    if (!m_icon) {
        return;
    }
    const ConnectionModel &model = m_controller.model();
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const Headline headline = headlineOf(model, now);
    if (m_standing != headline.standing) {
        m_standing = headline.standing;
        m_icon->setIcon(standingIcon(headline.standing));
    }
    const QString toolTip = trayToolTip(model, now);
    if (m_icon->toolTip() != toolTip) {
        m_icon->setToolTip(toolTip);
    }
    m_primaryAction = headline.primary;
    m_primary->setText(actionText(headline.primary));
    m_primary->setVisible(headline.primary != Action::None);
    m_quit->setText(quitText(model));
}

} // namespace desktop
