// SPDX-License-Identifier: MIT
// Login and password; what cannot be stored is said while one types.
#pragma once

#include "desktop/assistant/page.h"

#include <QLineEdit>

namespace desktop {

class AccountPage : public AssistantPage
{
    Q_OBJECT

public:
    AccountPage(Controller &controller, Draft &draft, QWidget *parent = nullptr);

    void refresh() override { }
    void setOnScreen(bool isOnScreen) override;
    void proceed() override;
    bool isStoring() const override { return m_isStoring; }

private:
    QString objection() const;
    void takeTyped();

    bool m_isStoring = false;
    QLineEdit *m_login;
    QLineEdit *m_password;
    QLabel *m_text;
};

} // namespace desktop
