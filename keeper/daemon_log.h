// SPDX-License-Identifier: MIT
// What the daemon's log tells that its signals do not. The one file of the keeper that knows the
// explanations which clients share.
#pragma once

#include "keeper/decision/cause.h"
#include "keeper/decision/state.h"

#include <QByteArray>
#include <QString>

namespace keeper {

/// Why an attempt failed, by what the daemon and pppd have written during it; Unknown when that
/// tells nothing.
Cause causeInLog(const QByteArray &log);

/// What happened after @p heardUntil (seconds since 1970) that ended the connection. An unplugging
/// ends it as a user does, and looks like one; a modem that is announced anew must have been
/// unplugged before. @p modem: the identifier that HAL gives it. @p wasPlugged: it was there then.
Unheard unheardInLog(
    const QByteArray &log, qint64 heardUntil, const QByteArray &modem, bool wasPlugged);

/// Whether the log tells of a request that the daemon dropped because it was connecting, after the
/// last disconnect.
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
