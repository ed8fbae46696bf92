// SPDX-License-Identifier: MIT
#include "desktop/model/connection_model.h"

#include "dbus/contract.h"

#include <tuple>

namespace desktop {

namespace {

/// An address or interface of the bus; empty for none.
QString addressOf(const QString &told)
{
    return told == QLatin1String(Bus::none) ? QString() : told;
}

/// Whether a session ended as nobody wanted. What the keeper has not seen may have been the
/// computer's end.
bool wasLost(const KeeperSession &session)
{
    return session.ended && !session.reason.isEmpty()
        && session.reason != QLatin1String(KeeperReason::user)
        && session.reason != QLatin1String(KeeperReason::sleep)
        && session.reason != QLatin1String(KeeperReason::unknown);
}

/// The loss before the session that runs.
std::optional<Loss> lossBefore(const QList<KeeperSession> &sessions)
{
    const KeeperSession running = sessions.value(0);
    const KeeperSession before = sessions.value(1);
    if (running.began == 0 || running.ended || !wasLost(before)) {
        return std::nullopt;
    }
    const qint64 away = running.began - *before.ended;
    return away >= 0 ? std::optional<Loss>({*before.ended, away}) : std::nullopt; // else by a clock
}

} // namespace

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
        model.requestFailure = {};
        model.daemon = DaemonPresence::There;
    }

    void operator()(const event::DaemonLeft &) const
    {
        const bool wasUp = model.state == ConnectionUp || model.isLinkLeft;
        model.forgetDaemon();
        model.isLinkLeft = wasUp;
        model.daemon = DaemonPresence::Away;
    }

    void operator()(const event::DaemonSilent &) const
    {
        if (model.daemon == DaemonPresence::There) {
            model.daemon = DaemonPresence::Silent;
        }
    }

    void operator()(const event::DaemonAnswered &answer) const
    {
        model.takeVoice();
        if (answer.state) {
            model.takeState(*answer.state, now);
        }
        if (answer.isModemPlugged) {
            model.isModemPlugged = answer.isModemPlugged;
        }
        model.isBuilding = answer.isBuilding.value_or(model.isBuilding);
        model.announcedModem = answer.announcedModem.value_or(model.announcedModem);
        model.interface = answer.interface.value_or(model.interface);
        if (model.state == ConnectionUp) {
            model.address = answer.address ? addressOf(*answer.address) : model.address;
            model.route = answer.route ? addressOf(*answer.route) : model.route;
        }
    }

    void operator()(const event::DaemonTold &told) const
    {
        model.takeVoice();
        model.takeSignal(told.signal, told.arguments, now);
    }

    void operator()(const event::KeeperTold &told) const { model.takeKeeper(told.state, now); }

    void operator()(const event::KeeperLeft &) const { model.keeper.reset(); }

    void operator()(const event::LinkLost &lost) const { model.takeLoss(lost.reason, now); }

    void operator()(const event::SessionsTold &told) const
    {
        model.lastLoss = lossBefore(told.sessions);
    }

    void operator()(const event::LinkSeen &seen) const
    {
        if (model.state == ConnectionUp) {
            model.upSince = now - seen.seconds * 1000;
        }
    }

    void operator()(const event::LineSeen &seen) const { model.line = seen; }

    void operator()(const event::Requested &asked) const
    {
        model.pending = asked.request;
        model.requestFailure = {};
        model.isEndingOwed = false;
    }

    void operator()(const event::RequestTaken &taken) const
    {
        // Until the attempt has ended it is not forgotten that it was to end.
        if (model.pending == taken.request && model.step != ConnectingStep::Ending) {
            model.pending.reset();
        }
    }

    void operator()(const event::RequestFailed &failed) const
    {
        model.pending.reset();
        // What has come about although nobody answered has not failed.
        if (failed.request != Request::Connect
            || model.state.value_or(ConnectionDown) == ConnectionDown) {
            model.requestFailure = failed.failure;
        }
    }

    void operator()(const event::SleepTold &) const { }

    void operator()(const event::Ticked &) const { model.speeds.forgetOld(now); }
};

void ConnectionModel::apply(const Event &event, qint64 now)
{
    const auto wait = [this] { return std::tie(daemon, step, pending, isBuilding, isRestarting); };
    const auto before = std::make_tuple(daemon, step, pending, isBuilding, isRestarting);
    std::visit(Taker{*this, now}, event);
    if (before != wait()) {
        waitSince = now;
    }
}

void ConnectionModel::forgetDaemon()
{
    forgetLink();
    state.reset();
    step = ConnectingStep::None;
    // A daemon that is started for a request is there before it has taken it.
    if (pending != Request::Connect) {
        pending.reset();
    }
    isEndingOwed = false;
    isLinkLeft = false;
    isModemPlugged.reset();
    announcedModem.clear();
    isBuilding = false;
    buildResult.reset();
    isRestarting = false;
}

/// Who speaks is not silent, and hears what was asked before.
void ConnectionModel::takeVoice()
{
    if (daemon == DaemonPresence::Silent) {
        requestFailure = {};
    }
    daemon = DaemonPresence::There;
}

void ConnectionModel::forgetLink()
{
    address.clear();
    route.clear();
    lastLoss.reset();
    upSince.reset();
    received = 0;
    sent = 0;
}

void ConnectionModel::setTrouble(Trouble newTrouble, qint64 now)
{
    trouble = newTrouble;
    troubleAt = now;
}

std::optional<qint64> ConnectionModel::connectedSeconds(qint64 now) const
{
    return upSince && state == ConnectionUp
        ? std::optional<qint64>(qMax(qint64(0), now - *upSince) / 1000)
        : std::nullopt;
}

bool ConnectionModel::doesTimeShow() const
{
    const bool isWaiting = daemon == DaemonPresence::Silent || pending || isBuilding || isRestarting
        || (keeper && keeper->nextAttempt);
    const bool isLinkThere = state && *state != ConnectionDown;
    return isWaiting || isLinkThere || !speeds.samples().isEmpty();
}

/// The state, told by a signal or answered to a question.
void ConnectionModel::takeState(int newState, qint64 now)
{
    switch (newState) {
    case ConnectionUp:
        isEndingOwed
            = isEndingOwed || (step == ConnectingStep::Ending && pending == Request::Disconnect);
        if (state != ConnectionUp) {
            trouble = Trouble::None;
            lossReason.clear();
            requestFailure = {};
        }
        state = newState;
        step = ConnectingStep::None;
        isLinkLeft = false;
        takeKeepersTime();
        if (pending == Request::Connect) {
            pending.reset();
        }
        break;
    case ConnectionConnecting:
        if (state == ConnectionUp) {
            takeLoss(QString(), now); // pppd dials again, and no signal tells it
        }
        state = newState;
        step = step == ConnectingStep::None ? ConnectingStep::Started : step;
        break;
    default:
        if (state == ConnectionUp) {
            takeLoss(QString(), now);
        }
        takeEnd(now);
        break;
    }
}

/// An attempt has ended without a connection, or there is none.
void ConnectionModel::takeEnd(qint64 now)
{
    const bool wasAttempt
        = step == ConnectingStep::Started || step == ConnectingStep::WaitingForLine;
    forgetLink();
    if (state.value_or(ConnectionDown) != ConnectionDown) {
        requestFailure = {}; // what could not be ended has ended
    }
    state = ConnectionDown;
    step = ConnectingStep::None;
    if (wasAttempt && trouble == Trouble::None) {
        setTrouble(Trouble::NotUp, now);
    }
    if (pending == Request::Disconnect) {
        pending.reset();
    }
}

/// Of a link that nobody wanted to lose.
void ConnectionModel::takeLoss(const QString &reason, qint64 now)
{
    lossReason = reason;
    setTrouble(Trouble::Lost, now);
    if (state == ConnectionUp) {
        forgetLink();
        requestFailure = {};
        state = ConnectionDown;
    }
}

void ConnectionModel::takeKeepersTime()
{
    if (state == ConnectionUp && keeper && keeper->phase == QLatin1String(KeeperPhase::connected)
        && keeper->since) {
        upSince = *keeper->since * 1000;
    }
}

void ConnectionModel::takeKeeper(const KeeperState &told, qint64 now)
{
    const QLatin1String connected(KeeperPhase::connected);
    const bool wasConnected = keeper && keeper->phase == connected;
    keeper = told;
    if (requestFailure.kind == FailureKind::KeeperNoAnswer
        || requestFailure.kind == FailureKind::KeeperStopped) {
        requestFailure = {};
    }
    if (told.phase == connected) {
        takeKeepersTime();
        return;
    }
    isLinkLeft = false;
    // The daemon does not tell when pppd ends long after the attempt.
    if (wasConnected && state == ConnectionUp) {
        takeEnd(now);
    }
}

/// Somebody has ended the connection. An attempt that waits for the line goes on all the same until
/// the daemon tells its end.
void ConnectionModel::takeTermination(qint64 now)
{
    if (state == ConnectionUp || step != ConnectingStep::None) {
        trouble = Trouble::None;
    }
    if (step != ConnectingStep::None) {
        step = ConnectingStep::Ending;
    } else {
        takeEnd(now);
    }
}

void ConnectionModel::takeSignal(const QString &signal, const QVariantList &arguments, qint64 now)
{
    const auto is = [&signal](const char *name) { return signal == QLatin1String(name); };
    const auto first = [&arguments] { return arguments.value(0); };
    if (is(DaemonSignal::transmissionSpeed)) {
        // The daemon counts on after a loss that it does not notice.
        if (state == ConnectionUp) {
            speeds.add(arguments.value(0).toUInt(), arguments.value(1).toUInt(), now);
        }
    } else if (is(DaemonSignal::transmissionBytes)) {
        received = arguments.value(0).toDouble();
        sent = arguments.value(1).toDouble();
    } else if (is(DaemonSignal::establishingConnection)) {
        state = ConnectionConnecting;
        step = ConnectingStep::Started;
        trouble = Trouble::None;
        requestFailure = {};
        forgetLink();
        if (pending == Request::Connect) {
            pending.reset();
        }
    } else if (is(DaemonSignal::synchronizing)) {
        if (step == ConnectingStep::Started) {
            step = ConnectingStep::WaitingForLine;
        }
    } else if (is(DaemonSignal::connectionEstablished)) {
        takeState(ConnectionUp, now);
        upSince = now; // a keeper that still tells of the last link is behind
    } else if (is(DaemonSignal::connectionTerminated)) {
        takeTermination(now);
    } else if (is(DaemonSignal::connectionState)) {
        takeState(first().toInt(), now);
    } else if (is(DaemonSignal::IP)) {
        address = addressOf(first().toString());
    } else if (is(DaemonSignal::defaultRoute)) {
        route = addressOf(first().toString());
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
        buildResult.reset();
    } else if (is(DaemonSignal::compilationFinished)) {
        isBuilding = false;
        buildResult = first().toBool();
    } else if (is(DaemonSignal::restartModemStarted)) {
        isRestarting = true;
    } else if (is(DaemonSignal::restartModemFinished)) {
        isRestarting = false;
    }
}

} // namespace desktop
