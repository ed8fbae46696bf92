// SPDX-License-Identifier: MIT
// What a button does about a finding.
#pragma once

#include "client/remedy.h"
#include "desktop/model/headline.h"
#include "desktop/model/step.h"
#include "desktop/rights/verb.h"

#include <QStringList>

namespace desktop {

enum class DeedKind
{
    None,
    OpenPage, ///< of the window
    OpenAssistant,
    Rights, ///< a verb, with an administrator's password
    Join, ///< the group, likewise
    UseGroupNow, ///< without a new login
    StartDaemon, ///< which the bus does for anybody
    Connect,
    ShowHow, ///< a person must decide, or do it with their hands
};

struct Deed
{
    DeedKind kind = DeedKind::None;
    QString button;
    Action page = Action::None;
    AssistantStep step = AssistantStep::Permission;
    Verb verb = Verb::Look;
    /// What a person would do without the button; there for every deed but None.
    QString how;
    QStringList commands; ///< to copy; lines for a terminal
};

/// What helps, as the window does it.
Deed deedOf(const Remedy &remedy);

/// The same as an explanation only: where the deed was done and has not helped.
Deed explanationOf(const Remedy &remedy);

/// What a person types where nobody can ask for a password here.
QString commandFor(Verb verb);
QString commandToJoin(const QString &user);

} // namespace desktop
