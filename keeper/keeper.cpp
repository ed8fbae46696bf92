// SPDX-License-Identifier: MIT
#include "keeper/keeper.h"

#include "keeper/decision/phase.h"
#include "keeper/history/billing.h"
#include "keeper/system_facts.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>

namespace keeper {

namespace {

constexpr int pulseMs = 10'000;
constexpr int pulsesInAMinute = 6;

/// What has happened since the memory was written.
Unheard unheardSince(const Stored &stored, const DaemonLog &log)
{
    if (!stored.memory.isWanted.value_or(false)) {
        return Unheard::Nothing;
    }
    const Unheard told
        = unheardInLog(log.since(0), stored.heardUntil, modemIdentifier(), stored.wasModemPlugged);
    // Without HAL the daemon knows of no modem.
    return told == Unheard::DisconnectOrUnplugged && isModemSeen() ? Unheard::Disconnect : told;
}

} // namespace

Keeper::Keeper(const QDBusConnection &bus, const QString &stateFolder, const Pauses &pauses)
    : m_boot(bootId())
    , m_storedPath(stateFolder + QStringLiteral("/memory.json"))
    , m_stored(readStored(m_storedPath))
    , m_written(m_stored)
    , m_log(QStringLiteral("/opt/norvix/daemon.log"))
    , m_history(stateFolder + QStringLiteral("/history.sqlite"))
    , m_state(initialState(m_stored.memory, m_stored.boot == m_boot, unheardSince(m_stored, m_log),
          pauses, momentNow()))
    , m_daemon(bus)
    , m_sleep(bus)
    , m_settingsStamp(settingsStamp())
{
    connect(&m_daemon, &DaemonClient::happened, this, &Keeper::handle);
    connect(&m_daemon, &DaemonClient::attemptEnded, this, &Keeper::attemptEnded);
    connect(&m_sleep, &SleepWatch::sleeping, this, [this](bool isComing) {
        handle(isComing ? Event(event::SleepComing()) : Event(event::Woke()));
    });
    connect(&m_links, &LinkWatch::settled, this, &Keeper::lookAtLinks);
    connect(&m_links, &LinkWatch::gone, this, &Keeper::interfaceGone);
    connect(&m_timer, &BootTimer::timeout, this, [this] { handle(event::Tick()); });
    connect(&m_clock, &ClockWatch::clockSet, this, [this] {
        m_toldNextAttempt = 0; // the same moment has another name now
        checkLimit(); // and the day perhaps another month
        announce();
    });
    connect(&m_monthEnd, &BootTimer::timeout, this, [this] {
        checkLimit();
        announce();
    });
    m_pulse.setInterval(pulseMs);
    m_pulse.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_pulse, &QTimer::timeout, this, &Keeper::pulse);
    checkLimit();
    announce();
}

bool Keeper::start()
{
    if (!m_links.start()) {
        return false;
    }
    m_daemon.start();
    m_sleep.start();
    return true;
}

void Keeper::finish()
{
    bookNow();
    m_history.settle();
}

void Keeper::busLost()
{
    std::fputs("norvix-keeper: the system bus has gone.\n", stderr);
    QCoreApplication::exit(EXIT_FAILURE);
}

// ---- events and actions

void Keeper::handle(const Event &event)
{
    if (std::holds_alternative<event::Terminated>(event)) {
        m_disconnectMark = m_attemptMark; // the log may be further by now
        m_stored.heardUntil = momentNow().wall + 1; // its line in the log tells the second only
    } else if (std::holds_alternative<event::DaemonAppeared>(event)) {
        m_attemptMark = 0;
        m_disconnectMark = 0;
    }
    const Moment now = momentNow();
    const Decision decision = decide(m_state, event, now);
    m_state = decision.state;
    for (const Action &action : decision.actions) {
        carryOut(action);
    }
    m_timer.setDeadline(nextTick(m_state, now.ms));
    setPulse();
    remember();
    announce();
    if (std::holds_alternative<event::DaemonAppeared>(event)) {
        lookAtLine();
    }
}

void Keeper::carryOut(const Action &action)
{
    switch (action.kind) {
    case Action::Kind::AskDaemon:
        m_daemon.askState();
        break;
    case Action::Kind::Connect:
        m_daemon.connectLink();
        break;
    case Action::Kind::EndLink:
        m_daemon.endLink();
        break;
    case Action::Kind::RestartModem:
        std::fputs(
            "norvix-keeper: the driver tells of no line any more, restarting the modem.\n", stderr);
        m_daemon.restartModem();
        break;
    case Action::Kind::LookAtLinks:
        QTimer::singleShot(0, this, &Keeper::lookAtLinks);
        break;
    case Action::Kind::HoldSleep:
        m_sleep.hold();
        break;
    case Action::Kind::LetSleep:
        m_history.settle();
        m_sleep.letSleep();
        break;
    case Action::Kind::BeginSession:
        beginSession();
        break;
    case Action::Kind::EndSession:
        endSession(action.cause);
        break;
    case Action::Kind::TellLoss:
        emit linkLost(codeOf(action.cause));
        break;
    case Action::Kind::NoteAttempt:
        m_history.noteAttempt(momentNow().wall, codeOf(action.cause));
        break;
    }
}

void Keeper::attemptEnded(int connectionState)
{
    const Cause cause = causeInLog(m_log.since(m_attemptMark));
    m_attemptMark = m_log.end();
    handle(event::AttemptEnded{connectionState, cause});
}

// ---- looking

/// Our links: what pppd's pid file names, for as long as it is there.
QList<Interface> Keeper::ownLinks()
{
    const InterfaceTable &table = m_links.table();
    if (const std::optional<Interface> named = table.named(ownInterfaceName())) {
        m_own.insert(named->index);
    }
    QList<Interface> links;
    for (auto number = m_own.begin(); number != m_own.end();) {
        const auto link = table.interfaces().constFind(*number);
        if (link == table.interfaces().constEnd()) {
            number = m_own.erase(number);
        } else {
            links.append(*link);
            ++number;
        }
    }
    return links;
}

void Keeper::lookAtLinks()
{
    event::LinkSeen seen;
    for (const Interface &link : ownLinks()) {
        if (!link.addresses.isEmpty()) {
            seen.link = Link::Up;
        } else if (seen.link == Link::Gone) {
            seen.link = Link::Bare;
        }
    }
    m_foreign.clear();
    for (const Interface &other : m_links.table().interfaces()) {
        // Up, whatever addresses it has: a mobile connection may be one of IPv6 alone.
        if (other.isPpp && !m_own.contains(other.index) && other.isUp) {
            m_foreign.append(other.name);
        }
    }
    seen.hasForeign = !m_foreign.isEmpty();
    if (seen.link == Link::Up) {
        seen.wasAskedAgain = momentNow().ms < m_state.disownedUntil
            && wasRequestDropped(m_log.since(m_disconnectMark));
    } else {
        seen.cause = lossCause();
    }
    handle(seen);
}

/// What an outage waits for and nobody tells.
void Keeper::lookAtLine()
{
    const QString folder = atmDeviceFolder();
    event::LineSeen seen;
    seen.hasDevice = !folder.isEmpty() || m_links.table().named(QStringLiteral("dsl0"));
    if (!folder.isEmpty()) {
        seen.carrier = readLineQuality(folder).carrier;
    }
    handle(seen);
    const QByteArray stamp = settingsStamp();
    if (stamp != m_settingsStamp) {
        m_settingsStamp = stamp;
        handle(event::SettingsChanged());
    }
}

void Keeper::setPulse()
{
    const bool isNeeded = m_state.isInSession || wantsLooks(m_state);
    if (isNeeded && !m_pulse.isActive()) {
        m_pulses = 0;
        m_pulse.start();
    } else if (!isNeeded) {
        m_pulse.stop();
    }
}

/// Six times a minute, while connected or waiting for the line. Once a minute what is worth it is
/// written down.
void Keeper::pulse()
{
    if (!m_state.isInSession) {
        lookAtLine();
        return;
    }
    sampleBridge();
    if (++m_pulses % pulsesInAMinute != 0) {
        return;
    }
    const QString folder = atmDeviceFolder();
    if (!folder.isEmpty()) {
        m_history.noteLine(momentNow().wall, readLineQuality(folder));
    }
    bookNow();
    checkLimit();
    remember();
    announce();
}

// ---- the running session

void Keeper::beginSession()
{
    for (const Interface &link : ownLinks()) {
        if (!link.addresses.isEmpty()) {
            m_session = {m_boot, link.index};
            m_sessionName = link.name;
            m_history.beginSession(momentNow().wall, m_session, link.name, addressText(link));
        }
    }
    m_countedUntil = momentNow().ms;
    m_attemptMark = m_log.end();
    m_hasDevice = !atmDeviceFolder().isEmpty();
    m_bridge.clear();
    for (const char *name : {"nas0", "dsl0"}) {
        if (m_bridge.isEmpty() && m_links.table().named(QLatin1String(name))) {
            m_bridge = QLatin1String(name);
        }
    }
    m_stillness.clear();
    m_pulses = 0;
    sampleBridge();
    bookNow();
    checkLimit();
}

void Keeper::endSession(Cause cause)
{
    m_history.endSession(
        momentNow().wall, m_session, secondsToCount(m_state.lostAt), codeOf(cause));
    m_session = LinkIdentity();
    m_sessionName.clear();
    checkLimit();
}

void Keeper::bookNow()
{
    if (const std::optional<Traffic> counters = interfaceCounters(m_sessionName)) {
        book(*counters);
    }
}

void Keeper::book(const Traffic &counters)
{
    const Moment now = momentNow();
    m_history.book(now.wall, QDate::currentDate(), m_session, {counters, secondsToCount(now.ms)});
}

/// The seconds of the session up to @p until (ms since boot) that have not been counted yet.
qint64 Keeper::secondsToCount(qint64 until)
{
    const qint64 seconds = qMax(until - m_countedUntil, qint64(0)) / 1000;
    m_countedUntil += seconds * 1000;
    return seconds;
}

/// Its last counters come with the notice: what went through since the last minute is not lost.
void Keeper::interfaceGone(const Interface &interface)
{
    if (interface.index == m_session.number && !m_sessionName.isEmpty()) {
        book({interface.received, interface.sent});
        m_sessionName.clear(); // another one may have its name by now
    }
}

std::optional<quint64> Keeper::bridgeCounter() const
{
    if (m_bridge.isEmpty()) {
        return atmCellsReceived();
    }
    const std::optional<Traffic> counters = interfaceCounters(m_bridge);
    return counters ? std::optional<quint64>(counters->received) : std::nullopt;
}

void Keeper::sampleBridge()
{
    if (const std::optional<quint64> counter = bridgeCounter()) {
        m_stillness.add(momentNow().ms, *counter);
    }
}

/// What a link that is lost at this moment looks like.
Cause Keeper::lossCause() const
{
    LossFacts facts;
    const QString folder = atmDeviceFolder();
    if (!folder.isEmpty()) {
        facts.carrier = readLineQuality(folder).carrier;
    }
    facts.hadDevice = m_hasDevice;
    facts.hasDevice = !folder.isEmpty();
    facts.hadBridge = !m_bridge.isEmpty();
    facts.hasBridge = m_links.table().named(m_bridge).has_value();
    const std::optional<quint64> counter = bridgeCounter();
    facts.isStill = counter && m_stillness.isStill(momentNow().ms, *counter);
    return judgeLoss(facts);
}

// ---- traffic

History &Keeper::history()
{
    bookNow();
    return m_history;
}

void Keeper::setLimit(quint64 bytes)
{
    m_stored.limit = bytes;
    checkLimit();
    remember();
    announce();
}

void Keeper::setBillingDay(int day)
{
    m_stored.billingDay = day;
    checkLimit();
    remember();
    announce();
}

/// A limit only warns. Traffic reaches it; that a month begins anew is for a clock to tell, as
/// nothing else need happen then.
void Keeper::checkLimit()
{
    const BillingMonth month = billingMonth(QDate::currentDate(), m_stored.billingDay);
    const Traffic used = m_history.trafficBetween(month.begin, month.end);
    m_isLimitReached = m_stored.limit > 0 && used.received + used.sent >= m_stored.limit;
    std::optional<qint64> monthEnd;
    if (m_isLimitReached) {
        const Moment now = momentNow();
        const qint64 begin = month.end.addDays(1).startOfDay().toSecsSinceEpoch();
        monthEnd = now.ms + qMax(begin - now.wall, qint64(1)) * 1000;
    }
    m_monthEnd.setDeadline(monthEnd);
}

// ---- telling

/// Writes down what has to outlive this process, when it has changed.
void Keeper::remember()
{
    if (m_state.isWantedIfUnplugged) {
        return; // the next keeper has to find it out, too
    }
    Stored fresh = m_stored;
    fresh.memory = m_state.memory;
    if (m_state.modem != Modem::Unknown) {
        fresh.wasModemPlugged = m_state.modem == Modem::There;
    }
    fresh.boot = m_state.isWantedIfAtBoot ? QString() : m_boot;
    if (fresh == m_written) {
        return;
    }
    fresh.heardUntil = qMax(fresh.heardUntil, momentNow().wall);
    m_stored = fresh;
    m_written = fresh;
    if (!writeStored(m_storedPath, fresh)) {
        std::fprintf(stderr, "norvix-keeper: cannot write %s, a restart will forget the wish.\n",
            qPrintable(m_storedPath));
    }
}

/// The next attempt by the clock on the wall; 0 when none is planned. The same until it is another
/// one or the clock is set.
qint64 Keeper::nextAttemptWall()
{
    const Moment now = momentNow();
    const std::optional<qint64> planned = plannedAttempt(m_state, now.ms);
    if (!planned) {
        return 0;
    }
    if (*planned != m_toldNextAttempt) {
        m_toldNextAttempt = *planned;
        m_toldNextWall = now.wall + (*planned - now.ms + 999) / 1000;
    }
    return m_toldNextWall;
}

void Keeper::announce()
{
    const QString phase = phaseOf(m_state);
    if (phase != m_phase) {
        m_phase = phase;
        m_since = momentNow().wall;
    }
    const QVariantMap now{
        {QStringLiteral("State"), phase},
        {QStringLiteral("Wanted"), isWanted(m_state)},
        {QStringLiteral("Keep"), m_state.memory.keep},
        {QStringLiteral("Reason"), codeOf(m_state.reason)},
        {QStringLiteral("Since"), m_since},
        {QStringLiteral("NextAttempt"), nextAttemptWall()},
        {QStringLiteral("Attempts"), uint(m_state.attempts)},
        {QStringLiteral("ForeignLinks"), m_foreign},
        {QStringLiteral("History"), m_history.condition()},
        {QStringLiteral("LimitReached"), m_isLimitReached},
    };
    QVariantMap news;
    for (auto property = now.begin(); property != now.end(); ++property) {
        if (m_told.value(property.key()) != property.value()) {
            news.insert(property.key(), property.value());
        }
    }
    m_told = now;
    if (!news.isEmpty()) {
        emit changed(news);
    }
}

} // namespace keeper
