// SPDX-License-Identifier: MIT
#include "desktop/bus/sleep_watch.h"

namespace desktop {

SleepWatch::SleepWatch(QDBusConnection systemBus, QObject *parent)
    : QObject(parent)
{
    systemBus.connect(QStringLiteral("org.freedesktop.login1"),
        QStringLiteral("/org/freedesktop/login1"), QStringLiteral("org.freedesktop.login1.Manager"),
        QStringLiteral("PrepareForSleep"), this, SLOT(take(bool)));
}

} // namespace desktop
