// SPDX-License-Identifier: MIT
#include "support/files/safe_write.h"

#include "support/files/file_descriptor.h"

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>

namespace {

constexpr std::string_view anyEnding = "XXXXXX";

std::string folderOf(const std::string &path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// The names of unfinished files for @p path, without their ending.
std::string unfinishedName(const std::string &path)
{
    return unfinishedPrefix + path.substr(path.rfind('/') + 1) + '-';
}

/// A file that removes itself unless it has been put in place.
class Unfinished
{
public:
    explicit Unfinished(const std::string &path)
        : m_target(path)
        , m_template(folderOf(path) + '/' + unfinishedName(path) + std::string(anyEnding))
    {
    }
    ~Unfinished()
    {
        const int error = errno;
        if (m_exists) {
            unlink(m_name.c_str());
        }
        errno = error;
    }
    Unfinished(const Unfinished &) = delete;
    Unfinished &operator=(const Unfinished &) = delete;

    /// Locked, so that whoever clears unfinished files knows that somebody is at work here.
    bool make()
    {
        struct stat made = {};
        do {
            m_name = m_template;
            m_file = FileDescriptor(mkostemp(m_name.data(), O_CLOEXEC));
            m_exists = m_file.isOpen();
        } while (m_exists && flock(m_file.get(), LOCK_EX | LOCK_NB) == 0
            && fstat(m_file.get(), &made) == 0 && made.st_nlink == 0); // cleared in between
        return m_exists;
    }

    bool becomeLink(const std::string &leadsTo) const
    {
        return unlink(m_name.c_str()) == 0 && symlink(leadsTo.c_str(), m_name.c_str()) == 0;
    }

    bool putInPlace()
    {
        if (rename(m_name.c_str(), m_target.c_str()) != 0) {
            return false;
        }
        m_exists = false;
        syncFolder(folderOf(m_target)); // where that cannot be done the name is valid all the same
        return true;
    }

    int descriptor() const { return m_file.get(); }
    const char *name() const { return m_name.c_str(); }

private:
    std::string m_target;
    std::string m_template;
    std::string m_name;
    FileDescriptor m_file;
    bool m_exists = false;
};

bool setAttributes(int descriptor, const FileAttributes &attributes)
{
    const timespec times[2] = {{0, UTIME_NOW}, attributes.changed};
    struct stat made = {};
    if (fstat(descriptor, &made) != 0) {
        return false;
    }
    // The owner first: changing it would clear mode bits.
    const bool isOwned = (made.st_uid == attributes.owner && made.st_gid == attributes.group)
        || fchown(descriptor, attributes.owner, attributes.group) == 0;
    return isOwned && fchmod(descriptor, attributes.mode & 07777) == 0
        && futimens(descriptor, times) == 0;
}

/// Whether nobody is writing it any more.
bool isAbandoned(const std::string &path)
{
    struct stat info = {};
    if (lstat(path.c_str(), &info) != 0) {
        return false;
    }
    if (S_ISLNK(info.st_mode)) {
        return true;
    }
    const FileDescriptor file(
        open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    return S_ISREG(info.st_mode) && file.isOpen() && flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

/// Removes the abandoned files of @p folder whose names are @p ours.
void clearAbandoned(const std::string &folder, const std::function<bool(const std::string &)> &ours)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(opendir(folder.c_str()), closedir);
    while (const dirent *entry = entries ? readdir(entries.get()) : nullptr) {
        const std::string path = folder + '/' + entry->d_name;
        if (ours(entry->d_name) && isAbandoned(path)) {
            unlink(path.c_str());
        }
    }
}

} // namespace

bool writeAll(int descriptor, std::string_view bytes, off_t at)
{
    while (!bytes.empty()) {
        const ssize_t count = pwrite(descriptor, bytes.data(), bytes.size(), at);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            if (count == 0) {
                errno = ENOSPC;
            }
            return false;
        }
        bytes.remove_prefix(size_t(count));
        at += count;
    }
    return true;
}

bool syncFolder(const std::string &folder)
{
    const FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return descriptor.isOpen() && fsync(descriptor.get()) == 0;
}

bool replaceFileWith(
    const std::string &path, const FileAttributes &attributes, const std::function<bool(int)> &fill)
{
    clearUnfinished(path);
    Unfinished file(path);
    return file.make() && fill(file.descriptor()) && setAttributes(file.descriptor(), attributes)
        && fsync(file.descriptor()) == 0 && file.putInPlace();
}

bool replaceLinkWith(
    const std::string &path, const std::string &leadsTo, const FileAttributes &attributes)
{
    clearUnfinished(path);
    // The name is made unique by a file, which the link then replaces.
    Unfinished file(path);
    return file.make() && file.becomeLink(leadsTo)
        && lchown(file.name(), attributes.owner, attributes.group) == 0 && file.putInPlace();
}

void clearUnfinished(const std::string &path)
{
    const std::string beginning = unfinishedName(path);
    clearAbandoned(folderOf(path), [&](const std::string &name) {
        return name.size() == beginning.size() + anyEnding.size() && name.find(beginning) == 0;
    });
}

void clearUnfinishedIn(const std::string &folder)
{
    clearAbandoned(
        folder, [](const std::string &name) { return name.find(unfinishedPrefix) == 0; });
}
