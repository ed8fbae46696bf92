// SPDX-License-Identifier: MIT
#include "private_root.h"

#include <QByteArray>
#include <QFile>
#include <cstdio>
#include <cstdlib>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Only there inside, whatever the environment says.
constexpr char marker[] = "/opt/.private-root";

void need(bool done, const char *step)
{
    if (!done) {
        perror(step);
        exit(1);
    }
}

void writeFile(const char *path, const QByteArray &text)
{
    QFile file(QString::fromLatin1(path));
    need(file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush(), path);
}

void becomeRoot()
{
    const QByteArray user = QByteArray::number(geteuid());
    const QByteArray group = QByteArray::number(getegid());
    need(unshare(CLONE_NEWUSER) == 0, "unshare user");
    writeFile("/proc/self/setgroups", "deny");
    writeFile("/proc/self/uid_map", "0 " + user + " 1");
    writeFile("/proc/self/gid_map", "0 " + group + " 1");
}

} // namespace

void enterPrivateRoot(char **argv)
{
    if (access(marker, F_OK) == 0) {
        return;
    }
    // Its name, because the link leads astray in a new namespace below a changed root.
    const QByteArray self = QFile::symLinkTarget(QStringLiteral("/proc/self/exe")).toLocal8Bit();
    const bool isRoot = geteuid() == 0;
    if (!isRoot) {
        becomeRoot();
    }
    need(unshare(CLONE_NEWNS | CLONE_NEWNET) == 0, "unshare mount and network");
    need(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "make / private");
    if (isRoot) { // devices can be used, not replaced: they are the host's
        need(mount("/dev", "/dev", nullptr, MS_BIND | MS_REC, nullptr) == 0, "bind /dev");
        need(mount("none", "/dev", nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0,
            "make /dev read-only");
    }
    need(mount("tmpfs", "/opt", "tmpfs", 0, nullptr) == 0, "mount /opt");
    need(mount("tmpfs", "/var/log", "tmpfs", 0, nullptr) == 0, "mount /var/log");
    need(mkdir("/opt/norvix", 0755) == 0, "mkdir");
    writeFile(marker, QByteArray());
    // From the start, so that static objects find their files in the new place.
    execv(self.constData(), argv);
    need(false, "exec");
}

bool canChangeOwners()
{
    return chown(marker, 65534, 65534) == 0 && chown(marker, 0, 0) == 0;
}
