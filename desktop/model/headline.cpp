// SPDX-License-Identifier: MIT
#include "desktop/model/headline.h"

#include "client/say.h"
#include "dbus/contract.h"

#include <QDateTime>
#include <QLocale>

namespace desktop {

namespace {

QString timeText(qint64 seconds)
{
    return QLocale().toString(QDateTime::fromSecsSinceEpoch(seconds).time(), QLocale::ShortFormat);
}

QString joined(const QString &first, const QString &second)
{
    return first.isEmpty() || second.isEmpty() ? first + second : first + QLatin1Char(' ') + second;
}

/// What the keeper is about to do.
QString plan(const ConnectionModel &model, qint64 now)
{
    if (!model.keeper || !model.keeper->nextAttempt) {
        return {};
    }
    const qint64 seconds = *model.keeper->nextAttempt - now / 1000;
    if (seconds <= 0) {
        return Say::tr("The next try begins now.");
    }
    if (seconds < 3600) {
        return Say::tr("Next try in %1.").arg(durationText(seconds));
    }
    return Say::tr("Next try at %1.").arg(timeText(*model.keeper->nextAttempt));
}

/// Where a remedy of the keeper's reasons leads in this window.
Action pageFor(RemedyKind remedy)
{
    if (remedy == RemedyKind::SetAccount || remedy == RemedyKind::SetAccountAgain) {
        return Action::CheckAccount;
    }
    if (remedy == RemedyKind::SetLine || remedy == RemedyKind::CheckLine) {
        return Action::CheckLine;
    }
    return remedy == RemedyKind::None ? Action::None : Action::CheckUp;
}

struct Cause
{
    QString text; ///< empty for none
    Action remedy = Action::None;
};

Cause keepersCause(const QString &reason)
{
    const Fact fact = keeperReasonFact(reason);
    return {fact.text, pageFor(fact.remedy.kind)};
}

/// Why the last attempt or connection came to nothing, as well as anybody knows.
Cause causeOf(const ConnectionModel &model)
{
    const QString keepers = model.keeper ? model.keeper->reason : QString();
    switch (model.trouble) {
    case Trouble::None:
        // A person who has ended the connection is not told so.
        return model.keeper && model.keeper->isWanted ? keepersCause(keepers) : Cause();
    case Trouble::LineNotSynchronised:
        return {Say::tr("The line did not synchronise. Is the telephone cable plugged in?"),
            Action::CheckUp};
    case Trouble::ProviderSilent:
        return {Say::tr("The provider does not answer."), Action::CheckLine};
    case Trouble::AccountRefused:
        return {Say::tr("The provider refused login or password."), Action::CheckAccount};
    case Trouble::NotUp:
        return keepers.isEmpty() || keepers == QLatin1String(KeeperReason::unknown)
            ? Cause{Say::tr("The connection did not come up. The check-up tells why."),
                Action::CheckUp}
            : keepersCause(keepers);
    case Trouble::Lost:
        return model.lossReason.isEmpty() ? Cause{Say::tr("The connection was lost."), Action::None}
                                          : keepersCause(model.lossReason);
    case Trouble::ResolverWrong:
        return {Say::tr("Connected, but names are not resolved."), Action::CheckUp};
    }
    return {};
}

/// The cause with the time since which it holds, where that is known.
QString causeText(const ConnectionModel &model, const Cause &cause)
{
    return cause.text.isEmpty() || model.trouble == Trouble::None
        ? cause.text
        : Say::tr("%1: %2").arg(timeText(model.troubleAt / 1000), cause.text);
}

/// What is waited for, and how long already. At first nobody wonders.
QString waiting(const QString &what, const ConnectionModel &model, qint64 now)
{
    const qint64 seconds = (now - model.waitSince) / 1000;
    return seconds < 3 ? what : joined(what, Say::tr("%1 so far.").arg(durationText(seconds)));
}

Headline connecting(const ConnectionModel &model, qint64 now)
{
    const QString title = Say::tr("Connecting");
    if (model.requestFailure) {
        return {Standing::Connecting, title, requestFailureText(model.requestFailure),
            Action::Cancel, wayOutOf(model.requestFailure)};
    }
    switch (model.step) {
    case ConnectingStep::WaitingForLine:
        return {Standing::Connecting, title,
            waiting(Say::tr("Waiting for the line to synchronise."), model, now), Action::Cancel,
            Action::None};
    case ConnectingStep::Ending:
        return {Standing::Connecting, Say::tr("Ending"),
            waiting(Say::tr("The attempt ends as soon as it can; it may still wait for the line."),
                model, now),
            Action::None, Action::None};
    case ConnectingStep::None:
    case ConnectingStep::Started:
        break;
    }
    return {Standing::Connecting, title, waiting(Say::tr("The provider is called."), model, now),
        Action::Cancel, Action::None};
}

/// A loss of less than a day ago, when its time alone tells which it was.
QString lossText(const Loss &loss, qint64 now)
{
    return now / 1000 - loss.at < 86400
        ? Say::tr("The connection was lost at %1, back after %2.")
              .arg(timeText(loss.at), durationText(loss.awaySeconds))
        : QString();
}

Headline connected(const ConnectionModel &model, qint64 now)
{
    Headline headline{
        Standing::Connected, Say::tr("Connected"), QString(), Action::Disconnect, Action::None};
    if (const std::optional<qint64> seconds = model.connectedSeconds(now)) {
        headline.reason = Say::tr("For %1.").arg(durationText(*seconds));
    }
    Cause cause;
    if (model.requestFailure) {
        cause = {requestFailureText(model.requestFailure), wayOutOf(model.requestFailure)};
    } else if (model.trouble != Trouble::None) {
        cause = causeOf(model);
    } else if (model.keeper && model.keeper->reason == QLatin1String(KeeperReason::foreignLink)) {
        cause = keepersCause(model.keeper->reason);
    } else if (model.keeper && model.keeper->isLimitReached) {
        cause.text = Say::tr("The month's limit is reached.");
    }
    if (cause.text.isEmpty() && model.lastLoss) {
        headline.reason = joined(headline.reason, lossText(*model.lastLoss, now));
    }
    if (!cause.text.isEmpty()) {
        headline.standing = Standing::Attention;
        headline.reason = joined(headline.reason, cause.text);
        headline.secondary = cause.remedy;
    }
    return headline;
}

/// What the keeper waits for, where that is not only time.
QString waitText(const KeeperState &keeper)
{
    const bool isWaiting = keeper.phase.startsWith(QLatin1String("waiting-"))
        || keeper.phase == QLatin1String(KeeperPhase::asleep);
    return isWaiting ? Say::tr("Now: %1.").arg(keeperPhaseText(keeper.phase)) : QString();
}

Headline notConnected(const ConnectionModel &model, qint64 now)
{
    Headline headline{
        Standing::Offline, Say::tr("Not connected"), QString(), Action::Connect, Action::None};
    const bool isKept = model.keeper && model.keeper->isWanted && model.keeper->isKeeping;
    if (isKept) {
        headline.primary = Action::TryNow;
    }
    if (model.requestFailure) {
        headline.standing = Standing::Attention;
        headline.reason = requestFailureText(model.requestFailure);
        if (model.requestFailure.kind == FailureKind::NotPermitted) {
            headline.primary = Action::SetUp;
        } else if (model.requestFailure.kind == FailureKind::KeeperNoAnswer) {
            headline.secondary = headline.primary;
            headline.primary = Action::CheckUp; // where it is restarted
        }
        return headline;
    }
    if (model.isModemPlugged == false) {
        headline.reason = model.announcedModem.isEmpty()
            ? Say::tr("The modem is not plugged in, or not set up yet.")
            : Say::tr("A new modem was found: %1.").arg(model.announcedModem);
        headline.primary = Action::SetUp;
        headline.secondary = Action::CheckUp;
        return headline;
    }
    if (model.buildResult == false) {
        headline.standing = Standing::Attention;
        headline.reason = Say::tr("The modem's driver could not be built.");
        headline.secondary = headline.primary;
        headline.primary = Action::ShowBuild;
        return headline;
    }
    const Cause cause = causeOf(model);
    if (!cause.text.isEmpty() || isKept) {
        headline.standing = Standing::Attention;
        headline.reason = causeText(model, cause);
        if (isKept) {
            headline.reason
                = joined(joined(headline.reason, waitText(*model.keeper)), plan(model, now));
        }
        if (cause.remedy != Action::None) {
            headline.secondary = headline.primary;
            headline.primary = cause.remedy;
        }
    }
    return headline;
}

/// Nobody is there who could tell. What the daemon had started stays.
Headline withoutDaemon(const ConnectionModel &model, qint64 now)
{
    if (model.pending == Request::Connect) {
        return {Standing::Connecting, Say::tr("Connecting"),
            waiting(Say::tr("The daemon is started."), model, now), Action::None, Action::None};
    }
    const bool isUp = model.isLinkLeft
        || (model.keeper && model.keeper->phase == QLatin1String(KeeperPhase::connected));
    if (isUp) {
        return {Standing::DaemonAway, Say::tr("Daemon away"),
            joined(requestFailureText(model.requestFailure),
                Say::tr(
                    "The connection stays; until the daemon runs again nothing is known of it.")),
            Action::CheckUp, Action::None};
    }
    const QString failure = requestFailureText(model.requestFailure);
    return {Standing::DaemonAway, Say::tr("Not connected"),
        failure.isEmpty() ? Say::tr("The daemon is not running; “Connect” starts it.") : failure,
        Action::Connect, Action::CheckUp};
}

} // namespace

QString troubleText(const ConnectionModel &model)
{
    return causeOf(model).text;
}

QString durationText(qint64 seconds)
{
    const auto minutes = int(seconds / 60 % 60);
    const auto hours = int(seconds / 3600 % 24);
    const auto days = int(seconds / 86400);
    if (days > 0) {
        return Say::tr("%1 d %2 h").arg(days).arg(hours);
    }
    if (hours > 0) {
        return Say::tr("%1 h %2 min").arg(hours).arg(minutes);
    }
    if (minutes > 0) {
        return Say::tr("%1 min").arg(minutes);
    }
    return Say::tr("%1 s").arg(seconds);
}

QString requestFailureText(const Failure &failure)
{
    switch (failure.kind) {
    case FailureKind::None:
        return {};
    case FailureKind::NoBus:
        return Say::tr("The system bus can not be reached.");
    case FailureKind::NoDaemon:
        return Say::tr("The daemon is not running.");
    case FailureKind::NotStarted:
        return Say::tr("The daemon could not be started.");
    case FailureKind::NotPermitted:
        return Say::tr("You are not allowed to use the modem yet.");
    case FailureKind::NoAnswer:
        return Say::tr("The daemon does not answer.");
    case FailureKind::KeeperMissing:
        return Say::tr("The keeper is not installed.");
    case FailureKind::KeeperStopped:
        return Say::tr("The keeper is not running.");
    case FailureKind::KeeperNoAnswer:
        return Say::tr("The keeper does not answer.");
    case FailureKind::KeeperNotUnderstood:
        return Say::tr("The keeper's answer is not understood: it may be of another version.");
    case FailureKind::DaemonRefused:
    case FailureKind::DaemonNotStored:
    case FailureKind::DaemonError:
    case FailureKind::KeeperRefused:
    case FailureKind::KeeperError:
    case FailureKind::ValueRefused:
        return failure.detail;
    case FailureKind::FileForbidden:
    case FailureKind::FileUnreadable:
    case FailureKind::FileUnwritable:
    case FailureKind::ModeUnchangeable:
    case FailureKind::SettingsInvalid:
        return Say::tr("The file %1 can not be used.").arg(failure.detail);
    }
    return {};
}

Failure absenceOf(DaemonPresence presence)
{
    switch (presence) {
    case DaemonPresence::NoBus:
        return {FailureKind::NoBus, {}};
    case DaemonPresence::Away:
        return {FailureKind::NoDaemon, {}};
    case DaemonPresence::Silent:
        return {FailureKind::NoAnswer, {}};
    case DaemonPresence::Unknown:
    case DaemonPresence::There:
        break;
    }
    return {};
}

Action wayOutOf(const Failure &failure)
{
    return failure.kind == FailureKind::NotPermitted ? Action::SetUp : Action::CheckUp;
}

Headline headlineOf(const ConnectionModel &model, qint64 now)
{
    switch (model.daemon) {
    case DaemonPresence::Unknown:
        return {Standing::Connecting, Say::tr("Looking…"), QString(), Action::None, Action::None};
    case DaemonPresence::NoBus:
        return {Standing::DaemonAway, Say::tr("No system bus"),
            Say::tr("Nothing on this system can be asked about the modem."), Action::None,
            Action::None};
    case DaemonPresence::Away:
        return withoutDaemon(model, now);
    case DaemonPresence::Silent:
        return {Standing::DaemonAway, Say::tr("No answer"),
            waiting(Say::tr("The daemon is running but does not answer."), model, now),
            Action::RestartDaemon, Action::CheckUp};
    case DaemonPresence::There:
        break;
    }
    if (model.isRestarting) {
        return {Standing::Connecting, Say::tr("Modem restarts"),
            waiting(Say::tr("The driver is loaded anew; this takes up to a minute."), model, now),
            Action::None, Action::None};
    }
    if (model.state == ConnectionUp) {
        return connected(model, now);
    }
    if (model.state == ConnectionConnecting) {
        return connecting(model, now);
    }
    if (model.pending == Request::Connect) {
        return {Standing::Connecting, Say::tr("Connecting"),
            waiting(Say::tr("The connection was asked for."), model, now), Action::None,
            Action::None};
    }
    if (model.isBuilding) {
        return {Standing::Connecting, Say::tr("Driver is built"),
            waiting(
                Say::tr("It is built for this kernel; this may take some minutes."), model, now),
            Action::ShowBuild, Action::None};
    }
    return notConnected(model, now);
}

QString actionText(Action action)
{
    switch (action) {
    case Action::None:
        return {};
    case Action::Connect:
        return Say::tr("Connect");
    case Action::Disconnect:
        return Say::tr("Disconnect");
    case Action::Cancel:
        return Say::tr("Cancel");
    case Action::TryNow:
        return Say::tr("Try now");
    case Action::SetUp:
        return Say::tr("Set up…");
    case Action::CheckAccount:
        return Say::tr("Check account…");
    case Action::CheckLine:
        return Say::tr("Check line…");
    case Action::CheckUp:
        return Say::tr("Check-up…");
    case Action::ShowBuild:
        return Say::tr("Show…");
    case Action::RestartDaemon:
        return Say::tr("Restart the daemon…");
    }
    return {};
}

} // namespace desktop
