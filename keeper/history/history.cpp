// SPDX-License-Identifier: MIT
#include "keeper/history/history.h"

#include "dbus/contract.h"
#include "keeper/history/schema.h"
#include "keeper/history/thinning.h"

#include <QFile>
#include <cstdio>

namespace keeper {

namespace {

// 4 MiB of pages and 1 MiB of log, twice if a damaged file is kept: ten in all, whatever happens.
constexpr char limits[] = "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;"
                          "PRAGMA wal_autocheckpoint=200; PRAGMA journal_size_limit=1048576;"
                          "PRAGMA max_page_count=1024; PRAGMA temp_store=MEMORY;";

constexpr qint64 thinEverySeconds = 3600;

QVariant valueOrNull(const std::optional<double> &value)
{
    return value ? QVariant(*value) : QVariant();
}

Traffic trafficIn(const QVariantMap &row)
{
    return {row.value(QStringLiteral("received")).toULongLong(),
        row.value(QStringLiteral("sent")).toULongLong()};
}

} // namespace

History::History(const QString &path)
    : m_path(path)
{
    open();
}

// ---- the file

void History::open()
{
    m_database.reset();
    QFile file(m_path);
    if (file.open(QIODevice::ReadOnly) && versionInHeader(file.read(100)) > schemaVersion) {
        say(QLatin1String(KeeperHistory::newer),
            QStringLiteral("it is of a newer version and left as it is"));
        return;
    }
    file.close();
    m_database = std::make_unique<Database>(m_path);
    Opening opening = prepare();
    if (opening == Opening::Damaged) {
        setAside(m_database->fault() == Fault::Damaged ? m_database->faultText()
                                                       : QStringLiteral("its check fails"));
        m_database = std::make_unique<Database>(m_path);
        opening = prepare();
    }
    switch (opening) {
    case Opening::Ready:
        if (m_condition != QLatin1String(KeeperHistory::setAside)) {
            m_condition = QLatin1String(KeeperHistory::ok);
        }
        return;
    case Opening::Newer: // in the write-ahead log still
        m_database->leaveUntouched();
        say(QLatin1String(KeeperHistory::newer),
            QStringLiteral("it is of a newer version and left as it is"));
        break;
    case Opening::Damaged:
    case Opening::Failed:
        say(QLatin1String(KeeperHistory::unwritable), m_database->faultText());
        break;
    }
    m_database.reset();
}

History::Opening History::failure() const
{
    return m_database->fault() == Fault::Damaged ? Opening::Damaged : Opening::Failed;
}

/// Checks the file and brings it to this version.
History::Opening History::prepare()
{
    const std::optional<Rows> version = m_database->rows("PRAGMA user_version");
    if (!version) {
        return failure();
    }
    const int found = version->value(0).value(QStringLiteral("user_version")).toInt();
    if (found > schemaVersion) {
        return Opening::Newer;
    }
    const std::optional<Rows> check = m_database->rows("PRAGMA quick_check(1)");
    if (!check) {
        return failure();
    }
    if (check->value(0).value(QStringLiteral("quick_check")) != QStringLiteral("ok")) {
        return Opening::Damaged;
    }
    return m_database->run(limits) && migrate(found) ? Opening::Ready : failure();
}

bool History::migrate(int from)
{
    for (int version = from; version < schemaVersion; ++version) {
        const QByteArray sql = QByteArray("BEGIN IMMEDIATE;") + migrations.at(size_t(version))
            + "PRAGMA user_version=" + QByteArray::number(version + 1) + "; COMMIT;";
        if (!m_database->run(sql.constData())) {
            return false;
        }
    }
    return true;
}

/// Keeps the damaged file, one of them, out of the way.
void History::setAside(const QString &why)
{
    say(QLatin1String(KeeperHistory::setAside),
        QStringLiteral("it is damaged (%1); it is kept as %2.damaged").arg(why, m_path));
    m_database->leaveUntouched();
    m_database.reset();
    for (const char *part : {"", "-wal", "-shm"}) {
        const QString name = m_path + QLatin1String(part);
        const QString kept = m_path + QStringLiteral(".damaged") + QLatin1String(part);
        QFile::remove(kept);
        QFile::rename(name, kept);
    }
}

void History::say(const QString &condition, const QString &why)
{
    if (condition != m_condition) {
        std::fprintf(
            stderr, "norvix-keeper: history %s: %s.\n", qPrintable(m_path), qPrintable(why));
    }
    m_condition = condition;
}

// ---- changing it

bool History::tryChange(const std::function<bool(Database &)> &work)
{
    if (m_database->run("BEGIN IMMEDIATE") && work(*m_database) && m_database->run("COMMIT")) {
        return true;
    }
    m_database->rollBack();
    return false;
}

bool History::change(const std::function<bool(Database &)> &work)
{
    if (!m_database && m_condition == QLatin1String(KeeperHistory::unwritable)) {
        open(); // it may be writable by now
    }
    if (!m_database) {
        return false;
    }
    if (tryChange(work)) {
        return true;
    }
    switch (m_database->fault()) {
    case Fault::Damaged:
        setAside(m_database->faultText());
        open();
        return m_database && tryChange(work);
    case Fault::Full:
        makeRoom();
        if (tryChange(work)) {
            return true;
        }
        break;
    case Fault::None:
    case Fault::Other:
        break;
    }
    const QString why = m_database->faultText();
    m_database.reset();
    say(QLatin1String(KeeperHistory::unwritable), why);
    return false;
}

/// The oldest and finest goes first. On a full disk this may fail as well; then the next entries
/// are lost, and no old one.
void History::makeRoom()
{
    tryChange([](Database &database) {
        return database.run("DELETE FROM line WHERE span = 60 AND time < "
                            "(SELECT (min(time) + max(time)) / 2 FROM line WHERE span = 60);"
                            "DELETE FROM attempt WHERE id < "
                            "(SELECT (min(id) + max(id)) / 2 FROM attempt);"
                            "DELETE FROM line WHERE span = 900 AND time < "
                            "(SELECT min(time) + 864000 FROM line WHERE span = 900);"
                            "DELETE FROM session WHERE id < "
                            "(SELECT min(id) + (max(id) - min(id)) / 10 FROM session);");
    });
}

void History::beginSession(
    qint64 now, const LinkIdentity &link, const QString &interface, const QString &address)
{
    change([&](Database &database) {
        const std::optional<Rows> same = database.rows(
            "SELECT id FROM session WHERE ended IS NULL AND boot = ? AND number = ?",
            {link.boot, link.number});
        if (!same) {
            return false;
        }
        if (!same->isEmpty()) { // it has lasted while nobody looked
            return database.run("UPDATE session SET seconds = seconds + max(0, ? - seen), seen = ?"
                                " WHERE id = ?",
                {now, now, same->first().value(QStringLiteral("id"))});
        }
        return database.run("UPDATE session SET ended = seen, reason = 'unknown'"
                            " WHERE ended IS NULL")
            && database.run("DELETE FROM counter WHERE boot <> ?", {link.boot})
            && database.run("INSERT INTO session (began, seen, interface, address, boot, number)"
                            " VALUES (?, ?, ?, ?, ?, ?)",
                {now, now, interface, address, link.boot, link.number});
    });
}

void History::book(qint64 now, const QDate &day, const LinkIdentity &link, const Reading &reading)
{
    const Traffic &counters = reading.counters;
    change([&](Database &database) {
        const std::optional<Rows> last
            = database.rows("SELECT received, sent FROM counter WHERE boot = ? AND number = ?",
                {link.boot, link.number});
        if (!last) {
            return false;
        }
        const Traffic fresh = newTraffic(
            last->isEmpty() ? std::nullopt : std::optional<Traffic>(trafficIn(last->first())),
            counters);
        return database.run("INSERT OR REPLACE INTO counter VALUES (?, ?, ?, ?)",
                   {link.boot, link.number, counters.received, counters.sent})
            && database.run("INSERT INTO traffic VALUES (?, ?, ?) ON CONFLICT (day) DO UPDATE SET"
                            " received = received + excluded.received, sent = sent + excluded.sent",
                {day.toString(Qt::ISODate), fresh.received, fresh.sent})
            && database.run("UPDATE session SET seen = ?, seconds = seconds + ?,"
                            " received = received + ?, sent = sent + ?"
                            " WHERE ended IS NULL AND boot = ? AND number = ?",
                {now, reading.seconds, fresh.received, fresh.sent, link.boot, link.number});
    });
}

void History::endSession(
    qint64 now, const LinkIdentity &link, qint64 seconds, const QString &reason)
{
    change([&](Database &database) {
        return database.run(
            "UPDATE session SET ended = ?, seen = ?, seconds = seconds + ?, reason = ?"
            " WHERE ended IS NULL AND boot = ? AND number = ?",
            {now, now, seconds, reason, link.boot, link.number});
    });
    settle();
}

void History::noteAttempt(qint64 now, const QString &reason)
{
    change([&](Database &database) {
        if (!database.run("UPDATE attempt SET last = ?, count = count + 1"
                          " WHERE id = (SELECT max(id) FROM attempt) AND reason = ?"
                          " AND after = (SELECT ifnull(max(id), 0) FROM session)",
                {now, reason})) {
            return false;
        }
        return database.changes() > 0
            || database.run("INSERT INTO attempt (first, last, count, reason, after) VALUES"
                            " (?, ?, 1, ?, (SELECT ifnull(max(id), 0) FROM session))",
                {now, now, reason});
    });
}

void History::noteLine(qint64 now, const LineQuality &line)
{
    const QVariant carrier = line.carrier ? QVariant(*line.carrier ? 1.0 : 0.0) : QVariant();
    change([&](Database &database) {
        return database.run("INSERT OR REPLACE INTO line VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
            {minuteSpan, now - now % minuteSpan, carrier, valueOrNull(line.downRate),
                valueOrNull(line.upRate), valueOrNull(line.downMargin), valueOrNull(line.upMargin),
                valueOrNull(line.downAttenuation), valueOrNull(line.upAttenuation),
                valueOrNull(line.downErrors), valueOrNull(line.upErrors)});
    });
    if (now < m_thinnedAt || now - m_thinnedAt >= thinEverySeconds) {
        thin(now);
    }
}

void History::thin(qint64 now)
{
    m_thinnedAt = now;
    for (const Thinning &step : thinningPlan(now)) {
        change([&](Database &database) {
            return database.run("INSERT OR REPLACE INTO line SELECT ?1, time - time % ?1,"
                                " avg(carrier), avg(down_rate), avg(up_rate), avg(down_margin),"
                                " avg(up_margin), avg(down_attenuation), avg(up_attenuation),"
                                " max(down_errors), max(up_errors) FROM line"
                                " WHERE span = ?2 AND time < ?3 GROUP BY time / ?1",
                       {step.intoSpan, step.span, step.before})
                && database.run(
                    "DELETE FROM line WHERE span = ? AND time < ?", {step.span, step.before});
        });
    }
}

void History::settle()
{
    if (m_database) {
        m_database->run("PRAGMA wal_checkpoint(TRUNCATE)");
    }
}

} // namespace keeper
