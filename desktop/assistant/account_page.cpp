// SPDX-License-Identifier: MIT
#include "desktop/assistant/account_page.h"

#include "client/account_rules.h"
#include "client/say.h"
#include "desktop/controller.h"
#include "desktop/pieces/pieces.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace desktop {

AccountPage::AccountPage(Controller &controller, Draft &draft, QWidget *parent)
    : AssistantPage(controller, draft, parent)
    , m_login(new QLineEdit)
    , m_password(new QLineEdit)
    , m_text(newText())
{
    auto *show = new QCheckBox(Say::tr("&Show the password"));
    m_password->setEchoMode(QLineEdit::Password);
    m_login->setInputMethodHints(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
    for (QWidget *control : std::initializer_list<QWidget *>{m_login, m_password, show}) {
        comfortable(control);
    }
    auto *form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->addRow(Say::tr("&Login"), m_login);
    form->addRow(Say::tr("&Password"), m_password);
    form->addRow(QString(), show);
    alignNames(form);
    auto *column = new QVBoxLayout(this);
    column->addWidget(newText(Say::tr("Login and password stand in your provider's letter. Leave "
                                      "both empty to keep what is stored.")));
    column->addLayout(form);
    column->addWidget(m_text);
    column->addStretch(1);
    connect(m_login, &QLineEdit::textChanged, this, &AccountPage::takeTyped);
    connect(m_password, &QLineEdit::textChanged, this, &AccountPage::takeTyped);
    connect(show, &QCheckBox::toggled, this, [this](bool isShown) {
        m_password->setEchoMode(isShown ? QLineEdit::Normal : QLineEdit::Password);
    });
}

void AccountPage::setOnScreen(bool isOnScreen)
{
    if (isOnScreen) {
        const Draft entered = draft(); // each field tells both when it changes
        m_login->setText(entered.login);
        m_password->setText(entered.password);
        m_login->setFocus();
    }
}

void AccountPage::takeTyped()
{
    if (m_isStoring) {
        return;
    }
    draft().login = m_login->text();
    draft().password = m_password->text();
    m_text->setText(objection());
}

/// Why what was typed so far can not be stored.
QString AccountPage::objection() const
{
    const TypedAccount typed = typedAccount(m_login->text(), m_password->text());
    return typed.loginObjection.isEmpty() ? typed.passwordObjection : typed.loginObjection;
}

void AccountPage::proceed()
{
    const QString login = m_login->text();
    const QString password = m_password->text();
    if (login.isEmpty() && password.isEmpty()) {
        emit goOn();
        return;
    }
    QString why = objection();
    if (why.isEmpty() && login.isEmpty()) {
        why = loginObjection(login).detail;
    }
    if (why.isEmpty() && password.isEmpty()) {
        why = passwordObjection(password).detail;
    }
    if (!why.isEmpty()) {
        m_text->setText(why);
        (loginObjection(login) ? m_login : m_password)->setFocus();
        return;
    }
    m_isStoring = true;
    emit storingChanged();
    controller().bus().ask(
        storeAccountCall(login, password), this, [this](const BusAnswer &answer) {
            m_isStoring = false;
            if (answer.ok()) {
                m_login->clear();
                m_password->clear();
                m_text->clear();
            } else {
                m_text->setText(Say::tr("The account is not stored yet. %1")
                                    .arg(requestFailureText(answer.failure)));
            }
            emit storingChanged();
            if (answer.ok()) {
                emit goOn();
            }
        });
}

} // namespace desktop
