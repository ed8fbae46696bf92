// SPDX-License-Identifier: MIT
#include "support/resolver/interface_address.h"

#include "support/files/file_descriptor.h"

#include <QByteArray>
#include <array>
#include <cstring>
#include <linux/rtnetlink.h>
#include <memory>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace {

struct FreeNames
{
    void operator()(struct if_nameindex *names) const { if_freenameindex(names); }
};

/// The number of the interface @p name; empty when there is none. Not if_nametoindex(): it takes
/// the label of an address for its interface, and has the kernel load a module for an unknown name.
std::optional<unsigned> indexOf(const QByteArray &name)
{
    const std::unique_ptr<struct if_nameindex, FreeNames> names(if_nameindex());
    for (const auto *entry = names.get(); entry != nullptr && entry->if_name != nullptr; ++entry) {
        if (name == entry->if_name) {
            return entry->if_index;
        }
    }
    return std::nullopt;
}

/// One address of the kernel's list.
struct Address
{
    int family = AF_UNSPEC;
    QByteArray bytes;
};

/// The address in @p message when it is one of the interface @p index: its own one on a
/// point-to-point link.
Address addressIn(const nlmsghdr *message, unsigned index)
{
    const auto *facts = static_cast<const ifaddrmsg *>(NLMSG_DATA(message));
    Address address;
    if (facts->ifa_index != index) {
        return address;
    }
    auto size = int(IFA_PAYLOAD(message));
    for (const rtattr *part = IFA_RTA(facts); RTA_OK(part, size); part = RTA_NEXT(part, size)) {
        const bool isOwn = part->rta_type == IFA_LOCAL;
        if (isOwn || (part->rta_type == IFA_ADDRESS && address.bytes.isEmpty())) {
            address.family = facts->ifa_family;
            address.bytes
                = QByteArray(static_cast<const char *>(RTA_DATA(part)), int(RTA_PAYLOAD(part)));
        }
    }
    return address;
}

/// The first IPv4 address of the interface @p index in the kernel's order, else its first IPv6 one.
/// Asked of the kernel itself: the C library names an address by its label, which may be any text.
Address firstAddress(unsigned index)
{
    struct
    {
        nlmsghdr header;
        ifaddrmsg body;
    } request = {};
    request.header.nlmsg_len = sizeof(request);
    request.header.nlmsg_type = RTM_GETADDR;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    const FileDescriptor netlink(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
    if (send(netlink.get(), &request, sizeof(request), 0) < 0) {
        return {};
    }

    Address first;
    alignas(nlmsghdr) std::array<char, 32768> buffer; // as much as the kernel sends at once
    for (;;) {
        ssize_t size = recv(netlink.get(), buffer.data(), buffer.size(), 0);
        if (size <= 0) {
            return first;
        }
        const auto *message = reinterpret_cast<const nlmsghdr *>(buffer.data());
        for (; NLMSG_OK(message, size); message = NLMSG_NEXT(message, size)) {
            if (message->nlmsg_type == NLMSG_DONE || message->nlmsg_type == NLMSG_ERROR) {
                return first;
            }
            const Address address = addressIn(message, index);
            const bool isBetter = address.family == AF_INET
                ? first.family != AF_INET
                : address.family == AF_INET6 && first.family == AF_UNSPEC;
            if (isBetter) {
                first = address;
            }
        }
    }
}

/// The text of @p address of the interface @p index; empty when it is none.
QString textOf(const Address &address, unsigned index)
{
    sockaddr_in6 version6 = {};
    sockaddr_in version4 = {};
    const sockaddr *generic = nullptr;
    socklen_t size = 0;
    if (address.family == AF_INET && address.bytes.size() == sizeof(version4.sin_addr)) {
        version4.sin_family = AF_INET;
        memcpy(&version4.sin_addr, address.bytes.constData(), sizeof(version4.sin_addr));
        generic = reinterpret_cast<const sockaddr *>(&version4);
        size = sizeof(version4);
    } else if (address.family == AF_INET6 && address.bytes.size() == sizeof(version6.sin6_addr)) {
        version6.sin6_family = AF_INET6;
        memcpy(&version6.sin6_addr, address.bytes.constData(), sizeof(version6.sin6_addr));
        if (IN6_IS_ADDR_LINKLOCAL(&version6.sin6_addr)) {
            version6.sin6_scope_id = index; // in the text it names the interface
        }
        generic = reinterpret_cast<const sockaddr *>(&version6);
        size = sizeof(version6);
    }
    std::array<char, NI_MAXHOST> text = {};
    const bool isText = generic != nullptr
        && getnameinfo(generic, size, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0;
    return isText ? QString::fromLatin1(text.data()) : QString();
}

} // namespace

std::optional<QString> firstAddressOf(const QString &name)
{
    const std::optional<unsigned> index = indexOf(name.toLatin1());
    if (!index) {
        return std::nullopt;
    }
    return textOf(firstAddress(*index), *index);
}
