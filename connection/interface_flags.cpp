// SPDX-License-Identifier: MIT
#include "connection/interface_flags.h"

#include <cstring>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

std::optional<bool> isInterfaceUp(const char *name)
{
    struct ifreq request = {};
    if (strlen(name) >= sizeof request.ifr_name) {
        return std::nullopt; // cut short, it would be another interface's
    }
    memcpy(request.ifr_name, name, strlen(name));
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return std::nullopt;
    }
    const bool exists = ioctl(fd, SIOCGIFFLAGS, &request) == 0;
    close(fd);
    return exists ? std::optional<bool>((request.ifr_flags & IFF_UP) != 0) : std::nullopt;
}
