// SPDX-License-Identifier: MIT
// An SQLite file: statements in, rows out, no opinion.
#pragma once

#include <QString>
#include <QVariantList>
#include <QVariantMap>
#include <memory>
#include <optional>

struct sqlite3;

namespace keeper {

using Rows = QList<QVariantMap>;

/// Why a statement failed, as far as it matters here.
enum class Fault
{
    None,
    Damaged, ///< no database, or a broken one
    Full, ///< it, or the disk
    Other, ///< read-only, locked, no permission, an input or output error
};

/// Main thread only. The file is closed with the object.
class Database
{
public:
    /// Opens or makes the file. An error shows with the first statement.
    explicit Database(const QString &path);

    /// Runs one statement, or several without @p values. Each value is bound in its order:
    /// integers, real numbers, text; an invalid one is NULL.
    bool run(const char *sql, const QVariantList &values = {});

    /// The rows of a query: names of columns to values, NULL left out. Nothing on failure.
    std::optional<Rows> rows(const char *sql, const QVariantList &values = {});

    /// Takes back what the running transaction has changed; some failures have done so already.
    void rollBack();

    /// Of the last statement that failed.
    Fault fault() const { return m_fault; }
    QString faultText() const { return m_faultText; }

    /// How many rows the last statement has changed.
    int changes() const;

    /// Leaves the file as it is when closing, instead of tidying it up.
    void leaveUntouched();

private:
    struct Close
    {
        void operator()(sqlite3 *database) const;
    };

    bool note(int code);

    std::unique_ptr<sqlite3, Close> m_database;
    Fault m_fault = Fault::None;
    QString m_faultText;
};

} // namespace keeper
