// SPDX-License-Identifier: MIT
#include "support/process/system_info.h"

#include <sys/utsname.h>

namespace Norvix {

QString SystemInfo::architectureOf(const QByteArray &machine)
{
    // i386 to i686; some 32-bit systems give the processor's name instead.
    const bool isX86Name = machine.size() == 4 && machine.at(0) == 'i' && machine.endsWith("86")
        && isdigit(machine.at(1));
    if (isX86Name || machine == "x86" || machine == "i86pc") {
        return QStringLiteral("i386");
    }
    return QString::fromLatin1(machine);
}

QString SystemInfo::getArchitecture()
{
    struct utsname system = {};
    if (uname(&system) != 0) {
        return QString();
    }
    // A 32-bit installation may run on a 64-bit kernel; its programs are what counts.
    return sizeof(void *) == 4 && qstrcmp(system.machine, "x86_64") == 0
        ? QStringLiteral("i386")
        : architectureOf(system.machine);
}

} // namespace Norvix
