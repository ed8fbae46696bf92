// SPDX-License-Identifier: MIT
#include "support/file_bytes.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A descriptor that closes itself and leaves errno alone.
class Descriptor
{
public:
    explicit Descriptor(int fd)
        : m_fd(fd)
    {
    }
    ~Descriptor()
    {
        const int error = errno;
        if (m_fd >= 0) {
            close(m_fd);
        }
        errno = error;
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int fd() const { return m_fd; }
    bool isOpen() const { return m_fd >= 0; }

private:
    int m_fd;
};

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

bool writeAll(int fd, const QByteArray &bytes)
{
    qint64 done = 0;
    while (done < bytes.size()) {
        const ssize_t count
            = pwrite(fd, bytes.constData() + done, size_t(bytes.size() - done), done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            if (count == 0) {
                errno = ENOSPC;
            }
            return false;
        }
        done += count;
    }
    return true;
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

/// Makes @p temporary anew with the owner, group and mode that the final file shall have.
int createTemporary(const QByteArray &temporary, const struct stat &like)
{
    unlink(temporary.constData()); // what a killed process may have left
    const int fd
        = open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) {
        return -1;
    }
    struct stat made = {};
    const bool owned = fstat(fd, &made) == 0
        && ((made.st_uid == like.st_uid && made.st_gid == like.st_gid)
            || fchown(fd, like.st_uid, like.st_gid) == 0);
    if (owned && fchmod(fd, like.st_mode & 07777) == 0) {
        return fd;
    }
    const int error = errno;
    close(fd);
    unlink(temporary.constData());
    errno = error;
    return -1;
}

/// Owner, group and mode for the file that takes the place of @p path.
struct stat ownershipFor(const QByteArray &path)
{
    struct stat info = {};
    if (lstat(path.constData(), &info) != 0 || !S_ISREG(info.st_mode)) {
        info.st_uid = geteuid();
        info.st_gid = getegid();
        info.st_mode = 0644;
    }
    return info;
}

void syncFolder(const QByteArray &folder)
{
    const Descriptor descriptor(open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen()) {
        fsync(descriptor.fd()); // some file systems cannot; the new name is valid all the same
    }
}

} // namespace

std::optional<QByteArray> readFileBytes(const QString &path, Links links)
{
    const Descriptor file(openRegular(QFile::encodeName(path), O_RDONLY, links));
    if (!file.isOpen()) {
        return std::nullopt;
    }
    QByteArray bytes;
    char block[65536];
    for (;;) {
        const ssize_t count = read(file.fd(), block, sizeof block);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            return bytes;
        }
        bytes.append(block, int(count));
    }
}

Rewrite rewriteFileInPlace(
    const QString &path, const QByteArray &oldBytes, const QByteArray &newBytes, Links links)
{
    const Descriptor file(openRegular(QFile::encodeName(path), O_WRONLY, links));
    if (!file.isOpen()) {
        return Rewrite::NotOpened;
    }
    if (newBytes.size() > oldBytes.size() && !reserveRoom(file.fd(), newBytes.size())) {
        return Rewrite::NotWritten;
    }
    if (writeAll(file.fd(), padded(newBytes, oldBytes.size()))
        && ftruncate(file.fd(), newBytes.size()) == 0 && fsync(file.fd()) == 0) {
        return Rewrite::Done;
    }
    const int error = errno;
    if (writeAll(file.fd(), oldBytes) && ftruncate(file.fd(), oldBytes.size()) == 0) {
        fsync(file.fd());
    }
    errno = error;
    return Rewrite::NotWritten;
}

bool replaceFile(const QString &path, const QByteArray &bytes)
{
    const QFileInfo info(path);
    const QByteArray target = QFile::encodeName(path);
    const QByteArray folder = QFile::encodeName(info.path());
    const QByteArray temporary = folder + "/." + QFile::encodeName(info.fileName()) + ".norvix";

    const Descriptor file(createTemporary(temporary, ownershipFor(target)));
    if (!file.isOpen()) {
        return false;
    }
    if (writeAll(file.fd(), bytes) && fsync(file.fd()) == 0
        && rename(temporary.constData(), target.constData()) == 0) {
        syncFolder(folder);
        return true;
    }
    const int error = errno;
    unlink(temporary.constData());
    errno = error;
    return false;
}

bool isMountPoint(const QString &path)
{
    struct statx info = {};
    return statx(AT_FDCWD, QFile::encodeName(path).constData(), AT_SYMLINK_NOFOLLOW, 0, &info) == 0
        && (info.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}
