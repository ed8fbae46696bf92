// SPDX-License-Identifier: MIT
// What pppd and the other programs of a connection are started with.
#pragma once

#include <QString>
#include <QStringList>

/// The user's arguments for pppd as the settings' list @p stored means them, empty ones too. A
/// single empty one is what the settings give for a key without a value: no argument.
QStringList extraArgumentsFrom(const QStringList &stored);

/// The arguments that make pppd read the peer file @p peer and name its pid file after the daemon.
/// The user's follow, from the settings' list @p stored.
QStringList pppdArguments(const QString &peer, const QStringList &stored);

/// @p environment with the daemon's own library and program folders at the end of its search paths.
/// Where it has no such path, the bare folder is added as an entry without a name, which no child
/// ever sees: whoever started the daemon without a library path gets pppd, its plugins and the
/// users' scripts without one, too.
QStringList childEnvironment(const QStringList &environment, bool is32bit);
