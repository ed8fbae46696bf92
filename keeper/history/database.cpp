// SPDX-License-Identifier: MIT
#include "keeper/history/database.h"

#include <QFile>
#include <sqlite3.h>

namespace keeper {

namespace {

// Only an administrator with a tool of his own can hold it, for a moment.
constexpr int patienceMs = 1000;

struct Finalize
{
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

Fault faultOf(int code)
{
    switch (code & 0xff) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
        return Fault::None;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return Fault::Damaged;
    case SQLITE_FULL:
        return Fault::Full;
    default: // any of the many others
        return Fault::Other;
    }
}

void bind(sqlite3_stmt *statement, int place, const QVariant &value)
{
    if (!value.isValid()) {
        sqlite3_bind_null(statement, place);
    } else if (value.type() == QVariant::Double) {
        sqlite3_bind_double(statement, place, value.toDouble());
    } else if (value.type() == QVariant::String) {
        const QByteArray text = value.toString().toUtf8();
        sqlite3_bind_text(
            statement, place, text.constData(), text.size(), SQLITE_TRANSIENT); // NOLINT
    } else {
        sqlite3_bind_int64(statement, place, value.toLongLong());
    }
}

QVariant valueOf(sqlite3_stmt *statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return qint64(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_TEXT:
        return QString::fromUtf8(
            reinterpret_cast<const char *>(sqlite3_column_text(statement, column)));
    default: // NULL
        return QVariant();
    }
}

QVariantMap rowOf(sqlite3_stmt *statement)
{
    QVariantMap row;
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        const QVariant value = valueOf(statement, column);
        if (value.isValid()) {
            row.insert(QString::fromUtf8(sqlite3_column_name(statement, column)), value);
        }
    }
    return row;
}

} // namespace

void Database::Close::operator()(sqlite3 *database) const
{
    sqlite3_close(database);
}

Database::Database(const QString &path)
{
    sqlite3 *database = nullptr;
    const bool isOpen = note(sqlite3_open_v2(QFile::encodeName(path).constData(), &database,
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr));
    m_database.reset(database);
    if (isOpen) {
        sqlite3_busy_timeout(database, patienceMs);
    } else {
        m_database.reset(); // what is wrong is noted, and every statement fails
    }
}

bool Database::note(int code)
{
    const Fault fault = faultOf(code);
    if (fault != Fault::None) {
        m_fault = fault;
        m_faultText = QString::fromUtf8(sqlite3_errstr(code));
    }
    return fault == Fault::None;
}

bool Database::run(const char *sql, const QVariantList &values)
{
    if (values.isEmpty()) {
        return m_database && note(sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr));
    }
    return rows(sql, values).has_value();
}

std::optional<Rows> Database::rows(const char *sql, const QVariantList &values)
{
    sqlite3_stmt *prepared = nullptr;
    if (!m_database || !note(sqlite3_prepare_v2(m_database.get(), sql, -1, &prepared, nullptr))) {
        return std::nullopt;
    }
    const Statement statement(prepared);
    for (int i = 0; i < values.size(); ++i) {
        bind(prepared, i + 1, values.at(i));
    }
    Rows rows;
    int code = 0;
    while ((code = sqlite3_step(prepared)) == SQLITE_ROW) {
        rows.append(rowOf(prepared));
    }
    return note(code) ? std::optional<Rows>(rows) : std::nullopt;
}

void Database::rollBack()
{
    if (m_database && sqlite3_get_autocommit(m_database.get()) == 0) {
        sqlite3_exec(m_database.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

int Database::changes() const
{
    return m_database ? sqlite3_changes(m_database.get()) : 0;
}

void Database::leaveUntouched()
{
    if (m_database) {
        sqlite3_db_config(m_database.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    }
}

} // namespace keeper
