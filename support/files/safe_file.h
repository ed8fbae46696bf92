// SPDX-License-Identifier: MIT
// Reading, rewriting, replacing and copying files: never waiting, never losing the old bytes.
#pragma once

#include "support/files/safe_write.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <limits>
#include <optional>

/// What to do when the last component of a path is a symbolic link.
enum class Links
{
    Follow,
    Refuse,
};

/// How far rewriteFileInPlace() came.
enum class Rewrite
{
    Done,
    NotOpened, ///< nothing was touched
    NotWritten, ///< the file holds its old bytes
};

/// The bytes of the regular file @p path. Empty, with errno set, when it cannot be opened or read,
/// when it holds more than @p most bytes, or when it is anything else than a regular file: a pipe
/// without a writer would never answer. Call it from any thread.
std::optional<QByteArray> readFileBytes(
    const QString &path, Links links = Links::Follow, int most = std::numeric_limits<int>::max());

/// Gives the existing regular file @p path, which holds @p oldBytes, the content @p newBytes, in
/// place: inode, owner, group and mode stay. It is not truncated first, so that a full disk costs
/// nothing. A missing file is not made. A reader or a crash in between finds the old bytes, or the
/// new ones perhaps followed by empty lines. Sets errno on failure. Call it from any thread.
Rewrite rewriteFileInPlace(const QString &path, const QByteArray &oldBytes,
    const QByteArray &newBytes, Links links = Links::Follow);

/// Puts a new file with @p bytes at @p path as replaceFileWith() does; where something is mounted
/// on the path, rewrites that in place. A plain file hands on its owner, group and mode; anything
/// else gets the process's own and 0644. False, with errno set, when nothing was changed.
bool replaceFile(const QString &path, const QByteArray &bytes);

/// The same; a file that is renamed into place gets @p attributes.
bool replaceFile(const QString &path, const QByteArray &bytes, const FileAttributes &attributes);

/// Removes what killed processes left on their way to @p path.
void clearUnfinished(const QString &path);

/// Whether something is mounted on @p path itself, as container managers do with single files: such
/// a file cannot be renamed over.
bool isMountPoint(const QString &path);

/// The attributes of the file @p path, of a link itself; empty when there is none.
std::optional<FileAttributes> attributesOf(const QString &path);

/// Makes @p target a copy of the regular file or link @p source, with @p attributes, as
/// replaceFileWith() does. Missing folders above it are made with mode @p folderMode.
bool copyIntoPlace(const QString &source, const QString &target, const FileAttributes &attributes,
    mode_t folderMode = 0755);

/// Removes the file @p path for good, as far as the disk is concerned.
bool removeFile(const QString &path);

/// Whether both are the same: kind, bytes, mode and owner.
bool sameFile(const QString &one, const QString &other);

/// Makes @p folder and what is missing above it, with mode @p mode whatever the umask.
bool makeFolders(const QString &folder, mode_t mode = 0755);

/// What there is below a folder, as paths relative to it, in order.
struct TreeContents
{
    QStringList files; ///< regular files and links; not what killed processes left unfinished
    QStringList folders;
};

/// What there is below @p folder; nothing where that does not exist. Links to folders are left out
/// and not entered. Empty when any of it could not be read: half a list passes for a whole one.
std::optional<TreeContents> contentsBelow(const QString &folder);

/// Removes what killed processes left unfinished below @p folder.
void clearUnfinishedBelow(const QString &folder);
