// SPDX-License-Identifier: MIT
#include "client/text_format.h"

#include <QLocale>
#include <array>

QString bytesText(double bytes)
{
    constexpr std::array<const char *, 5> units = {"B", "kB", "MB", "GB", "TB"};
    size_t unit = 0;
    // The next unit begins where one decimal would already be rounded up to 1000.0.
    while (bytes >= (unit == 0 ? 1000 : 999.95) && unit + 1 < units.size()) {
        bytes /= 1000;
        ++unit;
    }
    return QLocale().toString(bytes, 'f', unit == 0 ? 0 : 1) + QLatin1Char(' ')
        + QLatin1String(units.at(unit));
}

QString rateText(double bytesPerSecond)
{
    return bytesText(bytesPerSecond) + QLatin1String("/s");
}

QString clockText(qint64 seconds)
{
    const QLatin1Char zero('0');
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600, 2, 10, zero)
        .arg(seconds / 60 % 60, 2, 10, zero)
        .arg(seconds % 60, 2, 10, zero);
}

QStringList wrapped(const QString &text, int width, int indent)
{
    QStringList lines;
    const QString margin(indent, QLatin1Char(' '));
    for (const QString &paragraph : text.split(QLatin1Char('\n'))) {
        QString line = lines.isEmpty() ? QString() : margin;
        bool empty = true;
        for (const QString &word : paragraph.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            if (!empty && line.size() + 1 + word.size() > width) {
                lines.append(line);
                line = margin;
                empty = true;
            }
            line += (empty ? QString() : QStringLiteral(" ")) + word;
            empty = false;
        }
        lines.append(line);
    }
    return lines;
}

QString printable(const QString &text)
{
    QString clean = text;
    for (QChar &character : clean) {
        if (character.category() == QChar::Other_Control) {
            character = QChar(0xFFFD);
        }
    }
    return clean;
}
