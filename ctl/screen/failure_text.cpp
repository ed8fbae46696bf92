// SPDX-License-Identifier: MIT
#include "ctl/screen/failure_text.h"

#include "client/say.h"

namespace {

QString withoutFullStop(QString text)
{
    if (text.endsWith(QLatin1Char('.'))) {
        text.chop(1);
    }
    return text;
}

} // namespace

ExitCode exitCodeOf(const Failure &failure)
{
    switch (failure.kind) {
    case FailureKind::None:
        return Ok;
    case FailureKind::NoBus:
    case FailureKind::NoDaemon:
    case FailureKind::NotStarted:
    case FailureKind::KeeperMissing:
    case FailureKind::KeeperStopped:
        return NoDaemon;
    case FailureKind::NotPermitted:
    case FailureKind::FileForbidden:
        return NotPermitted;
    case FailureKind::DaemonRefused:
    case FailureKind::ValueRefused:
    case FailureKind::KeeperRefused:
        return ValueRefused;
    case FailureKind::NoAnswer:
    case FailureKind::DaemonNotStored:
    case FailureKind::DaemonError:
    case FailureKind::KeeperNoAnswer:
    case FailureKind::KeeperNotUnderstood:
    case FailureKind::KeeperError:
    case FailureKind::FileUnreadable:
    case FailureKind::FileUnwritable:
    case FailureKind::ModeUnchangeable:
    case FailureKind::SettingsInvalid:
        break;
    }
    return Failed;
}

QString failureText(const Failure &failure)
{
    switch (failure.kind) {
    case FailureKind::None:
        break;
    case FailureKind::NoBus:
        return Say::tr("The system bus can not be reached: is dbus-daemon running?");
    case FailureKind::NoDaemon:
        return Say::tr("The daemon is not running. Start it with “sudo systemctl start "
                       "norvix-daemon”.");
    case FailureKind::NotStarted:
        return Say::tr("The system bus could not start the daemon: %1").arg(failure.detail);
    case FailureKind::NotPermitted:
        return Say::tr("The system bus does not let you do this. Members of the group "
                       "“norvix” and root may: “sudo usermod -a -G norvix $USER”, then log "
                       "in again.");
    case FailureKind::NoAnswer:
        return Say::tr("The daemon does not answer. It may be waiting for another program; "
                       "see “norvixctl log”.");
    case FailureKind::DaemonRefused:
        return Say::tr("The daemon refuses this: %1.").arg(failure.detail);
    case FailureKind::DaemonNotStored:
        return Say::tr("The daemon could not store it: %1.").arg(failure.detail);
    case FailureKind::DaemonError:
        return Say::tr("The daemon answered with an error: %1").arg(failure.detail);
    case FailureKind::KeeperMissing:
        return Say::tr("The keeper is not installed: “sudo apt install norvix-keeper”.");
    case FailureKind::KeeperStopped:
        return Say::tr("The keeper is not running. Start it with “sudo systemctl start "
                       "norvix-keeper”.");
    case FailureKind::KeeperNoAnswer:
        return Say::tr("The keeper does not answer. Restart it with “sudo systemctl restart "
                       "norvix-keeper”.");
    case FailureKind::KeeperRefused:
        return Say::tr("The keeper refuses this: %1.").arg(withoutFullStop(failure.detail));
    case FailureKind::KeeperNotUnderstood:
        return Say::tr("The keeper's answer is not understood: it may be of another version.");
    case FailureKind::KeeperError:
        return Say::tr("The keeper answered with an error: %1").arg(failure.detail);
    case FailureKind::ValueRefused:
        return failure.detail;
    case FailureKind::FileForbidden:
        return Say::tr("%1 can not be written by you. Repeat the command with “sudo”.")
            .arg(failure.detail);
    case FailureKind::FileUnreadable:
        return Say::tr("%1 can not be read.").arg(failure.detail);
    case FailureKind::FileUnwritable:
        return Say::tr("%1 can not be written.").arg(failure.detail);
    case FailureKind::ModeUnchangeable:
        return Say::tr("The mode of %1 can not be changed.").arg(failure.detail);
    case FailureKind::SettingsInvalid:
        return Say::tr("%1 is not a valid settings file.").arg(failure.detail);
    }
    return QString();
}
