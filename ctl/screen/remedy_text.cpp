// SPDX-License-Identifier: MIT
#include "ctl/screen/remedy_text.h"

#include "client/doctor_checks.h"
#include "client/say.h"
#include "client/signal_text.h"
#include "client/text_format.h"
#include "dbus/contract.h"

QString remedyText(const Remedy &remedy)
{
    switch (remedy.kind) {
    case RemedyKind::None:
        break;
    case RemedyKind::StartBus:
        return Say::tr("Start it: “sudo systemctl start dbus”.");
    case RemedyKind::StartDaemon:
        return Say::tr("Start it: “sudo systemctl start norvix-daemon”.");
    case RemedyKind::RestartDaemon:
        return Say::tr("Look at “norvixctl log”, then restart it: “sudo systemctl restart "
                       "norvix-daemon”.");
    case RemedyKind::StartCompanion:
        return Say::tr("Start it: “sudo systemctl start norvix-hald”.");
    case RemedyKind::InstallPolicy:
        return Say::tr("Install the bus policy again and reload the bus: “sudo systemctl reload "
                       "dbus”.");
    case RemedyKind::CreateGroup:
        return Say::tr("Create the group and join it: “sudo groupadd --system norvix”, “sudo "
                       "usermod -a -G norvix $USER”, then log in again.");
    case RemedyKind::JoinGroup:
        return Say::tr("Join the group: “sudo usermod -a -G norvix $USER”, then log in again.");
    case RemedyKind::LogInAgain:
        return Say::tr("Log out and in again.");
    case RemedyKind::LookAsRoot:
        return Say::tr("Repeat the check with “sudo norvixctl doctor”.");
    case RemedyKind::InstallKernel:
        return Say::tr("Install the distribution's full kernel, not one for clouds or a minimal "
                       "one, and boot it: “sudo apt install linux-image-amd64”, “sudo reboot”.");
    case RemedyKind::InstallHeaders:
        return Say::tr("Install the kernel's headers and restart the daemon: it then builds the "
                       "driver (“sudo apt install linux-headers-%1”).")
            .arg(remedy.detail);
    case RemedyKind::InstallHeadersAndPacker:
        return Say::tr("Install the kernel's headers and %1, with which this kernel's modules are "
                       "compressed, and restart the daemon: it then builds the driver (“sudo apt "
                       "install linux-headers-%2 %1”).")
            .arg(remedy.detail.section(QLatin1Char(' '), 1),
                remedy.detail.section(QLatin1Char(' '), 0, 0));
    case RemedyKind::InstallDriver:
        return Say::tr("Install the distribution's full kernel, or put the driver's source into "
                       "/opt/norvix/drivers and restart the daemon.");
    case RemedyKind::WaitForDriver:
        return Say::tr("Wait until it has finished.");
    case RemedyKind::PlugModem:
        return Say::tr("Plug it in, without a hub if you can. “norvixctl modem known” lists what "
                       "is supported.");
    case RemedyKind::ReplugModem:
        return Say::tr("Unplug it and plug it in again; see the check of the companion.");
    case RemedyKind::ReplugAndAdoptModem:
        return Say::tr("Unplug it, plug it in again, wait ten seconds, then: “norvixctl modem "
                       "adopt”.");
    case RemedyKind::InstallFirmwarePackage:
        return Say::tr("Install the firmware: “sudo apt install %1” (of the component "
                       "non-free-firmware), then unplug the modem and plug it in again.")
            .arg(remedy.detail);
    case RemedyKind::CopyFirmware:
        return Say::tr("Put the modem's firmware files into /lib/firmware (%1), then unplug the "
                       "modem and plug it in again.")
            .arg(remedy.detail);
    case RemedyKind::WaitForLine:
        return Say::tr("Wait a minute. If it stays so, check the telephone cable and the filter, "
                       "then “norvixctl driver restart”.");
    case RemedyKind::SetLine:
        return Say::tr("Set them: “norvixctl line set --vpi 8 --vci 35 --protocol PPPoE”; "
                       "“norvixctl line providers” lists common values.");
    case RemedyKind::CheckLine:
        return Say::tr("Check VPI, VCI and protocol with the provider's letter: “norvixctl line "
                       "set”.");
    case RemedyKind::CheckLineAndBridge:
        return Say::tr("Check VPI and VCI (“norvixctl line show”) and the bridge program.");
    case RemedyKind::CheckModem:
        return Say::tr("Plug the modem in; “norvixctl driver” shows the driver.");
    case RemedyKind::InstallPppd:
        return Say::tr("Install it: “sudo apt install ppp”.");
    case RemedyKind::LoadPppModule:
        return Say::tr("Load the module: “sudo modprobe ppp_generic”.");
    case RemedyKind::InstallBridge:
        return Say::tr("“sudo apt install br2684ctl”, then “sudo ln -s /usr/sbin/br2684ctl %1”.")
            .arg(remedy.detail);
    case RemedyKind::CreatePeer:
        return Say::tr("Create the peer file (norvix-daemon(8) shows one that works).");
    case RemedyKind::PlacePeer:
        return Say::tr("Let the shipped one be put there: “sudo norvixctl doctor --fix”.");
    case RemedyKind::ReplacePeer:
        return Say::tr("“sudo norvixctl doctor --fix” puts the shipped one in place of one that "
                       "nobody has edited; otherwise correct it (norvix-daemon(8) shows one that "
                       "works).");
    case RemedyKind::InstallPeers:
        return Say::tr("The peer files that are shipped in /opt/norvix/share/peers are missing, "
                       "too: install norvix again, or write this one by hand (norvix-daemon(8) "
                       "shows one that works).");
    case RemedyKind::CorrectOptions:
        return Say::tr("Correct the peer file or the key pppd_arguments of the settings.");
    case RemedyKind::AddNoauth:
        return Say::tr("Add the line “noauth” to the peer file.");
    case RemedyKind::MendSecrets:
        return Say::tr("Let it be mended: “sudo norvixctl doctor --fix”.");
    case RemedyKind::SetAccount:
        return Say::tr("Set the account: “norvixctl account set”.");
    case RemedyKind::SetAccountAgain:
        return Say::tr("Set them again: “norvixctl account set”.");
    case RemedyKind::WaitForResolver:
        return Say::tr("The daemon writes it at the next connection.");
    case RemedyKind::EndOtherConnection:
        return Say::tr("End the other connection first, or do not disconnect while it is needed.");
    case RemedyKind::ChooseRoute:
        return Say::tr("Choose: end the connection of %1, then disconnect and connect again; or "
                       "keep both and prefer this one: “sudo ip route add default dev %2”.")
            .arg(remedy.detail.section(QLatin1Char(' '), 0, 0),
                remedy.detail.section(QLatin1Char(' '), 1));
    case RemedyKind::EndOtherRoute:
        return Say::tr("End the connection of %1, then disconnect and connect again.")
            .arg(remedy.detail);
    case RemedyKind::SetRoute:
        return Say::tr("Disconnect and connect again, or set it: “sudo ip route add default dev "
                       "%1”. The peer file should have the line “defaultroute”.")
            .arg(remedy.detail);
    case RemedyKind::ChooseServers:
        return Say::tr("Whichever connection comes up last writes them: connect the one again that "
                       "you want to use.");
    case RemedyKind::InstallNeighbourFile:
        return Say::tr("Install it again: “sudo apt install --reinstall norvix-daemon”.");
    case RemedyKind::RemoveOverride:
        return Say::tr("Give %1 another name, so that it no longer hides what is shipped.")
            .arg(remedy.detail);
    case RemedyKind::ReloadNetworkManager:
        return Say::tr(
            "“sudo systemctl reload NetworkManager”, then disconnect and connect again.");
    case RemedyKind::ReloadNetworkd:
        return Say::tr("Leave them out of your own files in /etc/systemd/network that sort before "
                       "10-norvix.network; then “sudo networkctl reload”, disconnect and connect "
                       "again.");
    case RemedyKind::InstallResolvconfHook:
        return Say::tr("Install it again: “sudo apt install --reinstall resolvconf”, or openresolv "
                       "if that is it.");
    case RemedyKind::InstallKeeper:
        return Say::tr("Install it: “sudo apt install norvix-keeper”.");
    case RemedyKind::StartKeeper:
        return Say::tr("Start it: “sudo systemctl enable --now norvix-keeper”.");
    case RemedyKind::RestartKeeper:
        return Say::tr("Restart it: “sudo systemctl restart norvix-keeper”.");
    case RemedyKind::InstallKeeperPolicy:
        return Say::tr("Install its bus policy again and reload the bus: “sudo apt install "
                       "--reinstall norvix-keeper”, “sudo systemctl reload dbus”.");
    case RemedyKind::AdmitKeeper:
        return Say::tr("It must be in the group norvix: “sudo usermod -a -G norvix norvix-keeper”, "
                       "“sudo systemctl restart norvix-keeper”.");
    case RemedyKind::Connect:
        return Say::tr("Connect again: “norvixctl connect”.");
    case RemedyKind::ConnectLater:
        return Say::tr("Wait for the line to come back, then connect again.");
    }
    return QString();
}

QString factsText(const Finding &finding)
{
    QStringList texts;
    for (const Fact &fact : finding.facts) {
        // The only one whose remedy is another than that of the whole.
        texts.append(fact.remedy.kind == RemedyKind::SetAccount
                ? Say::tr("There is no “user” line: set the account with “norvixctl account set”.")
                : fact.text);
    }
    return texts.join(QLatin1Char(' '));
}

QString signalWithRemedy(const QString &signal, const QVariantList &arguments)
{
    return signal == QLatin1String(DaemonSignal::newModemPlugged)
        ? Say::tr("new modem plugged: %1 – “norvixctl modem adopt” takes it into use")
              .arg(printable(arguments.value(0).toString()))
        : signalText(signal, arguments);
}
