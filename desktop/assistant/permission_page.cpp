// SPDX-License-Identifier: MIT
#include "desktop/assistant/permission_page.h"

#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/assistant/new_beginning.h"
#include "desktop/controller.h"
#include "desktop/errand.h"
#include "desktop/pieces/deed_runner.h"
#include "desktop/pieces/pieces.h"
#include "desktop/pieces/rights_panel.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace desktop {

namespace {

Deed deedFor(Permission permission)
{
    switch (permission) {
    case Permission::Allowed:
        break;
    case Permission::StartAnew:
        return deedOf({RemedyKind::LogInAgain, {}});
    case Permission::Join:
        return deedOf({RemedyKind::JoinGroup, {}});
    case Permission::NoGroup:
        return deedOf({RemedyKind::CreateGroup, {}});
    case Permission::RefusedMember: {
        Deed deed;
        deed.kind = DeedKind::OpenPage;
        deed.page = Action::CheckUp;
        deed.button = actionText(Action::CheckUp);
        return deed;
    }
    }
    return {};
}

} // namespace

PermissionPage::PermissionPage(Controller &controller, Draft &draft, QWidget *parent)
    : AssistantPage(controller, draft, parent)
    , m_text(newText(Say::tr("Looking…")))
    , m_button(new QPushButton)
    , m_objection(newText())
    , m_panel(new RightsPanel)
    , m_runner(new DeedRunner(controller, m_panel, this))
{
    comfortable(m_button);
    auto *column = new QVBoxLayout(this);
    column->addWidget(newText(
        Say::tr("This assistant leads to the first connection. Each of its pages can be skipped, "
                "and nothing that you enter is lost.")));
    column->addWidget(m_text);
    column->addWidget(m_button, 0, Qt::AlignLeading);
    column->addWidget(m_panel);
    column->addWidget(m_objection);
    column->addStretch(1);
    m_button->hide();
    m_objection->hide();
    connect(m_button, &QPushButton::clicked, this, [this] {
        m_objection->hide();
        m_runner->run(m_deed, stepTitle(AssistantStep::Permission));
    });
    connect(m_runner, &DeedRunner::done, this, [this](const Deed &deed) {
        if (deed.kind == DeedKind::Join) {
            beginAnew();
        } else {
            look();
        }
    });
    connect(m_runner, &DeedRunner::newBeginningWanted, this, &PermissionPage::beginAnew);
    connect(m_panel, &RightsPanel::busyChanged, this, &PermissionPage::refresh);
}

void PermissionPage::setOnScreen(bool isOnScreen)
{
    m_isNextWanted = false;
    m_objection->hide();
    if (isOnScreen) {
        look();
    }
}

void PermissionPage::refresh()
{
    const bool isDaemonThere = controller().model().daemon == DaemonPresence::There;
    if (isDaemonThere && !m_wasDaemonThere) {
        askTheBus();
    }
    m_wasDaemonThere = isDaemonThere;
    if (!m_facts) {
        return;
    }
    PermissionFacts facts = *m_facts;
    facts.bus = m_bus;
    m_permission = permissionOf(facts);
    m_text->setText(permissionText(m_permission));
    m_deed = deedFor(m_permission);
    m_button->setText(m_deed.button);
    m_button->setVisible(m_deed.kind != DeedKind::None);
    m_button->setEnabled(!m_panel->isBusy());
    if (m_permission == Permission::Allowed) {
        m_objection->hide();
    }
}

/// Looks once more: the person may have joined the group in a terminal.
void PermissionPage::proceed()
{
    m_isNextWanted = true;
    look();
}

void PermissionPage::goOnIfAllowed()
{
    if (!m_isNextWanted) {
        return;
    }
    m_isNextWanted = false;
    if (m_permission == Permission::Allowed) {
        emit goOn();
        return;
    }
    m_objection->setText(Say::tr("You may not use the modem yet. “Skip” goes on without that."));
    m_objection->show();
}

void PermissionPage::look()
{
    if (controller().model().daemon == DaemonPresence::There) {
        askTheBus();
    }
    if (m_isLooking) {
        return;
    }
    m_isLooking = true;
    inBackground<PermissionFacts>(
        this, gatherPermissionFacts, [this](const PermissionFacts &facts) {
            m_isLooking = false;
            m_facts = facts;
            refresh();
            goOnIfAllowed();
        });
}

/// With a question that only members may ask and that changes nothing.
void PermissionPage::askTheBus()
{
    controller().bus().ask(
        setupCall(SetupMethod::GetPppdArguments), this, [this](const BusAnswer &answer) {
            m_bus = answer.ok()                                    ? Answer::Yes
                : answer.failure.kind == FailureKind::NotPermitted ? Answer::No
                                                                   : Answer::Unknown;
            refresh();
        });
}

void PermissionPage::beginAnew()
{
    m_panel->tell(Say::tr("This program begins anew…"));
    beginAnewInGroup({AssistantStep::Permission, draft()}, this, [this] {
        m_panel->tell(Say::tr("You are a member now, but this program could not be started anew. "
                              "Log out and in again."));
        look();
    });
}

} // namespace desktop
