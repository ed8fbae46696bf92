// SPDX-License-Identifier: MIT
#include "desktop/bus/keeper_watch.h"

#include "dbus/contract.h"

#include <QDBusServiceWatcher>

namespace desktop {

namespace {

const QString &propertiesInterface()
{
    static const QString name = QStringLiteral("org.freedesktop.DBus.Properties");
    return name;
}

} // namespace

KeeperWatch::KeeperWatch(AsyncBus &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
}

void KeeperWatch::start()
{
    QDBusConnection bus = m_bus.connection();
    if (!bus.isConnected()) {
        return; // the daemon's watch tells it
    }
    const QString service = QLatin1String(Bus::keeperService);
    const QString path = QLatin1String(Bus::keeperPath);
    bus.connect(service, path, propertiesInterface(), QStringLiteral("PropertiesChanged"), this,
        SLOT(takeChange(QDBusMessage)));
    bus.connect(service, path, QLatin1String(Bus::keeperInterface),
        QLatin1String(KeeperSignal::LinkLost), this, SLOT(takeLoss(QString)));
    auto *watcher
        = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) { takeOwner(owner); });
    takeOwner(service);
}

void KeeperWatch::takeOwner(const QString &owner)
{
    ++m_generation;
    m_state.reset();
    if (owner.isEmpty()) {
        emit happened(event::KeeperLeft());
        return;
    }
    BusCall question = keeperCall("GetAll", {QLatin1String(Bus::keeperInterface)});
    question.interface = propertiesInterface();
    question.timeoutMs = BusCall().timeoutMs; // nobody waits for it, and it is not asked again
    m_bus.ask(question, this, [this, generation = m_generation](const BusAnswer &answer) {
        if (generation != m_generation) {
            return;
        }
        const std::optional<QVariantMap> properties = busMap(answer.value());
        m_state = properties ? keeperState(*properties) : std::nullopt;
        if (m_state) {
            emit happened(event::KeeperTold{*m_state});
        } else {
            emit happened(event::KeeperLeft());
        }
    });
}

void KeeperWatch::takeChange(const QDBusMessage &message)
{
    const std::optional<QVariantMap> changed = busMap(message.arguments().value(1));
    if (!m_state || !changed
        || message.arguments().value(0).toString() != QLatin1String(Bus::keeperInterface)) {
        return; // what comes before the answer with all of them is part of that
    }
    m_state = withChanges(*m_state, *changed);
    emit happened(event::KeeperTold{*m_state});
}

void KeeperWatch::takeLoss(const QString &reason)
{
    emit happened(event::LinkLost{reason});
}

} // namespace desktop
