// SPDX-License-Identifier: MIT
// The texts of pppd's secrets and peer files: pure, knows no file.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// A login and its password at the provider.
struct Account
{
    QString login;
    QString password;
};

/// The account in one piece of a secrets file, as accountFromSecrets() cuts it; empty when the
/// piece, up to its first NUL byte, holds no entry with values of 1 to 50 characters each.
std::optional<Account> accountFromSecretsPiece(const QByteArray &piece);

/// The first account in the secrets file @p content, which is read in pieces: lines, and of longer
/// lines 99 bytes at a time, each tried by itself. Empty when there is none.
std::optional<Account> accountFromSecrets(const QByteArray &content);

/// The secrets file @p content with the entry for @p login and @p password: in the place of an
/// entry that stands at the very beginning, else appended with a line feed. Everything else stays
/// byte for byte, up to the first NUL byte, where the text ends. The entry is in the local 8-bit
/// encoding. Values are neither checked nor escaped; in a replaced entry a backslash and the digit
/// 1 or 2 stand for the old login or password.
///
/// An entry is the shortest text of its form with values of 1 to 50 characters. One with an empty
/// value is none: at the very beginning of the file its quotes are taken for those of an entry that
/// reaches into the next line, of which the part up to the next "*" goes with it.
QByteArray withSecretsEntry(
    const QByteArray &content, const QString &login, const QString &password);

/// The peer file @p content with @p login in every login line, wherever it stands, or with a login
/// line appended when it has none. The same holds of the other bytes, encoding and values; a login
/// line with an empty login reaches up to the next quote, wherever that stands.
QByteArray withLoginLine(const QByteArray &content, const QString &login);
