// SPDX-License-Identifier: MIT
#include "keeper/settings.h"

#include <QString>
#include <optional>

namespace keeper {

namespace {

struct Key
{
    const char *name;
    qint64 Pauses::*pause;
};

constexpr Key keys[] = {
    {"pause_unanswered", &Pauses::unanswered},
    {"pause_unanswered_most", &Pauses::unansweredMost},
    {"pause_after_a_day", &Pauses::afterADay},
    {"pause_hung_up", &Pauses::hungUp},
    {"pause_hung_up_most", &Pauses::hungUpMost},
    {"pause_refused_once", &Pauses::refusedOnce},
    {"pause_refused_twice", &Pauses::refusedTwice},
    {"pause_refused_thrice", &Pauses::refusedThrice},
    {"pause_refused_most", &Pauses::refusedMost},
};

constexpr double secondsMost = 7 * 86400;

/// The value in milliseconds; nothing when it is no number of seconds up to a week.
std::optional<qint64> milliseconds(const QByteArray &text)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0) || seconds > secondsMost) {
        return std::nullopt;
    }
    return qint64(seconds * 1000);
}

/// What is wrong with one line; nothing when it was taken.
QString take(const QByteArray &line, Pauses *pauses)
{
    const int place = line.indexOf('=');
    const QByteArray name = line.left(place).trimmed();
    for (const Key &key : keys) {
        if (place > 0 && name == key.name) {
            const std::optional<qint64> value = milliseconds(line.mid(place + 1).trimmed());
            if (value) {
                pauses->*key.pause = *value;
                return QString();
            }
            return QStringLiteral("the value is no number of seconds up to a week");
        }
    }
    return QStringLiteral("there is no such key");
}

} // namespace

Settings settingsFrom(const QByteArray &text)
{
    Settings settings;
    int number = 0;
    for (const QByteArray &whole : text.split('\n')) {
        ++number;
        const QByteArray line = whole.trimmed();
        if (line.isEmpty() || line.startsWith('#')) {
            continue;
        }
        const QString problem = take(line, &settings.pauses);
        if (!problem.isEmpty()) {
            settings.problems.append(QStringLiteral("line %1: %2").arg(number).arg(problem));
        }
    }
    return settings;
}

} // namespace keeper
