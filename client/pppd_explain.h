// SPDX-License-Identifier: MIT
// What the lines of pppd mean for a person.
#pragma once

#include "client/remedy.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The lines that pppd wrote during the newest attempt, from the text of the daemon's log.
QStringList pppdLinesOfLog(const QByteArray &log);

/// What an attempt came to, for programs that speak for themselves.
enum class PppdCause
{
    Unknown,
    NoPeerFile,
    NoBridge,
    BadOption,
    NoConcentrator,
    NoDevice,
    Refused, ///< login or password
    MustAuthenticate, ///< pppd wants the provider to prove who it is
    NoPassword,
    NoNegotiation,
    Silent, ///< the far end answered once and no more
    PeerTerminated,
    HungUp,
    Ended, ///< here, by whomever
    Up,
};

struct PppdVerdict
{
    PppdCause cause = PppdCause::Unknown;
    bool isGood = false; ///< the link came up
    QString line; ///< pppd's line that decided; empty when none tells anything
    QString meaning;
    Remedy remedy;
};

/// The most telling line of an attempt, explained.
PppdVerdict explainPppd(const QStringList &lines);
