// SPDX-License-Identifier: MIT
// The modems that are plugged in, live, and what is to be done with them.
#pragma once

#include "desktop/assistant/modem_advice.h"
#include "desktop/assistant/page.h"
#include "desktop/model/deed.h"

#include <QElapsedTimer>
#include <QTimer>

class QListWidget;

namespace desktop {

class DeedRunner;
class RightsPanel;

class ModemPage : public AssistantPage
{
    Q_OBJECT

public:
    ModemPage(Controller &controller, Draft &draft, QWidget *parent = nullptr);

    void refresh() override;
    void setOnScreen(bool isOnScreen) override;
    void proceed() override;
    bool isStoring() const override { return m_isAdopting; }

private:
    void look();
    void askWhatIsInUse();
    void take(const Facts &system);
    void showList();
    void adopt();
    void endAdopting(const QString &complaint);

    std::optional<Facts> m_system;
    UsbId m_inUse = {0, 0};
    bool m_isLooking = false;
    bool m_isAsking = false;
    bool m_isInUseKnown = false; ///< the daemon has answered once
    bool m_isAdopting = false;
    bool m_isNextWanted = false; ///< "Next" waits for the modem to be taken into use
    QElapsedTimer m_looked; ///< the whole system, not only the modems
    QElapsedTimer m_came; ///< a modem was plugged in while we looked
    QTimer m_clock;
    ModemAdvice m_advice;
    Deed m_deed;
    QListWidget *m_list;
    QLabel *m_text;
    QPushButton *m_button;
    QLabel *m_objection; ///< why "Next" does not go on
    RightsPanel *m_panel;
    DeedRunner *m_runner;
};

} // namespace desktop
