// SPDX-License-Identifier: MIT
#include "desktop/model/deed.h"

#include "client/say.h"

namespace desktop {

namespace {

Deed deedThat(
    DeedKind kind, const QString &button, const QString &how, const QStringList &commands = {})
{
    return {kind, button, Action::None, AssistantStep::Permission, Verb::Look, how, commands};
}

Deed showHow(const QString &how, const QStringList &commands = {})
{
    return deedThat(DeedKind::ShowHow,
        commands.isEmpty() ? Say::tr("What to do…") : Say::tr("Show command…"), how, commands);
}

/// Where a person weighs one thing against another.
Deed showChoice(const QString &how, const QStringList &commands = {})
{
    return deedThat(DeedKind::ShowHow, Say::tr("How to choose…"), how, commands);
}

Deed openPage(Action page, const QString &button, const QString &how)
{
    Deed deed = deedThat(DeedKind::OpenPage, button, how);
    deed.page = page;
    return deed;
}

Deed openAssistant(AssistantStep step, const QString &button, const QString &how)
{
    Deed deed = deedThat(DeedKind::OpenAssistant, button, how);
    deed.step = step;
    return deed;
}

Deed withRights(Verb verb, const QString &button, const QString &how)
{
    Deed deed = deedThat(DeedKind::Rights, button, how, {commandFor(verb)});
    deed.verb = verb;
    return deed;
}

Deed showModem(const QString &how)
{
    return openAssistant(AssistantStep::Modem, Say::tr("Look at the modem…"), how);
}

Deed installFromDistribution(const QString &how, const QString &packages)
{
    return showHow(how, {QStringLiteral("sudo apt install ") + packages});
}

} // namespace

Deed deedOf(const Remedy &remedy)
{
    const QString &detail = remedy.detail;
    switch (remedy.kind) {
    case RemedyKind::None:
        break;
    case RemedyKind::StartBus:
        return showHow(Say::tr("Start the system bus, or the computer anew."),
            {QStringLiteral("sudo systemctl start dbus")});
    case RemedyKind::StartDaemon:
        return deedThat(DeedKind::StartDaemon, Say::tr("Start the daemon"),
            Say::tr("Start the daemon."), {commandFor(Verb::StartDaemon)});
    case RemedyKind::RestartDaemon:
        return withRights(Verb::RestartDaemon, Say::tr("Restart the daemon…"),
            Say::tr("Restart the daemon. Its log tells what it did last."));
    case RemedyKind::StartCompanion: // or it hangs: who asks it does not learn which
        return withRights(
            Verb::RestartCompanion, Say::tr("Restart it…"), Say::tr("Restart the companion."));
    case RemedyKind::InstallPolicy:
        return showHow(Say::tr("Install the daemon's package again, and have the bus read it."),
            {QStringLiteral("sudo apt install --reinstall norvix-daemon"),
                QStringLiteral("sudo systemctl reload dbus")});
    case RemedyKind::CreateGroup:
        return withRights(Verb::CreateGroup, Say::tr("Create the group…"),
            Say::tr("Create the group norvix; then join it."));
    case RemedyKind::JoinGroup:
        return deedThat(DeedKind::Join, Say::tr("Let me use it…"),
            Say::tr("Join the group norvix, then log in again."),
            {commandToJoin(QStringLiteral("$USER"))});
    case RemedyKind::LogInAgain:
        return deedThat(DeedKind::UseGroupNow, Say::tr("Use it now"),
            Say::tr("Start this program anew, or log out and in again."));
    case RemedyKind::LookAsRoot:
        return withRights(Verb::Look, Say::tr("Look as administrator…"),
            Say::tr("Repeat the check as administrator."));
    case RemedyKind::InstallKernel:
        return installFromDistribution(
            Say::tr("Install the distribution's full kernel, not one for clouds or a minimal one, "
                    "and start the computer anew."),
            QStringLiteral("linux-image-amd64"));
    case RemedyKind::InstallHeaders:
        return installFromDistribution(
            Say::tr("Install the kernel's headers and restart the daemon: it then builds the "
                    "driver."),
            QStringLiteral("linux-headers-") + detail);
    case RemedyKind::InstallHeadersAndPacker:
        return installFromDistribution(
            Say::tr("Install the kernel's headers and what this kernel's modules are compressed "
                    "with, and restart the daemon: it then builds the driver."),
            QStringLiteral("linux-headers-") + detail);
    case RemedyKind::InstallDriver:
        return showHow(Say::tr("Install the distribution's full kernel, or put the driver's source "
                               "into /opt/norvix/drivers and restart the daemon."));
    case RemedyKind::WaitForDriver:
        return openPage(
            Action::ShowBuild, Say::tr("Show the build…"), Say::tr("Wait until it has finished."));
    case RemedyKind::PlugModem:
        return showModem(Say::tr("Plug it in, without a hub if you can."));
    case RemedyKind::ReplugModem:
        return showModem(Say::tr("Unplug it and plug it in again."));
    case RemedyKind::ReplugAndAdoptModem:
        return openAssistant(AssistantStep::Modem, Say::tr("Take into use…"),
            Say::tr("Unplug it, plug it in again, and take it into use."));
    case RemedyKind::InstallFirmwarePackage:
        return installFromDistribution(
            Say::tr("Install the firmware (of the component non-free-firmware), then unplug the "
                    "modem and plug it in again."),
            detail);
    case RemedyKind::CopyFirmware:
        return showHow(Say::tr("Put the modem's firmware files into /lib/firmware (%1), then "
                               "unplug the modem and plug it in again.")
                           .arg(detail));
    case RemedyKind::WaitForLine:
        return showHow(Say::tr("Wait a minute. If it stays so, look at the telephone cable and the "
                               "filter, then restart the modem on the page “Modem and driver”."));
    case RemedyKind::SetLine:
        return openPage(Action::CheckLine, Say::tr("Set the line…"),
            Say::tr("Set VPI, VCI and protocol as your provider's letter says."));
    case RemedyKind::CheckLine:
    case RemedyKind::CheckLineAndBridge:
        return openPage(Action::CheckLine, Say::tr("Check line…"),
            Say::tr("Compare VPI, VCI and protocol with your provider's letter."));
    case RemedyKind::CheckModem:
        return showModem(Say::tr("Plug the modem in, and look whether its driver is there."));
    case RemedyKind::InstallPppd:
        return installFromDistribution(Say::tr("Install pppd."), QStringLiteral("ppp"));
    case RemedyKind::LoadPppModule:
        return withRights(
            Verb::LoadModules, Say::tr("Load it…"), Say::tr("Load the kernel's support for PPP."));
    case RemedyKind::InstallBridge: {
        Deed deed = installFromDistribution(
            Say::tr("Install the bridge program, and put it where the daemon looks for it."),
            QStringLiteral("br2684ctl"));
        deed.commands.append(QStringLiteral("sudo ln -s /usr/sbin/br2684ctl ") + detail);
        return deed;
    }
    case RemedyKind::CreatePeer:
    case RemedyKind::PlacePeer:
        return withRights(Verb::MendFiles, Say::tr("Put it there…"),
            Say::tr("Let the shipped file be put there."));
    case RemedyKind::ReplacePeer:
        return withRights(Verb::MendFiles, Say::tr("Put yours in place…"),
            Say::tr("The shipped file is put in place of one that nobody has edited. One that "
                    "somebody has edited is left alone: correct it by hand; the manual page "
                    "norvix-daemon(8) shows one that works."));
    case RemedyKind::InstallPeers:
        return showHow(Say::tr("The shipped files are missing, too: install the daemon's package "
                               "again."),
            {QStringLiteral("sudo apt install --reinstall norvix-daemon")});
    case RemedyKind::CorrectOptions:
        return showChoice(Say::tr("Somebody has set an option that pppd does not take. Look into "
                                  "the peer file below /etc/ppp/peers and at the daemon's setting "
                                  "pppd_arguments; the log names the option."));
    case RemedyKind::AddNoauth:
        return withRights(Verb::MendFiles, Say::tr("Mend…"),
            Say::tr("The line “noauth” is missing. A file that somebody has edited is left alone: "
                    "add the line to the peer file below /etc/ppp/peers by hand."));
    case RemedyKind::MendSecrets:
        return withRights(Verb::MendFiles, Say::tr("Put yours first…"),
            Say::tr("Let the account's entry be put first, readable for root only."));
    case RemedyKind::SetAccount:
    case RemedyKind::SetAccountAgain:
        return openPage(Action::CheckAccount, Say::tr("Set the account…"),
            Say::tr("Enter login and password as your provider's letter says."));
    case RemedyKind::WaitForResolver:
        return showHow(Say::tr("The daemon writes the name servers at the next connection."));
    case RemedyKind::EndOtherConnection:
        return showChoice(Say::tr("Another program uses PPP, for example for a mobile modem or a "
                                  "tunnel. Disconnecting here ends its connection, too. End it "
                                  "first, or do not disconnect while you need it."));
    case RemedyKind::ChooseRoute:
        return showChoice(Say::tr("Internet traffic goes through %1. End that connection, then "
                                  "disconnect and connect here again; or keep both and prefer "
                                  "this line by the command below.")
                              .arg(detail.section(QLatin1Char(' '), 0, 0)),
            {QStringLiteral("sudo ip route add default dev ")
                + detail.section(QLatin1Char(' '), 1)});
    case RemedyKind::EndOtherRoute:
        return showChoice(Say::tr("Internet traffic goes through %1. End that connection, then "
                                  "disconnect and connect here again.")
                              .arg(detail));
    case RemedyKind::SetRoute:
        return showHow(Say::tr("Disconnect and connect again, or set the route by hand."),
            {QStringLiteral("sudo ip route add default dev ") + detail});
    case RemedyKind::ChooseServers:
        return showChoice(Say::tr("Whichever connection comes up last writes the name servers: "
                                  "connect the one again that you want to use."));
    case RemedyKind::InstallNeighbourFile:
        return showHow(Say::tr("Install the daemon's package again."),
            {QStringLiteral("sudo apt install --reinstall norvix-daemon")});
    case RemedyKind::RemoveOverride:
        return showChoice(
            Say::tr("Somebody's file %1 hides what is shipped. Give it another name.").arg(detail));
    case RemedyKind::ReloadNetworkManager:
        return showHow(
            Say::tr("Have NetworkManager read its settings, then disconnect and connect again."),
            {QStringLiteral("sudo systemctl reload NetworkManager")});
    case RemedyKind::ReloadNetworkd:
        return showHow(Say::tr("Leave the modem's interfaces out of your own files in "
                               "/etc/systemd/network that sort before 10-norvix.network; then "
                               "have them read, and disconnect and connect again."),
            {QStringLiteral("sudo networkctl reload")});
    case RemedyKind::InstallResolvconfHook:
        return showHow(Say::tr("Install resolvconf again, or openresolv if that is it."),
            {QStringLiteral("sudo apt install --reinstall resolvconf")});
    case RemedyKind::InstallKeeper:
        return installFromDistribution(
            Say::tr("Install the keeper."), QStringLiteral("norvix-keeper"));
    case RemedyKind::StartKeeper:
        return withRights(
            Verb::StartKeeper, Say::tr("Start the keeper…"), Say::tr("Start the keeper."));
    case RemedyKind::RestartKeeper:
        return withRights(
            Verb::RestartKeeper, Say::tr("Restart the keeper…"), Say::tr("Restart the keeper."));
    case RemedyKind::InstallKeeperPolicy:
        return showHow(Say::tr("Install the keeper's package again, and have the bus read it."),
            {QStringLiteral("sudo apt install --reinstall norvix-keeper"),
                QStringLiteral("sudo systemctl reload dbus")});
    case RemedyKind::AdmitKeeper:
        return showHow(Say::tr("The keeper must be in the group norvix."),
            {QStringLiteral("sudo usermod -a -G norvix norvix-keeper"),
                QStringLiteral("sudo systemctl restart norvix-keeper")});
    case RemedyKind::Connect:
        return deedThat(DeedKind::Connect, Say::tr("Connect"), Say::tr("Connect again."));
    case RemedyKind::ConnectLater:
        return showHow(Say::tr("Wait for the line to come back, then connect again."));
    }
    return {};
}

Deed explanationOf(const Remedy &remedy)
{
    const Deed deed = deedOf(remedy);
    return deed.kind == DeedKind::None ? deed : showHow(deed.how, deed.commands);
}

QString commandFor(Verb verb)
{
    switch (verb) {
    case Verb::Look:
        return QStringLiteral("sudo norvixctl doctor");
    case Verb::MendFiles:
        return QStringLiteral("sudo norvixctl doctor --fix");
    case Verb::StartDaemon:
        return QStringLiteral("sudo systemctl start norvix-daemon");
    case Verb::RestartDaemon:
        return QStringLiteral("sudo systemctl restart norvix-daemon");
    case Verb::RestartCompanion:
        return QStringLiteral("sudo systemctl restart norvix-hald");
    case Verb::StartKeeper:
        return QStringLiteral("sudo systemctl start norvix-keeper");
    case Verb::RestartKeeper:
        return QStringLiteral("sudo systemctl restart norvix-keeper");
    case Verb::LoadModules:
        return QStringLiteral("sudo modprobe ppp_generic");
    case Verb::CreateGroup:
        break;
    }
    return QStringLiteral("sudo groupadd --system norvix");
}

QString commandToJoin(const QString &user)
{
    return QStringLiteral("sudo usermod -a -G norvix ") + user;
}

} // namespace desktop
