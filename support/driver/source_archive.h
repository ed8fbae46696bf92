// SPDX-License-Identifier: MIT
// Judges a source tarball: by its listing before it is unpacked, by its tree afterwards.
#pragma once

#include <QByteArray>
#include <QString>

/// What a tarball's listing says about unpacking it.
struct ArchiveShape
{
    QString refusal; ///< why it must not be unpacked, in words; empty when all is well
    int topDepth = 1; ///< leading path components up to and including the top folder
};

/// Judges @p listing (tar's own, one name a line): every member must lie in @p topFolder, with a
/// relative name that never goes up.
ArchiveShape judgeListing(const QByteArray &listing, const QString &topFolder);

/// Judges the unpacked tree below @p folder, which nobody else may be able to change meanwhile:
/// only folders, files, and links that end inside. Gives why it is refused, or an empty text.
QString judgeTree(const QString &folder);
