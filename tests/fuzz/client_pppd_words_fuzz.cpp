// SPDX-License-Identifier: MIT
// An account that the client does not object to is let into a file, and read again as it was.
#include "client/account_rules.h"
#include "client/pppd_words.h"
#include "fuzz_input.h"
#include "network/account_files.h"
#include "network/account_safety.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const QString login = input.textLine();
    const QString password = QString::fromUtf8(input.rest());
    const QString word = QString::fromUtf8(FuzzInput(data, size).rest());
    require(decodedWord(word).toUtf8().size() <= 3 * word.toUtf8().size());

    if (loginObjection(login) || passwordObjection(password) || accountObjection(login, password)) {
        return 0;
    }
    const QString loginWord = encodedLogin(login);
    const QString passwordWord = encodedPassword(password);
    require(decodedWord(loginWord) == login && decodedWord(passwordWord) == password);
    QByteArray secrets;
    for (int times = 0; times < 2; ++times) { // the second takes the first one's place
        require(faultInSecrets(secrets, loginWord, passwordWord) == AccountFault::None);
        secrets = withSecretsEntry(secrets, loginWord, passwordWord);
        const auto account = accountFromSecrets(secrets);
        require(account && account->login == loginWord && account->password == passwordWord);
    }
    const QByteArray peer = withLoginLine("noauth\n", loginWord);
    require(faultInPeerFile("noauth\n", loginWord) == AccountFault::None);
    require(withLoginLine(peer, loginWord) == peer);
    return 0;
}
