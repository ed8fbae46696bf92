// SPDX-License-Identifier: MIT
#include "client/account_rules.h"

#include "client/pppd_words.h"
#include "client/say.h"

namespace {

// What the readers of the files recognise.
constexpr int mostCharacters = 50;
constexpr int mostLineBytes = 99;

Failure refused(const QString &why)
{
    return {FailureKind::ValueRefused, why};
}

Failure contentObjection(const QString &name, const QString &value)
{
    if (value.isEmpty()) {
        return refused(Say::tr("%1 is empty.").arg(name));
    }
    for (const QChar character : value) {
        // A line feed would begin a new option in a file that pppd reads as root.
        if (character == QLatin1Char('\n') || character == QLatin1Char('\r')) {
            return refused(Say::tr("%1 contains a line feed.").arg(name));
        }
        if (character.category() == QChar::Other_Control) {
            return refused(Say::tr("%1 contains a control character.").arg(name));
        }
        if (character == QChar::ReplacementCharacter || character.isNonCharacter()) {
            return refused(Say::tr("%1 contains a character that is not valid text.").arg(name));
        }
    }
    // A surrogate without its other half.
    if (QString::fromUtf8(value.toUtf8()) != value) {
        return refused(Say::tr("%1 contains a character that is not valid text.").arg(name));
    }
    return {};
}

Failure lengthObjection(const QString &name, const QString &value, const QString &encoded)
{
    if (encoded.size() <= mostCharacters) {
        return {};
    }
    const QString text = value == encoded
        ? Say::tr("%1 has %2 characters; more than %3 would not be recognised again.")
        : Say::tr("%1 has %2 characters in pppd's files, where a double quote and a backslash take "
                  "up to four; more than %3 would not be recognised again.");
    return refused(text.arg(name).arg(encoded.size()).arg(mostCharacters));
}

} // namespace

Failure loginObjection(const QString &login)
{
    const QString name = Say::tr("The login");
    const Failure objection = contentObjection(name, login);
    return objection ? objection : lengthObjection(name, login, encodedLogin(login));
}

Failure passwordObjection(const QString &password)
{
    const QString name = Say::tr("The password");
    Failure objection = contentObjection(name, password);
    if (objection) {
        return objection;
    }
    if (password.startsWith(QLatin1String("@/"))) {
        return refused(
            Say::tr("%1 begins with “@/”, which pppd takes for the name of a file.").arg(name));
    }
    return lengthObjection(name, password, encodedPassword(password));
}

Failure accountObjection(const QString &login, const QString &password)
{
    const QString line
        = QStringLiteral("\"%1\" * \"%2\" *").arg(encodedLogin(login), encodedPassword(password));
    const int size = line.toUtf8().size();
    return size <= mostLineBytes
        ? Failure()
        : refused(Say::tr("Login and password make a line of %1 bytes; more than %2 would not be "
                          "recognised again.")
                      .arg(size)
                      .arg(mostLineBytes));
}

TypedAccount typedAccount(const QString &login, const QString &password)
{
    const Failure ofLogin = loginObjection(login);
    const Failure ofPassword = passwordObjection(password);
    const bool isEachGood = !ofLogin && !ofPassword;
    const Failure together = isEachGood ? accountObjection(login, password) : Failure();
    return {login.isEmpty() ? QString() : ofLogin.detail,
        password.isEmpty() ? QString() : ofPassword.detail + together.detail,
        isEachGood && !together};
}
