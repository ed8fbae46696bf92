// SPDX-License-Identifier: MIT
#include "client/pppd_words.h"

#include <QByteArray>

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

/// The number of at most @p mostDigits digits to @p base at @p place, which is moved behind it.
int number(const QByteArray &word, int &place, int base, int mostDigits)
{
    int value = 0;
    for (int digits = 0; digits < mostDigits && place < word.size(); ++digits, ++place) {
        bool isDigit = false;
        const int digit = word.mid(place, 1).toInt(&isDigit, base);
        if (!isDigit) {
            break;
        }
        value = value * base + digit;
    }
    return value;
}

/// The byte that the escape at @p place, behind its backslash, stands for; moves behind it.
char escaped(const QByteArray &word, int &place)
{
    const char letter = word.at(place);
    if (letter >= '0' && letter <= '7') {
        return char(number(word, place, 8, 3));
    }
    ++place;
    switch (letter) {
    case 'a':
        return '\a';
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 's':
        return ' ';
    case 't':
        return '\t';
    case 'x':
        return char(number(word, place, 16, 2));
    default:
        return letter;
    }
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
    const QByteArray bytes = word.toUtf8();
    QByteArray read;
    int place = 0;
    while (place < bytes.size()) {
        char byte = bytes.at(place++);
        if (byte == '\\' && place < bytes.size()) {
            byte = escaped(bytes, place);
        }
        if (byte == '\0') {
            break; // pppd's text ends here
        }
        read += byte;
    }
    return QString::fromUtf8(read);
}
