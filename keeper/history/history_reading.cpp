// SPDX-License-Identifier: MIT
// What the history tells when asked.
#include "keeper/history/history.h"

namespace keeper {

std::optional<Rows> History::query(const char *sql, const QVariantList &values)
{
    std::optional<Rows> rows = m_database ? m_database->rows(sql, values) : std::nullopt;
    if (!rows && m_database && m_database->fault() == Fault::Damaged) {
        setAside(m_database->faultText());
        open();
    }
    return rows;
}

Rows History::sessions(int most)
{
    return query("SELECT began, ended, seconds, reason, interface, address, received, sent"
                 " FROM session ORDER BY id DESC LIMIT ?",
        {most})
        .value_or(Rows());
}

Rows History::attempts(int most)
{
    return query("SELECT first, last, count, reason FROM attempt ORDER BY id DESC LIMIT ?", {most})
        .value_or(Rows());
}

Rows History::days(int most)
{
    return query("SELECT day, received, sent FROM traffic ORDER BY day DESC LIMIT ?", {most})
        .value_or(Rows());
}

Rows History::lineBetween(qint64 from, qint64 until)
{
    return query("SELECT time, span, carrier, down_rate, up_rate, down_margin, up_margin,"
                 " down_attenuation, up_attenuation, down_errors, up_errors FROM line"
                 " WHERE time >= ? AND time < ? ORDER BY time, span DESC",
        {from, until})
        .value_or(Rows());
}

Traffic History::trafficBetween(const QDate &begin, const QDate &end)
{
    const Rows rows
        = query("SELECT ifnull(sum(received), 0) AS received, ifnull(sum(sent), 0) AS sent"
                " FROM traffic WHERE day BETWEEN ? AND ?",
            {begin.toString(Qt::ISODate), end.toString(Qt::ISODate)})
              .value_or(Rows());
    const QVariantMap row = rows.value(0);
    return {row.value(QStringLiteral("received")).toULongLong(),
        row.value(QStringLiteral("sent")).toULongLong()};
}

QDate History::firstDay()
{
    const Rows rows
        = query("SELECT min(day) AS day FROM traffic WHERE day > ?", {QString()}).value_or(Rows());
    return QDate::fromString(rows.value(0).value(QStringLiteral("day")).toString(), Qt::ISODate);
}

} // namespace keeper
