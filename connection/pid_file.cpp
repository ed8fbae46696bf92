// SPDX-License-Identifier: MIT
#include "connection/pid_file.h"

#include "support/files/file_descriptor.h"

#include <QFile>
#include <QRegExp>
#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

// A pid file is two short lines; whatever else lies under its name is not read to the end.
constexpr int longestPidFile = 64 * 1024;

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

QByteArray beginningOfPidFile(const QString &path)
{
    const FileDescriptor file(
        open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat facts = {};
    if (fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode)) {
        return QByteArray();
    }
    QByteArray content(int(qMin<qint64>(facts.st_size, longestPidFile)), '\0');
    const ssize_t size = read(file.get(), content.data(), size_t(content.size()));
    content.truncate(int(qMax<ssize_t>(size, 0)));
    return content;
}

std::optional<pid_t> readPidFile(const QString &path)
{
    const QByteArray content = beginningOfPidFile(path);
    if (content.size() == longestPidFile && !content.contains('\n')) {
        return std::nullopt; // a line cut short would give another id than it holds
    }
    return parsePid(content);
}

std::optional<QString> characterOfId(pid_t pid)
{
    const auto code = uint(pid);
    if (code > QChar::LastValidCodePoint || QChar::isSurrogate(code)) {
        return std::nullopt;
    }
    // Not QString::fromUcs4(), which takes 0xfeff for a mark of the byte order and drops it.
    if (QChar::requiresSurrogates(code)) {
        return QString(QChar(QChar::highSurrogate(code))) + QChar(QChar::lowSurrogate(code));
    }
    return QString(QChar(ushort(code)));
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
