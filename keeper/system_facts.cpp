// SPDX-License-Identifier: MIT
#include "keeper/system_facts.h"

#include "client/settings_file.h"
#include "keeper/line/line_quality.h"
#include "keeper/line/loss_judge.h"

#include <QFile>
#include <cerrno>
#include <csignal>
#include <sys/stat.h>

namespace keeper {

namespace {

QByteArray contentOf(const QString &path, qint64 most = 4096)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.read(most) : QByteArray();
}

/// Other users' processes are there, too, although we may not touch them.
bool isAlive(int pid)
{
    return kill(pid, 0) == 0 || errno == EPERM;
}

std::optional<quint64> counter(const QString &interface, const char *name)
{
    bool isNumber = false;
    const quint64 value = contentOf(
        QStringLiteral("/sys/class/net/%1/statistics/%2").arg(interface, QLatin1String(name)))
                              .trimmed()
                              .toULongLong(&isNumber);
    return isNumber ? std::optional<quint64>(value) : std::nullopt;
}

} // namespace

QString bootId()
{
    return QString::fromLatin1(
        contentOf(QStringLiteral("/proc/sys/kernel/random/boot_id")).trimmed());
}

std::optional<LinkFile> linkFileFrom(const QByteArray &text)
{
    const QList<QByteArray> lines = text.split('\n');
    LinkFile file;
    bool isNumber = false;
    file.pid = lines.value(0).trimmed().toInt(&isNumber);
    file.interface = QString::fromLatin1(lines.value(1).trimmed());
    if (!isNumber || file.pid <= 1 || file.interface.isEmpty()) {
        return std::nullopt;
    }
    return file;
}

QString ownInterfaceName()
{
    const std::optional<LinkFile> file
        = linkFileFrom(contentOf(QStringLiteral("/run/ppp-norvix.pid")));
    return file && isAlive(file->pid) ? file->interface : QString();
}

std::optional<Traffic> interfaceCounters(const QString &name)
{
    if (name.isEmpty()) {
        return std::nullopt;
    }
    const std::optional<quint64> received = counter(name, "rx_bytes");
    const std::optional<quint64> sent = counter(name, "tx_bytes");
    if (!received || !sent) {
        return std::nullopt;
    }
    return Traffic{*received, *sent};
}

std::optional<quint64> atmCellsReceived()
{
    return cellsReceived(contentOf(QStringLiteral("/proc/self/net/atm/devices")));
}

QByteArray modemIdentifier()
{
    return settingText("udi").toUtf8();
}

bool isModemSeen()
{
    return !atmDeviceFolder().isEmpty() || QFile::exists(QStringLiteral("/sys/class/net/dsl0"));
}

QByteArray settingsStamp()
{
    // Peer files may lie in a folder that only root and dip may enter: its own time tells enough.
    QByteArray stamp;
    for (const QString &path :
        {settingsPath(), QStringLiteral("/etc/ppp/peers"), QStringLiteral("/etc/ppp/peers/norvix"),
            QStringLiteral("/etc/ppp/peers/norvix_unicorn"), QStringLiteral("/etc/ppp/pap-secrets"),
            QStringLiteral("/etc/ppp/chap-secrets")}) {
        struct stat info = {};
        if (stat(QFile::encodeName(path).constData(), &info) == 0) {
            stamp += QByteArray::number(qlonglong(info.st_ino)) + ' '
                + QByteArray::number(qlonglong(info.st_size)) + ' '
                + QByteArray::number(qlonglong(info.st_mtim.tv_sec)) + '.'
                + QByteArray::number(qlonglong(info.st_mtim.tv_nsec));
        }
        stamp += '\n';
    }
    return stamp;
}

} // namespace keeper
