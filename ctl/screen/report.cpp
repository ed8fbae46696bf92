// SPDX-License-Identifier: MIT
#include "ctl/screen/report.h"

#include "client/text_format.h"
#include "ctl/screen/charset.h"
#include "ctl/screen/paragraph.h"

#include <QJsonDocument>
#include <algorithm>
#include <numeric>

namespace {

/// @p object with @p value put under @p path, objects in between made as needed.
QJsonObject withValue(QJsonObject object, QStringList path, const QJsonValue &value)
{
    const QString key = path.takeFirst();
    object[key]
        = path.isEmpty() ? value : QJsonValue(withValue(object[key].toObject(), path, value));
    return object;
}

} // namespace

QString terseText(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Double:
        return QString::number(value.toDouble(), 'g', 17);
    case QJsonValue::String: {
        QString text = value.toString();
        return printable(text.replace(QLatin1Char('\n'), QLatin1Char(' '))
                             .replace(QLatin1Char('\t'), QLatin1Char(' ')));
    }
    case QJsonValue::Array: {
        QStringList items;
        for (const auto &item : value.toArray()) {
            items.append(terseText(item));
        }
        return items.join(QLatin1Char(','));
    }
    case QJsonValue::Null:
    case QJsonValue::Object:
    case QJsonValue::Undefined:
        break;
    }
    return QString();
}

QString jsonText(const QJsonObject &object, bool compact)
{
    const QByteArray bytes
        = QJsonDocument(object).toJson(compact ? QJsonDocument::Compact : QJsonDocument::Indented);
    // The library escapes the controls below the blank; line feeds are left between the values.
    QString text;
    for (const QChar character : QString::fromUtf8(bytes.trimmed())) {
        const bool isForeign = isLocaleEightBit() && character.unicode() > 0x7e;
        if (isForeign || (isSteering(character) && character != QLatin1Char('\n'))) {
            text += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        } else {
            text += character;
        }
    }
    return text;
}

void printJson(const Terminal &terminal, const QJsonObject &object, bool compact)
{
    terminal.line(jsonText(object, compact));
}

void Report::add(const QString &key, const QJsonValue &value, const QString &label,
    const QString &text, Tone tone)
{
    m_fields.append({key, value, label, text, tone});
}

void Report::note(const QString &text)
{
    m_notes.append(text);
}

QJsonObject Report::toJson() const
{
    QJsonObject object;
    for (const Field &field : m_fields) {
        object = withValue(object, field.key.split(QLatin1Char('.')), field.value);
    }
    return object;
}

QStringList Report::toTerse() const
{
    QStringList lines;
    for (const Field &field : m_fields) {
        lines.append(field.key + QLatin1Char('=') + terseText(field.value));
    }
    return lines;
}

void Report::print(const Terminal &terminal) const
{
    if (terminal.form == Form::Json) {
        printJson(terminal, toJson());
        return;
    }
    if (terminal.form == Form::Terse) {
        for (const QString &line : toTerse()) {
            terminal.line(line);
        }
        return;
    }
    int widest = 0;
    for (const Field &field : m_fields) {
        widest = std::max(widest, field.label.size());
    }
    for (const Field &field : m_fields) {
        if (field.label.isEmpty()) {
            continue;
        }
        const QString label = field.label + QLatin1Char(':');
        QStringList lines = wrapped(field.text, terminal.width() - widest - 2);
        for (QString &line : lines) {
            line = terminal.toned(printable(line), field.tone);
        }
        terminal.line(terminal.toned(label, Tone::Strong)
            + QString(widest + 2 - label.size(), QLatin1Char(' '))
            + lines.join(QLatin1Char('\n') + QString(widest + 2, QLatin1Char(' '))));
    }
    for (const QString &text : m_notes) {
        terminal.line();
        terminal.paragraph(text);
    }
}

Table::Table(const QString &name, const QStringList &keys, const QStringList &labels)
    : m_name(name)
    , m_keys(keys)
    , m_labels(labels)
{
}

void Table::add(const QList<QJsonValue> &values, const QStringList &texts)
{
    m_rows.append({values, texts});
}

QJsonObject Table::toJson() const
{
    QJsonArray rows;
    for (const Row &row : m_rows) {
        QJsonObject object;
        for (int column = 0; column < m_keys.size(); ++column) {
            object[m_keys.at(column)] = row.values.at(column);
        }
        rows.append(object);
    }
    return {{m_name, rows}};
}

QStringList Table::toTerse() const
{
    QStringList lines;
    for (const Row &row : m_rows) {
        QStringList cells;
        for (const QJsonValue &value : row.values) {
            cells.append(terseText(value));
        }
        lines.append(cells.join(QLatin1Char('\t')));
    }
    return lines;
}

QStringList Table::toHuman(int width) const
{
    QList<QStringList> rows = {m_labels};
    for (const Row &row : m_rows) {
        QStringList cells = row.texts;
        for (int column = cells.size(); column < row.values.size(); ++column) {
            cells.append(terseText(row.values.at(column)));
        }
        rows.append(cells);
    }
    QList<int> widths;
    for (int column = 0; column < m_labels.size(); ++column) {
        int widest = 0;
        for (const QStringList &cells : rows) {
            widest = std::max(widest, cells.at(column).size());
        }
        widths.append(widest + 2);
    }
    widths.removeLast();
    const int margin = std::accumulate(widths.begin(), widths.end(), 0);
    const QString indent(margin, QLatin1Char(' '));
    QStringList lines;
    for (const QStringList &cells : rows) {
        QString line;
        for (int column = 0; column < widths.size(); ++column) {
            line += printable(cells.at(column)).leftJustified(widths.at(column));
        }
        line += wrapped(printable(cells.constLast()), std::max(20, width - margin))
                    .join(QLatin1Char('\n') + indent);
        lines.append(line);
    }
    return lines;
}

void Table::print(const Terminal &terminal) const
{
    if (terminal.form == Form::Json) {
        printJson(terminal, toJson());
        return;
    }
    QStringList lines = terminal.form == Form::Terse ? toTerse() : toHuman(terminal.width());
    if (terminal.form == Form::Human) {
        lines.first() = terminal.toned(lines.constFirst(), Tone::Strong);
    }
    for (const QString &line : lines) {
        terminal.line(line);
    }
}
