// SPDX-License-Identifier: MIT
#include "desktop/bus/daemon_watch.h"

#include "dbus/contract.h"

#include <QDBusServiceWatcher>
#include <algorithm>
#include <iterator>

namespace desktop {

namespace {

constexpr int heartbeatMs = 5000;
// While nobody looks, a symbol in the panel may be a minute behind.
constexpr int hiddenHeartbeatMs = 60000;
// A daemon that asks a neighbour which hangs answers late; a person has begun to wonder by then.
constexpr int patienceMs = 3000;

/// Those of every second while connected.
const char *const ticks[] = {DaemonSignal::transmissionSpeed, DaemonSignal::transmissionErrors,
    DaemonSignal::transmissionBytes, DaemonSignal::connectionTime};
/// Those of them that are shown.
const char *const shownTicks[] = {DaemonSignal::transmissionSpeed, DaemonSignal::transmissionBytes};

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
    m_heartbeat.setInterval(hiddenHeartbeatMs);
    m_patience.setInterval(patienceMs);
    m_patience.setSingleShot(true);
    connect(&m_heartbeat, &QTimer::timeout, this, &DaemonWatch::look);
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
    for (const char *tick : shownTicks) {
        subscribe(tick, isWatched);
    }
    m_heartbeat.setInterval(isWatched ? heartbeatMs : hiddenHeartbeatMs);
    if (isWatched) {
        look();
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
    m_lastState.reset();
    m_patience.stop();
    if (owner.isEmpty()) {
        m_heartbeat.stop();
        emit happened(event::DaemonLeft());
        return;
    }
    emit happened(event::DaemonAppeared());
    greet();
    m_heartbeat.start();
}

/// Asks a daemon for what it will not tell by itself. What may make it wait for others is asked
/// for last.
void DaemonWatch::greet()
{
    m_greeting = Greeting::UnderWay;
    askForState();
    tell(daemonCall(DaemonMethod::getIsCompiling),
        [](auto &answer, const QVariant &value) { answer.isBuilding = value.toBool(); });
    tell(setupCall(SetupMethod::GetAnnouncedModem),
        [](auto &answer, const QVariant &value) { answer.announcedModem = value.toString(); });
    m_bus.ask(daemonCall(DaemonMethod::getIsModemPlugged), this,
        [this, generation = m_generation](const BusAnswer &answer) {
            if (generation != m_generation) {
                return;
            }
            m_greeting = answer.ok() ? Greeting::Answered : Greeting::Owed;
            if (answer.ok()) {
                event::DaemonAnswered told;
                told.isModemPlugged = answer.value().toBool();
                emit happened(told);
            }
        });
}

/// Only while there is one: the daemon writes a line to its log when asked for it in vain.
void DaemonWatch::askForAddress()
{
    tell(daemonCall(DaemonMethod::getInterface),
        [](auto &answer, const QVariant &value) { answer.interface = value.toString(); });
    tell(daemonCall(DaemonMethod::getIP),
        [](auto &answer, const QVariant &value) { answer.address = value.toString(); });
    tell(daemonCall(DaemonMethod::getDefaultRoute),
        [](auto &answer, const QVariant &value) { answer.route = value.toString(); });
}

/// Asks, and tells the answer as an event; of a daemon that has gone by then it tells nothing.
void DaemonWatch::tell(
    const BusCall &call, const std::function<void(event::DaemonAnswered &, const QVariant &)> &take)
{
    m_bus.ask(call, this, [this, take, generation = m_generation](const BusAnswer &answer) {
        if (generation == m_generation && answer.ok()) {
            event::DaemonAnswered told;
            take(told, answer.value());
            emit happened(told);
        }
    });
}

/// A connection may be lost without a signal, and a daemon may be there without answering: one
/// question tells both.
void DaemonWatch::askForState()
{
    if (m_isAsked) {
        return;
    }
    m_isAsked = true;
    m_patience.start();
    m_bus.ask(daemonCall(DaemonMethod::getConnectionState), this,
        [this, generation = m_generation](const BusAnswer &answer) {
            if (generation != m_generation) {
                return;
            }
            m_isAsked = false;
            if (!answer.ok()) {
                return;
            }
            m_patience.stop();
            event::DaemonAnswered told;
            told.state = answer.value().toInt();
            emit happened(told);
            if (told.state == ConnectionUp && m_lastState != ConnectionUp) {
                askForAddress();
            }
            m_lastState = told.state;
        });
}

void DaemonWatch::look()
{
    if (m_owner.isEmpty()) {
        return;
    }
    if (m_greeting == Greeting::Owed) {
        greet();
    } else {
        askForState();
    }
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
