// SPDX-License-Identifier: MIT
#include "desktop/window/preferences_page.h"

#include "client/say.h"
#include "desktop/controller.h"
#include "desktop/model/tray_facts.h"
#include "desktop/pieces/pieces.h"

#include <QCoreApplication>
#include <QGroupBox>
#include <QVBoxLayout>

namespace desktop {

namespace {

QLabel *wrapped(const QString &text)
{
    auto *label = new QLabel(text);
    label->setWordWrap(true);
    return label;
}

} // namespace

PreferencesPage::PreferencesPage(Controller &controller, Preferences &preferences, QWidget *parent)
    : Page(controller, parent)
    , m_preferences(preferences)
    , m_autostart(comfortable(new QCheckBox(Say::tr("Start with the session, in the tray"))))
    , m_failure(wrapped(QString()))
    , m_quit(comfortable(new QPushButton))
{
    auto *notices = new QGroupBox(Say::tr("Tell me when"));
    auto *noticeColumn = new QVBoxLayout(notices);
    noticeColumn->addWidget(
        noticeBox(NoticeKind::AttemptFailed, Say::tr("an attempt to connect has failed")));
    noticeColumn->addWidget(
        noticeBox(NoticeKind::LinkLost, Say::tr("the connection was lost, and nobody ended it")));
    noticeColumn->addWidget(noticeBox(NoticeKind::NewModem, Say::tr("a new modem was found")));
    noticeColumn->addWidget(
        noticeBox(NoticeKind::LimitReached, Say::tr("the month's limit is reached")));
    auto *begin = new QGroupBox(Say::tr("This program"));
    auto *beginColumn = new QVBoxLayout(begin);
    beginColumn->addWidget(m_autostart);
    beginColumn->addWidget(m_failure);
    beginColumn->addWidget(wrapped(
        Say::tr("Where the desktop has no tray, the window is shown then. The connection does not "
                "need this program: it stays when the program ends.")));
    beginColumn->addWidget(m_quit, 0, Qt::AlignLeading);
    auto *column = new QVBoxLayout(scrolledContent(this));
    column->addWidget(notices);
    column->addWidget(begin);
    column->addStretch(1);
    m_failure->hide();
    m_autostart->setChecked(m_preferences.isAutostarted());
    connect(m_autostart, &QCheckBox::toggled, this, &PreferencesPage::setAutostarted);
    connect(m_quit, &QPushButton::clicked, qApp, &QCoreApplication::quit);
}

QString PreferencesPage::title() const
{
    return Say::tr("Preferences");
}

void PreferencesPage::refresh()
{
    m_quit->setText(quitText(controller().model()));
}

QCheckBox *PreferencesPage::noticeBox(NoticeKind kind, const QString &text)
{
    QCheckBox *box = comfortable(new QCheckBox(text));
    box->setChecked(m_preferences.isTold(kind));
    connect(box, &QCheckBox::toggled, this,
        [this, kind](bool isTold) { m_preferences.setTold(kind, isTold); });
    return box;
}

void PreferencesPage::setAutostarted(bool isWanted)
{
    const bool isStored = m_preferences.setAutostarted(isWanted);
    m_failure->setText(Say::tr("This could not be stored in your folder for settings."));
    m_failure->setVisible(!isStored);
}

} // namespace desktop
