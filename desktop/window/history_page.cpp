// SPDX-License-Identifier: MIT
#include "desktop/window/history_page.h"

#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/model/connection_facts.h"
#include "desktop/model/headline.h"
#include "desktop/pieces/pieces.h"
#include "desktop/plot/history_plots.h"
#include "desktop/plot/plot.h"

#include <QDateTime>
#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>
#include <cmath>

namespace desktop {

namespace {

constexpr int lookMs = 60000;
// The keeper knows why a session ended a moment after it has told that it did.
constexpr int lateLookMs = 3000;
constexpr unsigned mostRows = 500;
constexpr unsigned shownDays = 62;
constexpr unsigned shownMonths = 12;
constexpr qint64 daySeconds = 86400;
constexpr qint64 monthSeconds = 30 * daySeconds;
constexpr qint64 patienceMs = 2000;
constexpr double gigabyte = 1e9;
constexpr double mostGigabytes = 1e6;

enum Choice
{
    DayTraffic,
    MonthTraffic,
    RateToday,
    RateMonth,
    MarginToday,
    MarginMonth,
};

bool isLine(int choice)
{
    return choice >= RateToday;
}

QList<QVariantMap> rowsOf(const BusAnswer &answer)
{
    return busRows(answer.value()).value_or(QList<QVariantMap>());
}

QTableWidgetItem *cell(const QString &text)
{
    auto *item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    item->setTextAlignment(Qt::AlignTop | Qt::AlignLeading);
    return item;
}

QTableWidget *sessionTable()
{
    auto *table = new QTableWidget(0, 4);
    table->setHorizontalHeaderLabels(
        {Say::tr("Began"), Say::tr("Lasted"), Say::tr("Ended because"), Say::tr("Traffic")});
    table->setAccessibleName(Say::tr("Sessions and failed attempts"));
    table->verticalHeader()->hide();
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    table->setTabKeyNavigation(false);
    table->setWordWrap(true);
    QHeaderView *header = table->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(2, QHeaderView::Stretch);
    QObject::connect(
        header, &QHeaderView::sectionResized, table, &QTableWidget::resizeRowsToContents);
    table->setMinimumHeight(table->fontMetrics().height() * 10);
    return table;
}

} // namespace

HistoryPage::HistoryPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
    , m_heading(headingLabel())
    , m_choice(comfortable(new QComboBox))
    , m_message(textLabel())
    , m_help(comfortable(new QPushButton))
    , m_plot(new Plot)
    , m_table(sessionTable())
    , m_noSession(
          textLabel(Say::tr("No session yet. The first one appears here when you connect.")))
    , m_limit(comfortable(new QDoubleSpinBox))
    , m_billingDay(comfortable(new QSpinBox))
    , m_store(comfortable(new QPushButton(Say::tr("Store"))))
    , m_planOutcome(new ErrorLabel(m_limit))
    , m_planRow(planRow())
{
    // In the order of Choice.
    m_choice->addItems({Say::tr("Traffic per day"), Say::tr("Traffic per month"),
        Say::tr("Line rate, last day"), Say::tr("Line rate, last 30 days"),
        Say::tr("Noise margin, last day"), Say::tr("Noise margin, last 30 days")});
    const int gap = fontMetrics().height();
    auto *head = new QHBoxLayout;
    head->addWidget(m_heading, 1);
    auto *choiceLabel = comfortable(new QLabel(Say::tr("S&how")));
    choiceLabel->setBuddy(m_choice);
    head->addWidget(choiceLabel, 0, Qt::AlignTop);
    head->addWidget(m_choice, 0, Qt::AlignTop);
    auto *column = new QVBoxLayout(scrolledContent(this));
    column->setSpacing(gap);
    column->addLayout(head);
    column->addWidget(m_message);
    column->addWidget(m_help, 0, Qt::AlignLeading);
    column->addWidget(m_plot, 1);
    column->addWidget(m_noSession);
    column->addWidget(m_table, 1);
    column->addWidget(m_planRow);
    column->addWidget(m_planOutcome);
    column->addStretch();

    connect(m_choice, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
        if (isLine(m_choice->currentIndex())) {
            lookAgain();
        }
        showPlot();
    });
    connect(m_help, &QPushButton::clicked, this,
        [this] { this->controller().perform(wayOutOf(m_failure)); });
    m_looks.setInterval(lookMs);
    m_clock.setInterval(1000);
    connect(&m_clock, &QTimer::timeout, this, &HistoryPage::showMessage);
    m_lateLook.setInterval(lateLookMs);
    m_lateLook.setSingleShot(true);
    connect(&m_lateLook, &QTimer::timeout, this, &HistoryPage::lookAgain);
    connect(&m_looks, &QTimer::timeout, this, &HistoryPage::lookAgain);
    connect(&controller, &Controller::happened, this, [this](const Event &event) {
        if (m_looks.isActive() && std::holds_alternative<event::KeeperTold>(event)) {
            lookAgain();
            m_lateLook.start();
        }
    });
}

QWidget *HistoryPage::planRow()
{
    m_limit->setRange(0, mostGigabytes);
    m_limit->setDecimals(1);
    m_limit->setSuffix(Say::tr(" GB"));
    m_limit->setSpecialValueText(Say::tr("none"));
    m_billingDay->setRange(1, 31);
    auto *row = new QWidget;
    auto *form = new QFormLayout(row);
    form->setContentsMargins(0, 0, 0, 0);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->addRow(Say::tr("&Limit in a billing month"), m_limit);
    form->addRow(Say::tr("Billing month begins on &day"), m_billingDay);
    form->addRow(QString(), m_store);
    alignNames(form);
    const auto edit = [this] {
        m_isPlanEdited = true;
        m_planOutcome->inform(QString());
    };
    connect(m_limit, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, edit);
    connect(m_billingDay, QOverload<int>::of(&QSpinBox::valueChanged), this, edit);
    connect(m_store, &QPushButton::clicked, this, &HistoryPage::storePlan);
    return row;
}

QString HistoryPage::title() const
{
    return Say::tr("History");
}

void HistoryPage::setOnScreen(bool isOnScreen)
{
    if (isOnScreen) {
        m_looks.start();
        lookAgain();
        m_lateLook.start();
    } else {
        m_looks.stop();
        m_lateLook.stop();
    }
}

void HistoryPage::lookAgain()
{
    if (m_owed > 0 || !controller().model().keeper) {
        return;
    }
    m_failure = {};
    m_askedAt = QDateTime::currentMSecsSinceEpoch();
    m_clock.start();
    ask(keeperCall(KeeperMethod::GetPlan), [this](const BusAnswer &answer) {
        const std::optional<QVariantMap> map = busMap(answer.value());
        m_answers.plan = (map ? keeperPlan(*map) : std::nullopt).value_or(KeeperPlan());
    });
    ask(keeperCall(KeeperMethod::GetSessions, {mostRows}),
        [this](const BusAnswer &answer) { m_answers.sessions = keeperSessions(rowsOf(answer)); });
    ask(keeperCall(KeeperMethod::GetAttempts, {mostRows}),
        [this](const BusAnswer &answer) { m_answers.attempts = keeperAttempts(rowsOf(answer)); });
    ask(keeperCall(KeeperMethod::GetDays, {shownDays}),
        [this](const BusAnswer &answer) { m_answers.days = keeperDays(rowsOf(answer)); });
    ask(keeperCall(KeeperMethod::GetMonths, {shownMonths}),
        [this](const BusAnswer &answer) { m_answers.months = keeperMonths(rowsOf(answer)); });
    if (isLine(m_choice->currentIndex())) {
        askForLine();
    }
}

void HistoryPage::askForLine()
{
    const int choice = m_choice->currentIndex();
    const bool isMonth = choice == RateMonth || choice == MarginMonth;
    const qint64 until = QDateTime::currentSecsSinceEpoch();
    const qint64 from = until - (isMonth ? monthSeconds : daySeconds);
    ask(keeperCall(KeeperMethod::GetLineQuality, {from, until}),
        [this, from, until](const BusAnswer &answer) {
            m_answers.line = lineSamples(rowsOf(answer));
            m_answers.lineFrom = from;
            m_answers.lineUntil = until;
        });
}

void HistoryPage::ask(const BusCall &call, const Take &take)
{
    ++m_owed;
    controller().bus().ask(call, this, [this, take](const BusAnswer &answer) {
        --m_owed;
        if (answer.ok()) {
            take(answer);
        } else {
            m_failure = answer.failure;
        }
        if (m_owed == 0) {
            m_clock.stop();
            m_isAnswered = m_isAnswered || !m_failure;
            refresh();
        }
    });
}

void HistoryPage::refresh()
{
    const bool isKeeperThere = controller().model().keeper.has_value();
    if (isKeeperThere && !m_wasKeeperThere && m_looks.isActive()) {
        lookAgain();
    }
    m_wasKeeperThere = isKeeperThere;
    showMessage();
    if (m_owed > 0 && m_isAnswered) {
        return; // the newest answers are shown together
    }
    const bool isShown = m_isAnswered;
    for (QWidget *widget : std::initializer_list<QWidget *>{m_choice, m_plot, m_planRow}) {
        widget->setVisible(isShown);
    }
    m_planRow->setEnabled(isKeeperThere && !m_failure);
    showPlot();
    showTable();
    showPlan();
}

void HistoryPage::showMessage()
{
    const std::optional<KeeperState> &keeper = controller().model().keeper;
    const qint64 waited = QDateTime::currentMSecsSinceEpoch() - m_askedAt;
    QString text;
    bool isHelpKnown = true;
    if (!keeper) {
        text = Say::tr(
            "The keeper is not running. It remembers sessions and counts traffic while it "
            "runs; what is shown here may be old.");
        if (!m_isAnswered) {
            text = Say::tr(
                "The keeper is not running. It remembers sessions and counts traffic while "
                "it runs.");
        }
    } else if (m_owed > 0 && waited > patienceMs) {
        text = Say::tr("The keeper has been asked and does not answer yet: %1 so far.")
                   .arg(durationText(waited / 1000));
    } else if (m_failure.kind == FailureKind::NotPermitted) {
        text = Say::tr("Only members of the group “norvix” may see the history.");
    } else if (m_failure) {
        text = requestFailureText(m_failure);
    } else {
        text = keeperHistoryText(keeper->history);
        isHelpKnown = false;
    }
    m_message->setText(text);
    m_message->setVisible(!text.isEmpty());
    m_help->setText(actionText(wayOutOf(m_failure)));
    m_help->setVisible(isHelpKnown);
}

void HistoryPage::showPlot()
{
    const QDate today = QDate::currentDate();
    const KeeperTraffic month = m_answers.months.isEmpty()
        ? KeeperTraffic{today.addDays(1 - today.day()),
            today.addDays(today.daysInMonth() - today.day()), 0, 0}
        : m_answers.months.first();
    QString heading = Say::tr("History");
    if (m_isAnswered) {
        heading = Say::tr("This billing month: %1")
                      .arg(trafficText(month.total(), m_answers.plan.limit));
    }
    m_heading->setText(heading);
    const int choice = m_choice->currentIndex();
    switch (Choice(choice)) {
    case DayTraffic:
        m_plot->setContent(dayPlot(m_answers.days, month.begin, month.end));
        break;
    case MonthTraffic:
        m_plot->setContent(monthPlot(m_answers.months));
        break;
    case RateToday:
    case RateMonth:
        m_plot->setContent(
            linePlot(m_answers.line, LineValue::Rate, m_answers.lineFrom, m_answers.lineUntil));
        break;
    case MarginToday:
    case MarginMonth:
        m_plot->setContent(
            linePlot(m_answers.line, LineValue::Margin, m_answers.lineFrom, m_answers.lineUntil));
        break;
    }
}

void HistoryPage::showTable()
{
    const QVector<HistoryRow> rows
        = historyRows(m_answers.sessions, m_answers.attempts, QDateTime::currentMSecsSinceEpoch());
    m_noSession->setVisible(m_isAnswered && rows.isEmpty());
    m_table->setVisible(m_isAnswered && !rows.isEmpty());
    if (rows == m_shownRows) {
        return; // who reads keeps his place
    }
    m_shownRows = rows;
    const int current = m_table->currentRow();
    m_table->setRowCount(rows.size());
    for (int row = 0; row < rows.size(); ++row) {
        const HistoryRow &shown = rows.at(row);
        int column = 0;
        for (const QString &text : {shown.began, shown.lasted, shown.reason, shown.traffic}) {
            m_table->setItem(row, column++, cell(text));
        }
    }
    m_table->resizeRowsToContents();
    if (current >= 0 && current < rows.size()) {
        m_table->setCurrentCell(current, 0);
    }
}

void HistoryPage::showPlan()
{
    if (m_isPlanEdited || !m_isAnswered) {
        return;
    }
    const QSignalBlocker limitBlocker(m_limit);
    const QSignalBlocker dayBlocker(m_billingDay);
    m_limit->setValue(double(m_answers.plan.limit) / gigabyte);
    m_billingDay->setValue(m_answers.plan.billingDay);
}

void HistoryPage::storePlan()
{
    m_store->setEnabled(false);
    const auto bytes = quint64(std::llround(m_limit->value() * gigabyte));
    const auto day = unsigned(m_billingDay->value());
    const auto finish = [this](const Failure &failure) {
        m_store->setEnabled(true);
        if (failure) {
            m_planOutcome->complain(failure.kind == FailureKind::KeeperNoAnswer
                    ? Say::tr("The keeper does not answer; nothing was stored.")
                    : requestFailureText(failure));
            return;
        }
        m_isPlanEdited = false;
        m_planOutcome->inform(Say::tr("Stored."));
        lookAgain();
    };
    controller().bus().ask(keeperCall(KeeperMethod::SetLimit, {bytes}), this,
        [this, day, finish](const BusAnswer &limit) {
            if (!limit.ok()) {
                finish(limit.failure);
                return;
            }
            controller().bus().ask(keeperCall(KeeperMethod::SetBillingDay, {day}), this,
                [finish](const BusAnswer &billing) { finish(billing.failure); });
        });
}

void HistoryPage::changeEvent(QEvent *event)
{
    Page::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        m_table->resizeRowsToContents();
    }
}

} // namespace desktop
