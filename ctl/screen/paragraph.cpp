// SPDX-License-Identifier: MIT
#include "ctl/screen/paragraph.h"

#include "client/text_format.h"

#include <algorithm>

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

QString printableLines(const QString &text, const QStringList &ours)
{
    QString clean;
    clean.reserve(text.size());
    for (int place = 0; place < text.size(); ++place) {
        const QChar character = text.at(place);
        const auto own = std::find_if(ours.begin(), ours.end(),
            [&](const QString &sequence) { return text.midRef(place).startsWith(sequence); });
        if (own != ours.end()) {
            clean += *own;
            place += own->size() - 1;
        } else if (character == QLatin1Char('\n') || character == QLatin1Char('\t')) {
            clean += character;
        } else {
            clean += isSteering(character) ? QChar(QChar::ReplacementCharacter) : character;
        }
    }
    return clean;
}
