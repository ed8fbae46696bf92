// SPDX-License-Identifier: MIT
// A pid file gives a process id that it holds, above 1, and an interface name that it holds.
#include "connection/pid_file.h"

#include <QByteArrayList>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray content(reinterpret_cast<const char *>(data), int(size));
    const std::optional<pid_t> pid = parsePid(content);
    if (pid && (*pid <= 1 || !content.split('\n').first().contains(QByteArray::number(*pid)))) {
        abort();
    }
    const QByteArray interface = interfaceInPidFile(content).toLatin1();
    if (!interface.isEmpty() && (interface.size() != 4 || !content.contains(interface))) {
        abort();
    }
    QStringList entries;
    for (const QByteArray &entry : content.split('\n')) {
        entries.append(QString::fromUtf8(entry));
    }
    const QByteArray listed = interfaceOfPidFiles(entries).toLatin1();
    if (!listed.isEmpty() && !content.contains(listed + ".pid")) {
        abort();
    }
    return 0;
}
