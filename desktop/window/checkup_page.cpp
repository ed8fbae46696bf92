// SPDX-License-Identifier: MIT
#include "desktop/window/checkup_page.h"

#include "client/daemon_bus.h"
#include "client/say.h"
#include "desktop/assistant/new_beginning.h"
#include "desktop/controller.h"
#include "desktop/errand.h"
#include "desktop/pieces/deed_runner.h"
#include "desktop/pieces/pieces.h"
#include "desktop/pieces/rights_panel.h"
#include "desktop/rights/findings_text.h"

#include <QClipboard>
#include <QDateTime>
#include <QGuiApplication>

namespace desktop {

namespace {

QString glyphOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Good:
        return QStringLiteral("✓");
    case Verdict::Doubtful:
        return QStringLiteral("!");
    case Verdict::Fault:
        return QStringLiteral("✕");
    case Verdict::NotChecked:
        break;
    }
    return QStringLiteral("–");
}

QLabel *wrappedLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setAlignment(Qt::AlignTop | Qt::AlignLeading);
    return label;
}

} // namespace

CheckupPage::CheckupPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
    , m_title(new QLabel)
    , m_running(new QLabel)
    , m_area(new QScrollArea)
    , m_panel(new RightsPanel)
    , m_runner(new DeedRunner(controller, m_panel, this))
    , m_again(new QPushButton(Say::tr("Check again")))
    , m_copy(new QPushButton(Say::tr("Copy report")))
{
    QFont large = m_title->font();
    large.setPointSizeF(large.pointSizeF() + 7);
    large.setBold(true);
    m_title->setFont(large);
    m_title->setWordWrap(true);
    m_running->setWordWrap(true);
    m_area->setWidgetResizable(true);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setAccessibleName(Say::tr("Findings"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_copy);
    buttons->addStretch(1);
    buttons->addWidget(m_again);
    auto *column = new QVBoxLayout(this);
    column->addWidget(m_title);
    column->addWidget(m_running);
    column->addWidget(m_panel);
    column->addWidget(m_area, 1);
    column->addLayout(buttons);
    m_copy->setEnabled(false);
    for (QPushButton *button : {m_copy, m_again}) {
        comfortable(button);
    }
    connect(m_again, &QPushButton::clicked, this, [this] {
        m_doneVerbs.clear();
        check();
    });
    connect(m_copy, &QPushButton::clicked, this, &CheckupPage::copyReport);
    m_clock.setInterval(1000);
    connect(&m_clock, &QTimer::timeout, this, &CheckupPage::refresh);
    connect(m_runner, &DeedRunner::done, this, &CheckupPage::takeDone);
    connect(m_runner, &DeedRunner::newBeginningWanted, this, [this] {
        beginAnewInGroup({}, this, [this] {
            m_panel->tell(Say::tr("This program could not be started anew as a member of the group "
                                  "norvix. Log out and in again."));
        });
    });
}

QString CheckupPage::title() const
{
    return Say::tr("Check-up");
}

void CheckupPage::setOnScreen(bool isOnScreen)
{
    if (isOnScreen) {
        check();
    }
}

void CheckupPage::refresh()
{
    const bool isRunning = m_since > 0;
    m_again->setEnabled(!isRunning);
    m_running->setVisible(isRunning);
    if (isRunning) {
        const qint64 seconds = (QDateTime::currentMSecsSinceEpoch() - m_since) / 1000;
        QString text = seconds < 2
            ? Say::tr("Looking…")
            : Say::tr("Looking for %1 already; the daemon may be slow to answer.")
                  .arg(durationText(seconds));
        m_running->setText(text);
    }
    if (m_seen.findings.isEmpty()) {
        m_title->setText(Say::tr("Check-up"));
    }
}

CheckupPage::Seen CheckupPage::look()
{
    const Facts facts = gatherFacts(DaemonBus());
    Seen seen;
    seen.findings = examine(facts);
    if (facts.peer.content) {
        seen.logins.append(peerLogin(*facts.peer.content));
    }
    return seen;
}

void CheckupPage::check()
{
    if (m_since > 0) {
        m_isRepeatWanted = true;
        return;
    }
    m_since = QDateTime::currentMSecsSinceEpoch();
    m_clock.start();
    refresh();
    inBackground<Seen>(this, look, [this](const Seen &seen) { take(seen); });
}

void CheckupPage::take(const Seen &seen)
{
    m_since = 0;
    m_clock.stop();
    m_seen = seen;
    m_copy->setEnabled(true);
    showFindings();
    refresh();
    if (m_isRepeatWanted) {
        m_isRepeatWanted = false;
        check();
    }
}

void CheckupPage::takeDone(const Deed &deed, const QByteArray &output)
{
    if (deed.kind == DeedKind::Rights && deed.verb == Verb::Look) {
        if (const auto ofRoot = findingsFrom(output)) {
            m_seen.findings = withSeenByRoot(m_seen.findings, *ofRoot);
            showFindings();
        }
        return;
    }
    if (deed.kind == DeedKind::Rights) {
        m_doneVerbs.insert(int(deed.verb));
    }
    if (deed.kind == DeedKind::Join) {
        m_runner->run(deedOf({RemedyKind::LogInAgain, {}}), title());
        return;
    }
    check();
}

/// A verb that was done and has not helped is not offered again: a person must look.
Deed CheckupPage::helpFor(const Remedy &remedy) const
{
    const Deed deed = deedOf(remedy);
    const bool wasDone = deed.kind == DeedKind::Rights && m_doneVerbs.contains(int(deed.verb));
    return wasDone ? explanationOf(remedy) : deed;
}

/// Rows that would say the same stay: somebody may be at one of their buttons.
void CheckupPage::showFindings()
{
    const QByteArray findings = findingsText(m_seen.findings);
    if (findings == m_shownFindings && m_doneVerbs == m_shownDoneVerbs) {
        return;
    }
    m_shownFindings = findings;
    m_shownDoneVerbs = m_doneVerbs;
    const CheckupList list = checkupListOf(m_seen.findings);
    m_title->setText(checkupTitle(m_seen.findings));
    auto *content = new QWidget;
    auto *grid = new QGridLayout;
    grid->setColumnStretch(2, 1);
    grid->setHorizontalSpacing(fontMetrics().height());
    for (const Finding &finding : list.bad) {
        addRow(grid, finding);
    }
    if (!list.hidden.isEmpty()) {
        addHidden(grid, list.hidden);
    }
    auto *fold = new QToolButton;
    fold->setText(checkupFoldText(list));
    fold->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    fold->setAutoRaise(true);
    fold->setCheckable(true);
    comfortable(fold);
    auto *rest = new QWidget;
    auto *restGrid = new QGridLayout(rest);
    restGrid->setColumnStretch(2, 1);
    restGrid->setContentsMargins(0, 0, 0, 0);
    restGrid->setHorizontalSpacing(fontMetrics().height());
    for (const Finding &finding : list.fine + list.unknown) {
        addRow(restGrid, finding);
    }
    connect(fold, &QToolButton::toggled, this, [this, fold, rest](bool isOpen) {
        m_isUnfolded = isOpen;
        fold->setArrowType(isOpen ? Qt::DownArrow : Qt::RightArrow);
        rest->setVisible(isOpen);
    });
    fold->setArrowType(Qt::RightArrow);
    rest->hide();
    fold->setChecked(m_isUnfolded);
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(grid);
    column->addWidget(fold);
    column->addWidget(rest);
    column->addStretch(1);
    m_area->setWidget(content);
}

void CheckupPage::addRow(QGridLayout *grid, const Finding &finding)
{
    const int row = grid->rowCount();
    auto *mark = new QLabel(glyphOf(finding.verdict));
    mark->setAccessibleName(verdictText(finding.verdict));
    mark->setToolTip(verdictText(finding.verdict));
    mark->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    auto *name = new QLabel(checkTitle(finding.check));
    name->setAlignment(Qt::AlignTop | Qt::AlignLeading);
    QFont bold = name->font();
    bold.setBold(finding.verdict == Verdict::Fault);
    name->setFont(bold);
    mark->setFont(bold);
    grid->addWidget(mark, row, 0, Qt::AlignTop);
    grid->addWidget(name, row, 1, Qt::AlignTop);
    grid->addWidget(wrappedLabel(findingText(finding)), row, 2);
    const bool isWell = finding.verdict == Verdict::Good;
    const Deed deed = isWell ? Deed() : helpFor(finding.remedy);
    if (deed.kind != DeedKind::None) {
        auto *button = new QPushButton(deed.button);
        comfortable(button);
        button->setAccessibleDescription(checkTitle(finding.check));
        const QString heading = checkTitle(finding.check);
        connect(button, &QPushButton::clicked, this,
            [this, deed, heading] { m_runner->run(deed, heading); });
        grid->addWidget(button, row, 3, Qt::AlignTop);
    }
}

void CheckupPage::addHidden(QGridLayout *grid, const QList<Finding> &hidden)
{
    QStringList names;
    for (const Finding &finding : hidden) {
        names.append(checkTitle(finding.check));
    }
    Finding all = hidden.constFirst();
    all.check = Say::tr("Hidden");
    all.facts = {{Say::tr("Only an administrator can look at this: %1.")
                      .arg(names.join(QStringLiteral(", "))),
        {}}};
    addRow(grid, all);
}

void CheckupPage::copyReport()
{
    QGuiApplication::clipboard()->setText(checkupReport(m_seen.findings, m_seen.logins));
}

} // namespace desktop
