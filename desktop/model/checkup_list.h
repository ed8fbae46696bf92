// SPDX-License-Identifier: MIT
// The check-up's findings in the order and the words in which the window shows them.
#pragma once

#include "client/doctor_checks.h"

#include <QStringList>

namespace desktop {

struct CheckupList
{
    QList<Finding>
        bad; ///< faults, then what is doubtful, each in the order of a connection's needs
    QList<Finding> hidden; ///< what only an administrator can see
    QList<Finding> fine;
    QList<Finding> unknown; ///< nothing to look at yet
};

CheckupList checkupListOf(const QList<Finding> &findings);

/// The sentence above all: how many things stop a connection.
QString checkupTitle(const QList<Finding> &findings);

/// The one line in place of all that is well.
QString checkupFoldText(const CheckupList &list);

/// A finding's facts as one text.
QString findingText(const Finding &finding);

/// What a verdict is called.
QString verdictText(Verdict verdict);

/// @p own, with what this user may not see from @p ofRoot.
QList<Finding> withSeenByRoot(const QList<Finding> &own, const QList<Finding> &ofRoot);

/// The findings as a text to send to somebody: without @p logins and without what pppd says of
/// logins and passwords.
QString checkupReport(const QList<Finding> &findings, const QStringList &logins);

} // namespace desktop
