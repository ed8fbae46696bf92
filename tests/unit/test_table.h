// SPDX-License-Identifier: MIT
// Tables of tests, one row a line.
#pragma once

#include <QTest>

/// Names the columns of a test's table and gives what adds a row:
///     const auto row = table<QByteArray, int>("content", "pid");
///     row("as pppd writes it", "1234\n", 1234);
template <typename... Columns, typename... Names> auto table(Names... names)
{
    static_assert(sizeof...(Columns) == sizeof...(Names), "a name for each column");
    (QTest::addColumn<Columns>(names), ...);
    return [](const char *name, const Columns &...values) {
        QTestData &row = QTest::newRow(name);
        ((row << values), ...);
    };
}

/// The same for texts, each of which is its row's name as well: the first column.
///     const auto row = tableOfTexts<QString, int>("written", "number");
///     row("0x1110", 0);
template <typename Text, typename... Columns, typename... Names> auto tableOfTexts(Names... names)
{
    const auto row = table<Text, Columns...>(names...);
    return [row](const Text &text, const Columns &...values) {
        const QByteArray name = QVariant(text).toByteArray().replace('\n', "\\n");
        row(name.isEmpty() ? "nothing" : name.constData(), text, values...);
    };
}
