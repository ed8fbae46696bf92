// SPDX-License-Identifier: MIT
// The first connection, step by step; a failure says its cause and what helps.
#pragma once

#include "desktop/assistant/connect_progress.h"
#include "desktop/assistant/page.h"

#include <QTimer>

namespace desktop {

class DeedRunner;
class RightsPanel;

class ConnectPage : public AssistantPage
{
    Q_OBJECT

public:
    ConnectPage(Controller &controller, Draft &draft, QWidget *parent = nullptr);

    void refresh() override;
    void setOnScreen(bool isOnScreen) override;

private:
    void look();

    struct Stage
    {
        QLabel *mark;
        QLabel *title;
        QLabel *progress;
    };

    std::optional<bool> m_carrier;
    bool m_isLooking = false;
    Deed m_deed;
    ConnectProgress m_progress;
    QTimer m_clock;
    QList<Stage> m_stages;
    QLabel *m_text;
    QPushButton *m_connect;
    QPushButton *m_help;
    RightsPanel *m_panel;
    DeedRunner *m_runner;
};

} // namespace desktop
