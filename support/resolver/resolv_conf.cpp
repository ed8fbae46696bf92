// SPDX-License-Identifier: MIT
#include "support/resolver/resolv_conf.h"

#include <arpa/inet.h>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>

namespace {

bool canServe(in_addr address)
{
    const in_addr_t host = ntohl(address.s_addr);
    return host != INADDR_ANY && host != INADDR_BROADCAST && !IN_MULTICAST(host);
}

bool canServe(const in6_addr &address)
{
    if (IN6_IS_ADDR_V4MAPPED(&address)) {
        in_addr mapped = {};
        memcpy(&mapped.s_addr, address.s6_addr + 12, sizeof mapped.s_addr);
        return canServe(mapped);
    }
    return !IN6_IS_ADDR_UNSPECIFIED(&address) && !IN6_IS_ADDR_MULTICAST(&address);
}

bool hasSpace(const QByteArray &text)
{
    return text.indexOf('\0') >= 0 || strpbrk(text.constData(), " \t\n\v\f\r") != nullptr;
}

/// The address before the zone. The resolver looks at the zone later and forgives any.
QByteArray withoutZone(const QByteArray &address)
{
    const int percent = address.indexOf('%');
    return percent < 0 ? address : address.left(percent);
}

bool isUsableIPv6(const QByteArray &address)
{
    in6_addr parsed = {};
    return inet_pton(AF_INET6, withoutZone(address).constData(), &parsed) == 1 && canServe(parsed);
}

/// A zone that reads back as one word: an interface name or number.
bool isPlainZone(const QByteArray &zone)
{
    if (zone.isEmpty() || zone.size() >= IF_NAMESIZE) {
        return false;
    }
    for (const char c : zone) {
        if (c <= ' ' || c > '~' || c == '%' || c == '/') {
            return false;
        }
    }
    return true;
}

} // namespace

bool isUsableServer(const QByteArray &address)
{
    if (hasSpace(address)) {
        return false;
    }
    in_addr parsed = {};
    if (inet_aton(address.constData(), &parsed) != 0) {
        return canServe(parsed);
    }
    return isUsableIPv6(address);
}

bool isServerAddress(const QString &address)
{
    const QByteArray text = address.toUtf8();
    if (text.indexOf('\0') >= 0) {
        return false;
    }
    in_addr parsed = {};
    if (inet_pton(AF_INET, text.constData(), &parsed) == 1) {
        return canServe(parsed);
    }
    const int percent = text.indexOf('%');
    return (percent < 0 || isPlainZone(text.mid(percent + 1))) && isUsableIPv6(text);
}

QRegExp ResolvConf::nameserverLine()
{
    return QRegExp(QStringLiteral("^nameserver[ \\t]+([^ \\t\\n]*)"));
}

QRegExp ResolvConf::writerLine(const char *comment)
{
    return QRegExp(QRegExp::escape(QString::fromLatin1(comment)) + QStringLiteral("\\n?"));
}

ResolvConf::ResolvConf(const QByteArray &content, QRegExp nameserverLine, const QRegExp &writerLine)
{
    int start = 0;
    while (start < content.size()) {
        const int lineFeed = content.indexOf('\n', start);
        const int end = lineFeed < 0 ? content.size() : lineFeed + 1;
        Line line{Kind::Other, content.mid(start, end - start), QByteArray()};
        // Held as Latin-1, so that no byte is changed; the resolver's own text ends at a NUL.
        const QString seen = QString::fromLatin1(line.text.constData());
        if (nameserverLine.indexIn(seen) == 0) {
            line.kind = Kind::Nameserver;
            line.address = nameserverLine.cap(1).toLatin1();
        } else if (seen.size() == line.text.size() && writerLine.exactMatch(seen)) {
            line.kind = Kind::Writer;
        }
        m_lines.append(line);
        start = end;
    }
}

bool ResolvConf::hasUsableServer() const
{
    for (const Line &line : m_lines) {
        if (line.kind == Kind::Nameserver && isUsableServer(line.address)) {
            return true;
        }
    }
    return false;
}

void ResolvConf::setServers(const QStringList &servers, const char *comment)
{
    QList<Line> named;
    for (const QString &server : servers) {
        const QByteArray address = server.toUtf8();
        named.append({Kind::Nameserver, "nameserver " + address + "\n", address});
    }

    QList<Line> lines;
    lines.append({Kind::Writer, QByteArray(comment) + "\n", QByteArray()});
    int place = -1;
    for (const Line &line : qAsConst(m_lines)) {
        switch (line.kind) {
        case Kind::Nameserver:
            if (place < 0) {
                place = lines.size();
            }
            break;
        case Kind::Writer:
            break;
        case Kind::Other:
            lines.append(line);
            break;
        }
    }
    if (place < 0) {
        place = lines.size();
    }
    if (!lines.at(place - 1).text.endsWith('\n')) {
        lines[place - 1].text += '\n';
    }
    m_lines = lines.mid(0, place) + named + lines.mid(place);
}

QByteArray ResolvConf::toText() const
{
    QByteArray text;
    for (const Line &line : m_lines) {
        text += line.text;
    }
    return text;
}
