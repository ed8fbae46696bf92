// SPDX-License-Identifier: MIT
#include "support/files/lock_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

enum class Taken
{
    Yes,
    ByAnother,
    Impossible, ///< errno says why
};

/// A record lock (not flock): it belongs to the process, so that neither a child that inherited the
/// descriptor nor one still on its way to exec keeps it.
Taken takeRecordLock(int fd)
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    if (fcntl(fd, F_SETLK, &lock) == 0) {
        return Taken::Yes;
    }
    return errno == EACCES || errno == EAGAIN ? Taken::ByAnother : Taken::Impossible;
}

bool isOurs(const struct stat &info)
{
    return S_ISREG(info.st_mode) && info.st_uid == geteuid() && info.st_nlink == 1;
}

/// Removes whatever somebody else left under our name, without following or opening it.
bool clearPath(const QByteArray &path)
{
    if (unlink(path.constData()) == 0 || errno == ENOENT) {
        return true;
    }
    // A folder, perhaps with content: put it aside, its owner may want it back. The place is a
    // fresh one, because every name that can be foretold may be taken on purpose.
    QByteArray aside = path + ".foreign-XXXXXX";
    if (mkdtemp(aside.data()) == nullptr) {
        return false;
    }
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    if (rename(path.constData(), (aside + '/' + name).constData()) != 0) {
        rmdir(aside.constData());
        return false;
    }
    chmod(aside.constData(), 0755);
    return true;
}

/// Opens our own lock file, made anew where there is none; -1 with errno otherwise. Others could
/// keep us out with a read lock if they could read it: hence the mode.
int openOwn(const QByteArray &path)
{
    struct stat info = {};
    if (lstat(path.constData(), &info) == 0) {
        if (!isOurs(info) && !clearPath(path)) {
            return -1;
        }
    }
    int fd = open(path.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0 && errno == ENOENT) {
        fd = open(path.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_CREAT | O_EXCL, 0600);
    }
    return fd;
}

} // namespace

int lockFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    QDir().mkpath(QFileInfo(path).path()); // /run is empty after boot on minimal systems

    for (int attempt = 0; attempt < 20; ++attempt) {
        const int fd = openOwn(name);
        if (fd < 0) {
            if (errno == EEXIST || errno == ELOOP || errno == ENOENT || errno == EACCES) {
                continue; // somebody changed the path between our steps
            }
            break;
        }
        struct stat opened = {};
        if (fstat(fd, &opened) != 0 || !isOurs(opened)) {
            close(fd);
            continue;
        }
        const Taken taken = takeRecordLock(fd);
        if (taken != Taken::Yes) {
            const int reason = errno;
            close(fd);
            if (taken == Taken::ByAnother) {
                return -1;
            }
            errno = reason;
            break;
        }
        fchmod(fd, 0600);
        if (ftruncate(fd, 0) == 0) {
            dprintf(fd, "%d\n", int(getpid()));
        }
        return fd;
    }
    fprintf(stderr, "Norvix Daemon: cannot make the lock file %s (%s).\n", name.constData(),
        strerror(errno));
    return 0;
}
