// SPDX-License-Identifier: MIT
#include "support/driver/compiler_work.h"
#include "support/files/safe_file.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>

namespace {

constexpr int maxShowDepends = 64 * 1024;

} // namespace

bool Compiler::Work::makeStaging()
{
    if (!removeTree(staging) || !makeFolders(staging + tree.root())) {
        return false;
    }
    const std::optional<TreeContents> contents = contentsBelow(tree.root());
    if (!contents) {
        return false;
    }
    // Old makefiles copy into folders that every kernel has, without making them.
    for (const QString &folder : contents->folders) {
        if (!makeFolders(staging + tree.absolute(folder))) {
            return false;
        }
    }
    return true;
}

int Compiler::Work::publish(const char *step)
{
    const std::optional<TreeContents> staged = contentsBelow(staging);
    if (!staged) {
        complain(step, QStringLiteral("what was built cannot be read"));
        return Compiler::InstallIncomplete;
    }
    QMap<QString, QString> stagedFiles; // by their place in the module folder
    for (const QString &file : staged->files) {
        const std::optional<QString> place = tree.placeOf(QLatin1Char('/') + file);
        if (!place) {
            note(step, QStringLiteral("not for the running kernel, left out: /") + file);
        } else if (place->contains(QLatin1Char('/'))) { // above them only depmod's own files
            stagedFiles.insert(*place, staging + QLatin1Char('/') + file);
        }
    }
    const QStringList files = stagedFiles.keys();
    if (!backup.beginInstall(files)) {
        complain(step, QStringLiteral("the files to be replaced cannot be kept"));
        return Compiler::BackupFailed;
    }
    for (const QString &file : files) {
        const QString source = stagedFiles.value(file);
        const std::optional<FileAttributes> facts = attributesOf(source);
        if (!facts || !copyIntoPlace(source, tree.absolute(file), *facts)) {
            complain(step, QStringLiteral("%1 cannot be installed").arg(tree.absolute(file)));
            return Compiler::InstallIncomplete;
        }
        note(step, QStringLiteral("installed ") + tree.absolute(file));
    }
    m_published = files;
    removeTree(staging);
    return 0;
}

QString Compiler::Work::moduleThatModprobeFinds(const char *step)
{
    const ToolResult result = run(step, QStringLiteral("modprobe"),
        {QStringLiteral("--show-depends"), plan.moduleName}, -1, maxShowDepends);
    const QStringList files = modulesToLoad(QString::fromLocal8Bit(result.output));
    // Nothing to load although all is well: the module is part of the kernel.
    const QString found = files.isEmpty() ? QStringLiteral("/") : files.last();
    // The index may name a file that has gone.
    return result.ok() && QFile::exists(found) ? found : QString();
}

int Compiler::Work::checkModule(const char *step)
{
    QStringList copies;
    for (const QString &file : qAsConst(m_published)) {
        if (ModuleTree::isCopyOf(QFileInfo(file).fileName(), driver.moduleFile)) {
            copies.append(QFileInfo(tree.absolute(file)).canonicalFilePath());
        }
    }
    const std::optional<QStringList> installed = tree.copiesOf(driver.moduleFile);
    if (!installed) {
        complain(step, QStringLiteral("%1 cannot be read").arg(tree.root()));
        return Compiler::ModuleNotFound;
    }
    for (int round = 0; round <= installed->size(); ++round) {
        const int code = depmod(step);
        if (code != 0) {
            return code;
        }
        const QString found = moduleThatModprobeFinds(step);
        if (found.isEmpty()) {
            break;
        }
        const QString file = QFileInfo(found).canonicalFilePath();
        const bool isOlderCopy = !copies.isEmpty() && !copies.contains(file)
            && ModuleTree::isCopyOf(QFileInfo(file).fileName(), driver.moduleFile);
        if (!isOlderCopy) {
            return 0;
        }
        note(step, QStringLiteral("taking away %1, which would be loaded instead").arg(found));
        if (!removeFile(found)) {
            break;
        }
    }
    complain(step, QStringLiteral("modprobe does not find the module %1").arg(plan.moduleName));
    return Compiler::ModuleNotFound;
}
