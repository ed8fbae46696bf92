// SPDX-License-Identifier: MIT
#include "desktop/window/account_form.h"

#include "client/account_rules.h"
#include "client/pppd_words.h"
#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/pieces/pieces.h"

#include <QFormLayout>
#include <QHBoxLayout>

namespace desktop {

AccountForm::AccountForm(Controller &controller, QWidget *parent)
    : QGroupBox(Say::tr("Account"), parent)
    , m_controller(controller)
    , m_login(comfortable(new QLineEdit))
    , m_loginError(new ErrorLabel(m_login))
    , m_password(comfortable(new QLineEdit))
    , m_reveal(comfortable(new QPushButton(Say::tr("Show"))))
    , m_passwordError(new ErrorLabel(m_password))
    , m_store(comfortable(new QPushButton(Say::tr("Store account"))))
    , m_outcome(new ErrorLabel)
{
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setPlaceholderText(Say::tr("type it to change it"));
    m_reveal->setCheckable(true);
    m_reveal->setAccessibleName(Say::tr("Show the password"));
    m_reveal->setEnabled(false);
    m_store->setEnabled(false);
    auto *both = new QHBoxLayout;
    both->addWidget(m_password, 1);
    both->addWidget(m_reveal);
    auto *form = new QFormLayout(this);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    form->addRow(textLabel(Say::tr("Login and password stand in your provider's letter.")));
    form->addRow(Say::tr("&Login"), m_login);
    form->addRow(m_loginError);
    auto *passwordLabel = new QLabel(Say::tr("&Password"));
    passwordLabel->setBuddy(m_password);
    form->addRow(passwordLabel, both);
    form->addRow(m_passwordError);
    form->addRow(m_outcome);
    form->addRow(QString(), m_store);
    alignNames(form);

    // Not textEdited: what dictation or a screen reader writes is a person's, too.
    connect(m_login, &QLineEdit::textChanged, this, [this] {
        m_isLoginEdited = true;
        judge();
    });
    connect(m_password, &QLineEdit::textChanged, this, &AccountForm::judge);
    connect(m_login, &QLineEdit::returnPressed, m_store, &QPushButton::click);
    connect(m_password, &QLineEdit::returnPressed, m_store, &QPushButton::click);
    connect(m_store, &QPushButton::clicked, this, &AccountForm::store);
    connect(m_reveal, &QPushButton::toggled, this, [this](bool isShown) {
        m_password->setEchoMode(isShown ? QLineEdit::Normal : QLineEdit::Password);
        m_reveal->setText(isShown ? Say::tr("Hide") : Say::tr("Show"));
        m_reveal->setAccessibleName(
            isShown ? Say::tr("Hide the password") : Say::tr("Show the password"));
    });
}

void AccountForm::askForLogin()
{
    m_controller.bus().ask(
        daemonCall(DaemonMethod::getLoginAndPassword), this, [this](const BusAnswer &answer) {
            const QStringList account = answer.value().toStringList();
            if (answer.ok() && !m_isLoginEdited && !account.isEmpty()) {
                const QSignalBlocker blocker(m_login);
                m_login->setText(decodedWord(account.constFirst()));
            }
            emit loginAnswered(answer.failure.kind != FailureKind::NotPermitted);
        });
}

void AccountForm::judge()
{
    const QString password = m_password->text();
    const TypedAccount typed = typedAccount(m_login->text(), password);
    m_loginError->complain(typed.loginObjection);
    m_passwordError->complain(typed.passwordObjection);
    m_outcome->inform(QString());
    m_reveal->setEnabled(!password.isEmpty());
    if (password.isEmpty()) {
        m_reveal->setChecked(false);
    }
    m_store->setEnabled(typed.canBeStored && !m_isStoring);
}

void AccountForm::store()
{
    m_isStoring = true;
    m_store->setEnabled(false);
    m_outcome->inform(Say::tr("The account is being stored."));
    const QString login = m_login->text();
    const QString password = m_password->text();
    const BusCall call = storeAccountCall(login, password);
    m_controller.bus().ask(call, this, [this, login, password](const BusAnswer &answer) {
        m_isStoring = false;
        if (!answer.ok()) {
            judge(); // what was typed stays, to be tried again
            m_outcome->complain(requestFailureText(answer.failure));
            return;
        }
        if (m_login->text() == login && m_password->text() == password) {
            m_isLoginEdited = false;
            m_password->clear();
        }
        judge();
        m_outcome->inform(Say::tr("The account is stored. It counts from the next connection on."));
    });
}

} // namespace desktop
