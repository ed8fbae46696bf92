// SPDX-License-Identifier: MIT
// The provider's values, and when to connect by itself.
#pragma once

#include "client/failure.h"
#include "desktop/model/headline.h"
#include "desktop/window/page.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace desktop {

class AccountForm;
class AutomaticForm;
class LineForm;

class AccountLinePage : public Page
{
    Q_OBJECT

public:
    explicit AccountLinePage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
    void setOnScreen(bool isOnScreen) override;

private slots:
    void takeSettingsChange();

private:
    void askForSettings();
    void showNotice();

    QLabel *m_notice;
    QPushButton *m_help;
    AccountForm *m_account;
    LineForm *m_line;
    AutomaticForm *m_automatic;
    Action m_wayOut = Action::None;
    Failure m_failure; ///< of the last question for what is stored
    bool m_isLoginRefused = false;
    bool m_isOnScreen = false;
    bool m_wasDaemonThere = false;
};

} // namespace desktop
