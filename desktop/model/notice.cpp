// SPDX-License-Identifier: MIT
#include "desktop/model/notice.h"

#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/model/headline.h"

#include <utility>

namespace desktop {

namespace {

Notice failed(const QString &text)
{
    return {NoticeKind::AttemptFailed, Say::tr("No connection"), text};
}

Notice lost(const QString &text)
{
    return {NoticeKind::LinkLost, Say::tr("Connection lost"), text};
}

bool isSignal(const event::DaemonTold &told, const char *name)
{
    return told.signal == QLatin1String(name);
}

} // namespace

struct NoticeDecision::Taker
{
    NoticeDecision &decision;
    const ConnectionModel &model;
    const std::optional<int> before; ///< the state
    qint64 now;

    using Told = std::optional<Notice>;

    Told operator()(const event::Requested &asked) const
    {
        decision.m_isEndWanted
            = asked.request == Request::Disconnect || asked.request == Request::RestartModem;
        if (asked.request == Request::Connect) {
            decision.m_calmUntil = now;
        }
        return {};
    }

    Told operator()(const event::RequestFailed &unheard) const
    {
        if (unheard.request == Request::Connect) {
            return failed(requestFailureText(unheard.failure));
        }
        decision.m_isEndWanted = false;
        return {};
    }

    Told operator()(const event::DaemonTold &told) const
    {
        if (isSignal(told, DaemonSignal::newModemPlugged)) {
            return Notice{NoticeKind::NewModem, Say::tr("A new modem was found"),
                Say::tr("%1 can be set up.").arg(model.announcedModem)};
        }
        if (isSignal(told, DaemonSignal::establishingConnection)) {
            decision.m_isEndWanted = false;
        }
        if (decision.m_isEndWanted) {
            return {};
        }
        if (isSignal(told, DaemonSignal::synchronizationFailed)
            || isSignal(told, DaemonSignal::connectionTimeout)
            || isSignal(told, DaemonSignal::invalidAccountData)) {
            return failed(troubleText(model));
        }
        return ended();
    }

    Told operator()(const event::DaemonAnswered &) const
    {
        return decision.m_isEndWanted ? Told() : ended();
    }

    Told operator()(const event::LinkLost &loss) const
    {
        const bool isOurs = decision.m_isEndWanted
            || loss.reason == QLatin1String(KeeperReason::user)
            || loss.reason == QLatin1String(KeeperReason::sleep);
        return isOurs ? Told() : lost(keeperReasonFact(loss.reason).text);
    }

    Told operator()(const event::KeeperTold &told) const
    {
        // What was so before is no news.
        const bool isNews = decision.m_isLimitReached == false && told.state.isLimitReached;
        decision.m_isLimitReached = told.state.isLimitReached;
        return isNews ? Told({NoticeKind::LimitReached, Say::tr("The month's limit is reached"),
                   Say::tr("The connection stays; the history shows the traffic.")})
                      : Told();
    }

    // What comes and goes by itself, or is somebody's doing that sees it.
    Told operator()(const event::BusLost &) const { return forgotten(); }
    Told operator()(const event::DaemonAppeared &) const { return forgotten(); }
    Told operator()(const event::DaemonLeft &) const { return forgotten(); }
    Told operator()(const event::DaemonSilent &) const { return {}; }
    Told operator()(const event::KeeperLeft &) const { return {}; }
    Told operator()(const event::SessionsTold &) const { return {}; }
    Told operator()(const event::LinkSeen &) const { return {}; }
    Told operator()(const event::RequestTaken &) const { return {}; }
    Told operator()(const event::LineSeen &) const { return {}; }
    Told operator()(const event::SleepTold &) const { return {}; }
    Told operator()(const event::Ticked &) const { return {}; }

    /// What the model makes of an end that no signal gives a reason for.
    Told ended() const
    {
        const bool isDown = model.state == ConnectionDown;
        if (isDown && before == ConnectionConnecting && model.trouble == Trouble::NotUp) {
            return failed(troubleText(model));
        }
        // With a keeper that one tells of it, and why it was.
        if (isDown && before == ConnectionUp && model.trouble == Trouble::Lost && !model.keeper) {
            return lost(Say::tr("The check-up tells what is known about it."));
        }
        return {};
    }

    Told forgotten() const
    {
        decision.m_isEndWanted = false;
        return {};
    }
};

std::optional<Notice> NoticeDecision::take(
    const Event &event, const ConnectionModel &model, qint64 now, bool isSeen)
{
    if (const auto *sleep = std::get_if<event::SleepTold>(&event)) {
        m_isAsleep = sleep->isAsleep;
        m_calmUntil = now + calmAtWakeUpMs;
    }
    const std::optional<int> before = std::exchange(m_state, model.state);
    const std::optional<Notice> notice = std::visit(Taker{*this, model, before, now}, event);
    if (!notice || m_isAsleep || now < m_calmUntil) {
        return {};
    }
    const QString reason = notice->title + QLatin1Char('\n') + notice->text;
    const auto last = m_told.constFind(reason);
    // A clock that was set back must not silence it for longer.
    if (last != m_told.constEnd() && now >= *last && now - *last < repeatMs) {
        return {};
    }
    m_told.insert(reason, now);
    return isSeen ? std::nullopt : notice;
}

} // namespace desktop
