// SPDX-License-Identifier: MIT
#include "support/resolver/dns_manager.h"

#include "support/files/safe_file.h"
#include "support/resolver/resolv_conf.h"

#include <QFile>
#include <algorithm>
#include <sys/stat.h>

namespace {

// A larger file is no configuration, and is left alone: taking it apart would keep everybody
// waiting.
constexpr int mostBytes = 1024 * 1024;

/// The configuration whose other lines are to be kept: empty where there is none to lose (a missing
/// file, a dangling link, a pipe). No value when there is a file that cannot be read.
std::optional<QByteArray> configurationToKeep(const QString &path)
{
    std::optional<QByteArray> bytes = readFileBytes(path, Links::Follow, mostBytes);
    struct stat info = {};
    const bool isFile
        = lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISREG(info.st_mode);
    if (!bytes && !isFile) {
        bytes = QByteArray();
    }
    return bytes;
}

} // namespace

DNS_Manager::DNS_Manager()
    : m_path("/etc/resolv.conf")
    , m_writerComment("# Written by norvix-daemon, which had found no usable name server here.")
    , m_nameserverLine(ResolvConf::nameserverLine())
    , m_writerLine(ResolvConf::writerLine(m_writerComment))
{
}

bool DNS_Manager::isFileCorrect()
{
    const std::optional<QByteArray> content
        = readFileBytes(QString::fromLatin1(m_path), Links::Follow, mostBytes);
    return content && ResolvConf(*content, m_nameserverLine, m_writerLine).hasUsableServer();
}

bool DNS_Manager::setServers(QStringList &servers)
{
    if (servers.isEmpty() || !std::all_of(servers.cbegin(), servers.cend(), isServerAddress)) {
        return false;
    }
    const QString path = QString::fromLatin1(m_path);
    const std::optional<QByteArray> content = configurationToKeep(path);
    if (!content) {
        return false;
    }
    ResolvConf configuration(*content, m_nameserverLine, m_writerLine);
    configuration.setServers(servers, m_writerComment);
    return replaceFile(path, configuration.toText());
}
