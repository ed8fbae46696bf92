// SPDX-License-Identifier: MIT
#include "desktop/window/account_line_page.h"

#include "client/keeper_state.h"
#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/pieces/pieces.h"
#include "desktop/window/account_form.h"
#include "desktop/window/automatic_form.h"
#include "desktop/window/line_form.h"

namespace desktop {

AccountLinePage::AccountLinePage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
    , m_notice(textLabel())
    , m_help(comfortable(new QPushButton))
    , m_account(new AccountForm(controller))
    , m_line(new LineForm(controller))
    , m_automatic(new AutomaticForm(controller))
{
    auto *column = new QVBoxLayout(scrolledContent(this));
    column->setSpacing(fontMetrics().height());
    column->addWidget(m_notice);
    column->addWidget(m_help, 0, Qt::AlignLeading);
    column->addWidget(m_account);
    column->addWidget(m_line);
    column->addWidget(m_automatic);
    column->addStretch();
    showNotice();
    connect(m_account, &AccountForm::loginAnswered, this, [this](bool isPermitted) {
        m_isLoginRefused = !isPermitted;
        showNotice();
    });
    connect(m_help, &QPushButton::clicked, this, [this] { this->controller().perform(m_wayOut); });
    controller.bus().connection().connect(QLatin1String(Bus::service),
        QLatin1String(Bus::setupPath), QLatin1String(Bus::setupInterface),
        QLatin1String(SetupSignal::SettingsChanged), this, SLOT(takeSettingsChange()));
}

QString AccountLinePage::title() const
{
    return Say::tr("Account and line");
}

void AccountLinePage::refresh()
{
    const bool isDaemonThere = controller().model().daemon == DaemonPresence::There;
    if (isDaemonThere && !m_wasDaemonThere && m_isOnScreen) {
        askForSettings();
    }
    m_wasDaemonThere = isDaemonThere;
    m_automatic->refresh();
    showNotice();
}

void AccountLinePage::setOnScreen(bool isOnScreen)
{
    m_isOnScreen = isOnScreen;
    if (isOnScreen) {
        askForSettings();
    }
}

void AccountLinePage::takeSettingsChange()
{
    if (m_isOnScreen) {
        askForSettings();
    }
}

/// Where nobody answers, the forms keep what they show, and that is said.
void AccountLinePage::askForSettings()
{
    m_account->askForLogin();
    controller().bus().ask(
        setupCall(SetupMethod::GetSettings), this, [this](const BusAnswer &answer) {
            m_failure = answer.failure;
            showNotice();
            if (const std::optional<QVariantMap> settings = busMap(answer.value())) {
                m_line->showSettings(*settings);
                m_automatic->showSettings(*settings);
            }
        });
}

void AccountLinePage::showNotice()
{
    const Failure absence = absenceOf(controller().model().daemon);
    const Failure refusal{m_isLoginRefused ? FailureKind::NotPermitted : FailureKind::None, {}};
    const Failure &failure = absence ? absence : m_failure ? m_failure : refusal;
    m_notice->setText(Say::tr("%1 What is shown here may not be what is stored.")
                          .arg(requestFailureText(failure)));
    m_wayOut = wayOutOf(failure);
    m_help->setText(actionText(m_wayOut));
    m_notice->setVisible(bool(failure));
    m_help->setVisible(bool(failure));
}

} // namespace desktop
