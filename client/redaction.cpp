// SPDX-License-Identifier: MIT
#include "client/redaction.h"

#include <QRegularExpression>

QString withoutAccount(QString text, const QStringList &secrets)
{
    static const QRegularExpression said(
        QStringLiteral("\\b(user|name|login|password|secret)(\\s*[= ]\\s*)"
                       "(\"[^\"\\n]*\"|'[^'\\n]*'|<[^>\\n]*>)"),
        QRegularExpression::CaseInsensitiveOption);
    text.replace(said, QStringLiteral("\\1\\2…"));
    for (const QString &secret : secrets) {
        if (!secret.isEmpty()) {
            text.replace(
                QRegularExpression(
                    QStringLiteral("(?<!\\w)%1(?!\\w)").arg(QRegularExpression::escape(secret))),
                QStringLiteral("…"));
        }
    }
    return text;
}
