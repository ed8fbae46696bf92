// SPDX-License-Identifier: MIT
// An account that is let in changes nothing of pppd's files but the account, now and when the next
// one takes its place.
#include "fuzz_input.h"
#include "network/account_files.h"
#include "network/account_safety.h"

#include <algorithm>

namespace {

/// The words of a file that are not the value of a login.
QList<PppdWord> withoutLogins(const QByteArray &content)
{
    const QList<PppdWord> words = pppdWords(content);
    QList<PppdWord> others;
    bool isValue = false; // which may be "user" as well
    for (const PppdWord &word : words) {
        if (!isValue) {
            others.append(word);
        }
        isValue = !isValue && word.text == "user";
    }
    return others;
}

bool hasControl(const QString &value)
{
    return std::any_of(value.begin(), value.end(),
        [](QChar character) { return character.category() == QChar::Other_Control; });
}

void setLogin(QByteArray *content, const QString &login)
{
    if (faultInPeerFile(*content, login) != AccountFault::None) {
        return;
    }
    require(!hasControl(login) && !login.contains(QLatin1Char('"')) && !login.isEmpty());
    const QList<PppdWord> before = withoutLogins(*content);
    *content = withLoginLine(*content, login);
    const QList<PppdWord> after = withoutLogins(*content);
    require(after == before || after == before + QList<PppdWord>{{"user", true}});
}

void setSecrets(QByteArray *content, const QString &login, const QString &password)
{
    if (faultInSecrets(*content, login, password) != AccountFault::None) {
        return;
    }
    require(!hasControl(login) && !hasControl(password));
    const QList<PppdWord> before = pppdWords(*content);
    *content = withSecretsEntry(*content, login, password);
    const QList<PppdWord> after = pppdWords(*content);
    const QList<PppdWord> ours = {
        {login.toLocal8Bit(), true}, {"*", false}, {password.toLocal8Bit(), false}, {"*", false}};
    require(after == before + ours || after == ours + before.mid(ours.size()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const QString login = input.textLine();
    const QString password = input.textLine();
    const QString nextLogin = input.textLine();
    const QString nextPassword = input.textLine();

    QByteArray peer = input.rest();
    setLogin(&peer, login);
    setLogin(&peer, nextLogin);

    QByteArray secrets = input.rest();
    setSecrets(&secrets, login, password);
    setSecrets(&secrets, nextLogin, nextPassword);

    accountFaultText(faultInSecrets(input.rest(), login, password));
    return 0;
}
