// SPDX-License-Identifier: MIT
#include "desktop/assistant/connect_progress.h"

#include "client/say.h"
#include "dbus/contract.h"

#include <algorithm>

namespace desktop {

namespace {

Deed toStep(AssistantStep step, const QString &button)
{
    Deed deed;
    deed.kind = DeedKind::OpenAssistant;
    deed.step = step;
    deed.button = button;
    return deed;
}

Deed toCheckUp()
{
    Deed deed;
    deed.kind = DeedKind::OpenPage;
    deed.page = Action::CheckUp;
    deed.button = actionText(Action::CheckUp);
    return deed;
}

/// What went wrong, where, and what helps; nothing when nothing did.
struct Setback
{
    ConnectStage stage;
    Deed deed;
};

std::optional<Setback> setbackOfRequest(const Failure &failure)
{
    switch (failure.kind) {
    case FailureKind::None:
        return std::nullopt;
    case FailureKind::NotPermitted:
        return Setback{
            ConnectStage::Daemon, toStep(AssistantStep::Permission, Say::tr("Back to “May I?”"))};
    case FailureKind::NoAnswer:
        return Setback{ConnectStage::Daemon, deedOf({RemedyKind::RestartDaemon, {}})};
    case FailureKind::KeeperNoAnswer: // the daemon is there, and was not asked yet
        return Setback{ConnectStage::Line, deedOf({RemedyKind::RestartKeeper, {}})};
    case FailureKind::NoDaemon:
    case FailureKind::NotStarted:
        return Setback{ConnectStage::Daemon, deedOf({RemedyKind::StartDaemon, {}})};
    default:
        return Setback{ConnectStage::Daemon, toCheckUp()};
    }
}

std::optional<Setback> setbackOf(const ConnectionModel &model)
{
    if (model.daemon == DaemonPresence::Silent) {
        return Setback{ConnectStage::Daemon, deedOf({RemedyKind::RestartDaemon, {}})};
    }
    if (model.daemon == DaemonPresence::NoBus) {
        return Setback{ConnectStage::Daemon, deedOf({RemedyKind::StartBus, {}})};
    }
    if (model.requestFailure) {
        return setbackOfRequest(model.requestFailure);
    }
    if (model.daemon != DaemonPresence::There) {
        return std::nullopt;
    }
    if (model.trouble != Trouble::None && model.isModemPlugged == false) {
        return Setback{
            ConnectStage::Line, toStep(AssistantStep::Modem, Say::tr("Back to the modem"))};
    }
    switch (model.trouble) {
    case Trouble::LineNotSynchronised:
        return Setback{ConnectStage::Line, deedOf({RemedyKind::WaitForLine, {}})};
    case Trouble::ProviderSilent:
        return Setback{ConnectStage::Provider,
            toStep(AssistantStep::Provider, Say::tr("Back to the provider"))};
    case Trouble::AccountRefused:
        return Setback{
            ConnectStage::Provider, toStep(AssistantStep::Account, Say::tr("Back to the account"))};
    case Trouble::NotUp:
    case Trouble::Lost:
        return Setback{ConnectStage::Provider, toCheckUp()};
    case Trouble::None:
    case Trouble::ResolverWrong:
        break;
    }
    return std::nullopt;
}

/// The stage that is under way: all before it are done.
ConnectStage stageUnderWay(const ConnectionModel &model, std::optional<bool> carrier)
{
    if (model.daemon != DaemonPresence::There) {
        return ConnectStage::Daemon;
    }
    const bool isLineAwaited = model.step == ConnectingStep::WaitingForLine || carrier == false;
    return isLineAwaited ? ConnectStage::Line : ConnectStage::Provider;
}

void tickOff(ConnectProgress &progress, ConnectStage current, Progress how)
{
    for (int stage = 0; stage < stageCount; ++stage) {
        progress.stages.at(size_t(stage)) = stage < int(current) ? Progress::Done
            : stage == int(current)                              ? how
                                                                 : Progress::Waiting;
    }
}

} // namespace

ConnectProgress connectProgressOf(
    const ConnectionModel &model, std::optional<bool> carrier, qint64 now)
{
    ConnectProgress progress;
    if (model.daemon == DaemonPresence::There && model.state == ConnectionUp) {
        progress.isConnected = true;
        progress.stages.fill(Progress::Done);
        if (model.address.isEmpty() || model.address == QLatin1String(Bus::none)) {
            progress.stages.back() = Progress::Running;
        }
        return progress;
    }
    const bool isConnecting = model.state == ConnectionConnecting
        || (model.pending == Request::Connect && !model.requestFailure);
    if (isConnecting && model.daemon != DaemonPresence::Silent) {
        progress.isRunning = true;
        tickOff(progress, stageUnderWay(model, carrier), Progress::Running);
        return progress;
    }
    if (const std::optional<Setback> setback = setbackOf(model)) {
        tickOff(progress, setback->stage, Progress::Failed);
        progress.cause = headlineOf(model, now).reason;
        progress.deed = setback->deed;
        return progress;
    }
    if (model.daemon == DaemonPresence::There) {
        progress.stages.front() = Progress::Done;
    }
    return progress;
}

QString stageTitle(ConnectStage stage)
{
    switch (stage) {
    case ConnectStage::Daemon:
        return Say::tr("The modem's service, the daemon, is there");
    case ConnectStage::Line:
        return Say::tr("The line is synchronised");
    case ConnectStage::Provider:
        return Say::tr("The provider lets you in");
    case ConnectStage::Address:
        break;
    }
    return Say::tr("There is an address");
}

QString progressText(Progress progress)
{
    switch (progress) {
    case Progress::Waiting:
        return Say::tr("not yet");
    case Progress::Running:
        return Say::tr("under way");
    case Progress::Done:
        return Say::tr("done");
    case Progress::Failed:
        break;
    }
    return Say::tr("failed");
}

} // namespace desktop
