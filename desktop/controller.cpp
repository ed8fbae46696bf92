// SPDX-License-Identifier: MIT
#include "desktop/controller.h"

#include "dbus/contract.h"

#include <QDateTime>

namespace desktop {

Controller::Controller(const QDBusConnection &systemBus, QObject *parent)
    : QObject(parent)
    , m_bus(systemBus)
    , m_daemon(m_bus)
    , m_keeper(m_bus)
{
    m_announcement.setSingleShot(true);
    m_announcement.setInterval(0);
    m_clock.setInterval(1000);
    connect(&m_announcement, &QTimer::timeout, this, &Controller::changed);
    connect(&m_clock, &QTimer::timeout, this, [this] { take(event::Ticked()); });
    connect(&m_daemon, &DaemonWatch::happened, this, &Controller::take);
    connect(&m_keeper, &KeeperWatch::happened, this, &Controller::take);
}

void Controller::start()
{
    m_daemon.start();
    m_keeper.start();
}

void Controller::setWatched(bool isWatched)
{
    m_daemon.setWatched(isWatched);
    if (isWatched) {
        m_clock.start();
    } else {
        m_clock.stop();
    }
}

void Controller::take(const Event &event)
{
    m_model.apply(event, QDateTime::currentMSecsSinceEpoch());
    emit happened(event);
    if (!m_announcement.isActive()) {
        m_announcement.start();
    }
}

BusCall Controller::callFor(Request request) const
{
    switch (request) {
    case Request::Connect:
        // The keeper remembers the wish, and hears it even while an attempt runs. It starts no
        // daemon.
        if (m_model.keeper && m_model.keeper->isKeeping
            && m_model.daemon == DaemonPresence::There) {
            return keeperCall(KeeperMethod::Connect);
        }
        break;
    case Request::Disconnect:
        return daemonCall(DaemonMethod::terminateConnection);
    case Request::RestartModem:
        return daemonCall(DaemonMethod::restartModem);
    case Request::AdoptModem:
        return daemonCall(DaemonMethod::useNewModem);
    }
    BusCall call = daemonCall(DaemonMethod::establishConnection);
    call.startsService = true;
    return call;
}

void Controller::request(Request request)
{
    if (request == Request::AdoptModem && m_model.announcedModem.isEmpty()) {
        return; // the daemon would forget the modem that it knows
    }
    take(event::Requested{request});
    m_bus.ask(callFor(request), this, [this, request](const BusAnswer &answer) {
        if (!answer.ok()) {
            take(event::RequestFailed{request, answer.failure});
        }
    });
}

void Controller::perform(Action action)
{
    switch (action) {
    case Action::Connect:
    case Action::TryNow:
        request(Request::Connect);
        break;
    case Action::Disconnect:
    case Action::Cancel:
        request(Request::Disconnect);
        break;
    case Action::None:
        break;
    case Action::SetUp:
    case Action::CheckAccount:
    case Action::CheckLine:
    case Action::CheckUp:
    case Action::ShowBuild:
    case Action::RestartDaemon:
        emit pageWanted(action);
        break;
    }
}

} // namespace desktop
