// SPDX-License-Identifier: MIT
// What the daemon's log tells that its signals do not. The one file of the keeper that knows the
// explanations which clients share.
#pragma once

#include "keeper/decision/cause.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace keeper {

/// Why an attempt failed, by what the daemon and pppd have written during it; Unknown when that
/// tells nothing.
Cause causeInLog(const QByteArray &log);

/// When the connection was last ended over the bus (local time, to the second); invalid when the
/// log tells of none.
QDateTime lastDisconnectInLog(const QByteArray &log);

/// Whether the log tells of a request that the daemon dropped because it was connecting.
bool wasRequestDropped(const QByteArray &log);

/// The log from a place on. Marking it costs one look at its size.
class DaemonLog
{
public:
    explicit DaemonLog(QString path)
        : m_path(std::move(path))
    {
    }

    /// The place where the log ends now.
    qint64 end() const;

    /// What has been written since @p place, the last megabyte at most. A log that is shorter by
    /// now has been begun anew: all of it.
    QByteArray since(qint64 place) const;

private:
    QString m_path;
};

} // namespace keeper
