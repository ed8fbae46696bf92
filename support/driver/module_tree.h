// SPDX-License-Identifier: MIT
// The modules installed for one kernel.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

/// The folder /lib/modules/RELEASE, or any folder of that shape.
class ModuleTree
{
public:
    explicit ModuleTree(const QString &root);

    /// "/lib/modules/" and the running kernel's release.
    static QString runningKernelsRoot();

    const QString &root() const { return m_root; }
    QString absolute(const QString &relative) const;

    /// Where an absolute path lies in the tree, relative to the root; nothing when it lies
    /// elsewhere. /lib is a link to /usr/lib on current systems, so either name leads there.
    std::optional<QString> placeOf(const QString &path) const;

    /// Where the kernel's headers are to be found.
    QString buildFolder() const;

    /// The copies of module @p moduleFile (such as "cxacru.ko"), plain or compressed, as paths
    /// relative to the root, in order; nothing at all when not all of the tree could be read.
    std::optional<QStringList> copiesOf(const QString &moduleFile) const;

    /// Whether the file @p fileName is a copy of @p moduleFile: the kernel takes "-" and "_" in a
    /// module's name for the same, and modprobe reads .gz, .xz and .zst.
    static bool isCopyOf(const QString &fileName, const QString &moduleFile);

private:
    QString m_root;
};
