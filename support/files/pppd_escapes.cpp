// SPDX-License-Identifier: MIT
#include "support/files/pppd_escapes.h"

namespace {

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

QByteArray readByPppd(const QByteArray &word)
{
    QByteArray read;
    int place = 0;
    while (place < word.size()) {
        char byte = word.at(place++);
        if (byte == '\\' && place < word.size()) {
            byte = escaped(word, place);
        }
        if (byte == '\0') {
            break; // pppd's text ends here
        }
        read += byte;
    }
    return read;
}
