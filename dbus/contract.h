// SPDX-License-Identifier: MIT
// What both sides of the bus agree on: names and states. The members of the interfaces come from
// their descriptions, as DaemonMethod::getIP, DaemonSignal::IP, SetupMethod::SetAccount and so on.
#pragma once

#include "dbus/members.h" // made from the *.xml files here

/// What getConnectionState() answers and connectionState() carries; plain integers on the bus.
enum ConnectionState : int
{
    ConnectionUp = 0,
    ConnectionConnecting = 1,
    ConnectionDown = 2,
};

/// Names that never change: clients depend on them.
namespace Bus {

inline constexpr char service[] = "com.norvix.Daemon";

inline constexpr char daemonPath[] = "/com/norvix/Daemon";
inline constexpr char daemonInterface[] = "com.norvix.Daemon";

/// The object beside it through which clients set things up.
inline constexpr char setupPath[] = "/com/norvix/Setup";
inline constexpr char setupInterface[] = "com.norvix.Setup1";
/// Nothing was changed; the text says what is expected.
inline constexpr char setupRefused[] = "com.norvix.Setup1.Error.InvalidValue";
/// The text says why.
inline constexpr char setupNotStored[] = "com.norvix.Setup1.Error.NotStored";

/// What getVPI(), getVCI(), getProtocol() and getService() answer when nothing is set.
inline constexpr char unset[] = "error";
/// What getIP() and getDefaultRoute() answer when there is none.
inline constexpr char none[] = "...";

} // namespace Bus
