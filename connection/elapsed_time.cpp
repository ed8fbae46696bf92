// SPDX-License-Identifier: MIT
#include "connection/elapsed_time.h"

#include <QRegExp>

namespace {

// More than ps prints. The search takes time that grows with the square of a run of blanks.
constexpr int longestText = 50;

} // namespace

std::optional<QTime> parseElapsedTime(const QString &text)
{
    const QRegExp time(QStringLiteral("\\s*([0-9]{2})?:?([0-9]{2}):([0-9]{2})"));
    if (time.indexIn(text.left(longestText)) < 0) {
        return std::nullopt;
    }
    return QTime(time.cap(1).toInt(), time.cap(2).toInt(), time.cap(3).toInt());
}
