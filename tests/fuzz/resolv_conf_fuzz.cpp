// SPDX-License-Identifier: MIT
// Feeds any bytes to the parser of the resolver configuration.
#include "support/resolver/resolv_conf.h"

#include <cstdint>
#include <cstdlib>

namespace {

const char comment[] = "# writer";

void require(bool holds)
{
    if (!holds) {
        abort();
    }
}

ResolvConf parsed(const QByteArray &content)
{
    static const QRegExp nameserverLine = ResolvConf::nameserverLine();
    static const QRegExp writerLine = ResolvConf::writerLine(comment);
    return ResolvConf(content, nameserverLine, writerLine);
}

/// The lines that a repair must keep, in their order.
QByteArray otherLines(const QByteArray &text)
{
    QByteArray others;
    for (const QByteArray &line : text.split('\n')) {
        if (!line.startsWith("nameserver ") && !line.startsWith("nameserver\t")
            && line != comment) {
            others += line + "\n";
        }
    }
    while (others.endsWith('\n')) { // a missing last line feed may be added
        others.chop(1);
    }
    return others;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray content(reinterpret_cast<const char *>(data), int(size));
    isServerAddress(QString::fromUtf8(content));
    isUsableServer(content);

    ResolvConf configuration = parsed(content);
    require(configuration.toText() == content);

    const QStringList servers = {QStringLiteral("192.0.2.1"), QStringLiteral("2001:db8::1")};
    configuration.setServers(servers, comment);
    const QByteArray repaired = configuration.toText();
    require(repaired.startsWith(QByteArray(comment) + "\n"));
    require(otherLines(repaired) == otherLines(content));

    ResolvConf again = parsed(repaired);
    require(again.hasUsableServer());
    again.setServers(servers, comment);
    require(again.toText() == repaired);
    return 0;
}
