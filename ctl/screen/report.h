// SPDX-License-Identifier: MIT
// What a reading command has found out, printed as text, as terse lines or as JSON.
#pragma once

#include "ctl/screen/terminal.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

/// Named values in their order. A dot in a key makes an object within the object ("line.state").
class Report
{
public:
    /// Adds a value. @p text is what a person reads; a field without a label is not shown to them.
    void add(const QString &key, const QJsonValue &value, const QString &label = QString(),
        const QString &text = QString(), Tone tone = Tone::Plain);
    /// Adds a sentence that only a person reads.
    void note(const QString &text);

    void print(const Terminal &terminal) const;

    QJsonObject toJson() const;
    /// One "key=value" per value; null becomes empty, line feeds become blanks.
    QStringList toTerse() const;

private:
    struct Field
    {
        QString key;
        QJsonValue value;
        QString label;
        QString text;
        Tone tone;
    };
    QList<Field> m_fields;
    QStringList m_notes;
};

/// Rows of equal shape under one name.
class Table
{
public:
    /// @p keys name the columns in JSON and give their order; @p labels head them for a person.
    Table(const QString &name, const QStringList &keys, const QStringList &labels);

    /// Adds a row, one value a column; @p texts stands for them before a person when given.
    void add(const QList<QJsonValue> &values, const QStringList &texts = QStringList());
    bool isEmpty() const { return m_rows.isEmpty(); }

    void print(const Terminal &terminal) const;

    QJsonObject toJson() const;
    /// One row a line, values separated by a tabulator, without a head.
    QStringList toTerse() const;
    /// Aligned columns under their labels; the last column wraps within @p width.
    QStringList toHuman(int width) const;

private:
    struct Row
    {
        QList<QJsonValue> values;
        QStringList texts;
    };
    QString m_name;
    QStringList m_keys;
    QStringList m_labels;
    QList<Row> m_rows;
};

/// A JSON value as one word for terse output.
QString terseText(const QJsonValue &value);

/// An object as JSON, in which what would steer a terminal is escaped, and
/// all that is not ASCII where the locale could not show it.
QString jsonText(const QJsonObject &object, bool compact);

/// Prints an object, indented; with @p compact on one line, as streams of objects are.
void printJson(const Terminal &terminal, const QJsonObject &object, bool compact = false);
