// SPDX-License-Identifier: MIT
// Sessions and failed attempts as one list that answers "why did it stop?".
#pragma once

#include "client/keeper_state.h"

#include <QVector>

namespace desktop {

struct HistoryRow
{
    qint64 at = 0; ///< seconds since 1970, by which rows are ordered
    QString began;
    QString lasted;
    QString reason;
    QString traffic;
};

bool operator==(const HistoryRow &first, const HistoryRow &second);

/// Newest first; @p sessions and @p attempts are so as well. @p now is milliseconds since 1970.
QVector<HistoryRow> historyRows(
    const QList<KeeperSession> &sessions, const QList<KeeperAttempts> &attempts, qint64 now);

} // namespace desktop
