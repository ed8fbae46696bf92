// SPDX-License-Identifier: MIT
// What is remembered of connections, the line and traffic.
#pragma once

#include "keeper/history/database.h"
#include "keeper/history/traffic.h"
#include "keeper/line/line_quality.h"

#include <QDate>
#include <functional>

namespace keeper {

/// Which interface a counter belongs to: numbers are not used twice within a boot.
struct LinkIdentity
{
    QString boot; ///< of the kernel
    int number = 0;

    bool operator==(const LinkIdentity &other) const
    {
        return boot == other.boot && number == other.number;
    }
};

/// How a running session stands.
struct Reading
{
    Traffic counters;
    qint64 seconds = 0; ///< that it has lasted since the last reading
};

/// Main thread only. Times are seconds since 1970. Nothing here fails for its caller: what cannot
/// be written is lost, and said once.
class History
{
public:
    /// The file is opened, mended or set aside now.
    explicit History(const QString &path);

    /// "ok"; "set-aside": the file was damaged and a new one was begun; "newer": the file is of a
    /// newer version of this program and left as it is; "unwritable".
    QString condition() const { return m_condition; }

    /// A session begins, or goes on where the one of the same link was left when this program
    /// ended.
    void beginSession(
        qint64 now, const LinkIdentity &link, const QString &interface, const QString &address);
    /// A reading of the running session. @p day: the calendar day on which the counters' growth is
    /// booked.
    void book(qint64 now, const QDate &day, const LinkIdentity &link, const Reading &reading);
    /// The running session is over, @p seconds after its last reading.
    void endSession(qint64 now, const LinkIdentity &link, qint64 seconds, const QString &reason);

    /// A failed attempt; equal ones in a row are one entry with a count.
    void noteAttempt(qint64 now, const QString &reason);

    /// The line in this minute. What is old is thinned now and then.
    void noteLine(qint64 now, const LineQuality &line);

    /// Brings everything to where a power cut cannot take it away.
    void settle();

    // What was remembered, newest first, @p most entries.
    Rows sessions(int most);
    Rows attempts(int most);
    /// Traffic of days, newest first.
    Rows days(int most);
    Rows lineBetween(qint64 from, qint64 until);
    /// The traffic of these days, both included.
    Traffic trafficBetween(const QDate &begin, const QDate &end);
    /// The first day of which anything is known; invalid without one.
    QDate firstDay();

private:
    void open();
    enum class Opening
    {
        Ready,
        Damaged,
        Newer,
        Failed,
    };
    Opening prepare();
    Opening failure() const;
    bool migrate(int from);
    void setAside(const QString &why);
    /// Runs @p work in a transaction; deals with whatever goes wrong.
    bool change(const std::function<bool(Database &)> &work);
    bool tryChange(const std::function<bool(Database &)> &work);
    std::optional<Rows> query(const char *sql, const QVariantList &values);
    void makeRoom();
    void thin(qint64 now);
    void say(const QString &condition, const QString &why);

    const QString m_path;
    std::unique_ptr<Database> m_database;
    QString m_condition;
    qint64 m_thinnedAt = 0;
};

} // namespace keeper
