// SPDX-License-Identifier: MIT
#include "support/driver/module_backup.h"

#include "support/files/safe_file.h"
#include "support/files/trusted_file.h"

#include <QFile>
#include <QSet>
#include <cerrno>
#include <unistd.h>

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
    const std::optional<TreeContents> contents = contentsBelow(m_tree.root());
    const std::optional<QStringList> copies = m_tree.copiesOf(m_moduleFile);
    if (!contents || !copies
        || !replaceFile(foldersBefore(), contents->folders.join(QLatin1Char('\n')).toUtf8())) {
        return false;
    }
    for (const QString &file : *copies) {
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
    const std::optional<TreeContents> backup = contentsBelow(kept());
    if (!backup) {
        return false; // what is not seen there would be taken for new
    }
    bool complete = true;
    // Old files first, then away with the new: in between either of them can be loaded.
    for (const QString &file : backup->files) {
        const QString target = m_tree.absolute(file);
        const std::optional<FileAttributes> facts = attributesOf(kept(file));
        if (!sameFile(kept(file), target)
            && !(facts && copyIntoPlace(kept(file), target, *facts))) {
            complete = false;
        }
    }
    const std::optional<QStringList> copies = m_tree.copiesOf(m_moduleFile);
    const std::optional<QStringList> added = addedFiles();
    complete = complete && copies && added;
    for (const QString &file : copies.value_or(QStringList()) + added.value_or(QStringList())) {
        if (!backup->files.contains(file) && attributesOf(m_tree.absolute(file))) {
            complete = removeFile(m_tree.absolute(file)) && complete;
        }
    }
    return removeNewFolders() && complete;
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

QString ModuleBackup::foldersBefore() const
{
    return m_folder + QStringLiteral("/folders");
}

std::optional<QStringList> ModuleBackup::addedFiles() const
{
    if (!wasInterrupted()) {
        return QStringList();
    }
    const std::optional<QByteArray> text = readFileBytes(marker());
    return text ? std::make_optional(addedFilesIn(*text)) : std::nullopt;
}

/// Folders that an install made, by itself or for its files, and that hold nothing any more.
bool ModuleBackup::removeNewFolders() const
{
    if (!QFile::exists(foldersBefore())) {
        return true; // nobody knows which are new
    }
    const std::optional<QByteArray> text = readFileBytes(foldersBefore());
    const std::optional<TreeContents> contents = contentsBelow(m_tree.root());
    if (!text || !contents) {
        return false;
    }
    const QStringList before = QString::fromUtf8(*text).split(QLatin1Char('\n'));
    const QSet<QString> known(before.begin(), before.end());
    bool complete = true;
    // In order, so that backwards what stands in a folder comes before it.
    for (auto folder = contents->folders.rbegin(); folder != contents->folders.rend(); ++folder) {
        if (!known.contains(*folder)
            && rmdir(QFile::encodeName(m_tree.absolute(*folder)).constData()) != 0) {
            complete = complete && errno == ENOTEMPTY;
        }
    }
    return complete;
}

bool ModuleBackup::keep(const QString &file)
{
    const std::optional<FileAttributes> facts = attributesOf(m_tree.absolute(file));
    return facts && copyIntoPlace(m_tree.absolute(file), kept(file), *facts, 0700);
}
