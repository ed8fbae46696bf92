// SPDX-License-Identifier: MIT
#include "support/driver/module_backup.h"

#include "support/files/safe_file.h"
#include "support/files/trusted_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QStringList addedFilesIn(const QByteArray &marker)
{
    QStringList files;
    for (const QString &line :
        QString::fromUtf8(marker).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const bool leadsOut = line.startsWith(QLatin1Char('/'))
            || line.split(QLatin1Char('/')).contains(QStringLiteral(".."));
        if (!leadsOut) {
            files.append(line);
        }
    }
    return files;
}

ModuleBackup::ModuleBackup(const QString &folder, const ModuleTree &tree, const QString &moduleFile)
    : m_folder(folder)
    , m_tree(tree)
    , m_moduleFile(moduleFile)
{
}

bool ModuleBackup::wasInterrupted() const
{
    return QFile::exists(marker());
}

bool ModuleBackup::take()
{
    // The module folder is untouched as yet, so a half-made backup harms nobody: it is not used.
    if (!removeTree(m_folder) || !makeFolders(kept(), 0700)) {
        return false;
    }
    const QStringList copies = m_tree.copiesOf(m_moduleFile);
    for (const QString &file : copies) {
        if (!keep(file)) {
            return false;
        }
    }
    return true;
}

bool ModuleBackup::beginInstall(const QStringList &files)
{
    QStringList added;
    for (const QString &file : files) {
        if (attributesOf(kept(file))) {
            continue;
        }
        if (!attributesOf(m_tree.absolute(file))) {
            added.append(file);
        } else if (!keep(file)) {
            return false;
        }
    }
    return replaceFile(marker(), added.join(QLatin1Char('\n')).toUtf8());
}

bool ModuleBackup::putBack()
{
    clearUnfinishedBelow(m_tree.root());
    const QStringList keptFiles = filesBelow(kept());
    bool complete = true;
    // Old files first, then away with the new: in between either of them can be loaded.
    for (const QString &file : keptFiles) {
        const QString target = m_tree.absolute(file);
        const std::optional<FileAttributes> facts = attributesOf(kept(file));
        if (!sameFile(kept(file), target)
            && !(facts && copyIntoPlace(kept(file), target, *facts))) {
            complete = false;
        }
    }
    const QStringList candidates = m_tree.copiesOf(m_moduleFile) + addedFiles();
    for (const QString &file : candidates) {
        const QString path = m_tree.absolute(file);
        if (keptFiles.contains(file)) {
            continue;
        }
        if (attributesOf(path)) {
            complete = removeFile(path) && complete;
        }
        // A folder that held nothing else came with it, even where only the folder came.
        QDir().rmdir(QFileInfo(path).path());
    }
    return complete;
}

void ModuleBackup::conclude()
{
    removeFile(marker());
}

QString ModuleBackup::kept(const QString &file) const
{
    const QString folder = m_folder + QStringLiteral("/kept");
    return file.isEmpty() ? folder : folder + QLatin1Char('/') + file;
}

QString ModuleBackup::marker() const
{
    return m_folder + QStringLiteral("/installing");
}

QStringList ModuleBackup::addedFiles() const
{
    QFile file(marker());
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return addedFilesIn(file.readAll());
}

bool ModuleBackup::keep(const QString &file)
{
    const std::optional<FileAttributes> facts = attributesOf(m_tree.absolute(file));
    return facts && copyIntoPlace(m_tree.absolute(file), kept(file), *facts, 0700);
}
