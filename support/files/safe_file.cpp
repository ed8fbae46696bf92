// SPDX-License-Identifier: MIT
#include "support/files/safe_file.h"

#include "support/files/file_descriptor.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string encoded(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

std::string folderOf(const QString &path)
{
    return encoded(QFileInfo(path).path());
}

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), size_t(bytes.size())};
}

/// O_NONBLOCK keeps open() from waiting for the other end of a pipe.
int openRegular(const QByteArray &path, int access, Links links)
{
    const int noFollow = links == Links::Refuse ? O_NOFOLLOW : 0;
    const int fd = open(path.constData(), access | noFollow | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) {
        return -1;
    }
    struct stat info = {};
    if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode)) {
        return fd;
    }
    close(fd);
    errno = S_ISDIR(info.st_mode) ? EISDIR : EINVAL;
    return -1;
}

/// Takes the room for @p size bytes before anything is overwritten. File systems that cannot
/// promise room are left to the write itself.
bool reserveRoom(int fd, qint64 size)
{
    int result = 0;
    do {
        result = fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, size);
    } while (result != 0 && errno == EINTR);
    return result == 0 || (errno != ENOSPC && errno != EDQUOT && errno != EFBIG);
}

/// Empty lines as long as the old content: then one write leaves a complete file, not the new
/// content with the tail of the old one.
QByteArray padded(const QByteArray &bytes, int size)
{
    return bytes.size() < size ? bytes + QByteArray(size - bytes.size(), '\n') : bytes;
}

/// Owner, group and mode for the file that takes the place of @p path.
FileAttributes attributesFor(const QString &path)
{
    const std::optional<FileAttributes> found = attributesOf(path);
    FileAttributes attributes;
    attributes.owner = geteuid();
    attributes.group = getegid();
    if (found && S_ISREG(found->mode)) {
        attributes = *found;
        attributes.changed = {0, UTIME_NOW};
    }
    return attributes;
}

bool copyBytes(int from, int to)
{
    char buffer[64 * 1024];
    off_t at = 0;
    for (;;) {
        const ssize_t got = read(from, buffer, sizeof buffer);
        if (got <= 0) {
            return got == 0;
        }
        if (!writeAll(to, {buffer, size_t(got)}, at)) {
            return false;
        }
        at += got;
    }
}

QByteArray linkTarget(const QString &path)
{
    QByteArray target(4096, '\0');
    const ssize_t size = readlink(encoded(path).c_str(), target.data(), size_t(target.size()));
    target.truncate(int(qMax<ssize_t>(size, 0)));
    return target;
}

bool isLink(const QString &path)
{
    struct stat facts = {};
    return lstat(encoded(path).c_str(), &facts) == 0 && S_ISLNK(facts.st_mode);
}

bool sameBytes(const QString &one, const QString &other)
{
    QFile first(one);
    QFile second(other);
    return first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly)
        && first.readAll() == second.readAll();
}

} // namespace

std::optional<QByteArray> readFileBytes(const QString &path, Links links, int most)
{
    const FileDescriptor file(openRegular(QFile::encodeName(path), O_RDONLY, links));
    if (!file.isOpen()) {
        return std::nullopt;
    }
    QByteArray bytes;
    char block[65536];
    for (;;) {
        const ssize_t count = read(file.get(), block, sizeof block);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            return bytes;
        }
        if (count > most - bytes.size()) {
            errno = EFBIG;
            return std::nullopt;
        }
        bytes.append(block, int(count));
    }
}

Rewrite rewriteFileInPlace(
    const QString &path, const QByteArray &oldBytes, const QByteArray &newBytes, Links links)
{
    const FileDescriptor file(openRegular(QFile::encodeName(path), O_WRONLY, links));
    if (!file.isOpen()) {
        return Rewrite::NotOpened;
    }
    if (newBytes.size() > oldBytes.size() && !reserveRoom(file.get(), newBytes.size())) {
        return Rewrite::NotWritten;
    }
    if (writeAll(file.get(), viewOf(padded(newBytes, oldBytes.size())))
        && ftruncate(file.get(), newBytes.size()) == 0 && fsync(file.get()) == 0) {
        return Rewrite::Done;
    }
    const int error = errno;
    if (writeAll(file.get(), viewOf(oldBytes)) && ftruncate(file.get(), oldBytes.size()) == 0) {
        fsync(file.get());
    }
    errno = error;
    return Rewrite::NotWritten;
}

bool replaceFile(const QString &path, const QByteArray &bytes)
{
    return replaceFile(path, bytes, attributesFor(path));
}

bool replaceFile(const QString &path, const QByteArray &bytes, const FileAttributes &attributes)
{
    const auto fill = [&](int file) { return writeAll(file, viewOf(bytes)); };
    if (!isMountPoint(path)) {
        if (replaceFileWith(encoded(path), attributes, fill)) {
            return true;
        }
        if (errno != EBUSY) {
            return false;
        }
    }
    // No rename reaches a file on which something is mounted, and its folder may be read-only.
    const std::optional<QByteArray> old = readFileBytes(path, Links::Refuse);
    return old && rewriteFileInPlace(path, *old, bytes, Links::Refuse) == Rewrite::Done;
}

void clearUnfinished(const QString &path)
{
    clearUnfinished(encoded(path));
}

bool isMountPoint(const QString &path)
{
    struct statx info = {};
    return statx(AT_FDCWD, QFile::encodeName(path).constData(), AT_SYMLINK_NOFOLLOW, 0, &info) == 0
        && (info.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

std::optional<FileAttributes> attributesOf(const QString &path)
{
    struct stat info = {};
    if (lstat(encoded(path).c_str(), &info) != 0) {
        return std::nullopt;
    }
    return FileAttributes{info.st_mode, info.st_uid, info.st_gid, info.st_mtim};
}

bool copyIntoPlace(const QString &source, const QString &target, const FileAttributes &attributes,
    mode_t folderMode)
{
    if (!makeFolders(QFileInfo(target).path(), folderMode)) {
        return false;
    }
    if (isLink(source)) {
        return replaceLinkWith(encoded(target), linkTarget(source).toStdString(), attributes);
    }
    const FileDescriptor from(
        open(encoded(source).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return from.isOpen() && replaceFileWith(encoded(target), attributes, [&](int to) {
        return copyBytes(from.get(), to);
    });
}

bool removeFile(const QString &path)
{
    return unlink(encoded(path).c_str()) == 0 && syncFolder(folderOf(path));
}

bool sameFile(const QString &one, const QString &other)
{
    const std::optional<FileAttributes> first = attributesOf(one);
    const std::optional<FileAttributes> second = attributesOf(other);
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
        && mkdir(encoded(folder).c_str(), mode) == 0 && chmod(encoded(folder).c_str(), mode) == 0
        && syncFolder(encoded(parent));
}

std::optional<TreeContents> contentsBelow(const QString &folder)
{
    namespace fs = std::filesystem;
    TreeContents contents;
    const fs::path top(encoded(folder));
    std::error_code error;
    auto entry = fs::recursive_directory_iterator(top, error);
    if (error == std::errc::no_such_file_or_directory) {
        return contents;
    }
    for (; !error && entry != fs::end(entry); entry.increment(error)) {
        const fs::path path = entry->path().lexically_relative(top);
        const QString name = QFile::decodeName(path.c_str());
        std::error_code leadsNowhere; // a link to nothing counts
        if (!entry->is_directory(leadsNowhere)) {
            if (path.filename().string().rfind(unfinishedPrefix, 0) != 0) {
                contents.files.append(name);
            }
        } else if (!entry->is_symlink(error)) {
            contents.folders.append(name);
        }
    }
    if (error) {
        return std::nullopt;
    }
    contents.files.sort();
    contents.folders.sort();
    return contents;
}

void clearUnfinishedBelow(const QString &folder)
{
    QDirIterator entries(folder, {QLatin1String(unfinishedPrefix) + QLatin1Char('*')},
        QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        QFile::remove(entries.next());
    }
}
