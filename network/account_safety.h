// SPDX-License-Identifier: MIT
// Whether an account may be written into pppd's files: judged on the text that pppd would read.
// Pure.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// One word of a file as pppd cuts it, escapes left as they stand.
struct PppdWord
{
    QByteArray text;
    bool startsLine = false;

    bool operator==(const PppdWord &other) const
    {
        return text == other.text && startsLine == other.startsLine;
    }
};

/// The words of an options or secrets file: separated by white space, quoted by a quotation mark
/// that stands first, a backslash taking away the meaning of what follows, comments left out. A
/// quoted word that never ends takes the rest of the file.
QList<PppdWord> pppdWords(const QByteArray &content);

/// What of an account is wrong, for whoever asks.
enum class AccountFault
{
    None,
    Empty, ///< login or password
    TooLong, ///< would not be recognised again
    ControlCharacter, ///< would begin a new line or option
    QuotationMark, ///< would end the value, now or when the next account replaces it
    FileName, ///< pppd would take the password out of a file, which may be root's alone
    Backslash, ///< keeps the value from ending, or stands for a part of the old account
    FileDisagrees, ///< the file would not take just these words, or lose others
};

/// Whether @p login and @p password may go into a secrets file with the bytes @p content.
AccountFault faultInSecrets(
    const QByteArray &content, const QString &login, const QString &password);

/// Whether @p login may go into a peer file with the bytes @p content.
AccountFault faultInPeerFile(const QByteArray &content, const QString &login);

/// The fault as a sentence; empty for none.
QString accountFaultText(AccountFault fault);
