// SPDX-License-Identifier: MIT
#include "support/interface_address.h"

#include <array>
#include <cstring>
#include <ifaddrs.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace {

struct FreeAddresses
{
    void operator()(ifaddrs *addresses) const { freeifaddrs(addresses); }
};

/// The kernel's list of all addresses, and an entry for each interface itself. Null on failure.
std::unique_ptr<ifaddrs, FreeAddresses> allAddresses()
{
    ifaddrs *addresses = nullptr;
    return std::unique_ptr<ifaddrs, FreeAddresses>(
        getifaddrs(&addresses) == 0 ? addresses : nullptr);
}

/// The address as text; empty when it is of no family of the Internet.
QString textOf(const sockaddr *address)
{
    if (address == nullptr || (address->sa_family != AF_INET && address->sa_family != AF_INET6)) {
        return QString();
    }
    const socklen_t size
        = address->sa_family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
    std::array<char, NI_MAXHOST> text = {};
    const int failed
        = getnameinfo(address, size, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST);
    return failed != 0 ? QString() : QString::fromLatin1(text.data());
}

} // namespace

std::optional<QString> firstAddressOf(const QString &name)
{
    const QByteArray wanted = name.toLatin1();
    const auto addresses = allAddresses();
    std::optional<QString> first;
    for (const ifaddrs *entry = addresses.get(); entry != nullptr; entry = entry->ifa_next) {
        if (wanted != entry->ifa_name) {
            continue;
        }
        first = textOf(entry->ifa_addr);
        if (!first->isEmpty()) {
            break;
        }
    }
    return first;
}
