// SPDX-License-Identifier: MIT
#include "desktop/pieces/deed_runner.h"

#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/pieces/command_box.h"
#include "desktop/pieces/rights_panel.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace desktop {

DeedRunner::DeedRunner(Controller &controller, RightsPanel *panel, QWidget *parent)
    : QObject(parent)
    , m_controller(controller)
    , m_panel(panel)
    , m_window(parent)
{
}

void DeedRunner::run(const Deed &deed, const QString &title)
{
    const auto tellDone = [this, deed](const QByteArray &output) { emit done(deed, output); };
    switch (deed.kind) {
    case DeedKind::None:
        break;
    case DeedKind::OpenPage:
        m_controller.perform(deed.page);
        break;
    case DeedKind::OpenAssistant:
        emit m_controller.assistantWanted(deed.step);
        break;
    case DeedKind::Rights:
        m_panel->perform(deed.verb, tellDone);
        break;
    case DeedKind::Join:
        m_panel->join(tellDone);
        break;
    case DeedKind::UseGroupNow:
        emit newBeginningWanted();
        break;
    case DeedKind::StartDaemon:
        startDaemon(deed);
        break;
    case DeedKind::Connect:
        m_controller.perform(Action::Connect);
        break;
    case DeedKind::ShowHow:
        explain(deed, title);
        break;
    }
}

void DeedRunner::startDaemon(const Deed &deed)
{
    m_panel->tell(Say::tr("The daemon is being started."));
    BusCall call = daemonCall(DaemonMethod::reply);
    call.startsService = true;
    m_controller.bus().ask(call, this, [this, deed](const BusAnswer &answer) {
        if (answer.ok()) {
            m_panel->clear();
            emit done(deed, {});
            return;
        }
        // The bus could not do it for anybody; an administrator sees more.
        m_panel->perform(
            Verb::StartDaemon, [this, deed](const QByteArray &output) { emit done(deed, output); });
    });
}

void DeedRunner::explain(const Deed &deed, const QString &title)
{
    auto *dialog = new QDialog(m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(title);
    auto *text = new QLabel(deed.how);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text->setMinimumWidth(text->fontMetrics().averageCharWidth() * 60);
    auto *commands = new CommandBox;
    commands->setCommands(deed.commands);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);
    auto *column = new QVBoxLayout(dialog);
    column->addWidget(text);
    column->addWidget(commands);
    column->addWidget(buttons);
    dialog->open();
}

} // namespace desktop
