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
    QString id; ///< stays the same in every language
    QString title;
    Verdict verdict = Verdict::Good;
    QString text;
    QString remedy; ///< empty when nothing needs to be done
};

/// All checks in the order in which a connection needs them.
QList<Finding> examine(const Facts &facts);

/// "ok", "warning", "fault" or "not-checked".
QString verdictWord(Verdict verdict);
