// SPDX-License-Identifier: MIT
#include "support/files/trusted_file.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace {

QString because(const QString &path, const char *reason)
{
    return QStringLiteral("%1 %2").arg(path, QLatin1String(reason));
}

QString failed(const QString &path)
{
    return QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(strerror(errno)));
}

QString judgeFolder(const struct stat &facts, const QString &path, uid_t owner)
{
    if (facts.st_uid != owner && facts.st_uid != 0) {
        return because(path, owner == 0 ? "is not root's" : "is somebody else's");
    }
    return (facts.st_mode & 022) != 0 ? because(path, "can be written by others") : QString();
}

QString judgeFile(const struct stat &facts, const QString &path, uid_t owner)
{
    if (!S_ISREG(facts.st_mode)) {
        return because(path, "is not a regular file");
    }
    if (facts.st_uid != owner) {
        return because(path, owner == 0 ? "is not root's" : "is somebody else's");
    }
    return (facts.st_mode & 022) != 0 ? because(path, "can be written by others") : QString();
}

} // namespace

TrustedFile openTrustedFile(const QString &path, uid_t owner, const QString &top)
{
    TrustedFile result;
    QString walked = top.endsWith(QLatin1Char('/')) ? top.chopped(1) : top;
    QStringList components = path.mid(walked.size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (!path.startsWith(walked + QLatin1Char('/')) || components.isEmpty()) {
        result.refusal = because(path, "is not below the folder it must be in");
        return result;
    }
    const QString name = components.takeLast();

    FileDescriptor folder(
        open(QFile::encodeName(top).constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat facts = {};
    for (int i = 0;; ++i) {
        if (!folder.isOpen() || fstat(folder.get(), &facts) != 0) {
            result.refusal = failed(walked);
            return result;
        }
        result.refusal = judgeFolder(facts, walked + QLatin1Char('/'), owner);
        if (!result.refusal.isEmpty() || i == components.size()) {
            break;
        }
        walked += QLatin1Char('/') + components.at(i);
        folder
            = FileDescriptor(openat(folder.get(), QFile::encodeName(components.at(i)).constData(),
                O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    }
    if (!result.refusal.isEmpty()) {
        return result;
    }

    // Without O_NONBLOCK a planted pipe would hold up the build for ever.
    FileDescriptor file(openat(folder.get(), QFile::encodeName(name).constData(),
        O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen() || fstat(file.get(), &facts) != 0) {
        result.refusal = failed(path);
        return result;
    }
    result.refusal = judgeFile(facts, path, owner);
    if (result.refusal.isEmpty()) {
        result.file = std::move(file);
    }
    return result;
}

TrustedPath followTrustedLinks(const QString &path, uid_t owner, const QString &top)
{
    constexpr int mostLinks = 40; // as the kernel has it
    const QString topFolder = top.endsWith(QLatin1Char('/')) ? top.chopped(1) : top;
    QStringList ahead = path.split(QLatin1Char('/'));
    QString walked;
    int links = 0;
    struct stat facts = {};
    while (!ahead.isEmpty()) {
        const QString name = ahead.takeFirst();
        if (name == QLatin1String("..")) {
            walked.truncate(qMax(0, walked.lastIndexOf(QLatin1Char('/'))));
        } else if (!name.isEmpty() && name != QLatin1String(".")) {
            walked += QLatin1Char('/') + name;
        }
        if (lstat(walked.isEmpty() ? "/" : QFile::encodeName(walked).constData(), &facts) != 0) {
            return {QString(), failed(walked)};
        }
        QString refusal;
        if (S_ISLNK(facts.st_mode)) {
            if (++links > mostLinks) {
                return {QString(), because(path, "leads through too many links")};
            }
            if (facts.st_uid != owner && facts.st_uid != 0) {
                refusal = because(walked, "is somebody else's");
            }
            std::error_code error;
            const auto target
                = std::filesystem::read_symlink(QFile::encodeName(walked).constData(), error);
            const QString leadsTo = QFile::decodeName(target.c_str());
            ahead = leadsTo.split(QLatin1Char('/')) + ahead;
            walked = leadsTo.startsWith(QLatin1Char('/'))
                ? QString()
                : walked.left(walked.lastIndexOf(QLatin1Char('/')));
        } else if (S_ISDIR(facts.st_mode)) {
            if (walked == topFolder || walked.startsWith(topFolder + QLatin1Char('/'))) {
                refusal = judgeFolder(facts, walked + QLatin1Char('/'), owner);
            }
        } else {
            refusal = ahead.isEmpty() ? judgeFile(facts, walked, owner)
                                      : because(walked, "is not a folder");
            if (refusal.isEmpty()) {
                return {walked, QString()};
            }
        }
        if (!refusal.isEmpty()) {
            return {QString(), refusal};
        }
    }
    return {QString(), because(path, "is not a regular file")};
}

QString refusalOfParent(const QString &parent)
{
    struct stat facts = {};
    if (lstat(QFile::encodeName(parent).constData(), &facts) != 0) {
        return failed(parent);
    }
    if (!S_ISDIR(facts.st_mode)) {
        return because(parent, "is not a folder");
    }
    if (facts.st_uid != 0 && facts.st_uid != geteuid()) {
        return because(parent, "is not root's");
    }
    if ((facts.st_mode & 022) != 0 && (facts.st_mode & S_ISVTX) == 0) {
        return because(parent, "can be written by others and is not sticky");
    }
    return QString();
}

QString makePrivateFolder(const QString &path)
{
    QString refusal = refusalOfParent(QFileInfo(path).path());
    if (!refusal.isEmpty()) {
        return refusal;
    }
    // Somebody may plant the name again at once; the exclusive mkdir decides.
    for (int attempt = 0; attempt < 10; ++attempt) {
        removeTree(path);
        if (mkdir(QFile::encodeName(path).constData(), 0700) == 0) {
            return QString();
        }
    }
    return failed(path);
}

bool removeTree(const QString &path)
{
    std::error_code error;
    std::filesystem::remove_all(QFile::encodeName(path).constData(), error);
    return !error;
}
