// SPDX-License-Identifier: MIT
#include "client/text_format.h"

#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>
#include <algorithm>
#include <array>
#include <cmath>

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

QString momentText(qint64 time)
{
    return QLocale::c().toString(
        QDateTime::fromSecsSinceEpoch(time), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QString momentIso(qint64 time)
{
    const QDateTime local = QDateTime::fromSecsSinceEpoch(time);
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODate);
}

std::optional<quint64> bytesFromText(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^(\\d{1,15})(?:[.,](\\d{1,6}))? ?(|[kKMGT])B\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const double number
        = (match.captured(1) + QLatin1Char('.') + match.captured(2) + QLatin1Char('0')).toDouble();
    const int unit = QStringLiteral("kMGT").indexOf(match.captured(3), 0, Qt::CaseInsensitive) + 1;
    const double bytes = number * std::pow(1000.0, match.captured(3).isEmpty() ? 0 : unit);
    // Below what a number of the bus holds with a sign.
    return bytes >= 1 && bytes < 9e18 ? std::optional<quint64>(quint64(std::llround(bytes)))
                                      : std::nullopt;
}

bool isSteering(QChar character)
{
    switch (character.unicode()) {
    case 0x061C: // Arabic letter mark
    case 0x200E: // the other marks of a direction
    case 0x200F:
    case 0x2028: // line and paragraph separator
    case 0x2029:
        return true;
    default:
        break;
    }
    const auto isFromTo = [character](ushort first, ushort last) {
        return character.unicode() >= first && character.unicode() <= last;
    };
    // Embeddings and overrides; isolates.
    return character.category() == QChar::Other_Control || isFromTo(0x202A, 0x202E)
        || isFromTo(0x2066, 0x2069);
}

QString printable(const QString &text)
{
    QString clean = text;
    std::replace_if(clean.begin(), clean.end(), isSteering, QChar(QChar::ReplacementCharacter));
    return clean;
}
