// SPDX-License-Identifier: MIT
// Keeps what a driver build replaces in the module folder, and puts it back.
#pragma once

#include "support/driver/module_tree.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The files that an install added, from the text of its marker: paths relative to the module
/// folder. What would lead out of that folder is left out.
QStringList addedFilesIn(const QByteArray &marker);

/// The backup of one module of one kernel. On the disk: @p folder holds "kept", a copy of each
/// module file under its own relative path, a file "folders" with the folders that there were, and,
/// from the moment when the module folder may change until the build has been concluded, a file
/// "installing" with the paths that the build adds.
class ModuleBackup
{
public:
    ModuleBackup(const QString &folder, const ModuleTree &tree, const QString &moduleFile);

    /// Whether an earlier build was cut off between beginInstall() and conclude().
    bool wasInterrupted() const;

    /// Keeps all installed copies of the module, replacing an earlier backup. False when that could
    /// not be done; then there is none.
    bool take();

    /// To be called before anything in the module folder is changed: keeps also those of @p files
    /// (relative paths) that exist there, and notes that an install has begun.
    bool beginInstall(const QStringList &files);

    /// Makes the module folder what it was when the backup was taken. False when something could
    /// not be done or seen; then it can be tried again.
    bool putBack();

    /// Ends the install: what is in the module folder now is what shall be there.
    void conclude();

private:
    QString kept(const QString &file = QString()) const;
    QString marker() const;
    QString foldersBefore() const;
    std::optional<QStringList> addedFiles() const;
    bool removeNewFolders() const;
    bool keep(const QString &file);

    QString m_folder;
    ModuleTree m_tree;
    QString m_moduleFile;
};
