// SPDX-License-Identifier: MIT
#include "connection/pid_file.h"

#include <QFile>
#include <QRegExp>
#include <algorithm>

namespace {

constexpr qint64 longestPidLine = 64;

} // namespace

std::optional<pid_t> parsePid(const QByteArray &content)
{
    const QByteArray firstLine = content.split('\n').constFirst().trimmed();
    const bool isDecimal = std::all_of(
        firstLine.cbegin(), firstLine.cend(), [](char c) { return c >= '0' && c <= '9'; });
    bool fits = false;
    const int pid = firstLine.toInt(&fits);
    if (!isDecimal || !fits || pid <= 1) {
        return std::nullopt;
    }
    return pid;
}

std::optional<pid_t> readPidFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray line = file.readLine(longestPidLine);
    if (!line.endsWith('\n') && !file.atEnd()) {
        return std::nullopt; // a line cut short would give another id than it holds
    }
    return parsePid(line);
}

QString interfaceInPidFile(const QByteArray &content)
{
    const QRegExp interfaceName(QStringLiteral("(ppp[0-9]{1})"));
    for (const QByteArray &line : content.split('\n')) {
        if (interfaceName.indexIn(QString::fromLatin1(line.constData())) >= 0) {
            return interfaceName.cap(1);
        }
    }
    return QString();
}

QString interfaceOfPidFiles(const QStringList &entries)
{
    const QRegExp pidFileName(QStringLiteral("^(ppp[0-9]{1})\\.pid"));
    for (const QString &entry : entries) {
        if (pidFileName.indexIn(entry) >= 0) {
            return pidFileName.cap(1);
        }
    }
    return QString();
}
