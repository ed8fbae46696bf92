// SPDX-License-Identifier: MIT
// Files that root may act upon: nobody but their owner could have changed them.
#pragma once

#include "support/files/file_descriptor.h"

#include <QString>
#include <sys/types.h>

/// A file opened for reading, or the reason why not.
struct TrustedFile
{
    FileDescriptor file;
    QString refusal; ///< in words, with the path concerned; empty when the file is open
};

/// Opens the regular file @p path when it and every folder above it, up to and including @p top,
/// belong to @p owner (folders: or to root) and can be written by no group and by nobody else. No
/// link is followed. What was judged is what is open: a later change of the path changes nothing.
TrustedFile openTrustedFile(
    const QString &path, uid_t owner = 0, const QString &top = QStringLiteral("/"));

/// Where a path leads, or the reason why it must not be followed there.
struct TrustedPath
{
    QString path; ///< free of links
    QString refusal; ///< in words, with the path concerned; empty when the path may be used
};

/// Follows the links of @p path to the regular file that they lead to. Every link on the way, every
/// folder that it leads through from @p top on, and the file are held to the rules of
/// openTrustedFile(): so the way stays what it was found to be.
TrustedPath followTrustedLinks(
    const QString &path, uid_t owner = 0, const QString &top = QStringLiteral("/"));

/// The reason why a folder must not be made in @p parent: it must be a folder of root's that only
/// root may write to, or a sticky one, such as /tmp, where nobody can replace what root made. Empty
/// when it may.
QString refusalOfParent(const QString &parent);

/// Makes the folder @p path with mode 0700, removing whatever stood there without following links.
/// Gives the reason when that could not be done; then nothing of @p path may be used.
QString makePrivateFolder(const QString &path);

/// Removes @p path with all below it; follows no link.
bool removeTree(const QString &path);
