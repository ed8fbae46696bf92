// SPDX-License-Identifier: MIT
// Mending the account files in place.
#pragma once

#include <QString>
#include <QStringList>

struct MendResult
{
    QStringList done; ///< what was changed, in the user's language
    QString error; ///< why it stopped; empty on success
};

/// Puts the newest account at the beginning of both secrets files and takes them from the eyes of
/// others. What was there is kept beside each file under the ending ".norvix-backup".
MendResult mendSecretsFiles();
