// SPDX-License-Identifier: MIT
#include "client/account_rules.h"

#include "client/say.h"

namespace {

// What the files' readers recognise.
constexpr int mostCharacters = 50;

} // namespace

QString accountObjection(const QString &name, const QString &value)
{
    if (value.isEmpty()) {
        return Say::tr("%1 is empty.").arg(name);
    }
    if (value.size() > mostCharacters) {
        return Say::tr("%1 has %2 characters; more than %3 would not be recognised again.")
            .arg(name)
            .arg(value.size())
            .arg(mostCharacters);
    }
    for (const QChar character : value) {
        // A line feed would begin a new option in a file that pppd reads as root.
        if (character == QLatin1Char('\n') || character == QLatin1Char('\r')) {
            return Say::tr("%1 contains a line feed.").arg(name);
        }
        if (character.category() == QChar::Other_Control) {
            return Say::tr("%1 contains a control character.").arg(name);
        }
        if (character == QLatin1Char('"')) {
            return Say::tr("%1 contains a double quote, which ends the value in pppd's files.")
                .arg(name);
        }
        if (character == QLatin1Char('\\')) {
            return Say::tr("%1 contains a backslash, which pppd's files take for an escape sign.")
                .arg(name);
        }
        if (character == QChar::ReplacementCharacter || character.isSurrogate()
            || character.isNonCharacter()) {
            return Say::tr("%1 contains a character that is not valid text.").arg(name);
        }
    }
    return QString();
}
