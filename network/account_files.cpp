// SPDX-License-Identifier: MIT
#include "network/account_files.h"

#include <QRegExp>
#include <QStringBuilder>

namespace {

// Files are held as Latin-1, one character a byte, so that every byte comes back as it was.

/// The text ends at the first NUL byte.
QString heldText(const QByteArray &bytes)
{
    const int nul = bytes.indexOf('\0');
    return QLatin1String(bytes.constData(), nul < 0 ? bytes.size() : nul);
}

QString heldEntry(const QString &entry)
{
    const QByteArray bytes = entry.toLocal8Bit();
    return QLatin1String(bytes.constData(), bytes.size());
}

QString valueOf(const QString &held)
{
    return QString::fromLocal8Bit(held.toLatin1());
}

/// Keeps the dot that matches line breaks and takes as much as it can: short neighbours of an entry
/// or login line are taken as one with it.
QRegExp entryPattern()
{
    return QRegExp(QStringLiteral("\"(.{1,50})\"\\s+\\*\\s+\"(.{1,50})\"\\s+\\*"));
}

QRegExp firstEntryPattern()
{
    return QRegExp(QStringLiteral("^\"(.{1,50})\"\\s+\\*\\s+\"(.{1,50})\"\\s+\\*"));
}

QRegExp loginLinePattern()
{
    return QRegExp(QStringLiteral("user \".{1,50}\""));
}

std::optional<Account> accountIn(const QByteArray &piece, QRegExp &pattern)
{
    // What every entry has; asked first because the pattern takes its time on a file full of
    // quotes.
    const bool mayHoldEntry = piece.count('*') >= 2 && piece.count('"') >= 4;
    if (!mayHoldEntry || pattern.indexIn(heldText(piece)) < 0) {
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
    QString text = heldText(content);
    const QString entry = heldEntry("\"" % login % "\" * \"" % password % "\" *");
    QRegExp pattern = firstEntryPattern();
    // Keeps the anchor at the beginning of the file, not of a line: files that begin with comments
    // get a further entry at every call.
    if (pattern.indexIn(text) >= 0) {
        text.replace(pattern, entry);
    } else {
        text += entry % "\n";
    }
    return text.toLatin1();
}

QByteArray withLoginLine(const QByteArray &content, const QString &login)
{
    QString text = heldText(content);
    const QString line = heldEntry("user \"" % login % "\"");
    QRegExp pattern = loginLinePattern();
    if (pattern.indexIn(text) >= 0) {
        text.replace(pattern, line);
    } else {
        text += line % "\n";
    }
    return text.toLatin1();
}
