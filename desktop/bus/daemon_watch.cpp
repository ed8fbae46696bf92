// SPDX-License-Identifier: MIT
#include "desktop/bus/daemon_watch.h"

#include "dbus/contract.h"

#include <QDBusServiceWatcher>
#include <algorithm>
#include <iterator>
#include <memory>

namespace desktop {

namespace {

constexpr int heartbeatMs = 5000;
// A daemon that asks a neighbour which hangs answers late; a person has begun to wonder by then.
constexpr int patienceMs = 3000;

/// Those of every second while connected.
const char *const ticks[] = {DaemonSignal::transmissionSpeed, DaemonSignal::transmissionErrors,
    DaemonSignal::transmissionBytes, DaemonSignal::connectionTime};

bool isTick(const char *signal)
{
    return std::any_of(std::begin(ticks), std::end(ticks),
        [signal](const char *tick) { return qstrcmp(tick, signal) == 0; });
}

} // namespace

DaemonWatch::DaemonWatch(AsyncBus &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
    m_heartbeat.setInterval(heartbeatMs);
    m_patience.setInterval(patienceMs);
    m_patience.setSingleShot(true);
    connect(&m_heartbeat, &QTimer::timeout, this, &DaemonWatch::askWhetherItAnswers);
    connect(&m_patience, &QTimer::timeout, this, [this] { emit happened(event::DaemonSilent()); });
}

void DaemonWatch::start()
{
    QDBusConnection bus = m_bus.connection();
    if (!bus.isConnected()) {
        QTimer::singleShot(0, this, &DaemonWatch::takeBusLoss);
        return;
    }
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
        SLOT(takeBusLoss()));
    for (const BusSignal &signal : daemonSignals) {
        if (!isTick(signal.name)) {
            subscribe(signal.name, true);
        }
    }
    auto *watcher = new QDBusServiceWatcher(
        QLatin1String(Bus::service), bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) { takeOwner(owner); });
    BusCall question;
    question.service = question.interface = QStringLiteral("org.freedesktop.DBus");
    question.path = QStringLiteral("/org/freedesktop/DBus");
    question.method = QStringLiteral("GetNameOwner");
    question.arguments = {QLatin1String(Bus::service)};
    m_bus.ask(question, this, [this](const BusAnswer &answer) {
        takeOwner(answer.ok() ? answer.value().toString() : QString());
    });
}

void DaemonWatch::setWatched(bool isWatched)
{
    if (isWatched == m_isWatched) {
        return;
    }
    m_isWatched = isWatched;
    for (const char *tick : ticks) {
        subscribe(tick, isWatched);
    }
    if (isWatched && !m_owner.isEmpty()) {
        m_heartbeat.start();
        askWhetherItAnswers();
    } else {
        m_heartbeat.stop();
    }
}

void DaemonWatch::subscribe(const char *signal, bool isWanted)
{
    QDBusConnection bus = m_bus.connection();
    const QString service = QLatin1String(Bus::service);
    const QString path = QLatin1String(Bus::daemonPath);
    const QString interface = QLatin1String(Bus::daemonInterface);
    if (isWanted) {
        bus.connect(
            service, path, interface, QLatin1String(signal), this, SLOT(take(QDBusMessage)));
    } else {
        bus.disconnect(
            service, path, interface, QLatin1String(signal), this, SLOT(take(QDBusMessage)));
    }
}

void DaemonWatch::takeOwner(const QString &owner)
{
    if (owner == m_owner && m_generation > 0) {
        return;
    }
    ++m_generation;
    m_owner = owner;
    m_isAsked = false;
    m_patience.stop();
    if (owner.isEmpty()) {
        m_heartbeat.stop();
        emit happened(event::DaemonLeft());
        return;
    }
    emit happened(event::DaemonAppeared());
    greet();
    if (m_isWatched) {
        m_heartbeat.start();
    }
}

/// Asks a daemon for what it will not tell by itself.
void DaemonWatch::greet()
{
    const auto greeting = std::make_shared<event::DaemonGreeted>();
    const unsigned generation = m_generation;
    const auto ask
        = [this](const BusCall &call, const AsyncBus::Then &then) { m_bus.ask(call, this, then); };
    const auto finish = [this, greeting, generation] {
        if (generation == m_generation) {
            m_patience.stop();
            emit happened(*greeting);
        }
    };
    m_patience.start();
    ask(daemonCall(DaemonMethod::getIsCompiling), [greeting](const BusAnswer &answer) {
        if (answer.ok()) {
            greeting->isBuilding = answer.value().toBool();
        }
    });
    ask(daemonCall(DaemonMethod::getIsModemPlugged), [greeting](const BusAnswer &answer) {
        if (answer.ok()) {
            greeting->isModemPlugged = answer.value().toBool();
        }
    });
    ask(setupCall(SetupMethod::GetAnnouncedModem), [greeting](const BusAnswer &answer) {
        greeting->announcedModem = answer.value().toString();
    });
    // Answers come in the order of the calls. The address is asked for only when there is one: the
    // daemon writes a line to its log for each such question without an answer.
    ask(daemonCall(DaemonMethod::getConnectionState), [=](const BusAnswer &answer) {
        if (answer.ok()) {
            greeting->state = answer.value().toInt();
        }
        if (greeting->state != ConnectionUp) {
            finish();
            return;
        }
        ask(daemonCall(DaemonMethod::getInterface), [greeting](const BusAnswer &interface) {
            greeting->interface = interface.value().toString();
        });
        ask(daemonCall(DaemonMethod::getIP), [greeting](const BusAnswer &address) {
            greeting->address = address.value().toString();
        });
        ask(daemonCall(DaemonMethod::getDefaultRoute), [greeting, finish](const BusAnswer &route) {
            greeting->route = route.value().toString();
            finish();
        });
    });
}

void DaemonWatch::askWhetherItAnswers()
{
    if (m_isAsked) {
        return;
    }
    m_isAsked = true;
    m_patience.start();
    m_bus.ask(daemonCall(DaemonMethod::reply), this,
        [this, generation = m_generation](const BusAnswer &answer) {
            if (generation != m_generation) {
                return;
            }
            m_isAsked = false;
            if (answer.ok()) {
                m_patience.stop();
                emit happened(event::DaemonAnswered());
            }
        });
}

void DaemonWatch::take(const QDBusMessage &message)
{
    emit happened(event::DaemonTold{message.member(), message.arguments()});
}

void DaemonWatch::takeBusLoss()
{
    ++m_generation;
    m_owner.clear();
    m_heartbeat.stop();
    m_patience.stop();
    emit happened(event::BusLost());
}

} // namespace desktop
