// SPDX-License-Identifier: MIT
// "May I?": whether the person may use the modem, and a button that makes it so.
#pragma once

#include "desktop/assistant/page.h"
#include "desktop/assistant/permission.h"
#include "desktop/model/deed.h"

namespace desktop {

class DeedRunner;
class RightsPanel;

class PermissionPage : public AssistantPage
{
    Q_OBJECT

public:
    PermissionPage(Controller &controller, Draft &draft, QWidget *parent = nullptr);

    void refresh() override;
    void setOnScreen(bool isOnScreen) override;
    void proceed() override;

private:
    void look();
    void askTheBus();
    void beginAnew();
    void goOnIfAllowed();

    std::optional<PermissionFacts> m_facts;
    Answer m_bus = Answer::Unknown;
    Permission m_permission = Permission::Allowed;
    bool m_isLooking = false;
    bool m_isNextWanted = false; ///< "Next" was pressed and waits for what is looked at
    bool m_wasDaemonThere = false;
    Deed m_deed;
    QLabel *m_text;
    QPushButton *m_button;
    QLabel *m_objection; ///< why "Next" does not go on
    RightsPanel *m_panel;
    DeedRunner *m_runner;
};

} // namespace desktop
