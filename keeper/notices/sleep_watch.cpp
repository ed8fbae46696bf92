// SPDX-License-Identifier: MIT
#include "keeper/notices/sleep_watch.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <cstdio>

namespace keeper {

namespace {

const QString &service()
{
    static const QString name = QStringLiteral("org.freedesktop.login1");
    return name;
}

const QString &path()
{
    static const QString name = QStringLiteral("/org/freedesktop/login1");
    return name;
}

const QString &interface()
{
    static const QString name = QStringLiteral("org.freedesktop.login1.Manager");
    return name;
}

} // namespace

SleepWatch::SleepWatch(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
}

void SleepWatch::start()
{
    m_bus.connect(service(), path(), interface(), QStringLiteral("PrepareForSleep"), this,
        SIGNAL(sleeping(bool)));
    auto *watcher = new QDBusServiceWatcher(
        service(), m_bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        letSleep(); // of a service that has gone
        hold();
    });
    hold();
}

void SleepWatch::hold()
{
    if (m_isAsking || m_inhibitor.isValid()) {
        return;
    }
    QDBusMessage call
        = QDBusMessage::createMethodCall(service(), path(), interface(), QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep") << QStringLiteral("norvix-keeper")
         << QStringLiteral("The connection is ended before sleep") << QStringLiteral("delay");
    call.setAutoStartService(false);
    m_isAsking = true;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *watcher;
        m_isAsking = false;
        watcher->deleteLater();
        if (reply.isValid()) {
            m_inhibitor = reply.value();
        } else {
            std::fprintf(stderr,
                "norvix-keeper: sleep will not wait for the connection's end: %s\n",
                qPrintable(reply.error().message()));
        }
    });
}

} // namespace keeper
