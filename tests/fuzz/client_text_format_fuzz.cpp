// SPDX-License-Identifier: MIT
// Nothing that steers a terminal gets out, in no form of output, and wrapping loses no word.
#include "client/text_format.h"
#include "ctl/screen/paragraph.h"
#include "ctl/screen/report.h"
#include "fuzz_input.h"

#include <QJsonDocument>
#include <algorithm>
#include <cstring>

namespace {

bool isHarmless(const QString &text, const QString &allowed = QString())
{
    return std::none_of(text.begin(), text.end(),
        [&](QChar character) { return isSteering(character) && !allowed.contains(character); });
}

void wrap(const QString &text, int width, int indent)
{
    const auto wordsOf = [](const QString &words) {
        return QString(words)
            .replace(QLatin1Char('\n'), QLatin1Char(' '))
            .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    };
    const QStringList lines = wrapped(text, width, indent);
    require(wordsOf(lines.join(QLatin1Char('\n'))) == wordsOf(text));
    for (const QString &line : lines) {
        const bool isOneWord = line.simplified().count(QLatin1Char(' ')) == 0
            || line.split(QLatin1Char(' '), Qt::SkipEmptyParts).size() <= 1;
        require(isOneWord || line.size() <= std::max(width, indent));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const int width = std::abs(input.number() % 200);
    const int indent = std::abs(input.number() % 200);
    const QString text = QString::fromUtf8(input.rest());

    wrap(text, width, indent);
    require(isHarmless(printable(text)) && printable(text).size() == text.size());
    const QString ours = QStringLiteral("\x1b[1m");
    require(isHarmless(printableLines(text), QStringLiteral("\n\t")));
    require(isHarmless(printableLines(text, {ours}).remove(ours), QStringLiteral("\n\t")));

    require(isHarmless(terseText(text)));
    const QJsonObject object = {{QStringLiteral("key"), text}};
    const QString json = jsonText(object, true);
    require(isHarmless(json));
    const auto again = QJsonDocument::fromJson(json.toUtf8()).object();
    require(again.value(QStringLiteral("key")).isString());
    Table table(QStringLiteral("rows"), {QStringLiteral("a"), QStringLiteral("b")},
        {QStringLiteral("A"), QStringLiteral("B")});
    table.add({text, text});
    for (const QString &line : table.toHuman(width)) {
        require(isHarmless(line, QStringLiteral("\n")));
    }
    for (const QString &line : table.toTerse()) {
        require(isHarmless(line, QStringLiteral("\t")) && line.count(QLatin1Char('\t')) == 1);
    }

    double bytes = 0;
    qint64 seconds = 0;
    memcpy(&bytes, data, std::min(size, sizeof(bytes)));
    memcpy(&seconds, data, std::min(size, sizeof(seconds)));
    require(!bytesText(bytes).isEmpty() && rateText(bytes).endsWith(QLatin1String("/s")));
    require(clockText(seconds).count(QLatin1Char(':')) == 2);
    return 0;
}
