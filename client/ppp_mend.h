// SPDX-License-Identifier: MIT
// Mending pppd's files in place.
#pragma once

#include "client/failure.h"

#include <QString>
#include <QStringList>

struct Facts;

struct MendResult
{
    QStringList done; ///< what was changed, in the user's language
    Failure failure; ///< why it stopped
};

/// Puts the newest account at the beginning of both secrets files and takes them from the eyes of
/// others; puts the shipped peer file in place that fits modem, protocol and circuit, where there
/// is none or where another shipped one lies that nobody has edited. What was there is kept beside
/// each file under the ending ".norvix-backup".
MendResult mendPppFiles(const Facts &facts);
