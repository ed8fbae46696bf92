// SPDX-License-Identifier: MIT
#include "network/account_safety.h"

#include "network/account_files.h"
#include "support/files/pppd_escapes.h"

#include <algorithm>
#include <vector>

namespace {

// What the patterns that find an entry again allow.
constexpr int longestValue = 50;

bool isSpace(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// The text ends at its first NUL byte, for pppd and for us.
QByteArray untilNul(const QByteArray &content)
{
    const int nul = content.indexOf('\0');
    return nul < 0 ? content : content.left(nul);
}

enum class Value
{
    Login,
    Password,
};

/// Whether the quotation mark at @p place of a password, behind @p backslashes, stays a part of it:
/// for pppd it is escaped, and the pattern that finds the entry again takes it for the end only
/// when white space and an asterisk follow.
bool staysInPassword(const QString &password, int place, int backslashes)
{
    const bool isBeforeSpace = place + 1 < password.size() && password.at(place + 1).isSpace();
    return backslashes % 2 == 1 && !isBeforeSpace;
}

AccountFault faultInValue(const QString &value, Value kind)
{
    if (value.isEmpty()) {
        return AccountFault::Empty;
    }
    if (value.size() > longestValue) {
        return AccountFault::TooLong;
    }
    int backslashes = 0;
    for (int place = 0; place < value.size(); ++place) {
        const QChar character = value.at(place);
        if (character.category() == QChar::Other_Control || character == QChar::LineSeparator
            || character == QChar::ParagraphSeparator) {
            return AccountFault::ControlCharacter;
        }
        // In a login escaped ones as well: the pattern that finds the login line again would leave
        // the rest of it behind as options.
        if (character == QLatin1Char('"')
            && (kind == Value::Login || !staysInPassword(value, place, backslashes))) {
            return AccountFault::QuotationMark;
        }
        backslashes = character == QLatin1Char('\\') ? backslashes + 1 : 0;
    }
    if (backslashes % 2 == 1) {
        return AccountFault::Backslash;
    }
    // However it is written: pppd looks at the password when the escapes are gone.
    const bool isFileName
        = kind == Value::Password && readByPppd(value.toLocal8Bit()).startsWith("@/");
    return isFileName ? AccountFault::FileName : AccountFault::None;
}

QList<PppdWord> entryWords(const QString &login, const QString &password)
{
    return {
        {login.toLocal8Bit(), true}, {"*", false}, {password.toLocal8Bit(), false}, {"*", false}};
}

/// Whether each word is the value of an option "user", and last whether one behind them would be.
/// The value may be "user" as well.
std::vector<bool> loginPlaces(const QList<PppdWord> &words)
{
    std::vector<bool> places = {false};
    for (const PppdWord &word : words) {
        places.push_back(!places.back() && word.text == "user");
    }
    return places;
}

} // namespace

QList<PppdWord> pppdWords(const QByteArray &content)
{
    const QByteArray text = untilNul(content);
    QList<PppdWord> words;
    bool atLineStart = true;
    int at = 0;
    while (at < text.size()) {
        if (text.at(at) == '#') {
            at = text.indexOf('\n', at);
            if (at < 0) {
                break;
            }
            continue;
        }
        if (isSpace(text.at(at))) {
            atLineStart = atLineStart || text.at(at) == '\n';
            ++at;
            continue;
        }
        PppdWord word;
        word.startsLine = atLineStart;
        atLineStart = false;
        const char first = text.at(at);
        const bool isQuoted = first == '"' || first == '\'';
        at += isQuoted ? 1 : 0;
        while (at < text.size()) {
            const char character = text.at(at);
            if (isQuoted ? character == first : isSpace(character) || character == '#') {
                at += isQuoted ? 1 : 0;
                break;
            }
            const int length = character == '\\' && at + 1 < text.size() ? 2 : 1;
            word.text += text.mid(at, length);
            at += length;
        }
        words.append(word);
    }
    return words;
}

AccountFault faultInSecrets(
    const QByteArray &content, const QString &login, const QString &password)
{
    AccountFault fault = faultInValue(login, Value::Login);
    if (fault == AccountFault::None) {
        fault = faultInValue(password, Value::Password);
    }
    if (fault != AccountFault::None) {
        return fault;
    }
    constexpr int longestPiece = 99; // of a line, as the account is read
    const QByteArray entry = ("\"" + login + "\" * \"" + password + "\" *").toLocal8Bit();
    if (entry.size() > longestPiece) {
        return AccountFault::TooLong;
    }
    const QByteArray edited = withSecretsEntry(content, login, password);
    if (!edited.contains(entry)) {
        return AccountFault::Backslash;
    }
    const QList<PppdWord> before = pppdWords(content);
    const QList<PppdWord> after = pppdWords(edited);
    const QList<PppdWord> ours = entryWords(login, password);
    // In the place of the first entry, which begins the file, or behind everything.
    const bool replaced = before.size() >= ours.size() && after == ours + before.mid(ours.size());
    return replaced || after == before + ours ? AccountFault::None : AccountFault::FileDisagrees;
}

AccountFault faultInPeerFile(const QByteArray &content, const QString &login)
{
    const AccountFault fault = faultInValue(login, Value::Login);
    if (fault != AccountFault::None) {
        return fault;
    }
    const QByteArray edited = withLoginLine(content, login);
    if (!edited.contains(("user \"" + login + "\"").toLocal8Bit())) {
        return AccountFault::Backslash;
    }
    const QByteArray value = login.toLocal8Bit();
    const QList<PppdWord> before = pppdWords(content);
    const QList<PppdWord> after = pppdWords(edited);
    if (loginPlaces(before).back()) {
        return AccountFault::FileDisagrees; // our "user" would be the value, our value an option
    }
    if (after == before + QList<PppdWord>{{"user", true}, {value, false}}) {
        return AccountFault::None;
    }
    if (before.size() != after.size()) {
        return AccountFault::FileDisagrees;
    }
    const std::vector<bool> places = loginPlaces(after);
    bool isThere = false;
    for (int index = 0; index < after.size(); ++index) {
        const bool isLogin = places[std::size_t(index)] && after.at(index).text == value;
        if (!isLogin && !(after.at(index) == before.at(index))) {
            return AccountFault::FileDisagrees;
        }
        isThere = isThere || isLogin;
    }
    return isThere ? AccountFault::None : AccountFault::FileDisagrees;
}

QString accountFaultText(AccountFault fault)
{
    switch (fault) {
    case AccountFault::None:
        break;
    case AccountFault::Empty:
        return QStringLiteral("login and password must not be empty");
    case AccountFault::TooLong:
        return QStringLiteral("login or password is too long to be recognised again");
    case AccountFault::ControlCharacter:
        return QStringLiteral("login or password holds a control character");
    case AccountFault::QuotationMark:
        return QStringLiteral("login or password holds a quotation mark; write it as \\x22");
    case AccountFault::FileName:
        return QStringLiteral("the password begins with @/, which is the name of a file to pppd");
    case AccountFault::Backslash:
        return QStringLiteral("a backslash in login or password would change its meaning");
    case AccountFault::FileDisagrees:
        return QStringLiteral("one of pppd's files would not hold just this account afterwards");
    }
    return QString();
}
