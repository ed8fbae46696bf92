// SPDX-License-Identifier: MIT
// Feeds any bytes to the editors and the reader of the account files.
#include "network/account_files.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds) {
        abort();
    }
}

/// What the editors take for the text of the file.
QByteArray textOf(const QByteArray &content)
{
    const int nul = content.indexOf('\0');
    return nul < 0 ? content : content.left(nul);
}

void editSecrets(const QByteArray &content, const QString &login, const QString &password)
{
    const QByteArray text = textOf(content);
    const QByteArray entry = ("\"" + login + "\" * \"" + password + "\" *").toLocal8Bit();
    const QByteArray edited = withSecretsEntry(content, login, password);
    if (!text.startsWith('"')) {
        require(edited == text + entry + "\n");
    } else if (!login.contains(QLatin1Char('\\')) && !password.contains(QLatin1Char('\\'))) {
        const bool replaced = edited.startsWith(entry) && text.endsWith(edited.mid(entry.size()));
        require(replaced || edited == text + entry + "\n");
    }
}

void editLoginLine(const QByteArray &content, const QString &login)
{
    const QByteArray text = textOf(content);
    const QByteArray line = ("user \"" + login + "\"").toLocal8Bit();
    const QByteArray edited = withLoginLine(content, login);
    require(edited.contains(line));
    if (!text.contains("user \"")) {
        require(edited == text + line + "\n");
    }
}

void readAccount(const QByteArray &content)
{
    if (const std::optional<Account> account = accountFromSecrets(content)) {
        require(!account->login.isEmpty() && account->login.size() <= 50);
        require(!account->password.isEmpty() && account->password.size() <= 50);
    }
    accountFromSecretsPiece(content.left(99));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // The first two bytes say how long login and password are, which stand before the content.
    const QByteArray input(reinterpret_cast<const char *>(data), int(size));
    const int loginSize = size > 0 ? data[0] % 64 : 0;
    const int passwordSize = size > 1 ? data[1] % 64 : 0;
    const QString login = QString::fromUtf8(input.mid(2, loginSize));
    const QString password = QString::fromUtf8(input.mid(2 + loginSize, passwordSize));
    const QByteArray content = input.mid(2 + loginSize + passwordSize);

    editSecrets(content, login, password);
    editLoginLine(content, login);
    readAccount(content);
    readAccount(input);
    return 0;
}
