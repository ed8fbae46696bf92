// SPDX-License-Identifier: MIT
#include "desktop/window/main_window.h"

#include "client/say.h"
#include "desktop/assistant/assistant.h"
#include "desktop/controller.h"
#include "desktop/pieces/pieces.h"
#include "desktop/window/account_line_page.h"
#include "desktop/window/checkup_page.h"
#include "desktop/window/connection_page.h"
#include "desktop/window/driver_page.h"
#include "desktop/window/history_page.h"
#include "desktop/window/log_page.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QStyledItemDelegate>

namespace desktop {

namespace {

/// Rows that are as easily hit as buttons, and have room beside their text.
class ComfortableRows : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const int height = comfortableHeight(option.fontMetrics);
        return {QStyledItemDelegate::sizeHint(option, index).width() + height, height};
    }
};

} // namespace

MainWindow::MainWindow(Controller &controller, QWidget *parent)
    : QMainWindow(parent)
    , m_controller(controller)
    , m_list(new QListWidget)
    , m_pages(new QStackedWidget)
{
    setWindowTitle(Say::tr("ADSL modem"));
    m_list->setAccessibleName(Say::tr("Pages"));
    m_list->setItemDelegate(new ComfortableRows(m_list));
    auto *middle = new QWidget;
    auto *row = new QHBoxLayout(middle);
    auto *guide = new QPushButton(Say::tr("Assistant…"));
    comfortable(guide);
    auto *column = new QVBoxLayout;
    column->addWidget(m_list, 1);
    column->addWidget(guide);
    row->addLayout(column);
    row->addWidget(m_pages, 1);
    setCentralWidget(middle);
    for (Page *page :
        std::initializer_list<Page *>{new ConnectionPage(controller), new HistoryPage(controller),
            new CheckupPage(controller), new AccountLinePage(controller),
            new DriverPage(controller), new LogPage(controller)}) {
        add(page);
    }
    // By what is selected: a screen reader does not move the keyboard's place with it.
    connect(m_list, &QListWidget::itemSelectionChanged, this, [this] {
        const QList<QListWidgetItem *> selected = m_list->selectedItems();
        if (!selected.isEmpty()) {
            m_list->setCurrentItem(selected.constFirst(), QItemSelectionModel::NoUpdate);
            turnTo(m_list->row(selected.constFirst()));
        }
    });
    connect(&controller, &Controller::changed, this, [this] {
        if (m_shown != nullptr) {
            m_shown->refresh();
        }
    });
    connect(&controller, &Controller::pageWanted, this, &MainWindow::open);
    connect(guide, &QPushButton::clicked, this, [this] { open(Action::SetUp); });
    connect(&controller, &Controller::assistantWanted, this,
        [this](AssistantStep step) { assistant()->showStep(step); });
    m_list->setCurrentRow(0);
    // With large letters not beyond the screen; there is room for a frame as well.
    const QSize screen = QGuiApplication::primaryScreen()->availableSize() * 0.9;
    resize(QSize(fontMetrics().averageCharWidth() * 150, fontMetrics().height() * 36)
               .boundedTo(screen));
}

void MainWindow::add(Page *page)
{
    m_pages->addWidget(page);
    m_list->addItem(page->title());
    fitList();
}

/// As wide as its longest row.
void MainWindow::fitList()
{
    m_list->setFixedWidth(m_list->sizeHintForColumn(0) + 2 * m_list->frameWidth());
}

Page *MainWindow::currentPage() const
{
    return qobject_cast<Page *>(m_pages->currentWidget());
}

void MainWindow::turnTo(int row)
{
    m_pages->setCurrentIndex(row);
    if (!isVisible()) {
        return;
    }
    if (m_shown != nullptr) {
        m_shown->setOnScreen(false);
    }
    m_shown = currentPage();
    m_shown->setOnScreen(true);
    m_shown->refresh();
}

template <typename Wanted> void MainWindow::openPage()
{
    for (int row = 0; row < m_pages->count(); ++row) {
        if (qobject_cast<Wanted *>(m_pages->widget(row)) != nullptr) {
            m_list->setCurrentRow(row);
        }
    }
    raise();
    activateWindow();
}

Assistant *MainWindow::assistant()
{
    if (m_assistant == nullptr) {
        m_assistant = new Assistant(m_controller, this);
    }
    return m_assistant;
}

void MainWindow::goOn(const HandOver &handOver)
{
    if (handOver.step) {
        assistant()->takeDraft(handOver.draft);
        assistant()->showStep(*handOver.step);
    } else {
        open(Action::CheckUp);
    }
}

void MainWindow::open(Action action)
{
    switch (action) {
    case Action::CheckAccount:
    case Action::CheckLine:
        openPage<AccountLinePage>();
        break;
    case Action::CheckUp:
    case Action::RestartDaemon:
        openPage<CheckupPage>();
        break;
    case Action::ShowBuild:
        openPage<DriverPage>();
        break;
    case Action::SetUp:
        assistant()->showStep(AssistantStep::Permission);
        break;
    case Action::None:
    case Action::Connect:
    case Action::Disconnect:
    case Action::Cancel:
    case Action::TryNow:
        break;
    }
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        fitList();
    }
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    m_controller.setWatched(true);
    turnTo(m_pages->currentIndex());
}

void MainWindow::hideEvent(QHideEvent *event)
{
    QMainWindow::hideEvent(event);
    m_controller.setWatched(false);
    if (m_shown != nullptr) {
        m_shown->setOnScreen(false);
        m_shown = nullptr;
    }
}

} // namespace desktop
