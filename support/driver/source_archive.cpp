// SPDX-License-Identifier: MIT
#include "support/driver/source_archive.h"

#include <QFile>
#include <QFileInfo>
#include <QList>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

QString judgeMember(const QByteArray &name, const QByteArray &topFolder, int *depth)
{
    const QString quoted = QString::fromLocal8Bit(name);
    if (name.startsWith('/')) {
        return QStringLiteral("member \"%1\" has an absolute name").arg(quoted);
    }
    QList<QByteArray> components = name.split('/');
    if (components.contains("..")) {
        return QStringLiteral("member \"%1\" leads outside").arg(quoted);
    }
    *depth = 1;
    while (components.first() == "." && components.size() > 1) {
        components.removeFirst();
        ++*depth;
    }
    if (components.first() != topFolder) {
        return QStringLiteral("member \"%1\" is not in the folder %2")
            .arg(quoted, QString::fromLocal8Bit(topFolder));
    }
    return QString();
}

/// Links are judged by where they really end: a text that looks inside may lead outside through
/// another link.
QString judgeLink(const fs::path &link, const fs::path &top)
{
    const QString name = QString::fromLocal8Bit(link.c_str());
    std::error_code error;
    const fs::path target = fs::read_symlink(link, error);
    if (error || target.is_absolute()) {
        return QStringLiteral("link \"%1\" has an absolute target").arg(name);
    }
    const fs::path end = fs::canonical(link, error);
    if (error) {
        return QStringLiteral("link \"%1\" leads nowhere").arg(name);
    }
    const std::string prefix = top.string() + '/';
    if (end != top && end.string().compare(0, prefix.size(), prefix) != 0) {
        return QStringLiteral("link \"%1\" leads outside").arg(name);
    }
    return QString();
}

} // namespace

ArchiveShape judgeListing(const QByteArray &listing, const QString &topFolder)
{
    ArchiveShape shape;
    int members = 0;
    for (const QByteArray &name : listing.split('\n')) {
        if (name.isEmpty()) {
            continue;
        }
        int depth = 0;
        shape.refusal = judgeMember(name, QFile::encodeName(topFolder), &depth);
        if (shape.refusal.isEmpty() && members > 0 && depth != shape.topDepth) {
            shape.refusal = QStringLiteral("its members are named in different ways");
        }
        if (!shape.refusal.isEmpty()) {
            return shape;
        }
        shape.topDepth = depth;
        ++members;
    }
    if (members == 0) {
        shape.refusal = QStringLiteral("it is empty");
    }
    return shape;
}

QString judgeTree(const QString &folder)
{
    std::error_code error;
    const fs::path top = fs::canonical(QFile::encodeName(folder).constData(), error);
    if (error) {
        return QStringLiteral("the folder cannot be read");
    }
    auto entry = fs::recursive_directory_iterator(top, error);
    for (; !error && entry != fs::end(entry); entry.increment(error)) {
        QString refusal;
        if (entry->is_symlink(error)) {
            refusal = judgeLink(entry->path(), top);
        } else if (!entry->is_directory(error) && !entry->is_regular_file(error)) {
            refusal = QStringLiteral("\"%1\" is neither file nor folder")
                          .arg(QString::fromLocal8Bit(entry->path().c_str()));
        }
        if (!refusal.isEmpty()) {
            return refusal;
        }
    }
    return error ? QStringLiteral("the folder cannot be read") : QString();
}
