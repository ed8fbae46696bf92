// SPDX-License-Identifier: MIT
// Whatever pppd prints is classified, by what it holds.
#include "connection/pppd_line.h"

#include <QByteArrayList>
#include <cstdint>
#include <cstdlib>

namespace {

bool fits(PppdEvent event, const QByteArray &line)
{
    switch (event) {
    case PppdEvent::None:
        return !line.contains("Timeout waiting for PADO packets");
    case PppdEvent::Link:
        return line.startsWith("Connect:") && line.contains("<-->");
    case PppdEvent::LocalAddress:
        return line.startsWith("local") && line.contains("address");
    case PppdEvent::AuthenticationFailed:
        return line.contains("permission denied")
            || line.contains("Failed to authenticate ourselves to peer");
    case PppdEvent::DiscoveryTimeout:
        return line.contains("Timeout waiting for PADO packets");
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QRegExp link = linkPattern();
    static const QRegExp localAddress = localAddressPattern();
    static const QRegExp authenticationFailed = authenticationFailedPattern();

    const QByteArray text(reinterpret_cast<const char *>(data), int(size));
    for (const QByteArray &line : text.split('\n')) {
        if (!fits(classifyPppdLine(line, link, localAddress, authenticationFailed), line)) {
            abort();
        }
    }
    return 0;
}
