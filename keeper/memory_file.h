// SPDX-License-Identifier: MIT
// What the keeper remembers besides the history: the wish, and what users have set.
#pragma once

#include "keeper/decision/state.h"

#include <QByteArray>
#include <QString>

namespace keeper {

struct Stored
{
    Memory memory;
    QString boot; ///< of the kernel, when the wish was heard; empty while that is not settled
    qint64 heardUntil = 0; ///< seconds since 1970: no disconnect until then is news
    quint64 limit = 0; ///< bytes in a billing month; 0 for none
    int billingDay = 1;
    bool wasModemPlugged = true; ///< as the daemon last told

    bool operator==(const Stored &other) const { return textOf(*this) == textOf(other); }

    /// As the file holds it, and back. What is missing or no such text gives the default.
    static QByteArray textOf(const Stored &stored);
    static Stored from(const QByteArray &text);
};

/// The file's content; defaults when it cannot be read. Removes what a killed keeper left beside
/// it.
Stored readStored(const QString &path);

/// Replaces the file, whole or not at all; nobody but its user reads it. False when that fails.
bool writeStored(const QString &path, const Stored &stored);

} // namespace keeper
