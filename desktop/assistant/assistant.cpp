// SPDX-License-Identifier: MIT
#include "desktop/assistant/assistant.h"

#include "client/say.h"
#include "desktop/assistant/account_page.h"
#include "desktop/assistant/connect_page.h"
#include "desktop/assistant/modem_page.h"
#include "desktop/assistant/permission_page.h"
#include "desktop/assistant/provider_page.h"
#include "desktop/controller.h"
#include "desktop/pieces/pieces.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QScreen>
#include <QScrollArea>

namespace desktop {

namespace {

AssistantPage *newPage(AssistantStep step, Controller &controller, Draft &draft)
{
    switch (step) {
    case AssistantStep::Permission:
        return new PermissionPage(controller, draft);
    case AssistantStep::Modem:
        return new ModemPage(controller, draft);
    case AssistantStep::Provider:
        return new ProviderPage(controller, draft);
    case AssistantStep::Account:
        return new AccountPage(controller, draft);
    case AssistantStep::Connect:
        break;
    }
    return new ConnectPage(controller, draft);
}

} // namespace

Assistant::Assistant(Controller &controller, QWidget *parent)
    : QDialog(parent)
    , m_title(new QLabel)
    , m_place(new QLabel)
    , m_pages(new QStackedWidget)
    , m_back(new QPushButton(Say::tr("Back")))
    , m_skip(new QPushButton(Say::tr("Skip")))
    , m_next(new QPushButton(Say::tr("Next")))
{
    setWindowTitle(Say::tr("Set up the ADSL modem"));
    QFont large = m_title->font();
    large.setPointSizeF(large.pointSizeF() + 7);
    large.setBold(true);
    m_title->setFont(large);
    for (const AssistantStep step : allSteps) {
        AssistantPage *made = newPage(step, controller, m_draft);
        auto *area = new QScrollArea; // large letters on a small screen
        area->setWidgetResizable(true);
        area->setFrameShape(QFrame::NoFrame);
        area->setFocusPolicy(Qt::NoFocus);
        area->setWidget(made);
        m_pages->addWidget(area);
        connect(made, &AssistantPage::storingChanged, this, &Assistant::showButtons);
        connect(made, &AssistantPage::goOn, this, [this, step] {
            const std::optional<AssistantStep> after = stepAfter(step);
            if (after && m_step == step && isVisible()) {
                turnTo(*after);
            }
        });
    }
    auto *head = new QHBoxLayout;
    head->addWidget(m_title, 1);
    head->addWidget(m_place, 0, Qt::AlignTop);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_back);
    buttons->addStretch(1);
    buttons->addWidget(m_skip);
    buttons->addWidget(m_next);
    for (QPushButton *button : {m_back, m_skip, m_next}) {
        comfortable(button);
        button->setAutoDefault(false);
    }
    m_next->setDefault(true);
    auto *column = new QVBoxLayout(this);
    column->addLayout(head);
    column->addWidget(m_pages, 1);
    column->addLayout(buttons);
    connect(m_back, &QPushButton::clicked, this, [this] {
        if (const std::optional<AssistantStep> before = stepBefore(m_step)) {
            turnTo(*before);
        }
    });
    connect(m_skip, &QPushButton::clicked, this, [this] {
        if (const std::optional<AssistantStep> after = stepAfter(m_step)) {
            turnTo(*after);
        }
    });
    connect(m_next, &QPushButton::clicked, this, [this] {
        if (stepAfter(m_step)) {
            page()->proceed();
        } else {
            close();
        }
    });
    connect(&controller, &Controller::changed, this, [this] {
        if (m_shown != nullptr) {
            m_shown->refresh();
        }
    });
    // Room for the longest page; with large letters not beyond the screen.
    const QSize screen = QGuiApplication::primaryScreen()->availableSize() * 0.9;
    resize(QSize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 32)
               .boundedTo(screen));
}

AssistantPage *Assistant::page() const
{
    const auto *area = qobject_cast<QScrollArea *>(m_pages->currentWidget());
    return qobject_cast<AssistantPage *>(area->widget());
}

void Assistant::showStep(AssistantStep step)
{
    turnTo(step);
    show();
    raise();
    activateWindow();
}

void Assistant::turnTo(AssistantStep step)
{
    m_step = step;
    m_pages->setCurrentIndex(int(step));
    m_title->setText(stepTitle(step));
    m_place->setText(Say::tr("%1 of %2").arg(int(step) + 1).arg(int(allSteps.size())));
    showButtons();
    if (!isVisible()) {
        return;
    }
    if (m_shown != nullptr) {
        m_shown->setOnScreen(false);
    }
    m_shown = page();
    m_shown->setOnScreen(true);
    m_shown->refresh();
}

void Assistant::showButtons()
{
    const bool isLast = !stepAfter(m_step);
    m_back->setEnabled(stepBefore(m_step).has_value());
    m_skip->setVisible(!isLast);
    m_next->setText(isLast ? Say::tr("Close") : Say::tr("Next"));
    m_next->setEnabled(!page()->isStoring());
}

void Assistant::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    turnTo(m_step);
}

void Assistant::hideEvent(QHideEvent *event)
{
    QDialog::hideEvent(event);
    if (m_shown != nullptr) {
        m_shown->setOnScreen(false);
        m_shown = nullptr;
    }
}

} // namespace desktop
