// SPDX-License-Identifier: MIT
#include "desktop/controller.h"

#include "dbus/contract.h"

#include <QDateTime>

namespace desktop {

namespace {

// The daemon's messages of one moment come one by one, and are shown together.
constexpr int announcementMs = 20;
constexpr int clockMs = 1000 - announcementMs;
// The daemon tells its figures each second; only one that does not is helped out.
constexpr int connectedClockMs = 1500;

} // namespace

Controller::Controller(const QDBusConnection &systemBus, QObject *parent)
    : QObject(parent)
    , m_bus(systemBus)
    , m_daemon(m_bus)
    , m_keeper(m_bus)
{
    m_announcement.setSingleShot(true);
    m_announcement.setInterval(announcementMs);
    m_clock.setSingleShot(true);
    connect(&m_announcement, &QTimer::timeout, this, &Controller::announce);
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
    m_isWatched = isWatched;
    m_daemon.setWatched(isWatched);
    m_announcement.start();
}

void Controller::announce()
{
    if (m_isWatched && m_model.doesTimeShow()) {
        m_clock.start(m_model.state == ConnectionUp ? connectedClockMs : clockMs);
    } else {
        m_clock.stop();
    }
    emit changed();
}

void Controller::take(const Event &event)
{
    m_model.apply(event, QDateTime::currentMSecsSinceEpoch());
    emit happened(event);
    if (std::holds_alternative<event::LinkLost>(event)) {
        m_daemon.look(); // it may tell of the loss only when asked
    }
    if (m_model.isEndingOwed) {
        request(Request::Disconnect);
    }
    if (!m_announcement.isActive()) {
        m_announcement.start();
    }
}

BusCall Controller::callFor(Request request) const
{
    switch (request) {
    case Request::Connect:
        // The keeper remembers the wish, and hears it even while an attempt runs.
        return m_model.keeper && m_model.keeper->isKeeping
            ? keeperCall(KeeperMethod::Connect)
            : daemonCall(DaemonMethod::establishConnection);
    case Request::Disconnect:
        return daemonCall(DaemonMethod::terminateConnection);
    case Request::RestartModem:
        return daemonCall(DaemonMethod::restartModem);
    }
    return {};
}

void Controller::request(Request request)
{
    const bool isDaemonThere = m_model.daemon == DaemonPresence::There;
    take(event::Requested{request});
    if (request == Request::Connect && !isDaemonThere) {
        startAndConnect();
        return;
    }
    ask(request);
}

void Controller::ask(Request request)
{
    m_bus.ask(callFor(request), this, [this, request](const BusAnswer &answer) {
        if (answer.ok()) {
            take(event::RequestTaken{request});
        } else {
            take(event::RequestFailed{request, answer.failure});
        }
    });
}

/// A connection outlives the daemon: a second one must not be begun beside it.
void Controller::startAndConnect()
{
    BusCall question = daemonCall(DaemonMethod::getConnectionState);
    question.startsService = true;
    m_bus.ask(question, this, [this](const BusAnswer &answer) {
        if (!answer.ok()) {
            take(event::RequestFailed{Request::Connect, answer.failure});
        } else if (answer.value().toInt() == ConnectionDown) {
            ask(Request::Connect);
        } else {
            take(event::RequestTaken{Request::Connect});
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
