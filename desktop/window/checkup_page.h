// SPDX-License-Identifier: MIT
// What stops a connection, worst first, each with the button that mends it.
#pragma once

#include "desktop/model/checkup_list.h"
#include "desktop/model/deed.h"
#include "desktop/window/page.h"

#include <QByteArray>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSet>
#include <QTimer>
#include <QToolButton>

namespace desktop {

class DeedRunner;
class RightsPanel;

class CheckupPage : public Page
{
    Q_OBJECT

public:
    explicit CheckupPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
    void setOnScreen(bool isOnScreen) override;

private:
    /// What a look at the system has brought.
    struct Seen
    {
        QList<Finding> findings;
        QStringList logins;
    };

    static Seen look();
    void check();
    void take(const Seen &seen);
    void takeDone(const Deed &deed, const QByteArray &output);
    void showFindings();
    void addRow(QGridLayout *grid, const Finding &finding);
    void addHidden(QGridLayout *grid, const QList<Finding> &hidden);
    Deed helpFor(const Remedy &remedy) const;
    void copyReport();

    Seen m_seen;
    QSet<int> m_doneVerbs; ///< since the person has asked for a check
    QByteArray m_shownFindings;
    QSet<int> m_shownDoneVerbs;
    QTimer m_clock; ///< tells how long a check runs already
    qint64 m_since = 0; ///< the running check, milliseconds since 1970; 0 for none
    bool m_isRepeatWanted = false;
    QLabel *m_title;
    QLabel *m_running;
    QScrollArea *m_area;
    RightsPanel *m_panel;
    DeedRunner *m_runner;
    QPushButton *m_again;
    QPushButton *m_copy;
    bool m_isUnfolded = false;
};

} // namespace desktop
