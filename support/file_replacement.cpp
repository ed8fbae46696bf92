// SPDX-License-Identifier: MIT
#include "support/file_replacement.h"

#include "support/file_descriptor.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr char leftoverPrefix[] = ".norvix-new-";

QByteArray encoded(const QString &path)
{
    return QFile::encodeName(path);
}

QByteArray folderOf(const QString &path)
{
    return encoded(QFileInfo(path).path());
}

QByteArray temporaryBeside(const QString &target)
{
    return folderOf(target) + '/' + leftoverPrefix + "XXXXXX";
}

bool syncFolder(const QByteArray &folder)
{
    const FileDescriptor descriptor(open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return descriptor.isOpen() && fsync(descriptor.get()) == 0;
}

bool writeAll(int descriptor, const char *bytes, ssize_t size)
{
    while (size > 0) {
        const ssize_t written = write(descriptor, bytes, size_t(size));
        if (written <= 0) {
            return false;
        }
        bytes += written;
        size -= written;
    }
    return true;
}

bool copyBytes(int from, int to)
{
    char buffer[64 * 1024];
    for (;;) {
        const ssize_t got = read(from, buffer, sizeof buffer);
        if (got <= 0) {
            return got == 0;
        }
        if (!writeAll(to, buffer, got)) {
            return false;
        }
    }
}

bool setFacts(int descriptor, const FileFacts &facts)
{
    const timespec times[2] = {{0, UTIME_NOW}, facts.changed};
    // The owner first: changing it would clear mode bits.
    return fchown(descriptor, facts.owner, facts.group) == 0
        && fchmod(descriptor, facts.mode & 07777) == 0 && futimens(descriptor, times) == 0
        && fsync(descriptor) == 0;
}

bool moveIntoPlace(const QByteArray &temporary, const QString &target)
{
    if (rename(temporary.constData(), encoded(target).constData()) != 0) {
        unlink(temporary.constData());
        return false;
    }
    return syncFolder(folderOf(target));
}

template <typename Fill> bool replaceWith(const QString &target, const FileFacts &facts, Fill fill)
{
    QByteArray temporary = temporaryBeside(target);
    const FileDescriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen()) {
        return false;
    }
    if (!fill(file.get()) || !setFacts(file.get(), facts)) {
        unlink(temporary.constData());
        return false;
    }
    return moveIntoPlace(temporary, target);
}

QByteArray linkTarget(const QString &path)
{
    QByteArray target(4096, '\0');
    const ssize_t size = readlink(encoded(path).constData(), target.data(), size_t(target.size()));
    target.truncate(int(qMax<ssize_t>(size, 0)));
    return target;
}

bool replaceLink(const QString &source, const QString &target, const FileFacts &facts)
{
    // The name is made unique by a file, which the link then replaces.
    QByteArray temporary = temporaryBeside(target);
    const FileDescriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen() || unlink(temporary.constData()) != 0
        || symlink(linkTarget(source).constData(), temporary.constData()) != 0
        || lchown(temporary.constData(), facts.owner, facts.group) != 0) {
        unlink(temporary.constData());
        return false;
    }
    return moveIntoPlace(temporary, target);
}

bool isLink(const QString &path)
{
    struct stat facts = {};
    return lstat(encoded(path).constData(), &facts) == 0 && S_ISLNK(facts.st_mode);
}

bool sameBytes(const QString &one, const QString &other)
{
    QFile first(one);
    QFile second(other);
    return first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly)
        && first.readAll() == second.readAll();
}

} // namespace

std::optional<FileFacts> factsOf(const QString &path)
{
    struct stat facts = {};
    if (lstat(encoded(path).constData(), &facts) != 0) {
        return std::nullopt;
    }
    return FileFacts{facts.st_mode, facts.st_uid, facts.st_gid, facts.st_mtim};
}

bool replaceFile(
    const QString &source, const QString &target, const FileFacts &facts, mode_t folderMode)
{
    if (!makeFolders(QFileInfo(target).path(), folderMode)) {
        return false;
    }
    if (isLink(source)) {
        return replaceLink(source, target, facts);
    }
    const FileDescriptor from(
        open(encoded(source).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return from.isOpen()
        && replaceWith(target, facts, [&](int to) { return copyBytes(from.get(), to); });
}

bool replaceBytes(const QByteArray &bytes, const QString &target)
{
    const FileFacts facts{0600, geteuid(), getegid(), {0, UTIME_NOW}};
    return replaceWith(
        target, facts, [&](int to) { return writeAll(to, bytes.constData(), bytes.size()); });
}

bool removeFile(const QString &path)
{
    return unlink(encoded(path).constData()) == 0 && syncFolder(folderOf(path));
}

bool sameFile(const QString &one, const QString &other)
{
    const std::optional<FileFacts> first = factsOf(one);
    const std::optional<FileFacts> second = factsOf(other);
    if (!first || !second || first->mode != second->mode || first->owner != second->owner
        || first->group != second->group) {
        return false;
    }
    return S_ISLNK(first->mode) ? linkTarget(one) == linkTarget(other) : sameBytes(one, other);
}

bool makeFolders(const QString &folder, mode_t mode)
{
    if (QFileInfo(folder).isDir()) {
        return true;
    }
    const QString parent = QFileInfo(folder).path();
    return parent != folder && makeFolders(parent, mode)
        && mkdir(encoded(folder).constData(), mode) == 0
        && chmod(encoded(folder).constData(), mode) == 0 && syncFolder(encoded(parent));
}

QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        if (!entries.fileName().startsWith(QLatin1String(leftoverPrefix))) {
            files.append(entries.filePath().mid(folder.size() + 1));
        }
    }
    files.sort();
    return files;
}

void removeLeftovers(const QString &folder)
{
    QDirIterator entries(folder, {QLatin1String(leftoverPrefix) + QLatin1Char('*')},
        QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        QFile::remove(entries.next());
    }
}
