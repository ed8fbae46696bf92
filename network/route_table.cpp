// SPDX-License-Identifier: MIT
#include "network/route_table.h"

#include <QRegExp>
#include <QStringList>

QString interfaceOfLastRoute(const QString &routeTable)
{
    QString text = routeTable;
    text.replace(QRegExp(QStringLiteral("[ ]{1,10}")), QStringLiteral("\n"));
    text.replace(QRegExp(QStringLiteral("[\t]{1,10}")), QStringLiteral("\n"));

    // The other columns are upper-case hexadecimal and never match. The destination is not looked
    // at: the last route with a fitting interface wins, default or not.
    const QRegExp interfaceName(QStringLiteral("[a-z]{3,4}[0-9]{1}"));
    const QStringList parts = text.split(QLatin1Char('\n'), Qt::KeepEmptyParts);
    for (auto part = parts.crbegin(); part != parts.crend(); ++part) {
        if (part->contains(interfaceName)) {
            return *part;
        }
    }
    return QString();
}
