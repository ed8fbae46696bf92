// SPDX-License-Identifier: MIT
#include "desktop/icons/icons.h"

#include <initializer_list>

static void useResources()
{
    Q_INIT_RESOURCE(icons); // the linker would leave a library's resources out
}

namespace desktop {

namespace {

QIcon iconOf(const char *name)
{
    useResources();
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
        icon.addFile(QStringLiteral(":/icons/%1/norvix-%2.png").arg(size).arg(QLatin1String(name)),
            QSize(size, size));
    }
    return icon;
}

} // namespace

QIcon standingIcon(Standing standing)
{
    switch (standing) {
    case Standing::Offline:
        return iconOf("offline");
    case Standing::Connecting:
        return iconOf("connecting");
    case Standing::Connected:
        return iconOf("connected");
    case Standing::Attention:
        return iconOf("attention");
    case Standing::DaemonAway:
        return iconOf("daemon-away");
    }
    return {};
}

QIcon programIcon()
{
    return iconOf("desktop");
}

} // namespace desktop
