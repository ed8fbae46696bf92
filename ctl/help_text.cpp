// SPDX-License-Identifier: MIT
#include "ctl/help_text.h"

#include "client/say.h"
#include "ctl/screen/paragraph.h"

#include <QJsonArray>
#include <algorithm>

namespace {

QString optionWords(const Option &option)
{
    QString words = option.letter != 0 ? QStringLiteral("-%1, ").arg(QLatin1Char(option.letter))
                                       : QStringLiteral("    ");
    words += QLatin1String("--") + QLatin1String(option.name);
    if (option.value != nullptr) {
        words += QLatin1Char(' ') + QLatin1String(option.value);
    }
    return words;
}

QString usageOf(const Command &command)
{
    QString usage = QStringLiteral("norvixctl ") + QLatin1String(command.path);
    const QString arguments = QLatin1String(command.arguments);
    if (!optionsOf(command).empty()) {
        usage += QStringLiteral(" [OPTION]…");
    }
    return arguments.isEmpty() ? usage : usage + QLatin1Char(' ') + arguments;
}

/// Rows of a name and its explanation, the explanations below each other.
QStringList definitions(const QList<QPair<QString, QString>> &rows, int width)
{
    int widest = 0;
    for (const auto &row : rows) {
        widest = std::max(widest, row.first.size());
    }
    const QString margin(widest + 4, QLatin1Char(' '));
    QStringList lines;
    for (const auto &row : rows) {
        QStringList text = wrapped(row.second, std::max(20, width - widest - 4));
        text.first().prepend(QLatin1String("  ") + row.first.leftJustified(widest + 2));
        lines.append(text.join(QLatin1Char('\n') + margin));
    }
    return lines;
}

QJsonObject optionObject(const Option &option)
{
    QJsonObject object = {{QStringLiteral("name"), QLatin1String(option.name)},
        {QStringLiteral("summary"), QLatin1String(option.summary)}};
    if (option.letter != 0) {
        object[QStringLiteral("letter")] = QString(QLatin1Char(option.letter));
    }
    if (option.value != nullptr) {
        object[QStringLiteral("value")] = QLatin1String(option.value);
    }
    return object;
}

} // namespace

QStringList overviewHelp(int width, const QString &group)
{
    QStringList lines
        = {Say::tr("Usage: %1").arg(QStringLiteral("norvixctl COMMAND [OPTION]…")), QString(),
            Say::tr("Bring a USB ADSL modem's connection up and down, and watch it."), QString()};
    QList<QPair<QString, QString>> rows;
    for (const Command &command : commandTable()) {
        const QString path = QLatin1String(command.path);
        if (group.isEmpty() || path.startsWith(group + QLatin1Char(' '))) {
            const QString arguments = QLatin1String(command.arguments);
            rows.append({arguments.isEmpty() ? path : path + QLatin1Char(' ') + arguments,
                Say::tr(command.summary)});
        }
    }
    lines += definitions(rows, width);
    lines
        += {QString(), Say::tr("“norvixctl COMMAND --help” explains a command; norvixctl(1) all.")};
    return lines;
}

QStringList commandHelp(const Command &command, int width)
{
    QStringList lines = {Say::tr("Usage: %1").arg(usageOf(command)), QString()};
    lines += wrapped(Say::tr(command.summary) + QLatin1Char('.'), width);
    lines.append(QString());
    QList<QPair<QString, QString>> rows;
    for (const Option &option : optionsOf(command)) {
        rows.append({optionWords(option), Say::tr(option.summary)});
    }
    return lines + definitions(rows, width);
}

QJsonObject commandTableObject()
{
    QJsonArray commands;
    for (const Command &command : commandTable()) {
        QJsonArray options;
        for (const Option &option : optionsOf(command)) {
            options.append(optionObject(option));
        }
        commands.append(QJsonObject{{QStringLiteral("command"), QLatin1String(command.path)},
            {QStringLiteral("arguments"), QLatin1String(command.arguments)},
            {QStringLiteral("summary"), QLatin1String(command.summary)},
            {QStringLiteral("reading"), command.isReading}, {QStringLiteral("options"), options}});
    }
    return {{QStringLiteral("commands"), commands}};
}
