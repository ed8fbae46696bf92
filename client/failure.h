// SPDX-License-Identifier: MIT
// Why something could not be done: the one value for it in the library.
#pragma once

#include <QString>

enum class FailureKind
{
    None,
    NoBus, ///< the system bus can not be reached
    NoDaemon, ///< it is not running
    NotStarted, ///< the bus could not start the daemon; detail: the bus' words
    NotPermitted, ///< the bus refuses this user
    NoAnswer, ///< the daemon did not answer in time
    DaemonRefused, ///< the daemon refuses a value; detail: what it expects
    DaemonNotStored, ///< the daemon could not store a value; detail: why
    DaemonError, ///< detail: the words of any other error
    KeeperMissing, ///< it is not installed
    KeeperStopped, ///< it is installed, and not running
    KeeperNoAnswer, ///< the keeper did not answer in time
    KeeperRefused, ///< the keeper refuses a value; detail: what it expects
    KeeperNotUnderstood, ///< what has answered is no keeper, or one that is too old or too new
    KeeperError, ///< detail: the words of any other error
    ValueRefused, ///< the value must not be stored; detail: why, in the user's language
    FileForbidden, ///< this user may not write it; detail: its path, as in all that follow
    FileUnreadable,
    FileUnwritable,
    ModeUnchangeable,
    SettingsInvalid, ///< the settings file is none
};

/// True as a condition when there is one. Each client tells it in its own words.
struct Failure
{
    FailureKind kind = FailureKind::None;
    QString detail;

    explicit operator bool() const { return kind != FailureKind::None; }
};
