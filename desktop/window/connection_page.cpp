// SPDX-License-Identifier: MIT
#include "desktop/window/connection_page.h"

#include "client/say.h"
#include "desktop/controller.h"

#include <QDateTime>
#include <QGridLayout>

namespace desktop {

ConnectionPage::ConnectionPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
    , m_title(new QLabel)
    , m_reason(new QLabel)
    , m_primary(new QPushButton)
    , m_secondary(new QPushButton)
{
    QFont large = m_title->font();
    large.setPointSizeF(large.pointSizeF() + 7);
    large.setBold(true);
    m_title->setFont(large);
    m_reason->setWordWrap(true);
    auto *grid = new QGridLayout(this);
    grid->addWidget(m_title, 0, 0);
    grid->addWidget(m_reason, 1, 0);
    grid->addWidget(m_secondary, 0, 1, 2, 1);
    grid->addWidget(m_primary, 0, 2, 2, 1);
    grid->setColumnStretch(0, 1);
    grid->setRowStretch(2, 1);
    connect(m_primary, &QPushButton::clicked, this,
        [this] { this->controller().perform(m_primaryAction); });
    connect(m_secondary, &QPushButton::clicked, this,
        [this] { this->controller().perform(m_secondaryAction); });
}

QString ConnectionPage::title() const
{
    return Say::tr("Connection");
}

void ConnectionPage::refresh()
{
    const Headline headline = headlineOf(controller().model(), QDateTime::currentMSecsSinceEpoch());
    m_title->setText(headline.title);
    m_reason->setText(headline.reason);
    m_primaryAction = headline.primary;
    m_secondaryAction = headline.secondary;
    show(m_primary, headline.primary);
    show(m_secondary, headline.secondary);
}

void ConnectionPage::show(QPushButton *button, Action action)
{
    button->setVisible(action != Action::None);
    button->setText(actionText(action));
}

} // namespace desktop
