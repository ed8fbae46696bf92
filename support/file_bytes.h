// SPDX-License-Identifier: MIT
// Reading and rewriting small configuration files: never waiting, never losing the old bytes.
#pragma once

#include <QByteArray>
#include <QString>
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
/// or when it is anything else than a regular file: a pipe without a writer would never answer.
/// Call it from any thread.
std::optional<QByteArray> readFileBytes(const QString &path, Links links = Links::Follow);

/// Gives the existing regular file @p path, which holds @p oldBytes, the content @p newBytes, in
/// place: inode, owner, group and mode stay. It is not truncated first, so that a full disk costs
/// nothing. A missing file is not made. A reader or a crash in between finds the old bytes, or the
/// new ones perhaps followed by empty lines. Sets errno on failure. Call it from any thread.
Rewrite rewriteFileInPlace(const QString &path, const QByteArray &oldBytes,
    const QByteArray &newBytes, Links links = Links::Follow);

/// Puts a new file with @p bytes at @p path, by way of a temporary file beside it, so that at any
/// moment, also after a crash, the path leads to the old file or to the complete new one. A plain
/// file hands on its owner, group and mode; anything else (a symbolic link is replaced, not
/// followed) gets the process's own and 0644. False, with errno set, when nothing was changed.
/// Only one process may use it on a path. Call it from any thread.
bool replaceFile(const QString &path, const QByteArray &bytes);

/// Whether something is mounted on @p path itself, as container managers do with single files: such
/// a file cannot be renamed over.
bool isMountPoint(const QString &path);
