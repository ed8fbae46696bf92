// SPDX-License-Identifier: MIT
#include "network/account_files.h"

#include <QRegExp>
#include <QStringBuilder>
#include <QVector>

namespace {

// The files are matched as the text that they are in the local encoding, so that a character counts
// as one whatever bytes it has. Every byte comes back as it was: one that is no part of a character
// is held as a lone surrogate, which no text contains.
constexpr ushort heldByte = 0xdc00;
constexpr int longestCharacter = 4;

bool isHeldByte(const QString &text, int place)
{
    return text.at(place).isLowSurrogate() && (place == 0 || !text.at(place - 1).isHighSurrogate());
}

/// How many bytes of the beginning of @p bytes are one character; 0 when it begins with none.
int characterSize(const QByteArray &bytes)
{
    for (int size = 1; size <= bytes.size(); ++size) {
        const QByteArray candidate = bytes.left(size);
        const QString character = QString::fromLocal8Bit(candidate);
        const bool isOne = character.toUcs4().size() == 1
            && character.at(0) != QChar(QChar::ReplacementCharacter);
        if (isOne && character.toLocal8Bit() == candidate) {
            return size;
        }
    }
    return 0;
}

QString heldText(const QByteArray &bytes)
{
    QString text;
    text.reserve(bytes.size());
    int place = 0;
    while (place < bytes.size()) {
        const auto byte = uchar(bytes.at(place));
        if (byte < 0x80) {
            text.append(QLatin1Char(char(byte)));
            ++place;
            continue;
        }
        const QByteArray next = bytes.mid(place, longestCharacter);
        const int size = characterSize(next);
        if (size == 0) {
            text.append(QChar(ushort(heldByte + byte)));
            ++place;
        } else {
            text.append(QString::fromLocal8Bit(next.left(size)));
            place += size;
        }
    }
    return text;
}

QByteArray heldBytes(const QString &text)
{
    QByteArray bytes;
    int begin = 0;
    for (int place = 0; place < text.size(); ++place) {
        if (isHeldByte(text, place)) {
            bytes += text.mid(begin, place - begin).toLocal8Bit();
            bytes += char(text.at(place).unicode() - heldByte);
            begin = place + 1;
        }
    }
    return bytes + text.mid(begin).toLocal8Bit();
}

/// The text of a file ends at the first NUL byte.
QString textOf(const QByteArray &content)
{
    const int nul = content.indexOf('\0');
    return heldText(nul < 0 ? content : content.left(nul));
}

QString heldEntry(const QString &entry)
{
    return heldText(entry.toLocal8Bit());
}

QString valueOf(const QString &held)
{
    return QString::fromLocal8Bit(heldBytes(held));
}

/// Takes as little as it can: the dot matches line breaks and quotes too, and would reach into the
/// entries and options that follow, which are other people's.
QRegExp minimal(const QString &pattern)
{
    QRegExp expression(pattern);
    expression.setMinimal(true);
    return expression;
}

QRegExp entryPattern()
{
    return minimal(QStringLiteral("\"(.{1,50})\"\\s+\\*\\s+\"(.{1,50})\"\\s+\\*"));
}

QRegExp firstEntryPattern()
{
    return minimal(QStringLiteral("^\"(.{1,50})\"\\s+\\*\\s+\"(.{1,50})\"\\s+\\*"));
}

QRegExp loginLinePattern()
{
    return minimal(QStringLiteral("user \".{1,50}\""));
}

std::optional<Account> accountIn(const QByteArray &piece, QRegExp &pattern)
{
    // What every entry has; asked first because the pattern takes its time on a file full of
    // quotes.
    const bool mayHoldEntry = piece.count('*') >= 2 && piece.count('"') >= 4;
    if (!mayHoldEntry || pattern.indexIn(textOf(piece)) < 0) {
        return std::nullopt;
    }
    return Account{valueOf(pattern.cap(1)), valueOf(pattern.cap(2))};
}

} // namespace

std::optional<Account> accountFromSecretsPiece(const QByteArray &piece)
{
    QRegExp pattern = entryPattern();
    return accountIn(piece, pattern);
}

std::optional<Account> accountFromSecrets(const QByteArray &content)
{
    constexpr int longestPiece = 99;
    QRegExp pattern = entryPattern();
    int start = 0;
    while (start < content.size()) {
        const QByteArray window = content.mid(start, longestPiece);
        const int lineFeed = window.indexOf('\n');
        const QByteArray piece = lineFeed < 0 ? window : window.left(lineFeed + 1);
        if (std::optional<Account> account = accountIn(piece, pattern)) {
            return account;
        }
        start += piece.size();
    }
    return std::nullopt;
}

QByteArray withSecretsEntry(
    const QByteArray &content, const QString &login, const QString &password)
{
    QString text = textOf(content);
    const QString entry = heldEntry("\"" % login % "\" * \"" % password % "\" *");
    QRegExp pattern = firstEntryPattern();
    // Keeps the anchor at the beginning of the file, not of a line: files that begin with comments
    // get a further entry at every call, glued to a last line that has no line feed. Clients count
    // on finding an administrator's own lines as they were.
    if (pattern.indexIn(text) >= 0) {
        text.replace(pattern, entry);
    } else {
        text += entry % "\n";
    }
    return heldBytes(text);
}

QByteArray withLoginLine(const QByteArray &content, const QString &login)
{
    QString text = textOf(content);
    const QString line = heldEntry("user \"" % login % "\"");
    QRegExp pattern = loginLinePattern();
    if (pattern.indexIn(text) >= 0) {
        text.replace(pattern, line);
    } else {
        text += line % "\n";
    }
    return heldBytes(text);
}
