// SPDX-License-Identifier: MIT
// What both sides of the bus agree on: names and states. The members of the interfaces come from
// their descriptions, as DaemonMethod::getIP, DaemonSignal::IP, SetupMethod::SetAccount,
// KeeperProperty::State and so on.
#pragma once

#include "dbus/members.h" // made from the *.xml files here

#include <array>

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

/// The keeper, which tries again after a loss.
inline constexpr char keeperService[] = "com.norvix.Keeper";
inline constexpr char keeperPath[] = "/com/norvix/Keeper";
inline constexpr char keeperInterface[] = "com.norvix.Keeper1";
/// Nothing was changed; the text says what is expected.
inline constexpr char keeperRefused[] = "com.norvix.Keeper1.Error.InvalidValue";

} // namespace Bus

/// What the keeper is about, as its property State says it.
namespace KeeperPhase {

inline constexpr char connected[] = "connected";
inline constexpr char idle[] = "idle";
inline constexpr char off[] = "off";
inline constexpr char connecting[] = "connecting";
inline constexpr char waiting[] = "waiting";
inline constexpr char waitingForLine[] = "waiting-for-line";
inline constexpr char waitingForModem[] = "waiting-for-modem";
inline constexpr char waitingForDriver[] = "waiting-for-driver";
inline constexpr char waitingForRestart[] = "waiting-for-restart";
inline constexpr char waitingForDaemon[] = "waiting-for-daemon";
inline constexpr char waitingForSettings[] = "waiting-for-settings";
inline constexpr char asleep[] = "asleep";

inline constexpr std::array<const char *, 12> all
    = {connected, idle, off, connecting, waiting, waitingForLine, waitingForModem, waitingForDriver,
        waitingForRestart, waitingForDaemon, waitingForSettings, asleep};

} // namespace KeeperPhase

/// Why a link was lost, an attempt failed or there is none, as the keeper says it.
namespace KeeperReason {

inline constexpr char hungUp[] = "hung-up";
inline constexpr char silent[] = "silent";
inline constexpr char lineLost[] = "line-lost";
inline constexpr char bridgeGone[] = "bridge-gone";
inline constexpr char unplugged[] = "unplugged";
inline constexpr char modemRestart[] = "modem-restart";
inline constexpr char user[] = "user";
inline constexpr char sleep[] = "sleep";
inline constexpr char noConcentrator[] = "no-concentrator";
inline constexpr char noNegotiation[] = "no-negotiation";
inline constexpr char peerTerminated[] = "peer-terminated";
inline constexpr char accountRefused[] = "account-refused";
inline constexpr char lineNotSynchronised[] = "line-not-synchronised";
inline constexpr char bridgeMissing[] = "bridge-missing";
inline constexpr char deviceMissing[] = "device-missing";
inline constexpr char peerFileMissing[] = "peer-file-missing";
inline constexpr char badOption[] = "bad-option";
inline constexpr char passwordMissing[] = "password-missing";
inline constexpr char peerMustAuthenticate[] = "peer-must-authenticate";
inline constexpr char circuitMissing[] = "circuit-missing";
inline constexpr char requestDropped[] = "request-dropped";
inline constexpr char requestRefused[] = "request-refused";
inline constexpr char foreignLink[] = "foreign-link";
inline constexpr char unknown[] = "unknown";

inline constexpr std::array<const char *, 24> all
    = {hungUp, silent, lineLost, bridgeGone, unplugged, modemRestart, user, sleep, noConcentrator,
        noNegotiation, peerTerminated, accountRefused, lineNotSynchronised, bridgeMissing,
        deviceMissing, peerFileMissing, badOption, passwordMissing, peerMustAuthenticate,
        circuitMissing, requestDropped, requestRefused, foreignLink, unknown};

} // namespace KeeperReason

/// How the keeper's history is, as its property History says it.
namespace KeeperHistory {

inline constexpr char ok[] = "ok";
inline constexpr char setAside[] = "set-aside"; ///< it was damaged; a new one was begun
inline constexpr char newer[] = "newer"; ///< of a newer version: nothing is written
inline constexpr char unwritable[] = "unwritable";

inline constexpr std::array<const char *, 4> all = {ok, setAside, newer, unwritable};

} // namespace KeeperHistory
