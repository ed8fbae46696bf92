// SPDX-License-Identifier: MIT
// What the lines of pppd mean for a person.
#pragma once

#include "client/remedy.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The lines that pppd wrote during the newest attempt, from the text of the daemon's log.
QStringList pppdLinesOfLog(const QByteArray &log);

struct PppdVerdict
{
    bool isGood = false; ///< the link came up
    QString line; ///< pppd's line that decided; empty when none tells anything
    QString meaning;
    Remedy remedy;
};

/// The most telling line of an attempt, explained.
PppdVerdict explainPppd(const QStringList &lines);
