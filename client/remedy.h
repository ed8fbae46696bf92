// SPDX-License-Identifier: MIT
// What a person can do about something, as a value: each client shows it in its own way, as a
// command, a button or a code.
#pragma once

#include <QString>

enum class RemedyKind
{
    None, ///< nothing needs to be done
    StartBus,
    StartDaemon,
    RestartDaemon, ///< after a look at its log
    StartCompanion,
    InstallPolicy,
    CreateGroup,
    JoinGroup,
    LogInAgain,
    LookAsRoot, ///< what this user may not see
    InstallKernel,
    InstallHeaders, ///< and restart the daemon, which builds the driver; detail: the kernel's
                    ///< release
    InstallHeadersAndPacker, ///< the same; detail: the release, a blank, and the package with which
                             ///< this kernel's modules are compressed
    InstallDriver, ///< with a full kernel or from a source
    WaitForDriver,
    PlugModem,
    ReplugModem,
    ReplugAndAdoptModem,
    InstallFirmwarePackage, ///< detail: the package
    CopyFirmware, ///< detail: the file below /lib/firmware
    WaitForLine, ///< then look at the cable and restart the driver
    SetLine,
    CheckLine, ///< the values are set; they may be wrong
    CheckLineAndBridge,
    CheckModem,
    InstallPppd,
    LoadPppModule,
    InstallBridge, ///< detail: the path where it is expected
    CreatePeer, ///< by hand
    PlacePeer, ///< none is there: the shipped one
    ReplacePeer, ///< the shipped one, or by hand where somebody has edited it
    InstallPeers, ///< the shipped ones are missing, too
    CorrectOptions, ///< of the peer file or of the settings
    AddNoauth,
    MendSecrets,
    SetAccount,
    SetAccountAgain,
    WaitForResolver, ///< the daemon writes it
    EndOtherConnection,
    ChooseRoute, ///< detail: the interface that has the default route, a blank, and the link's
    EndOtherRoute, ///< the same where ours can not be preferred; detail: the other's interface
    SetRoute, ///< detail: the link's interface
    ChooseServers, ///< whichever connection comes up last writes them
    InstallNeighbourFile, ///< what the daemon's package ships for others; detail: the path
    RemoveOverride, ///< a file of the administrator's that hides ours; detail: its path
    ReloadNetworkManager,
    ReloadNetworkd,
    InstallResolvconfHook,
    InstallKeeper,
    StartKeeper,
    RestartKeeper,
    InstallKeeperPolicy,
    AdmitKeeper, ///< to the daemon's group
    Connect,
    ConnectLater, ///< when the line is back
};

struct Remedy
{
    RemedyKind kind = RemedyKind::None;
    QString detail;
};

/// A sentence in the user's language; with a remedy where it has one of its own.
struct Fact
{
    QString text;
    Remedy remedy;
};
