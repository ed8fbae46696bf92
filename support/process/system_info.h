// SPDX-License-Identifier: MIT
// Facts about the running system.
#pragma once

#include <QByteArray>
#include <QString>

namespace Norvix {

class SystemInfo
{
public:
    /// The architecture of the running system: the kernel's machine name, with every 32-bit x86
    /// variant given as "i386".
    static QString getArchitecture();

    /// The same for a given machine name, such as "i686" or "x86_64".
    static QString architectureOf(const QByteArray &machine);
};

} // namespace Norvix
