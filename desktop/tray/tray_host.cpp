// SPDX-License-Identifier: MIT
#include "desktop/tray/tray_host.h"

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <limits>

namespace desktop {

namespace {

// The name under which all desktops have agreed to look for it.
const char watcherService[] = "org.kde.StatusNotifierWatcher";
const char watcherPath[] = "/StatusNotifierWatcher";

} // namespace

TrayHost::TrayHost(AsyncBus &sessionBus, QObject *parent)
    : QObject(parent)
    , m_bus(sessionBus)
{
}

void TrayHost::start()
{
    QDBusConnection bus = m_bus.connection();
    if (!bus.isConnected()) {
        return;
    }
    const QString service = QLatin1String(watcherService);
    const QString path = QLatin1String(watcherPath);
    auto *watcher
        = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
        take(false); // an item belongs to the host that it was shown to
        look();
    });
    for (const char *signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus.connect(service, path, service, QLatin1String(signal), this, SLOT(look()));
    }
    bus.connect(service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("PropertiesChanged"), this, SLOT(look()));
    look();
}

void TrayHost::look()
{
    ++m_generation;
    BusCall question;
    question.service = QLatin1String(watcherService);
    question.path = QLatin1String(watcherPath);
    question.interface = QStringLiteral("org.freedesktop.DBus.Properties");
    question.method = QStringLiteral("Get");
    question.arguments
        = {QLatin1String(watcherService), QStringLiteral("IsStatusNotifierHostRegistered")};
    // One that hangs answers when it wakes up; one that ends is answered for by the bus.
    question.timeoutMs = std::numeric_limits<int>::max();
    m_bus.ask(question, this, [this, generation = m_generation](const BusAnswer &answer) {
        if (generation == m_generation) {
            take(answer.ok() && answer.value().value<QDBusVariant>().variant().toBool());
        }
    });
}

void TrayHost::take(bool isThere)
{
    if (isThere != m_isThere) {
        m_isThere = isThere;
        emit changed(isThere);
    }
}

} // namespace desktop
