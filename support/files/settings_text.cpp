// SPDX-License-Identifier: MIT
#include "support/files/settings_text.h"

#include <QStringList>
#include <cstring>

namespace {

constexpr char escapedCharacters[] = "\a\b\f\n\r\t\v\"?'\\";
constexpr char escapeLetters[] = "abfnrtv\"?'\\";

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

/// The value of a digit in base @p base, -1 for any other character.
int digitOf(char c, int base)
{
    const int value = c >= '0' && c <= '9' ? c - '0'
        : c >= 'a' && c <= 'f'             ? c - 'a' + 10
        : c >= 'A' && c <= 'F'             ? c - 'A' + 10
                                           : base;
    return value < base ? value : -1;
}

/// One line of the file: what stands between comments, blanks and line ends. Quotes and backslashes
/// keep a line end inside.
struct Line
{
    QByteArray text;
    int equals = -1; ///< where the first equals sign stands
};

class Lines
{
public:
    explicit Lines(const QByteArray &text)
        : m_text(text)
    {
    }

    bool next(Line *line)
    {
        skipBetweenLines();
        const int start = m_place;
        line->equals = -1;
        bool isQuoted = false;
        for (; m_place < m_text.size(); ++m_place) {
            const char c = m_text.at(m_place);
            if (!isQuoted && (isLineEnd(c) || c == ';')) {
                break;
            }
            if (c == '"') {
                isQuoted = !isQuoted;
            } else if (c == '=' && !isQuoted && line->equals < 0) {
                line->equals = m_place - start;
            } else if (c == '\\') {
                skipEscaped();
            }
        }
        line->text = m_text.mid(start, m_place - start);
        return !line->text.isEmpty();
    }

private:
    void skipBetweenLines()
    {
        while (m_place < m_text.size()) {
            const char c = m_text.at(m_place);
            if (c == ';') {
                while (m_place < m_text.size() && !isLineEnd(m_text.at(m_place))) {
                    ++m_place;
                }
            } else if (isBlank(c) || isLineEnd(c)) {
                ++m_place;
            } else {
                return;
            }
        }
    }

    /// Line ends may be of two characters.
    void skipEscaped()
    {
        if (m_place + 2 < m_text.size()) {
            const char first = m_text.at(m_place + 1);
            const char second = m_text.at(m_place + 2);
            if (isLineEnd(first) && isLineEnd(second) && first != second) {
                ++m_place;
            }
        }
        m_place = qMin(m_place + 1, m_text.size() - 1);
    }

    const QByteArray &m_text;
    int m_place = 0;
};

QString unescapedKey(const QByteArray &text)
{
    QString key;
    for (int i = 0; i < text.size(); ++i) {
        const char c = text.at(i);
        if (c == '%' && i + 1 < text.size()) {
            const bool isWide = text.at(i + 1) == 'U';
            const int start = i + (isWide ? 2 : 1);
            const int count = isWide ? 4 : 2;
            bool isNumber = false;
            const int code = text.mid(start, count).toInt(&isNumber, 16);
            if (isNumber && start + count <= text.size()) {
                key += QChar(ushort(code));
                i = start + count - 1;
                continue;
            }
        }
        key += c == '\\' ? QLatin1Char('/') : QLatin1Char(c);
    }
    return key;
}

QByteArray escapedKey(const QString &key)
{
    QByteArray text;
    for (const QChar character : key) {
        const ushort code = character.unicode();
        const char c = char(code);
        const bool isPlain = code < 0x80 && (isalnum(c) != 0 || strchr("_-.", c) != nullptr);
        if (code == '/') {
            text += '\\';
        } else if (code != 0 && isPlain) {
            text += c;
        } else {
            const int digits = code > 0xff ? 4 : 2;
            text += code > 0xff ? "%U" : "%";
            text += QByteArray::number(code, 16).toUpper().rightJustified(digits, '0');
        }
    }
    return text;
}

/// Takes a value apart into the texts that its unquoted commas separate.
class ValueReader
{
public:
    explicit ValueReader(const QByteArray &text)
        : m_text(text)
    {
    }

    QStringList read()
    {
        skipBlanks();
        while (m_place < m_text.size()) {
            const char c = m_text.at(m_place++);
            if (c == '\\') {
                readEscape();
            } else if (c == '"') {
                m_hasQuotes = true;
                m_isQuoted = !m_isQuoted;
                if (!m_isQuoted) {
                    skipBlanks();
                }
                m_fixed = m_current.size();
            } else if (c == ',' && !m_isQuoted) {
                finish();
                skipBlanks();
            } else {
                m_current += QLatin1Char(c);
            }
        }
        finish();
        return m_texts;
    }

private:
    void skipBlanks()
    {
        while (m_place < m_text.size() && isBlank(m_text.at(m_place))) {
            ++m_place;
        }
    }

    /// Blanks at the end of a text without quotes do not belong to it.
    void finish()
    {
        while (!m_hasQuotes && m_current.size() > m_fixed
            && isBlank(m_current.at(m_current.size() - 1).toLatin1())) {
            m_current.chop(1);
        }
        m_texts.append(m_current);
        m_current.clear();
        m_fixed = 0;
        m_hasQuotes = false;
    }

    void readEscape()
    {
        // At the end there is nothing to escape, but blanks before it stay all the same.
        const char c = m_place < m_text.size() ? m_text.at(m_place++) : '\0';
        if (const char *found = c != '\0' ? strchr(escapeLetters, c) : nullptr) {
            m_current += QLatin1Char(escapedCharacters[found - escapeLetters]);
        } else if (c == 'x') {
            readNumber(16);
        } else if (digitOf(c, 8) >= 0) {
            --m_place;
            readNumber(8);
        } else if (isLineEnd(c) && m_place < m_text.size()) {
            const char next = m_text.at(m_place);
            m_place += isLineEnd(next) && next != c ? 1 : 0;
        }
        m_fixed = m_current.size();
    }

    void readNumber(int base)
    {
        const int start = m_place;
        uint code = 0;
        for (; m_place < m_text.size() && digitOf(m_text.at(m_place), base) >= 0; ++m_place) {
            code = code * uint(base) + uint(digitOf(m_text.at(m_place), base));
        }
        if (m_place > start) {
            m_current += QChar(ushort(code));
        }
    }

    const QByteArray &m_text;
    int m_place = 0;
    bool m_isQuoted = false;
    bool m_hasQuotes = false;
    int m_fixed = 0; ///< what of m_current stays, blanks or not
    QString m_current;
    QStringList m_texts;
};

/// A value's text as it can stand before another line: where the end of the file has cut off a
/// quote or an escape, that would take the next line in.
QByteArray closedText(QByteArray text)
{
    bool isQuoted = false;
    int kept = 0; // up to where nothing takes in what follows
    for (int i = 0; i < text.size(); ++i) {
        const bool isEscape = text.at(i) == '\\';
        i += isEscape ? 1 : 0;
        // An escaped carriage return would make one line end with the line feed behind it.
        if (isEscape && (i == text.size() || text.at(i) == '\r')) {
            continue;
        }
        isQuoted = isQuoted != (!isEscape && text.at(i) == '"');
        kept = i + 1;
    }
    text.truncate(kept);
    return isQuoted ? text + '"' : text;
}

/// What stands behind the equals sign, as a value. A text that begins with "@" names a type.
QVariant valueFrom(const QByteArray &text)
{
    QStringList texts = ValueReader(text).read();
    const bool isList = texts.size() > 1;
    for (QString &one : texts) {
        if (!one.startsWith(QLatin1Char('@'))) {
            continue;
        }
        if (one.startsWith(QLatin1String("@String(")) && one.endsWith(QLatin1Char(')'))) {
            one = one.mid(8, one.size() - 9);
            continue;
        }
        const bool isWhole = !isList && one.endsWith(QLatin1Char(')'));
        if (isWhole && one.startsWith(QLatin1String("@ByteArray("))) {
            return one.midRef(11, one.size() - 12).toLatin1();
        }
        if (isWhole && one == QLatin1String("@Invalid()")) {
            return QVariant();
        }
        if (one.startsWith(QLatin1String("@@"))) {
            one.remove(0, 1);
        } else if (isList || isWhole) {
            return QVariant::fromValue(UndecodedSetting{closedText(text)});
        }
    }
    return isList ? QVariant(texts) : QVariant(texts.constFirst());
}

QString typedText(const QVariant &value)
{
    if (!value.isValid()) {
        return QStringLiteral("@Invalid()");
    }
    if (value.type() == QVariant::ByteArray) {
        const QByteArray bytes = value.toByteArray();
        return QLatin1String("@ByteArray(") + QLatin1String(bytes.constData(), bytes.size())
            + QLatin1Char(')');
    }
    const QString text = value.toString();
    if (text.contains(QChar(QChar::Null))) {
        return QLatin1String("@String(") + text + QLatin1Char(')');
    }
    return text.startsWith(QLatin1Char('@')) ? QLatin1Char('@') + text : text;
}

QByteArray escapedText(const QString &text)
{
    QByteArray escaped;
    bool needsQuotes = false;
    bool isAfterNumber = false; // a digit would be taken for one more of the number's
    for (const QChar character : text) {
        const ushort code = character.unicode();
        const char c = char(code);
        needsQuotes = needsQuotes || (code < 0x80 && code != 0 && strchr(";,=", c) != nullptr);
        const bool isControl = code < 0x20 || code >= 0x7f;
        const char *letter = code < 0x80 && code != 0 && c != '?' && c != '\''
            ? strchr(escapedCharacters, c)
            : nullptr;
        const bool isDigitAfterNumber = isAfterNumber && code < 0x80 && digitOf(c, 16) >= 0;
        if (letter != nullptr) {
            escaped += '\\';
            escaped += escapeLetters[letter - escapedCharacters];
            isAfterNumber = false;
        } else if (code == 0) {
            escaped += "\\0";
            isAfterNumber = true;
        } else if (isControl || isDigitAfterNumber) {
            escaped += "\\x" + QByteArray::number(code, 16);
            isAfterNumber = true;
        } else {
            escaped += c;
            isAfterNumber = false;
        }
    }
    const bool hasOuterBlank = escaped.startsWith(' ') || escaped.endsWith(' ');
    return needsQuotes || hasOuterBlank ? '"' + escaped + '"' : escaped;
}

QByteArray valueText(const QVariant &value)
{
    if (value.canConvert<UndecodedSetting>()) {
        return value.value<UndecodedSetting>().text;
    }
    if (value.type() != QVariant::StringList) {
        return escapedText(typedText(value));
    }
    QByteArrayList texts;
    const QStringList list = value.toStringList();
    for (const QString &one : list) {
        texts.append(escapedText(typedText(one)));
    }
    return list.isEmpty() ? QByteArray("@Invalid()") : texts.join(", ");
}

/// What the name in a section's brackets puts before its keys.
QString groupFrom(const QByteArray &name)
{
    if (name.compare("general", Qt::CaseInsensitive) == 0) {
        return QString();
    }
    const bool isEscaped = name.compare("%general", Qt::CaseInsensitive) == 0;
    return (isEscaped ? QString::fromLatin1(name.mid(1)) : unescapedKey(name)) + QLatin1Char('/');
}

QByteArray sectionLine(const QString &group)
{
    if (group.isEmpty()) {
        return "[General]\n";
    }
    if (group.compare(QLatin1String("general"), Qt::CaseInsensitive) == 0) {
        return "[%General]\n";
    }
    return '[' + escapedKey(group) + "]\n";
}

} // namespace

ReadSettings settingsFrom(const QByteArray &text)
{
    ReadSettings result;
    const QByteArray byteOrderMark("\xef\xbb\xbf");
    const QByteArray content = text.startsWith(byteOrderMark) ? text.mid(3) : text;
    Lines lines(content);
    QString group;
    int room = mostKeyCharacters;
    for (Line line; lines.next(&line);) {
        if (line.text.startsWith('[')) {
            const int end = line.text.indexOf(']');
            result.isWellFormed = result.isWellFormed && end >= 0;
            group = groupFrom(line.text.mid(1, end < 0 ? -1 : end - 1).trimmed());
            continue;
        }
        int keyEnd = line.equals;
        while (keyEnd > 0 && isBlank(line.text.at(keyEnd - 1))) {
            --keyEnd;
        }
        const QString name = unescapedKey(line.text.left(qMax(keyEnd, 0)));
        if (line.equals < 0 || group.size() + name.size() > room) {
            result.isWellFormed = false;
            continue;
        }
        room -= group.size() + name.size();
        result.values.insert(group + name, valueFrom(line.text.mid(line.equals + 1)));
    }
    return result;
}

QByteArray settingsText(const QMap<QString, QVariant> &values)
{
    QMap<QString, QByteArray> sections;
    for (auto value = values.begin(); value != values.end(); ++value) {
        const int slash = value.key().indexOf(QLatin1Char('/'));
        if (value.key().endsWith(QLatin1Char('/')) && slash + 1 < value.key().size()) {
            continue; // its escaped slash would hide the equals sign, and the line mean nothing
        }
        sections[value.key().left(qMax(slash, 0))]
            += escapedKey(value.key().mid(slash + 1)) + '=' + valueText(value.value()) + '\n';
    }
    QByteArray text;
    for (auto section = sections.begin(); section != sections.end(); ++section) {
        text += (text.isEmpty() ? "" : "\n") + sectionLine(section.key()) + section.value();
    }
    return text;
}

QString settingAsText(const QVariant &value)
{
    return value.type() == QVariant::StringList ? value.toStringList().join(QStringLiteral(", "))
                                                : value.toString();
}
