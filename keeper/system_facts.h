// SPDX-License-Identifier: MIT
// What the keeper reads from the system, each in one place.
#pragma once

#include "keeper/history/traffic.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace keeper {

/// The kernel's identifier of this boot; empty when it tells none.
QString bootId();

/// The interface that pppd's link file names, while that pppd lives; empty without one. After a
/// kill the file stays, and somebody else's link may have the name by then.
QString ownInterfaceName();

/// The second line of a link's pid file, and the first.
struct LinkFile
{
    int pid = 0;
    QString interface;
};
std::optional<LinkFile> linkFileFrom(const QByteArray &text);

/// An interface's counters; nothing when it is not there.
std::optional<Traffic> interfaceCounters(const QString &name);

/// What has come in over the first ATM device, in cells; nothing without one.
std::optional<quint64> atmCellsReceived();

/// HAL's identifier of the configured modem, as the daemon's settings have it; empty without one.
QByteArray modemIdentifier();

/// Whether a modem that is ready for the line is seen: an ATM device on USB, or the interface of a
/// driver that makes one itself.
bool isModemSeen();

/// Changes when somebody changes what a connection is made with: settings, peer files, accounts.
QByteArray settingsStamp();

} // namespace keeper
