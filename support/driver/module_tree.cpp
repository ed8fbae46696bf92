// SPDX-License-Identifier: MIT
#include "support/driver/module_tree.h"

#include "support/files/safe_file.h"

#include <QFileInfo>
#include <sys/utsname.h>

namespace {

QString plainName(QString fileName)
{
    for (const char *suffix : {".gz", ".xz", ".zst"}) {
        if (fileName.endsWith(QLatin1String(suffix))) {
            fileName.chop(int(qstrlen(suffix)));
            break;
        }
    }
    return fileName.replace(QLatin1Char('-'), QLatin1Char('_'));
}

} // namespace

ModuleTree::ModuleTree(const QString &root)
    : m_root(root)
{
}

QString ModuleTree::runningKernelsRoot()
{
    utsname system = {};
    uname(&system);
    return QStringLiteral("/lib/modules/") + QString::fromLocal8Bit(system.release);
}

QString ModuleTree::absolute(const QString &relative) const
{
    return m_root + QLatin1Char('/') + relative;
}

std::optional<QString> ModuleTree::placeOf(const QString &path) const
{
    for (const QString &folder : {m_root, QStringLiteral("/usr") + m_root}) {
        if (path.startsWith(folder + QLatin1Char('/'))) {
            return path.mid(folder.size() + 1);
        }
    }
    return std::nullopt;
}

QString ModuleTree::buildFolder() const
{
    return absolute(QStringLiteral("build"));
}

std::optional<QStringList> ModuleTree::copiesOf(const QString &moduleFile) const
{
    const std::optional<TreeContents> contents = contentsBelow(m_root);
    if (!contents) {
        return std::nullopt;
    }
    QStringList copies;
    for (const QString &file : contents->files) {
        if (isCopyOf(QFileInfo(file).fileName(), moduleFile)) {
            copies.append(file);
        }
    }
    return copies;
}

bool ModuleTree::isCopyOf(const QString &fileName, const QString &moduleFile)
{
    return plainName(fileName) == plainName(moduleFile);
}
