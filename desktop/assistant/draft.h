// SPDX-License-Identifier: MIT
// What a person has entered into the assistant and what is not stored yet.
#pragma once

#include "desktop/model/step.h"

#include <QByteArray>
#include <QString>

namespace desktop {

struct Draft
{
    QString country; ///< a code of the table of providers; empty for none chosen
    QString provider; ///< its name there; empty for own values
    QString protocol;
    int vpi = -1; ///< -1 for none
    int vci = -1;
    QString login;
    QString password;
};

/// Where a program that is started anew goes on: a page of the assistant, else the check-up.
struct HandOver
{
    std::optional<AssistantStep> step;
    Draft draft;
};

QByteArray handOverText(const HandOver &handOver);
/// What handOverText() has made; nothing for any other bytes.
std::optional<HandOver> handOverFrom(const QByteArray &text);

} // namespace desktop
