// SPDX-License-Identifier: MIT
#include "client/secrets_mend.h"

#include "client/link_facts.h"
#include "client/ppp_files.h"
#include "client/say.h"

#include <QFile>
#include <QSaveFile>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t secretMode = 0600;

/// Writes beside the file and renames, so that a crash leaves the old file or the new one.
bool replaceFile(const QString &path, const QByteArray &content)
{
    const mode_t before = umask(0077);
    QSaveFile file(path);
    bool isDone = file.open(QIODevice::WriteOnly);
    isDone = isDone && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
        && file.write(content) == content.size() && file.commit();
    umask(before);
    return isDone;
}

bool isPrivate(const QString &path)
{
    struct stat info = {};
    return stat(QFile::encodeName(path).constData(), &info) == 0 && info.st_uid == 0
        && (info.st_mode & 077) == 0;
}

bool makePrivate(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    return chown(name.constData(), 0, 0) == 0 && chmod(name.constData(), secretMode) == 0;
}

} // namespace

MendResult mendSecretsFiles()
{
    MendResult result;
    for (const char *name : {"/etc/ppp/pap-secrets", "/etc/ppp/chap-secrets"}) {
        const QString path = QLatin1String(name);
        const std::optional<QByteArray> content = fileContent(path);
        if (!content && QFile::exists(path)) {
            result.error = Say::tr("%1 can not be read.").arg(path);
            return result;
        }
        if (!hasEntryAtStart(content.value_or(""))) {
            const bool isKept
                = !content || replaceFile(path + QLatin1String(".norvix-backup"), *content);
            if (!isKept || !replaceFile(path, mendedSecrets(content.value_or("")))) {
                result.error = Say::tr("%1 can not be written.").arg(path);
                return result;
            }
            result.done.append(Say::tr("%1 now begins with the account's entry.").arg(path));
        }
        if (!isPrivate(path)) {
            if (!makePrivate(path)) {
                result.error = Say::tr("The mode of %1 can not be changed.").arg(path);
                return result;
            }
            result.done.append(Say::tr("%1 is now readable for root only.").arg(path));
        }
    }
    return result;
}
