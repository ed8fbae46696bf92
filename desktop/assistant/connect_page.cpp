// SPDX-License-Identifier: MIT
#include "desktop/assistant/connect_page.h"

#include "client/link_facts.h"
#include "client/say.h"
#include "desktop/controller.h"
#include "desktop/errand.h"
#include "desktop/pieces/deed_runner.h"
#include "desktop/pieces/pieces.h"
#include "desktop/pieces/rights_panel.h"

#include <QDateTime>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace desktop {

namespace {

constexpr int betweenLooksMs = 1500;

QString glyphOf(Progress progress)
{
    switch (progress) {
    case Progress::Waiting:
        return QStringLiteral("·");
    case Progress::Running:
        return QStringLiteral("…");
    case Progress::Done:
        return QStringLiteral("✓");
    case Progress::Failed:
        break;
    }
    return QStringLiteral("✕");
}

} // namespace

ConnectPage::ConnectPage(Controller &controller, Draft &draft, QWidget *parent)
    : AssistantPage(controller, draft, parent)
    , m_text(newText())
    , m_connect(new QPushButton)
    , m_help(new QPushButton)
    , m_panel(new RightsPanel)
    , m_runner(new DeedRunner(controller, m_panel, this))
{
    auto *grid = new QGridLayout;
    grid->setColumnStretch(2, 1);
    grid->setHorizontalSpacing(fontMetrics().height());
    for (int row = 0; row < stageCount; ++row) {
        const Stage stage{new QLabel, new QLabel(stageTitle(ConnectStage(row))), new QLabel};
        grid->addWidget(stage.mark, row, 0);
        grid->addWidget(stage.title, row, 1);
        grid->addWidget(stage.progress, row, 2);
        m_stages.append(stage);
    }
    comfortable(m_connect);
    comfortable(m_help);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_connect);
    buttons->addWidget(m_help);
    buttons->addStretch(1);
    auto *column = new QVBoxLayout(this);
    column->addLayout(grid);
    column->addWidget(m_text);
    column->addLayout(buttons);
    column->addWidget(m_panel);
    column->addStretch(1);
    m_clock.setInterval(betweenLooksMs);
    connect(&m_clock, &QTimer::timeout, this, &ConnectPage::look);
    connect(m_connect, &QPushButton::clicked, this, [this] {
        m_panel->clear();
        this->controller().perform(m_progress.isRunning ? Action::Cancel : Action::Connect);
    });
    connect(m_help, &QPushButton::clicked, this,
        [this] { m_runner->run(m_deed, stepTitle(AssistantStep::Connect)); });
    connect(m_panel, &RightsPanel::busyChanged, this, &ConnectPage::refresh);
}

void ConnectPage::setOnScreen(bool isOnScreen)
{
    if (isOnScreen) {
        m_clock.start();
        look();
    } else {
        m_clock.stop();
    }
}

void ConnectPage::look()
{
    if (m_isLooking) {
        return;
    }
    m_isLooking = true;
    inBackground<std::optional<bool>>(this, atmCarrier, [this](std::optional<bool> carrier) {
        m_isLooking = false;
        m_carrier = carrier;
        refresh();
    });
}

void ConnectPage::refresh()
{
    const ConnectionModel &model = controller().model();
    m_progress = connectProgressOf(model, m_carrier, QDateTime::currentMSecsSinceEpoch());
    for (int row = 0; row < stageCount; ++row) {
        const Progress progress = m_progress.stages.at(size_t(row));
        m_stages[row].mark->setText(glyphOf(progress));
        m_stages[row].title->setAccessibleName(
            QStringLiteral("%1: %2").arg(stageTitle(ConnectStage(row)), progressText(progress)));
        m_stages[row].progress->setText(progressText(progress));
    }
    if (m_progress.isConnected) {
        m_text->setText(Say::tr("You are connected. “Close” leads to the window; the connection "
                                "stays. There, “Account and line” can have it made by itself when "
                                "the computer starts."));
    } else if (!m_progress.cause.isEmpty()) {
        m_text->setText(m_progress.cause);
    } else if (m_progress.isRunning) {
        m_text->setText(Say::tr("This takes up to a minute."));
    } else {
        m_text->setText(Say::tr("Everything that was entered is stored. “Connect” tries it."));
    }
    m_deed = m_progress.deed;
    m_help->setText(m_deed.button);
    m_help->setVisible(m_deed.kind != DeedKind::None);
    m_help->setEnabled(!m_panel->isBusy());
    m_connect->setVisible(!m_progress.isConnected);
    m_connect->setText(actionText(m_progress.isRunning ? Action::Cancel
            : m_progress.cause.isEmpty()               ? Action::Connect
                                                       : Action::TryNow));
}

} // namespace desktop
