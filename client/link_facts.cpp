// SPDX-License-Identifier: MIT
#include "client/link_facts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <sys/klog.h>
#include <unistd.h>

namespace {

std::optional<int> firstLineNumber(const QString &path)
{
    const auto text = fileContent(path, 64);
    if (!text) {
        return std::nullopt;
    }
    bool isNumber = false;
    const int number = text->split('\n').constFirst().trimmed().toInt(&isNumber);
    return isNumber && number > 1 ? std::optional<int>(number) : std::nullopt;
}

std::optional<int> hexNumber(const QString &path)
{
    const auto text = fileContent(path, 16);
    bool isNumber = false;
    const int number = text ? text->trimmed().toInt(&isNumber, 16) : 0;
    return isNumber ? std::optional<int>(number) : std::nullopt;
}

constexpr int readWholeLog = 3;
constexpr int kernelLogBytes = 1 << 20;

} // namespace

std::optional<QByteArray> fileContent(const QString &path, qint64 mostBytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return file.read(mostBytes);
}

std::optional<QByteArray> lastLinesOf(const QString &path, qint64 mostBytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    if (file.size() <= mostBytes) {
        return file.read(mostBytes);
    }
    file.seek(file.size() - mostBytes);
    const QByteArray end = file.read(mostBytes);
    return end.mid(end.indexOf('\n') + 1);
}

std::optional<Totals> interfaceTotals(const QString &interface)
{
    if (interface.isEmpty() || interface.contains(QLatin1Char('/'))) {
        return std::nullopt;
    }
    const QString folder = QStringLiteral("/sys/class/net/%1/statistics/").arg(interface);
    const auto received = fileContent(folder + QLatin1String("rx_bytes"), 32);
    const auto sent = fileContent(folder + QLatin1String("tx_bytes"), 32);
    if (!received || !sent) {
        return std::nullopt;
    }
    return Totals{received->trimmed().toULongLong(), sent->trimmed().toULongLong()};
}

std::optional<qint64> processAge(
    const QByteArray &stat, const QByteArray &uptime, long ticksPerSecond)
{
    // The process's name, in brackets, may itself contain blanks and brackets.
    constexpr int startTimeField = 19;
    const int nameEnd = stat.lastIndexOf(')');
    const QList<QByteArray> fields = stat.mid(nameEnd + 2).simplified().split(' ');
    bool isUptime = false;
    const double now = uptime.split(' ').constFirst().toDouble(&isUptime);
    if (nameEnd < 0 || fields.size() <= startTimeField || !isUptime || ticksPerSecond <= 0) {
        return std::nullopt;
    }
    const double age = now - fields.at(startTimeField).toDouble() / double(ticksPerSecond);
    constexpr double longestUptime = 1e12; // seconds; beyond it, it is no uptime
    if (std::isnan(age) || age > longestUptime) {
        return std::nullopt;
    }
    return qint64(std::max(0.0, age));
}

std::optional<qint64> connectionSeconds(const QString &interface)
{
    std::optional<int> pid = firstLineNumber(QStringLiteral("/var/run/ppp-norvix.pid"));
    if (!pid) {
        pid = firstLineNumber(QStringLiteral("/var/run/%1.pid").arg(interface));
    }
    if (!pid) {
        return std::nullopt;
    }
    const auto stat = fileContent(QStringLiteral("/proc/%1/stat").arg(*pid), 4096);
    const auto uptime = fileContent(QStringLiteral("/proc/uptime"), 64);
    return stat && uptime ? processAge(*stat, *uptime, sysconf(_SC_CLK_TCK)) : std::nullopt;
}

bool isOurCommandLine(const QByteArray &commandLine)
{
    const QList<QByteArray> words = commandLine.split('\0');
    const int position = words.indexOf("linkname");
    return position >= 0 && position + 1 < words.size() && words.at(position + 1) == "norvix";
}

QList<Pppd> runningPppds()
{
    QList<Pppd> found;
    const QDir processes(QStringLiteral("/proc"));
    for (const QString &name : processes.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const int pid = name.toInt();
        const auto comm = fileContent(processes.filePath(name + QLatin1String("/comm")), 64);
        if (pid <= 0 || !comm || comm->trimmed() != "pppd") {
            continue;
        }
        QByteArray words
            = fileContent(processes.filePath(name + QLatin1String("/cmdline"))).value_or("");
        if (words.isEmpty()) {
            continue; // already ended, only its parent has not looked yet
        }
        const bool isOurs = isOurCommandLine(words);
        words.replace('\0', ' ');
        found.append({pid, QString::fromUtf8(words).trimmed(), isOurs});
    }
    return found;
}

QList<UsbModem> pluggedModems()
{
    QList<UsbModem> found;
    const QDir devices(QStringLiteral("/sys/bus/usb/devices"));
    for (const QString &port : devices.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const auto vendor = hexNumber(devices.filePath(port + QLatin1String("/idVendor")));
        const auto product = hexNumber(devices.filePath(port + QLatin1String("/idProduct")));
        if (!vendor || !product) {
            continue;
        }
        const UsbId id = {*vendor, *product};
        if (const ModemFamily *family = familyOf(id)) {
            found.append({id, family, port});
        }
    }
    return found;
}

std::optional<LineStatus> lineStatus()
{
    QByteArray log(kernelLogBytes, '\0');
    const int size = klogctl(readWholeLog, log.data(), log.size());
    if (size < 0) {
        return std::nullopt;
    }
    log.truncate(size);
    return lineFromKernelLog(log);
}

std::optional<bool> atmCarrier()
{
    const QDir devices(QStringLiteral("/sys/class/atm"));
    for (const QString &name : devices.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (const auto carrier
            = fileContent(devices.filePath(name + QLatin1String("/carrier")), 8)) {
            return carrier->trimmed() == "1";
        }
    }
    return std::nullopt;
}

QStringList nameservers(const QByteArray &text)
{
    QStringList servers;
    for (const QByteArray &line : text.split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() < 2 || words.at(0) != "nameserver") {
            continue;
        }
        // A crash can leave zeros, at which the address ends.
        const QString address = QString::fromUtf8(words.at(1));
        if (!address.isEmpty()) {
            servers.append(address);
        }
    }
    return servers;
}

Resolver resolver()
{
    Resolver result;
    result.path = QStringLiteral("/etc/resolv.conf");
    const QFileInfo info(result.path);
    if (info.isSymLink()) {
        result.managedBy = info.symLinkTarget();
    }
    if (const auto text = fileContent(result.path)) {
        result.isReadable = true;
        result.servers = nameservers(*text);
    }
    return result;
}
