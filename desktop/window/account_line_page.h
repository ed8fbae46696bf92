// SPDX-License-Identifier: MIT
// The provider's values, and when to connect by itself.
#pragma once

#include "desktop/window/page.h"

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

    AccountForm *m_account;
    LineForm *m_line;
    AutomaticForm *m_automatic;
    bool m_isOnScreen = false;
    bool m_wasDaemonThere = false;
};

} // namespace desktop
