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
    , m_account(new AccountForm(controller))
    , m_line(new LineForm(controller))
    , m_automatic(new AutomaticForm(controller))
{
    auto *column = new QVBoxLayout(scrolledContent(this));
    column->setSpacing(fontMetrics().height());
    column->addWidget(m_account);
    column->addWidget(m_line);
    column->addWidget(m_automatic);
    column->addStretch();
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

/// Where nobody answers, the forms keep what they show.
void AccountLinePage::askForSettings()
{
    m_account->askForLogin();
    controller().bus().ask(
        setupCall(SetupMethod::GetSettings), this, [this](const BusAnswer &answer) {
            if (const std::optional<QVariantMap> settings = busMap(answer.value())) {
                m_line->showSettings(*settings);
                m_automatic->showSettings(*settings);
            }
        });
}

} // namespace desktop
