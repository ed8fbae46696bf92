// SPDX-License-Identifier: MIT
// What this program does by itself: what it tells, and when it begins and ends.
#pragma once

#include "desktop/session/preferences.h"
#include "desktop/window/page.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

namespace desktop {

class PreferencesPage : public Page
{
    Q_OBJECT

public:
    PreferencesPage(Controller &controller, Preferences &preferences, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;

private:
    QCheckBox *noticeBox(NoticeKind kind, const QString &text);
    void setAutostarted(bool isWanted);

    Preferences &m_preferences;
    QCheckBox *m_autostart;
    QLabel *m_failure;
    QPushButton *m_quit;
};

} // namespace desktop
