// SPDX-License-Identifier: MIT
// Everything the check-up looks at, gathered before anything is judged.
#pragma once

#include "client/keeper_bus.h"
#include "client/link_facts.h"
#include "client/neighbours.h"
#include "client/ppp_files.h"
#include "client/routes.h"

#include <QByteArray>
#include <QString>
#include <optional>

class DaemonBus;

/// A file as this user sees it.
struct SeenFile
{
    QString path;
    bool exists = false; ///< it may be there: true also when this user may not look for it
    unsigned mode = 0; ///< permission bits; 0 when this user may not look
    unsigned owner = 0; ///< user id; 0 when this user may not look
    std::optional<QByteArray> content; ///< nothing when this user may not read it
};

/// Where a kernel module stands.
enum class Module
{
    Loaded,
    Available, ///< or built into the kernel
    Missing,
    Unknown, ///< the list of modules can not be read
};

/// The same in the user's language.
QString moduleText(Module module);

struct Facts // NOLINT(clang-analyzer-optin.performance.Padding): in the order of the checks
{
    bool isBusThere = false;
    bool isDaemonRunning = false;
    bool doesDaemonAnswer = false;
    Answer isHalAnswering = Answer::Unknown;
    Answer isUserAllowed = Answer::Unknown;
    bool hasGroup = false; ///< the group "norvix" exists
    bool isMember = false; ///< this user is in it, by the group file
    bool isSuperuser = false;
    bool hasPolicy = false;

    QList<UsbModem> modems;
    Answer doesDaemonSeeModem = Answer::Unknown;
    bool areSettingsReadable = false;
    UsbId configured = {0, 0};
    QString configuredName;

    QString kernel; ///< release
    QString driver; ///< of the configured or plugged modem; empty when there is none
    Module driverModule = Module::Unknown;
    Module atmModule = Module::Unknown;
    Module usbatmModule = Module::Unknown;
    bool hasDriverSource = false;
    QString lackingPacker; ///< the package without which a built driver cannot be installed
    bool isCompiling = false;
    QString firmware; ///< the file that the modem needs; empty for none
    bool hasFirmware = false;
    QString firmwarePackage; ///< the distribution's package that has it; empty for none
    std::optional<LineStatus> line;
    std::optional<bool> carrier;

    QString protocol; ///< empty when not set
    QString vpi;
    QString vci;
    bool hasPppd = false;
    bool hasPppDevice = false;
    Module pppModule = Module::Unknown;
    Module protocolModule = Module::Unknown; ///< the one of protocolModuleName()
    Module bridgeModule = Module::Unknown;
    bool hasBridgeTool = false;
    QString bridgeTool; ///< the path where it is expected

    bool hasShippedPeers = false; ///< the peer files that --fix puts in place
    SeenFile peer;
    SeenFile papSecrets;
    SeenFile chapSecrets;
    Resolver resolver;
    QList<Pppd> pppds;
    SeenFile log;
    RouteFacts routes;
    Neighbours neighbours;
    KeeperAnswer<KeeperState> keeper;

    bool isUnicorn() const { return configured.vendor == unicornVendorId; }
    bool isPppoe() const { return !isUnicorn() && protocol == QLatin1String("PPPoE"); }

    /// Whether the driver is one of those that are built on the kernel's "usbatm" and "atm". The
    /// unicorn modem's has an interface of its own.
    bool isDriverOverAtm() const;

    /// The kernel module that carries PPP for the configured modem and protocol.
    const char *protocolModuleName() const;

    /// Which peer file the configured modem and protocol ask for.
    PeerKind peerKind() const;
    /// "VPI.VCI"; empty when not set.
    QString circuit() const;
};

/// Looks at everything; takes up to the time-outs of the bus calls.
Facts gatherFacts(const DaemonBus &bus);

/// Only the part about modem, kernel and driver; asks nobody on the bus.
Facts gatherDriverFacts();

/// Where a module stands for the lists of loaded and of installed modules (modules.dep and
/// modules.builtin, one path a line).
Module moduleState(
    const QByteArray &name, bool isLoaded, const std::optional<QByteArray> &installed);

/// What compresses the modules of a kernel.
struct ModulePacker
{
    const char *program; ///< null for none
    const char *package;
};

/// The one that the kernel's own installation of a built module runs, by its modules.dep.
ModulePacker modulePacker(const QByteArray &modulesDep);
