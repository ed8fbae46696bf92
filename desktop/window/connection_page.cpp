// SPDX-License-Identifier: MIT
#include "desktop/window/connection_page.h"

#include "client/name_servers.h"
#include "client/pppd_words.h"
#include "client/routes.h"
#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/errand.h"
#include "desktop/pieces/pieces.h"
#include "desktop/plot/colours.h"
#include "desktop/plot/plot.h"
#include "desktop/plot/speed_plot.h"
#include "desktop/window/standing_picture.h"

#include <QDateTime>
#include <QEvent>

namespace desktop {

namespace {

constexpr int lookMs = 10000;

/// A label's text, changed only when it is another: who has selected some of it keeps it.
void setTextOf(QLabel *label, const QString &text)
{
    if (label->text() != text) {
        label->setText(text);
    }
}

} // namespace

ConnectionPage::ConnectionPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
    , m_picture(new QLabel)
    , m_title(headingLabel())
    , m_reason(valueLabel())
    , m_primary(comfortable(new QPushButton))
    , m_secondary(comfortable(new QPushButton))
    , m_factGrid(new QGridLayout)
    , m_plot(new Plot)
{
    QWidget *content = scrolledContent(this);
    auto *head = new QGridLayout;
    const int gap = fontMetrics().height();
    head->setHorizontalSpacing(gap);
    head->addWidget(m_picture, 0, 0, 2, 1, Qt::AlignTop);
    head->addWidget(m_title, 0, 1);
    head->addWidget(m_reason, 1, 1);
    head->addWidget(m_secondary, 0, 2, 2, 1, Qt::AlignTop);
    head->addWidget(m_primary, 0, 3, 2, 1, Qt::AlignTop);
    head->setColumnStretch(1, 1);
    m_primary->setDefault(true);
    m_factGrid->setHorizontalSpacing(gap);
    m_factGrid->setVerticalSpacing(gap / 2);
    auto *column = new QVBoxLayout(content);
    column->setSpacing(gap);
    column->addLayout(head);
    column->addLayout(m_factGrid);
    column->addWidget(m_plot, 1);
    QWidget::setTabOrder(m_primary, m_secondary);

    connect(m_primary, &QPushButton::clicked, this,
        [this] { this->controller().perform(m_primaryAction); });
    connect(m_secondary, &QPushButton::clicked, this,
        [this] { this->controller().perform(m_secondaryAction); });
    m_looks.setInterval(lookMs);
    connect(&m_looks, &QTimer::timeout, this, &ConnectionPage::look);
    connect(&controller, &Controller::happened, this, [this](const Event &event) {
        const auto *told = std::get_if<event::DaemonTold>(&event);
        if (m_looks.isActive() && told != nullptr
            && (told->signal == QLatin1String(DaemonSignal::connectionEstablished)
                || told->signal == QLatin1String(DaemonSignal::connectionState))) {
            look();
        }
    });
}

QString ConnectionPage::title() const
{
    return Say::tr("Connection");
}

void ConnectionPage::refresh()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const Headline headline = headlineOf(controller().model(), now);
    if (headline.standing != m_shownStanding) {
        m_shownStanding = headline.standing;
        m_picture->setPixmap(standingPicture(
            headline.standing, palette(), fontMetrics().height() * 3, devicePixelRatioF()));
        m_picture->setAccessibleName(standingWord(headline.standing));
    }
    setTextOf(m_title, headline.title);
    setTextOf(m_reason, headline.reason);
    m_primaryAction = headline.primary;
    m_secondaryAction = headline.secondary;
    show(m_primary, headline.primary);
    show(m_secondary, headline.secondary);
    showFacts(now);
    m_plot->setContent(speedPlot(controller().model().speeds, now));
}

void ConnectionPage::show(QPushButton *button, Action action)
{
    button->setVisible(action != Action::None);
    button->setText(actionText(action));
}

void ConnectionPage::showFacts(qint64 now)
{
    const QVector<ShownFact> facts = connectionFacts(controller().model(), m_surroundings, now);
    while (m_factLabels.size() < facts.size()) {
        // What is shown without a parent is a window of its own for a moment.
        auto *label = new QLabel(m_factGrid->parentWidget());
        label->setTextFormat(Qt::PlainText);
        QLabel *value = valueLabel();
        value->setParent(m_factGrid->parentWidget());
        label->setBuddy(value);
        m_factLabels.append(label);
        m_factValues.append(value);
        m_factColumns = 0;
    }
    int shown = 0;
    for (int place = 0; place < m_factLabels.size(); ++place) {
        const bool isShown = place < facts.size();
        shown += m_factLabels.at(place)->isVisibleTo(this) ? 1 : 0;
        m_factLabels.at(place)->setVisible(isShown);
        m_factValues.at(place)->setVisible(isShown);
        if (isShown) {
            setTextOf(m_factLabels.at(place), facts.at(place).label);
            setTextOf(m_factValues.at(place), facts.at(place).value);
        }
    }
    if (shown != facts.size()) {
        m_factColumns = 0;
    }
    arrangeFacts();
}

/// Two columns where they have room, the first one first.
void ConnectionPage::arrangeFacts()
{
    constexpr int roomForTwo = 90; // letters
    const int columns = width() > fontMetrics().averageCharWidth() * roomForTwo ? 2 : 1;
    if (columns == m_factColumns) {
        return;
    }
    m_factColumns = columns;
    QPalette muted = palette();
    muted.setColor(QPalette::WindowText, plotColours(palette()).mutedText);
    int count = 0;
    for (const QLabel *label : qAsConst(m_factLabels)) {
        count += label->isVisibleTo(this) ? 1 : 0;
    }
    const int rows = (count + columns - 1) / columns;
    for (int place = 0; place < m_factLabels.size(); ++place) {
        const int column = rows > 0 && place < count ? place / rows * 2 : 0;
        const int row = rows > 0 && place < count ? place % rows : place;
        m_factLabels.at(place)->setPalette(muted);
        m_factGrid->addWidget(
            m_factLabels.at(place), row, column, Qt::AlignTrailing | Qt::AlignTop);
        m_factGrid->addWidget(m_factValues.at(place), row, column + 1, Qt::AlignTop);
    }
    m_factGrid->setColumnStretch(1, 1);
    m_factGrid->setColumnStretch(3, columns == 2 ? 1 : 0);
}

void ConnectionPage::setOnScreen(bool isOnScreen)
{
    if (isOnScreen) {
        m_looks.start();
        askAccount();
        look();
    } else {
        m_looks.stop();
    }
}

void ConnectionPage::look()
{
    lookAtSystem();
    askKeeper();
}

void ConnectionPage::lookAtSystem()
{
    if (m_isLooking) {
        return; // what takes so long is not asked twice
    }
    m_isLooking = true;
    const bool isUp = controller().model().state == ConnectionUp;
    const QString interface = controller().model().interface;
    inBackground<SystemView>(
        this,
        [isUp, interface] {
            SystemView view;
            view.route = defaultRouteInterface();
            view.resolver = resolver();
            view.lineLog = lineStatus();
            view.carrier = atmCarrier();
            if (isUp) {
                view.isNameAnswered = doesNameServerAnswer(view.resolver.servers);
                view.pppdSeconds = connectionSeconds(interface);
            }
            return view;
        },
        [this](const SystemView &view) {
            m_isLooking = false;
            takeSystem(view);
        });
}

void ConnectionPage::takeSystem(const SystemView &view)
{
    m_surroundings.routeInterface = view.route;
    m_surroundings.nameServers = view.resolver.servers;
    m_surroundings.isNameAnswered = view.isNameAnswered;
    m_line.log = view.lineLog;
    m_line.carrier = view.carrier;
    if (view.pppdSeconds) {
        controller().take(event::LinkSeen{*view.pppdSeconds});
    }
    tellLine();
}

void ConnectionPage::tellLine()
{
    event::LineSeen seen;
    seen.line = lineStatusOf(m_line);
    if (m_line.sample) {
        seen.downMargin = m_line.sample->downMargin;
        seen.upMargin = m_line.sample->upMargin;
    }
    controller().take(seen);
}

/// What it does not tell, or not this person, is left out of the facts.
void ConnectionPage::askKeeper()
{
    if (!controller().model().keeper) {
        m_surroundings.today.reset();
        m_surroundings.month.reset();
        m_surroundings.lastSession.reset();
        m_line.sample.reset();
        return;
    }
    AsyncBus &bus = controller().bus();
    const auto rowsOf = [](const BusAnswer &answer) {
        return busRows(answer.value()).value_or(QList<QVariantMap>());
    };
    bus.ask(keeperCall(KeeperMethod::GetPlan), this, [this](const BusAnswer &answer) {
        const std::optional<QVariantMap> map = busMap(answer.value());
        m_surroundings.plan = (map ? keeperPlan(*map) : std::nullopt).value_or(KeeperPlan());
    });
    bus.ask(keeperCall(KeeperMethod::GetDays, {1U}), this, [this, rowsOf](const BusAnswer &answer) {
        const QList<KeeperTraffic> days = keeperDays(rowsOf(answer));
        m_surroundings.today.reset();
        if (!days.isEmpty() && days.first().begin == QDate::currentDate()) {
            m_surroundings.today = days.first();
        }
    });
    bus.ask(
        keeperCall(KeeperMethod::GetMonths, {1U}), this, [this, rowsOf](const BusAnswer &answer) {
            const QList<KeeperTraffic> months = keeperMonths(rowsOf(answer));
            m_surroundings.month
                = months.isEmpty() ? std::nullopt : std::optional<KeeperTraffic>(months.first());
        });
    bus.ask(
        keeperCall(KeeperMethod::GetSessions, {2U}), this, [this, rowsOf](const BusAnswer &answer) {
            const QList<KeeperSession> sessions = keeperSessions(rowsOf(answer));
            m_surroundings.lastSession = sessions.isEmpty()
                ? std::nullopt
                : std::optional<KeeperSession>(sessions.first());
            controller().take(event::SessionsTold{sessions});
        });
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    bus.ask(keeperCall(KeeperMethod::GetLineQuality, {now - freshLineSeconds, now}), this,
        [this, rowsOf](const BusAnswer &answer) {
            const QList<LineSample> samples = lineSamples(rowsOf(answer));
            m_line.sample
                = samples.isEmpty() ? std::nullopt : std::optional<LineSample>(samples.last());
            tellLine();
        });
}

void ConnectionPage::askAccount()
{
    controller().bus().ask(
        daemonCall(DaemonMethod::getLoginAndPassword), this, [this](const BusAnswer &answer) {
            m_surroundings.login = decodedWord(answer.value().toStringList().value(0));
        });
}

void ConnectionPage::changeEvent(QEvent *event)
{
    Page::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        m_shownStanding.reset();
        m_factColumns = 0;
        refresh();
    }
}

void ConnectionPage::resizeEvent(QResizeEvent *event)
{
    Page::resizeEvent(event);
    arrangeFacts();
}

} // namespace desktop
