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
    if (seconds < 60) {
        return Say::tr("Next try in %n second(s).", nullptr, int(seconds));
    }
    if (seconds < 3600) {
        return Say::tr("Next try in %n minute(s).", nullptr, int((seconds + 59) / 60));
    }
    return Say::tr("Next try at %1.").arg(timeText(*model.keeper->nextAttempt));
}

Action remedyOf(Trouble trouble)
{
    switch (trouble) {
    case Trouble::AccountRefused:
        return Action::CheckAccount;
    case Trouble::ProviderSilent:
        return Action::CheckLine;
    case Trouble::LineNotSynchronised:
    case Trouble::NotUp:
    case Trouble::ResolverWrong:
        return Action::CheckUp;
    case Trouble::None:
    case Trouble::Lost:
        break;
    }
    return Action::None;
}

Headline connecting(const ConnectionModel &model)
{
    QString reason = Say::tr("The provider is called.");
    if (model.step == ConnectingStep::WaitingForLine) {
        reason = Say::tr("Waiting for the line to synchronise.");
    }
    return {Standing::Connecting, Say::tr("Connecting"), reason, Action::Cancel, Action::None};
}

Headline connected(const ConnectionModel &model)
{
    Headline headline{
        Standing::Connected, Say::tr("Connected"), QString(), Action::Disconnect, Action::None};
    if (model.connectedSeconds) {
        headline.reason = Say::tr("For %1.").arg(durationText(*model.connectedSeconds));
    }
    if (model.trouble != Trouble::None) {
        headline.standing = Standing::Attention;
        headline.reason = joined(headline.reason, troubleText(model));
        headline.secondary = remedyOf(model.trouble);
    }
    return headline;
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
        }
        return headline;
    }
    if (model.trouble != Trouble::None) {
        headline.standing = Standing::Attention;
        headline.reason = joined(troubleText(model), plan(model, now));
        const Action remedy = remedyOf(model.trouble);
        if (remedy != Action::None) {
            headline.secondary = headline.primary;
            headline.primary = remedy;
        }
        return headline;
    }
    if (isKept) {
        headline.standing = Standing::Attention;
        headline.reason = joined(keeperPhaseText(model.keeper->phase), plan(model, now));
        return headline;
    }
    if (model.isModemPlugged == false) {
        headline.reason = model.announcedModem.isEmpty()
            ? Say::tr("No modem is plugged in.")
            : Say::tr("A new modem was found: %1.").arg(model.announcedModem);
        headline.primary = Action::SetUp;
    }
    return headline;
}

} // namespace

QString troubleText(const ConnectionModel &model)
{
    switch (model.trouble) {
    case Trouble::None:
        return {};
    case Trouble::LineNotSynchronised:
        return Say::tr("The line did not synchronise. Is the telephone cable plugged in?");
    case Trouble::ProviderSilent:
        return Say::tr("The provider does not answer.");
    case Trouble::AccountRefused:
        return Say::tr("The provider refused login or password.");
    case Trouble::NotUp:
        return Say::tr("The connection did not come up. The check-up tells why.");
    case Trouble::Lost:
        return keeperReasonFact(model.lossReason).text;
    case Trouble::ResolverWrong:
        return Say::tr("Connected, but names are not resolved.");
    }
    return {};
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
    case FailureKind::DaemonRefused:
    case FailureKind::DaemonNotStored:
    case FailureKind::DaemonError:
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
        if (model.pending == Request::Connect) {
            return {Standing::Connecting, Say::tr("Connecting"), Say::tr("The daemon is started."),
                Action::None, Action::None};
        }
        return {Standing::DaemonAway, Say::tr("Not connected"),
            joined(requestFailureText(model.requestFailure),
                Say::tr("The daemon is not running; “Connect” starts it.")),
            Action::Connect, Action::CheckUp};
    case DaemonPresence::Silent:
        return {Standing::DaemonAway, Say::tr("No answer"),
            Say::tr("The daemon is running but does not answer."), Action::RestartDaemon,
            Action::CheckUp};
    case DaemonPresence::There:
        break;
    }
    if (model.isRestarting) {
        return {Standing::Connecting, Say::tr("Modem restarts"),
            Say::tr("The driver is loaded anew; this takes up to a minute."), Action::None,
            Action::None};
    }
    if (model.state == ConnectionUp) {
        return connected(model);
    }
    if (model.state == ConnectionConnecting) {
        return connecting(model);
    }
    if (model.isBuilding) {
        return {Standing::Connecting, Say::tr("Driver is built"),
            Say::tr("It is built for this kernel; this may take some minutes."), Action::ShowBuild,
            Action::None};
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
