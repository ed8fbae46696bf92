// SPDX-License-Identifier: MIT
#include "client/pppd_words.h"

#include "support/files/pppd_escapes.h"

namespace {

constexpr QLatin1Char quote('"');
constexpr QLatin1Char backslash('\\');

enum class QuoteForm
{
    Hidden, ///< no quote is left in the text
    Short,
};

QString encoded(const QString &value, QuoteForm form)
{
    QString text;
    for (int place = 0; place < value.size(); ++place) {
        const QChar character = value.at(place);
        const QChar next = place + 1 < value.size() ? value.at(place + 1) : QChar();
        if (character == quote) {
            text += form == QuoteForm::Short && !next.isSpace() ? QStringLiteral("\\\"")
                                                                : QStringLiteral("\\x22");
        } else if (character == backslash) {
            text += next.digitValue() >= 0 ? QStringLiteral("\\x5c") : QStringLiteral("\\\\");
        } else {
            text += character;
        }
    }
    return text;
}

} // namespace

QString encodedLogin(const QString &login)
{
    return encoded(login, QuoteForm::Hidden);
}

QString encodedPassword(const QString &password)
{
    return encoded(password, QuoteForm::Short);
}

QString decodedWord(const QString &word)
{
    return QString::fromUtf8(readByPppd(word.toUtf8()));
}
