// SPDX-License-Identifier: MIT
#include "ctl/screen/failure_text.h"

#include "client/say.h"

ExitCode exitCodeOf(const Failure &failure)
{
    switch (failure.kind) {
    case FailureKind::None:
        return Ok;
    case FailureKind::NoBus:
    case FailureKind::NoDaemon:
    case FailureKind::NotStarted:
        return NoDaemon;
    case FailureKind::NotPermitted:
    case FailureKind::FileForbidden:
        return NotPermitted;
    case FailureKind::DaemonRefused:
    case FailureKind::ValueRefused:
        return ValueRefused;
    case FailureKind::NoAnswer:
    case FailureKind::DaemonNotStored:
    case FailureKind::DaemonError:
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
