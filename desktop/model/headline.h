// SPDX-License-Identifier: MIT
// The one sentence above everything: how it stands, why, and what most people want to do now.
#pragma once

#include "desktop/model/connection_model.h"

#include <QString>

namespace desktop {

/// Told by shape and words, never by colour alone.
enum class Standing
{
    Offline, ///< a dash
    Connecting, ///< an arc
    Connected, ///< a tick
    Attention, ///< an exclamation mark
    DaemonAway, ///< a question mark
};

/// What a button does.
enum class Action
{
    None,
    Connect,
    Disconnect,
    Cancel, ///< an attempt
    TryNow,
    SetUp, ///< opens the assistant
    CheckAccount, ///< opens the page
    CheckLine,
    CheckUp,
    ShowBuild, ///< opens the page with the driver's build
    RestartDaemon, ///< with an administrator's password
};

struct Headline
{
    Standing standing = Standing::Offline;
    QString title; ///< two words
    QString reason; ///< one line: since when, or why not and what happens next
    Action primary = Action::None;
    Action secondary = Action::None;
};

/// @p now is milliseconds since 1970.
Headline headlineOf(const ConnectionModel &model, qint64 now);

/// A duration as people say it: "2 h 14 min".
QString durationText(qint64 seconds);

/// What is the matter, in the user's language; empty for nothing.
QString troubleText(const ConnectionModel &model);

/// Why a request has come to nothing, in the user's language; empty for none.
QString requestFailureText(const Failure &failure);

/// What every request fails with while the daemon is so; nothing where it is there.
Failure absenceOf(DaemonPresence presence);

/// Where a person goes on whom that failure has stopped.
Action wayOutOf(const Failure &failure);

/// What stands on a button.
QString actionText(Action action);

} // namespace desktop
