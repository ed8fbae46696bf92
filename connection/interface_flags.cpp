// SPDX-License-Identifier: MIT
#include "connection/interface_flags.h"

#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

std::optional<bool> isInterfaceUp(const char *name)
{
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return std::nullopt;
    }
    struct ifreq request = {};
    for (size_t i = 0; i + 1 < sizeof request.ifr_name && name[i] != '\0'; ++i) {
        request.ifr_name[i] = name[i];
    }
    const bool exists = ioctl(fd, SIOCGIFFLAGS, &request) == 0;
    close(fd);
    return exists ? std::optional<bool>((request.ifr_flags & IFF_UP) != 0) : std::nullopt;
}
