// SPDX-License-Identifier: MIT
#include "keeper/notices/interface_table.h"

#include <algorithm>
#include <cstring>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace keeper {

namespace {

/// The attributes behind a message's fixed part: type to bytes. A later one of a type wins.
QMap<int, QByteArray> attributesIn(const QByteArray &bytes)
{
    QMap<int, QByteArray> attributes;
    int place = 0;
    while (place + int(sizeof(rtattr)) <= bytes.size()) {
        rtattr head = {};
        std::memcpy(&head, bytes.constData() + place, sizeof head);
        if (head.rta_len < sizeof head || place + int(head.rta_len) > bytes.size()) {
            break;
        }
        attributes[head.rta_type & NLA_TYPE_MASK]
            = bytes.mid(place + int(sizeof head), int(head.rta_len) - int(sizeof head));
        place += int(RTA_ALIGN(head.rta_len));
    }
    return attributes;
}

/// The fixed part of a message's content; nothing when it is cut off.
template <typename Head> std::optional<Head> headOf(const QByteArray &content)
{
    Head head = {};
    if (content.size() < int(sizeof head)) {
        return std::nullopt;
    }
    std::memcpy(&head, content.constData(), sizeof head);
    return head;
}

template <typename Head> QMap<int, QByteArray> attributesBehind(const QByteArray &content)
{
    return attributesIn(content.mid(int(NLMSG_ALIGN(sizeof(Head)))));
}

QString nameFrom(const QByteArray &bytes)
{
    return QString::fromLocal8Bit(
        bytes.constData(), int(qstrnlen(bytes.constData(), uint(bytes.size()))));
}

/// pppd numbers its interfaces; tests and some kernels have others behind such a name.
bool isPppName(const QString &name)
{
    const QString number = name.mid(3);
    return name.startsWith(QLatin1String("ppp")) && !number.isEmpty()
        && std::all_of(number.begin(), number.end(), [](QChar c) { return c.isDigit(); });
}

void takeLink(const ifinfomsg &head, const QMap<int, QByteArray> &attributes, Interface *interface)
{
    interface->index = head.ifi_index;
    if (attributes.contains(IFLA_IFNAME)) {
        interface->name = nameFrom(attributes[IFLA_IFNAME]);
    }
    interface->isUp = (head.ifi_flags & IFF_UP) != 0;
    interface->isPpp = head.ifi_type == ARPHRD_PPP || isPppName(interface->name);
    rtnl_link_stats64 counters = {};
    const QByteArray &told = attributes[IFLA_STATS64];
    if (told.size() >= int(offsetof(rtnl_link_stats64, rx_errors))) {
        std::memcpy(&counters, told.constData(), qMin(size_t(told.size()), sizeof counters));
        interface->received = counters.rx_bytes;
        interface->sent = counters.tx_bytes;
    }
}

/// The own address of a link: with a far end the other attribute is that one's.
QByteArray addressFrom(const QMap<int, QByteArray> &attributes)
{
    return attributes.value(IFA_LOCAL, attributes.value(IFA_ADDRESS));
}

} // namespace

InterfaceTable::News InterfaceTable::take(const QByteArray &datagram)
{
    News news;
    int place = 0;
    while (place + int(sizeof(nlmsghdr)) <= datagram.size()) {
        nlmsghdr head = {};
        std::memcpy(&head, datagram.constData() + place, sizeof head);
        if (head.nlmsg_len < sizeof head || head.nlmsg_len > quint32(datagram.size() - place)) {
            break;
        }
        const QByteArray content
            = datagram.mid(place + int(NLMSG_HDRLEN), int(head.nlmsg_len) - int(NLMSG_HDRLEN));
        const auto link = headOf<ifinfomsg>(content);
        const auto address = headOf<ifaddrmsg>(content);
        switch (head.nlmsg_type) {
        case NLMSG_DONE:
            news.isEndOfList = true;
            break;
        case RTM_NEWLINK:
            if (link) {
                takeLink(
                    *link, attributesBehind<ifinfomsg>(content), &m_interfaces[link->ifi_index]);
                news.isChange = true;
            }
            break;
        case RTM_DELLINK:
            if (link) {
                Interface last = m_interfaces.take(link->ifi_index);
                takeLink(*link, attributesBehind<ifinfomsg>(content), &last);
                news.gone.append(last);
                news.isChange = true;
            }
            break;
        case RTM_NEWADDR:
        case RTM_DELADDR: {
            const int index = address ? int(address->ifa_index) : 0;
            if (address && address->ifa_family == AF_INET && m_interfaces.contains(index)) {
                const QByteArray own = addressFrom(attributesBehind<ifaddrmsg>(content));
                QSet<QByteArray> &addresses = m_interfaces[index].addresses;
                if (head.nlmsg_type == RTM_NEWADDR) {
                    addresses.insert(own);
                } else {
                    addresses.remove(own);
                }
                news.isChange = true;
            }
            break;
        }
        default: // answers that nobody asked for
            break;
        }
        place += int(NLMSG_ALIGN(head.nlmsg_len));
    }
    return news;
}

std::optional<Interface> InterfaceTable::named(const QString &name) const
{
    for (const Interface &interface : m_interfaces) {
        if (interface.name == name) {
            return interface;
        }
    }
    return std::nullopt;
}

QString addressText(const Interface &interface)
{
    QStringList numbers;
    if (!interface.addresses.isEmpty()) {
        for (const char byte : *interface.addresses.begin()) {
            numbers.append(QString::number(quint8(byte)));
        }
    }
    return numbers.join(QLatin1Char('.'));
}

} // namespace keeper
