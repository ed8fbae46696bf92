// SPDX-License-Identifier: MIT
// Login and password.
#pragma once

#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>

namespace desktop {

class Controller;
class ErrorLabel;

class AccountForm : public QGroupBox
{
    Q_OBJECT

public:
    explicit AccountForm(Controller &controller, QWidget *parent = nullptr);

    /// Asks for the stored login, unless somebody is typing another.
    void askForLogin();

signals:
    /// Whether this person may know the login, as the last question for it has shown.
    void loginAnswered(bool isPermitted);

private:
    void judge();
    void store();

    Controller &m_controller;
    QLineEdit *m_login;
    ErrorLabel *m_loginError;
    QLineEdit *m_password;
    QPushButton *m_reveal;
    ErrorLabel *m_passwordError;
    QPushButton *m_store;
    ErrorLabel *m_outcome;
    bool m_isStoring = false;
    bool m_isLoginEdited = false; ///< since it was last stored
};

} // namespace desktop
