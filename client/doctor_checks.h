// SPDX-License-Identifier: MIT
// The judgements of the check-up: facts in, findings with their remedies out.
#pragma once

#include "client/doctor_facts.h"

#include <QList>
#include <QString>

enum class Verdict
{
    Good,
    Doubtful,
    Fault,
    NotChecked, ///< this user may not look, or there is nothing to look at yet
};

struct Finding
{
    QString check; ///< its id, the same in every language
    Verdict verdict = Verdict::Good;
    QList<Fact> facts; ///< in the user's language, one sentence each
    Remedy remedy;
};

/// All checks in the order in which a connection needs them.
QList<Finding> examine(const Facts &facts);

/// The name of a check in the user's language.
QString checkTitle(const QString &id);

/// "ok", "warning", "fault" or "not-checked".
QString verdictWord(Verdict verdict);
