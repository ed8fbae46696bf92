// SPDX-License-Identifier: MIT
// Puts a file in place completely or not at all.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <sys/stat.h>

/// What a copy of a file takes over besides its bytes.
struct FileFacts
{
    mode_t mode = 0644;
    uid_t owner = 0;
    gid_t group = 0;
    timespec changed = {0, UTIME_NOW}; ///< when its bytes last changed
};

/// The facts of the file @p path, of a link itself; empty when there is none.
std::optional<FileFacts> factsOf(const QString &path);

/// Makes @p target a copy of the regular file or link @p source, with @p facts. Writes beside it,
/// flushes it to the disk, renames: whatever happens, even a power failure, @p target is the old
/// file or the new one. Missing folders above it are made with mode @p folderMode.
bool replaceFile(
    const QString &source, const QString &target, const FileFacts &facts, mode_t folderMode = 0755);

/// The same with given bytes, mode 0600.
bool replaceBytes(const QByteArray &bytes, const QString &target);

/// Removes the file @p path for good, as far as the disk is concerned.
bool removeFile(const QString &path);

/// Whether both are the same: kind, bytes, mode and owner.
bool sameFile(const QString &one, const QString &other);

/// Makes @p folder and what is missing above it, with mode @p mode whatever the umask.
bool makeFolders(const QString &folder, mode_t mode = 0755);

/// Regular files and links below @p folder as paths relative to it, in order. Links to folders are
/// not entered. What an interrupted replaceFile() left is not among them.
QStringList filesBelow(const QString &folder);

/// Removes what interrupted calls of replaceFile() left below @p folder.
void removeLeftovers(const QString &folder);
