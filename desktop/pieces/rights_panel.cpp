// SPDX-License-Identifier: MIT
#include "desktop/pieces/rights_panel.h"

#include "client/say.h"
#include "desktop/model/deed.h"
#include "desktop/pieces/command_box.h"
#include "desktop/pieces/pieces.h"

#include <QDateTime>
#include <QPushButton>
#include <QVBoxLayout>
#include <pwd.h>
#include <unistd.h>

namespace desktop {

namespace {

QString ownName()
{
    const QString name = qEnvironmentVariable("USER");
    return name.isEmpty() ? QStringLiteral("$USER") : name;
}

} // namespace

RightsPanel::RightsPanel(QWidget *parent)
    : QWidget(parent)
    , m_text(new QLabel)
    , m_commands(new CommandBox)
    , m_giveUp(new QPushButton(Say::tr("Stop waiting")))
{
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *row = new QHBoxLayout;
    row->addWidget(m_text, 1);
    row->addWidget(m_giveUp, 0, Qt::AlignTop);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    column->addWidget(m_commands);
    m_clock.setInterval(1000);
    connect(&m_clock, &QTimer::timeout, this, &RightsPanel::showWaiting);
    connect(m_giveUp, &QPushButton::clicked, this, [this] { m_administrator.giveUp(); });
    comfortable(m_giveUp);
    clear();
}

void RightsPanel::perform(Verb verb, const Done &done)
{
    m_administrator.perform(verb, answerWith(commandFor(verb), done));
    begin();
}

void RightsPanel::join(const Done &done)
{
    m_administrator.join(answerWith(commandToJoin(ownName()), done));
    begin();
}

void RightsPanel::begin()
{
    m_commands->setCommands({});
    m_giveUp->setVisible(m_administrator.isBusy());
    if (m_administrator.isBusy()) {
        m_clock.start();
    }
    showWaiting();
    show();
    emit busyChanged();
}

Administrator::Then RightsPanel::answerWith(const QString &command, const Done &done)
{
    return [this, command, done](const RightsAnswer &answer) {
        if (!m_administrator.isBusy()) {
            m_clock.stop();
            m_giveUp->hide();
        }
        if (answer.outcome == RightsOutcome::Done) {
            clear();
            done(answer.output);
        } else {
            QString text = rightsOutcomeText(answer.outcome);
            if (answer.outcome == RightsOutcome::Failed && !answer.detail.isEmpty()) {
                text += QLatin1Char(' ') + Say::tr("It said: “%1”.").arg(answer.detail);
            }
            tell(text, isCommandAWayOut(answer.outcome) ? QStringList{command} : QStringList{});
        }
        emit busyChanged();
    };
}

void RightsPanel::tell(const QString &text, const QStringList &commands)
{
    m_text->setText(text);
    m_commands->setCommands(commands);
    m_giveUp->setVisible(m_administrator.isBusy());
    setVisible(!text.isEmpty());
}

void RightsPanel::clear()
{
    tell(QString());
}

void RightsPanel::showWaiting()
{
    if (!m_administrator.isBusy()) {
        return;
    }
    constexpr int wonder = 10; // seconds after which a person begins to look for the question
    const int seconds = int((QDateTime::currentMSecsSinceEpoch() - m_administrator.since()) / 1000);
    QString text = seconds < 2
        ? Say::tr("Waiting for an administrator's password.")
        : Say::tr("Waiting for an administrator's password for %1.").arg(durationText(seconds));
    if (seconds >= wonder) {
        text += QLatin1Char(' ') + Say::tr("The window that asks for it may be behind this one.");
    }
    m_text->setText(text);
}

} // namespace desktop
