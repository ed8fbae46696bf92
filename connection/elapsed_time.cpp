// SPDX-License-Identifier: MIT
#include "connection/elapsed_time.h"

#include <QRegExp>

std::optional<QTime> parseElapsedTime(const QString &text)
{
    const QRegExp time(QStringLiteral("\\s*([0-9]{2})?:?([0-9]{2}):([0-9]{2})"));
    if (time.indexIn(text) < 0) {
        return std::nullopt;
    }
    return QTime(time.cap(1).toInt(), time.cap(2).toInt(), time.cap(3).toInt());
}
