// SPDX-License-Identifier: MIT
// The interface of the last route by the plain rule, which the daemon's search has to equal.
#pragma once

#include <QRegExp>
#include <QString>
#include <QStringList>

/// Every part is tested in file order; each hit replaces the last.
inline QString plainRouteSearch(QString text)
{
    text.replace(QRegExp(QStringLiteral("[ ]{1,10}")), QStringLiteral("\n"));
    text.replace(QRegExp(QStringLiteral("[\t]{1,10}")), QStringLiteral("\n"));
    QString answer;
    const QStringList parts = text.split(QLatin1Char('\n'), Qt::KeepEmptyParts);
    for (const QString &part : parts) {
        if (QRegExp(QStringLiteral("[a-z]{3,4}[0-9]{1}")).indexIn(part) >= 0) {
            answer = part;
        }
    }
    return answer;
}
