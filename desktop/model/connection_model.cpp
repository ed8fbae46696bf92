// SPDX-License-Identifier: MIT
#include "desktop/model/connection_model.h"

#include "dbus/contract.h"

namespace desktop {

struct ConnectionModel::Taker
{
    ConnectionModel &model;
    qint64 now;

    void operator()(const event::BusLost &) const
    {
        model.forgetDaemon();
        model.keeper.reset();
        model.daemon = DaemonPresence::NoBus;
    }

    void operator()(const event::DaemonAppeared &) const
    {
        model.forgetDaemon();
        model.daemon = DaemonPresence::There;
    }

    void operator()(const event::DaemonLeft &) const
    {
        model.forgetDaemon();
        model.daemon = DaemonPresence::Away;
    }

    void operator()(const event::DaemonSilent &) const
    {
        if (model.daemon == DaemonPresence::There) {
            model.daemon = DaemonPresence::Silent;
        }
    }

    void operator()(const event::DaemonAnswered &) const
    {
        if (model.daemon == DaemonPresence::Silent) {
            model.daemon = DaemonPresence::There;
        }
    }

    void operator()(const event::DaemonGreeted &greeting) const
    {
        if (greeting.state) {
            model.daemon = DaemonPresence::There;
            model.takeState(*greeting.state, now);
        }
        if (greeting.isModemPlugged) {
            model.isModemPlugged = greeting.isModemPlugged;
        }
        model.isBuilding = greeting.isBuilding.value_or(model.isBuilding);
        model.announcedModem = greeting.announcedModem;
        model.interface = greeting.interface;
        if (model.state == ConnectionUp) {
            model.address = greeting.address;
            model.route = greeting.route;
        }
    }

    void operator()(const event::DaemonTold &told) const
    {
        model.takeSignal(told.signal, told.arguments, now);
    }

    void operator()(const event::KeeperTold &told) const { model.keeper = told.state; }

    void operator()(const event::KeeperLeft &) const { model.keeper.reset(); }

    void operator()(const event::LinkLost &lost) const
    {
        model.lossReason = lost.reason;
        model.setTrouble(Trouble::Lost, now);
    }

    void operator()(const event::LineSeen &seen) const { model.line = seen; }

    void operator()(const event::Requested &asked) const
    {
        model.pending = asked.request;
        model.requestFailure = {};
    }

    void operator()(const event::RequestFailed &failed) const
    {
        model.pending.reset();
        model.requestFailure = failed.failure;
    }

    void operator()(const event::SleepTold &) const { }

    void operator()(const event::Ticked &) const { model.speeds.forgetOld(now); }
};

void ConnectionModel::apply(const Event &event, qint64 now)
{
    std::visit(Taker{*this, now}, event);
}

void ConnectionModel::forgetDaemon()
{
    forgetLink();
    state.reset();
    step = ConnectingStep::None;
    pending.reset();
    isModemPlugged.reset();
    announcedModem.clear();
    isBuilding = false;
    isRestarting = false;
}

void ConnectionModel::forgetLink()
{
    address.clear();
    route.clear();
    connectedSeconds.reset();
    received = 0;
    sent = 0;
}

void ConnectionModel::setTrouble(Trouble newTrouble, qint64 now)
{
    trouble = newTrouble;
    troubleAt = now;
}

void ConnectionModel::takeState(int newState, qint64 now)
{
    const bool wasAttempt = step != ConnectingStep::None;
    state = newState;
    switch (newState) {
    case ConnectionUp:
        step = ConnectingStep::None;
        trouble = Trouble::None;
        lossReason.clear();
        pending.reset();
        break;
    case ConnectionConnecting:
        step = step == ConnectingStep::None ? ConnectingStep::Started : step;
        break;
    default:
        forgetLink();
        step = ConnectingStep::None;
        if (wasAttempt && pending == Request::Connect && trouble == Trouble::None) {
            setTrouble(Trouble::NotUp, now);
        }
        pending.reset();
        break;
    }
}

void ConnectionModel::takeSignal(const QString &signal, const QVariantList &arguments, qint64 now)
{
    const auto is = [&signal](const char *name) { return signal == QLatin1String(name); };
    const auto first = [&arguments] { return arguments.value(0); };
    if (is(DaemonSignal::transmissionSpeed)) {
        speeds.add(arguments.value(0).toUInt(), arguments.value(1).toUInt(), now);
    } else if (is(DaemonSignal::transmissionBytes)) {
        received = arguments.value(0).toDouble();
        sent = arguments.value(1).toDouble();
    } else if (is(DaemonSignal::connectionTime)) {
        connectedSeconds = arguments.value(0).toInt() * qint64(3600)
            + arguments.value(1).toInt() * qint64(60) + arguments.value(2).toInt();
    } else if (is(DaemonSignal::establishingConnection)) {
        state = ConnectionConnecting;
        step = ConnectingStep::Started;
        trouble = Trouble::None;
    } else if (is(DaemonSignal::synchronizing)) {
        step = ConnectingStep::WaitingForLine;
    } else if (is(DaemonSignal::connectionEstablished)) {
        takeState(ConnectionUp, now);
    } else if (is(DaemonSignal::connectionTerminated)) {
        pending.reset();
        takeState(ConnectionDown, now);
    } else if (is(DaemonSignal::connectionState)) {
        takeState(first().toInt(), now);
    } else if (is(DaemonSignal::IP)) {
        address = first().toString();
    } else if (is(DaemonSignal::defaultRoute)) {
        route = first().toString();
    } else if (is(DaemonSignal::synchronizationFailed)) {
        setTrouble(Trouble::LineNotSynchronised, now);
    } else if (is(DaemonSignal::connectionTimeout)) {
        setTrouble(Trouble::ProviderSilent, now);
    } else if (is(DaemonSignal::invalidAccountData)) {
        setTrouble(Trouble::AccountRefused, now);
    } else if (is(DaemonSignal::settingOpenDNS)) {
        if (!first().toBool()) {
            setTrouble(Trouble::ResolverWrong, now);
        }
    } else if (is(DaemonSignal::modemPlugged)) {
        isModemPlugged = true;
        modemName = first().toString();
        announcedModem.clear();
    } else if (is(DaemonSignal::modemUnplugged)) {
        isModemPlugged = false;
    } else if (is(DaemonSignal::newModemPlugged)) {
        announcedModem = first().toString();
    } else if (is(DaemonSignal::newModemUnplugged)) {
        announcedModem.clear();
    } else if (is(DaemonSignal::compilingDriver)) {
        isBuilding = true;
    } else if (is(DaemonSignal::compilationFinished)) {
        isBuilding = false;
    } else if (is(DaemonSignal::restartModemStarted)) {
        isRestarting = true;
    } else if (is(DaemonSignal::restartModemFinished)) {
        isRestarting = false;
    }
}

} // namespace desktop
