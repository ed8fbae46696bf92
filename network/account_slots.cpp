// SPDX-License-Identifier: MIT
// The PPP account on the bus: reads and writes pppd's secrets and peer files.
#include "daemon/norvix_daemon.h"
#include "network/account_files.h"
#include "support/files/safe_file.h"
#include "support/files/trusted_file.h"

#include <QFileInfo>
#include <cerrno>
#include <cstring>

namespace {

const char papSecrets[] = "/etc/ppp/pap-secrets";

/// What is logged about the files of one kind.
struct Complaints
{
    const char *notReadable;
    const char *notWritable;
    const char *notWritten;
};

// Keeps "opensecret": clients and administrators search the log for the line as it has always been.
constexpr Complaints aboutSecrets = {
    "Norvix_Daemon::setAccountData(): could not opensecret file in read only mode!",
    "Norvix_Daemon::setAccountData(): could not opensecret file in write only mode!",
    "Norvix_Daemon::setAccountData(): could not write secret file: ",
};
constexpr Complaints aboutPeers = {
    "Norvix_Daemon::setAccountData(): could not open peer file in read only mode!",
    "Norvix_Daemon::setAccountData(): could not open peer file in write only mode!",
    "Norvix_Daemon::setAccountData(): could not write peer file: ",
};

/// Each file, in the order of their handling, with what is logged about it.
struct AccountFile
{
    const char *path;
    bool isPeerFile;
    const Complaints &complaints;
};

constexpr AccountFile accountFiles[] = {
    {papSecrets, false, aboutSecrets},
    {"/etc/ppp/chap-secrets", false, aboutSecrets},
    {"/etc/ppp/peers/norvix", true, aboutPeers},
    {"/etc/ppp/peers/norvix_unicorn", true, aboutPeers},
};

/// Where the file is. A link is followed where nobody but root could have chosen what root
/// rewrites; any other stays in the path, which is then refused.
QString placeOf(const QString &path)
{
    if (!QFileInfo(path).isSymLink()) {
        return path;
    }
    const TrustedPath trusted = followTrustedLinks(path);
    return trusted.refusal.isEmpty() ? trusted.path : path;
}

/// Edits one file; answers the line to log when that failed, else an empty text. The file is
/// rewritten in place, so that its owner and mode stay, and never made anew.
QString editFile(const AccountFile &file, const QString &login, const QString &password)
{
    const QString path = placeOf(QString::fromLatin1(file.path));
    const std::optional<QByteArray> content = readFileBytes(path, Links::Refuse);
    if (!content) {
        return QString::fromLatin1(file.complaints.notReadable);
    }
    const QByteArray edited = file.isPeerFile ? withLoginLine(*content, login)
                                              : withSecretsEntry(*content, login, password);
    switch (rewriteFileInPlace(path, *content, edited, Links::Refuse)) {
    case Rewrite::Done:
        break;
    case Rewrite::NotOpened:
        return QString::fromLatin1(file.complaints.notWritable);
    case Rewrite::NotWritten:
        return QString::fromLatin1(file.complaints.notWritten)
            + QString::fromLocal8Bit(strerror(errno));
    }
    return QString();
}

} // namespace

QStringList Norvix_Daemon::getLoginAndPassword()
{
    const std::optional<QByteArray> content = readFileBytes(QString::fromLatin1(papSecrets));
    if (!content) {
        writeLog(QStringLiteral(
            "Norvix_Daemon::getLoginAndPassword(): could not open pap-secrets file!"));
        return QStringList();
    }
    const std::optional<Account> account = accountFromSecrets(*content);
    return account ? QStringList{account->login, account->password} : QStringList();
}

void Norvix_Daemon::setAccountData(const QString &login, const QString &password)
{
    bool success = true;
    for (const AccountFile &file : accountFiles) {
        const QString problem = editFile(file, login, password);
        if (!problem.isEmpty()) {
            writeLog(problem);
            success = false;
        }
    }
    emit accountDataChanged(success);
}
