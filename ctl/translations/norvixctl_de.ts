<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Say</name>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>No password was given.</source>
        <translation>Es wurde kein Passwort eingegeben.</translation>
    </message>
    <message>
        <source>Password again</source>
        <translation>Passwort noch einmal</translation>
    </message>
    <message>
        <source>The two passwords differ. Nothing was changed.</source>
        <translation>Die beiden Passwörter sind verschieden. Nichts wurde geändert.</translation>
    </message>
    <message>
        <source>Warning: pppd&apos;s files still answer with another account, so this one will not take effect. “sudo norvixctl doctor --fix” mends them.</source>
        <translation>Warnung: Die Dateien von pppd nennen noch ein anderes Konto, dieses wird also nicht wirken. „sudo norvixctl doctor --fix“ richtet sie.</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>none stored</source>
        <translation>keiner gespeichert</translation>
    </message>
    <message>
        <source>stored (--reveal shows it)</source>
        <translation>gespeichert (--reveal zeigt es)</translation>
    </message>
    <message>
        <source>Give the login: “norvixctl account set LOGIN”.</source>
        <translation>Geben Sie den Benutzernamen an: „norvixctl account set BENUTZER“.</translation>
    </message>
    <message>
        <source>The account is stored. It counts from the next connection on.</source>
        <translation>Das Konto ist gespeichert. Es gilt ab der nächsten Verbindung.</translation>
    </message>
    <message>
        <source>on</source>
        <translation>ein</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
    <message>
        <source>When the daemon starts</source>
        <translation>Beim Start des Dienstes</translation>
    </message>
    <message>
        <source>When a modem is taken into use</source>
        <translation>Wenn ein Modem übernommen wird</translation>
    </message>
    <message>
        <source>When the modem in use is plugged in</source>
        <translation>Wenn das benutzte Modem eingesteckt wird</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>Say “on” or “off”, not “%1”.</source>
        <translation>Sagen Sie „on“ oder „off“, nicht „%1“.</translation>
    </message>
    <message>
        <source>Connections now start by themselves.</source>
        <translation>Verbindungen beginnen nun von selbst.</translation>
    </message>
    <message>
        <source>Connections no longer start by themselves.</source>
        <translation>Verbindungen beginnen nicht mehr von selbst.</translation>
    </message>
    <message>
        <source>The daemon ended while connecting.</source>
        <translation>Der Dienst endete während des Verbindens.</translation>
    </message>
    <message>
        <source>The system bus ended while connecting.</source>
        <translation>Der Systembus endete während des Verbindens.</translation>
    </message>
    <message>
        <source>A connection is already being made.</source>
        <translation>Eine Verbindung wird bereits aufgebaut.</translation>
    </message>
    <message>
        <source>Connecting. “norvixctl watch” follows it.</source>
        <translation>Die Verbindung wird aufgebaut. „norvixctl watch“ zeigt den Verlauf.</translation>
    </message>
    <message>
        <source>Connecting…</source>
        <translation>Verbinden …</translation>
    </message>
    <message>
        <source>Waiting for the line to synchronise…</source>
        <translation>Warten auf die Synchronisation der Leitung …</translation>
    </message>
    <message>
        <source>The resolver configuration is wrong; the daemon corrects it.</source>
        <translation>Die Einstellung der Namensauflösung ist falsch; der Dienst berichtigt sie.</translation>
    </message>
    <message>
        <source>Connected: address %1, default route through %2.</source>
        <translation>Verbunden: Adresse %1, Standardroute über %2.</translation>
    </message>
    <message>
        <source>The line did not synchronise. Check the telephone cable and the filter; “norvixctl doctor” tells more.</source>
        <translation>Die Leitung hat sich nicht synchronisiert. Prüfen Sie Telefonkabel und Splitter; „norvixctl doctor“ sagt mehr.</translation>
    </message>
    <message>
        <source>Time-out: the provider does not answer. Check VPI, VCI and protocol with “norvixctl line show”.</source>
        <translation>Zeitüberschreitung: Der Anbieter antwortet nicht. Prüfen Sie VPI, VCI und Protokoll mit „norvixctl line show“.</translation>
    </message>
    <message>
        <source>The provider refused login or password. Set them again with “norvixctl account set”.</source>
        <translation>Der Anbieter hat Benutzername oder Passwort abgelehnt. Setzen Sie beides neu mit „norvixctl account set“.</translation>
    </message>
    <message>
        <source>The attempt was ended by another client.</source>
        <translation>Der Versuch wurde von einem anderen Programm beendet.</translation>
    </message>
    <message>
        <source>The connection did not come up.</source>
        <translation>Die Verbindung kam nicht zustande.</translation>
    </message>
    <message>
        <source>“norvixctl doctor” looks for the reason.</source>
        <translation>„norvixctl doctor“ sucht den Grund.</translation>
    </message>
    <message>
        <source>Still connecting. The daemon goes on; “norvixctl watch” follows it.</source>
        <translation>Noch nicht verbunden. Der Dienst macht weiter; „norvixctl watch“ zeigt den Verlauf.</translation>
    </message>
    <message>
        <source>The daemon did not begin: an earlier attempt may still be ending, which takes up to 90 seconds.</source>
        <translation>Der Dienst hat nicht begonnen: Ein früherer Versuch endet vielleicht noch, was bis zu 90 Sekunden dauert.</translation>
    </message>
    <message>
        <source>--timeout takes a whole number of seconds from 1 to %1.</source>
        <translation>--timeout verlangt eine ganze Zahl von Sekunden von 1 bis %1.</translation>
    </message>
    <message>
        <source>Already connected.</source>
        <translation>Bereits verbunden.</translation>
    </message>
    <message>
        <source>Disconnect all the same? [y/N]</source>
        <translation>Trotzdem trennen? [j/N]</translation>
    </message>
    <message>
        <source>y</source>
        <comment>the letter that agrees to a question</comment>
        <translation>j</translation>
    </message>
    <message>
        <source>Warning: another pppd is running (process %1: %2).</source>
        <translation>Warnung: Ein anderer pppd läuft (Prozess %1: %2).</translation>
    </message>
    <message>
        <source>Disconnecting ends every pppd of this system.</source>
        <translation>Das Trennen beendet jeden pppd dieses Systems.</translation>
    </message>
    <message>
        <source>Nothing done. --force disconnects all the same.</source>
        <translation>Nichts geschehen. --force trennt trotzdem.</translation>
    </message>
    <message>
        <source>Nothing done.</source>
        <translation>Nichts geschehen.</translation>
    </message>
    <message>
        <source>Disconnected.</source>
        <translation>Getrennt.</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Leads to</source>
        <translation>Führt zu</translation>
    </message>
    <message>
        <source>Servers</source>
        <translation>Server</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Without a server the daemon writes one at the next connection.</source>
        <translation>Ohne Server schreibt der Dienst bei der nächsten Verbindung welche hinein.</translation>
    </message>
    <message>
        <source>ok</source>
        <translation>gut</translation>
    </message>
    <message>
        <source>look</source>
        <translation>prüfen</translation>
    </message>
    <message>
        <source>FAULT</source>
        <translation>FEHLER</translation>
    </message>
    <message>
        <source>?</source>
        <translation>?</translation>
    </message>
    <message>
        <source>Nothing that stops a connection was found.</source>
        <translation>Nichts gefunden, was eine Verbindung verhindert.</translation>
    </message>
    <message numerus="yes">
        <source>%n thing(s) stop a connection. Begin with the first.</source>
        <translation>
            <numerusform>%n Sache verhindert eine Verbindung. Beginnen Sie mit ihr.</numerusform>
            <numerusform>%n Sachen verhindern eine Verbindung. Beginnen Sie mit der ersten.</numerusform>
        </translation>
    </message>
    <message>
        <source>Only root may mend: “sudo norvixctl doctor --fix”.</source>
        <translation>Nur root darf richten: „sudo norvixctl doctor --fix“.</translation>
    </message>
    <message>
        <source>Driver</source>
        <translation>Treiber</translation>
    </message>
    <message>
        <source>not known without a modem</source>
        <translation>ohne Modem nicht bekannt</translation>
    </message>
    <message>
        <source>Kernel</source>
        <translation>Kernel</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Being built</source>
        <translation>Wird gebaut</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>ja</translation>
    </message>
    <message>
        <source>no</source>
        <translation>nein</translation>
    </message>
    <message>
        <source>The daemon ended during the restart.</source>
        <translation>Der Dienst endete während des Neustarts.</translation>
    </message>
    <message>
        <source>The daemon did not report the end of the restart; see “norvixctl log”.</source>
        <translation>Der Dienst hat das Ende des Neustarts nicht gemeldet; siehe „norvixctl log“.</translation>
    </message>
    <message>
        <source>The driver is reloaded. The line needs up to a minute to synchronise again.</source>
        <translation>Der Treiber ist neu geladen. Die Leitung braucht bis zu einer Minute, um sich wieder zu synchronisieren.</translation>
    </message>
    <message>
        <source>There is no command “%1”. “norvixctl --help” lists them.</source>
        <translation>Den Befehl „%1“ gibt es nicht. „norvixctl --help“ zählt alle auf.</translation>
    </message>
    <message>
        <source>Say “bash” or “zsh”.</source>
        <translation>Sagen Sie „bash“ oder „zsh“.</translation>
    </message>
    <message>
        <source>The idle time is a whole number from 0 to %1.</source>
        <translation>Die Ruhezeit ist eine ganze Zahl von 0 bis %1.</translation>
    </message>
    <message>
        <source>Stored. The daemon itself does not act on it; desktop clients may.</source>
        <translation>Gespeichert. Der Dienst selbst tut damit nichts; Arbeitsplatzprogramme vielleicht.</translation>
    </message>
    <message>
        <source>Idle time</source>
        <translation>Ruhezeit</translation>
    </message>
    <message>
        <source>not set</source>
        <translation>nicht gesetzt</translation>
    </message>
    <message>
        <source>--%1 takes a whole number from 0 to %2.</source>
        <translation>--%1 verlangt eine ganze Zahl von 0 bis %2.</translation>
    </message>
    <message>
        <source>--service takes text without control characters.</source>
        <translation>--service verlangt Text ohne Steuerzeichen.</translation>
    </message>
    <message>
        <source>Give at least one of --vpi, --vci, --protocol and --service.</source>
        <translation>Geben Sie mindestens eines von --vpi, --vci, --protocol und --service an.</translation>
    </message>
    <message>
        <source>Stored. The next connection uses it.</source>
        <translation>Gespeichert. Die nächste Verbindung benutzt es.</translation>
    </message>
    <message>
        <source>Country</source>
        <translation>Land</translation>
    </message>
    <message>
        <source>Provider</source>
        <translation>Anbieter</translation>
    </message>
    <message>
        <source>VPI</source>
        <translation>VPI</translation>
    </message>
    <message>
        <source>VCI</source>
        <translation>VCI</translation>
    </message>
    <message>
        <source>Protocol</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Values that were common; the provider&apos;s own letter decides.</source>
        <translation>Werte, die üblich waren; es entscheidet das Schreiben des Anbieters.</translation>
    </message>
    <message>
        <source>--lines takes a whole number.</source>
        <translation>--lines verlangt eine ganze Zahl.</translation>
    </message>
    <message>
        <source>%1 is not readable for you. Repeat the command with “sudo”.</source>
        <translation>%1 ist für Sie nicht lesbar. Wiederholen Sie den Befehl mit „sudo“.</translation>
    </message>
    <message>
        <source>There is no log %1 yet.</source>
        <translation>Es gibt noch kein Protokoll %1.</translation>
    </message>
    <message>
        <source>Modem</source>
        <translation>Modem</translation>
    </message>
    <message>
        <source>none taken into use</source>
        <translation>keines übernommen</translation>
    </message>
    <message>
        <source>USB id</source>
        <translation>USB-Kennung</translation>
    </message>
    <message>
        <source>Plugged in</source>
        <translation>Eingesteckt</translation>
    </message>
    <message>
        <source>%1 is not there or not readable for this user.</source>
        <translation>%1 fehlt oder ist für diesen Benutzer nicht lesbar.</translation>
    </message>
    <message>
        <source>USB ids</source>
        <translation>USB-Kennungen</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Anschluss</translation>
    </message>
    <message>
        <source>In use</source>
        <translation>Benutzt</translation>
    </message>
    <message>
        <source>Has firmware</source>
        <translation>Hat Firmware</translation>
    </message>
    <message>
        <source>No supported modem is plugged in.</source>
        <translation>Kein unterstütztes Modem ist eingesteckt.</translation>
    </message>
    <message>
        <source>The modem that is plugged in is already in use.</source>
        <translation>Das eingesteckte Modem wird bereits benutzt.</translation>
    </message>
    <message>
        <source>The daemon has not noticed a new modem: it only does when one is plugged in while it runs. Unplug it, plug it in again, wait ten seconds, and repeat the command.</source>
        <translation>Der Dienst hat kein neues Modem bemerkt: Das kann er nur, wenn es eingesteckt wird, während er läuft. Ziehen Sie es ab, stecken Sie es wieder ein, warten Sie zehn Sekunden und wiederholen Sie den Befehl.</translation>
    </message>
    <message>
        <source>%1 is now in use.</source>
        <translation>%1 wird nun benutzt.</translation>
    </message>
    <message>
        <source>the daemon has started</source>
        <translation>der Dienst ist gestartet</translation>
    </message>
    <message>
        <source>the daemon has ended; waiting for it to come back</source>
        <translation>der Dienst ist beendet; warten auf seine Rückkehr</translation>
    </message>
    <message>
        <source>listening to the daemon</source>
        <translation>der Dienst läuft, seine Meldungen:</translation>
    </message>
    <message>
        <source>the daemon is not running; waiting for it</source>
        <translation>der Dienst läuft nicht; warten auf ihn</translation>
    </message>
    <message>
        <source>The system bus has ended.</source>
        <translation>Der Systembus ist beendet.</translation>
    </message>
    <message>
        <source>%1 is plugged in but not taken into use: “norvixctl modem adopt”</source>
        <translation>%1 ist eingesteckt, aber nicht übernommen: „norvixctl modem adopt“</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>plugged in</source>
        <translation>eingesteckt</translation>
    </message>
    <message>
        <source>not plugged in</source>
        <translation>nicht eingesteckt</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Leitung</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Dauer</translation>
    </message>
    <message>
        <source>Received</source>
        <translation>Empfangen</translation>
    </message>
    <message>
        <source>Sent</source>
        <translation>Gesendet</translation>
    </message>
    <message>
        <source>Connection</source>
        <translation>Verbindung</translation>
    </message>
    <message>
        <source>Interface</source>
        <translation>Schnittstelle</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>Default route</source>
        <translation>Standardroute</translation>
    </message>
    <message>
        <source>Daemon</source>
        <translation>Dienst</translation>
    </message>
    <message>
        <source>running</source>
        <translation>läuft</translation>
    </message>
    <message>
        <source>not running</source>
        <translation>läuft nicht</translation>
    </message>
    <message>
        <source>The modem&apos;s driver is being built.</source>
        <translation>Der Treiber des Modems wird gebaut.</translation>
    </message>
    <message>
        <source>--count takes a whole number from 1 to %1.</source>
        <translation>--count verlangt eine ganze Zahl von 1 bis %1.</translation>
    </message>
    <message>
        <source>There is no option “%1” here.</source>
        <translation>Die Option „%1“ gibt es hier nicht.</translation>
    </message>
    <message>
        <source>The option “%1” takes no value.</source>
        <translation>Die Option „%1“ verlangt keinen Wert.</translation>
    </message>
    <message>
        <source>The option “%1” needs a value.</source>
        <translation>Die Option „%1“ braucht einen Wert.</translation>
    </message>
    <message>
        <source>“%1” is not possible for “%2”. Possible are: %3.</source>
        <translation>„%1“ ist für „%2“ nicht möglich. Möglich sind: %3.</translation>
    </message>
    <message>
        <source>“%1” is one word too many.</source>
        <translation>„%1“ ist ein Wort zu viel.</translation>
    </message>
    <message>
        <source>Take either --json or --terse.</source>
        <translation>Nehmen Sie entweder --json oder --terse.</translation>
    </message>
    <message>
        <source>The system bus can not be reached: is dbus-daemon running?</source>
        <translation>Der Systembus ist nicht erreichbar: Läuft dbus-daemon?</translation>
    </message>
    <message>
        <source>The system bus does not let you do this. Members of the group “norvix” and root may: “sudo usermod -a -G norvix $USER”, then log in again.</source>
        <translation>Der Systembus lässt Sie das nicht tun. Mitglieder der Gruppe „norvix“ und root dürfen es: „sudo usermod -a -G norvix $USER“, dann neu anmelden.</translation>
    </message>
    <message>
        <source>The daemon does not answer. It may be waiting for another program; see “norvixctl log”.</source>
        <translation>Der Dienst antwortet nicht. Vielleicht wartet er auf ein anderes Programm; siehe „norvixctl log“.</translation>
    </message>
    <message>
        <source>The system bus could not start the daemon: %1</source>
        <translation>Der Systembus konnte den Dienst nicht starten: %1</translation>
    </message>
    <message>
        <source>The daemon answered with an error: %1</source>
        <translation>Der Dienst antwortete mit einem Fehler: %1</translation>
    </message>
    <message>
        <source>The daemon is not running. Start it with “sudo systemctl start norvix-daemon”.</source>
        <translation>Der Dienst läuft nicht. Starten Sie ihn mit „sudo systemctl start norvix-daemon“.</translation>
    </message>
    <message>
        <source>Repeat the check with “sudo norvixctl doctor”.</source>
        <translation>Wiederholen Sie die Prüfung mit „sudo norvixctl doctor“.</translation>
    </message>
    <message>
        <source>Start it: “sudo systemctl start dbus”.</source>
        <translation>Starten Sie ihn: „sudo systemctl start dbus“.</translation>
    </message>
    <message>
        <source>Start it: “sudo systemctl start norvix-daemon”.</source>
        <translation>Starten Sie ihn: „sudo systemctl start norvix-daemon“.</translation>
    </message>
    <message>
        <source>Look at “norvixctl log”, then restart it: “sudo systemctl restart norvix-daemon”.</source>
        <translation>Sehen Sie „norvixctl log“ an, dann starten Sie ihn neu: „sudo systemctl restart norvix-daemon“.</translation>
    </message>
    <message>
        <source>Start it: “sudo systemctl start norvix-hald”.</source>
        <translation>Starten Sie ihn: „sudo systemctl start norvix-hald“.</translation>
    </message>
    <message>
        <source>Install the bus policy again and reload the bus: “sudo systemctl reload dbus”.</source>
        <translation>Installieren Sie die Busregeln neu und laden Sie den Bus neu: „sudo systemctl reload dbus“.</translation>
    </message>
    <message>
        <source>Create the group and join it: “sudo groupadd --system norvix”, “sudo usermod -a -G norvix $USER”, then log in again.</source>
        <translation>Legen Sie die Gruppe an und treten Sie ihr bei: „sudo groupadd --system norvix“, „sudo usermod -a -G norvix $USER“, dann neu anmelden.</translation>
    </message>
    <message>
        <source>Log out and in again.</source>
        <translation>Melden Sie sich ab und wieder an.</translation>
    </message>
    <message>
        <source>Join the group: “sudo usermod -a -G norvix $USER”, then log in again.</source>
        <translation>Treten Sie der Gruppe bei: „sudo usermod -a -G norvix $USER“, dann neu anmelden.</translation>
    </message>
    <message>
        <source>Plug it in, without a hub if you can. “norvixctl modem known” lists what is supported.</source>
        <translation>Stecken Sie es ein, möglichst ohne Verteiler. „norvixctl modem known“ zählt auf, was unterstützt wird.</translation>
    </message>
    <message>
        <source>Unplug it, plug it in again, wait ten seconds, then: “norvixctl modem adopt”.</source>
        <translation>Ziehen Sie es ab, stecken Sie es wieder ein, warten Sie zehn Sekunden, dann: „norvixctl modem adopt“.</translation>
    </message>
    <message>
        <source>Unplug it and plug it in again; see the check of the companion.</source>
        <translation>Ziehen Sie es ab und stecken Sie es wieder ein; siehe die Prüfung des Begleitdienstes.</translation>
    </message>
    <message>
        <source>Wait until it has finished.</source>
        <translation>Warten Sie, bis das beendet ist.</translation>
    </message>
    <message>
        <source>Install the kernel&apos;s headers and %1, with which this kernel&apos;s modules are compressed, and restart the daemon: it then builds the driver (“sudo apt install linux-headers-%2 %1”).</source>
        <translation>Installieren Sie die Header des Kernels und %1, womit die Module dieses Kernels komprimiert sind, und starten Sie den Dienst neu: Er baut dann den Treiber („sudo apt install linux-headers-%2 %1“).</translation>
    </message>
    <message>
        <source>Install the kernel&apos;s headers and restart the daemon: it then builds the driver (“sudo apt install linux-headers-%1”).</source>
        <translation>Installieren Sie die Header des Kernels und starten Sie den Dienst neu: Er baut dann den Treiber („sudo apt install linux-headers-%1“).</translation>
    </message>
    <message>
        <source>Install the distribution&apos;s full kernel, or put the driver&apos;s source into /opt/norvix/drivers and restart the daemon.</source>
        <translation>Installieren Sie den vollen Kernel der Distribution, oder legen Sie die Quellen des Treibers nach /opt/norvix/drivers und starten Sie den Dienst neu.</translation>
    </message>
    <message>
        <source>Put the modem&apos;s firmware files into /lib/firmware (%1), then unplug the modem and plug it in again.</source>
        <translation>Legen Sie die Firmware-Dateien des Modems nach /lib/firmware (%1), ziehen Sie dann das Modem ab und stecken Sie es wieder ein.</translation>
    </message>
    <message>
        <source>Wait a minute. If it stays so, check the telephone cable and the filter, then “norvixctl driver restart”.</source>
        <translation>Warten Sie eine Minute. Bleibt es so, prüfen Sie Telefonkabel und Splitter, dann „norvixctl driver restart“.</translation>
    </message>
    <message>
        <source>Set them: “norvixctl line set --vpi 8 --vci 35 --protocol PPPoE”; “norvixctl line providers” lists common values.</source>
        <translation>Setzen Sie sie: „norvixctl line set --vpi 8 --vci 35 --protocol PPPoE“; „norvixctl line providers“ zählt übliche Werte auf.</translation>
    </message>
    <message>
        <source>Install it: “sudo apt install ppp”.</source>
        <translation>Installieren Sie ihn: „sudo apt install ppp“.</translation>
    </message>
    <message>
        <source>Install the distribution&apos;s full kernel, not one for clouds or a minimal one, and boot it: “sudo apt install linux-image-amd64”, “sudo reboot”.</source>
        <translation>Installieren Sie den vollen Kernel der Distribution, keinen für die Cloud und keinen verkleinerten, und starten Sie ihn: „sudo apt install linux-image-amd64“, „sudo reboot“.</translation>
    </message>
    <message>
        <source>Load the module: “sudo modprobe ppp_generic”.</source>
        <translation>Laden Sie das Modul: „sudo modprobe ppp_generic“.</translation>
    </message>
    <message>
        <source>“sudo apt install br2684ctl”, then “sudo ln -s /usr/sbin/br2684ctl %1”.</source>
        <translation>„sudo apt install br2684ctl“, dann „sudo ln -s /usr/sbin/br2684ctl %1“.</translation>
    </message>
    <message>
        <source>Create the peer file (norvix-daemon(8) shows one that works).</source>
        <translation>Legen Sie die Gegenstellendatei an (norvix-daemon(8) zeigt eine, die funktioniert).</translation>
    </message>
    <message>
        <source>Let it be mended: “sudo norvixctl doctor --fix”.</source>
        <translation>Lassen Sie es richten: „sudo norvixctl doctor --fix“.</translation>
    </message>
    <message>
        <source>Set the account: “norvixctl account set”.</source>
        <translation>Setzen Sie das Konto: „norvixctl account set“.</translation>
    </message>
    <message>
        <source>%1 can not be read.</source>
        <translation>%1 kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>The daemon writes it at the next connection.</source>
        <translation>Der Dienst schreibt sie bei der nächsten Verbindung.</translation>
    </message>
    <message>
        <source>End the other connection first, or do not disconnect while it is needed.</source>
        <translation>Beenden Sie zuerst die andere Verbindung, oder trennen Sie nicht, solange sie gebraucht wird.</translation>
    </message>
    <message>
        <source>Usage: %1</source>
        <translation>Aufruf: %1</translation>
    </message>
    <message>
        <source>Bring a USB ADSL modem&apos;s connection up and down, and watch it.</source>
        <translation>Die Verbindung eines USB-ADSL-Modems aufbauen, beenden und beobachten.</translation>
    </message>
    <message>
        <source>“norvixctl COMMAND --help” explains a command; norvixctl(1) all.</source>
        <translation>„norvixctl BEFEHL --help“ erklärt einen Befehl, norvixctl(1) alle.</translation>
    </message>
    <message>
        <source>down</source>
        <translation>Empfang</translation>
    </message>
    <message>
        <source>“norvixctl --help” lists the commands and “norvixctl COMMAND --help” the options of one.</source>
        <translation>„norvixctl --help“ zählt die Befehle auf, „norvixctl BEFEHL --help“ die Optionen eines Befehls.</translation>
    </message>
    <message>
        <source>Give a command.</source>
        <translation>Geben Sie einen Befehl an.</translation>
    </message>
    <message>
        <source>“%1” needs a further word.</source>
        <translation>„%1“ braucht ein weiteres Wort.</translation>
    </message>
    <message>
        <source>There is no “user” line: set the account with “norvixctl account set”.</source>
        <translation>Es gibt keine Zeile „user“: Setzen Sie das Konto mit „norvixctl account set“.</translation>
    </message>
    <message>
        <source>%1 can not be written.</source>
        <translation>%1 kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>The mode of %1 can not be changed.</source>
        <translation>Die Rechte von %1 lassen sich nicht ändern.</translation>
    </message>
    <message>
        <source>%1 is not a valid settings file.</source>
        <translation>%1 ist keine gültige Einstellungsdatei.</translation>
    </message>
    <message>
        <source>%1 can not be written by you. Repeat the command with “sudo”.</source>
        <translation>%1 dürfen Sie nicht schreiben. Wiederholen Sie den Befehl mit „sudo“.</translation>
    </message>
    <message>
        <source>the daemon is not running</source>
        <translation>der Dienst läuft nicht</translation>
    </message>
    <message>
        <source>%1 %2  total %3  peak %4</source>
        <translation>%1 %2  gesamt %3  Spitze %4</translation>
    </message>
    <message>
        <source>up</source>
        <translation>Senden</translation>
    </message>
    <message>
        <source>errors: %1 receiving, %2 sending</source>
        <translation>Fehler: %1 beim Empfangen, %2 beim Senden</translation>
    </message>
    <message>
        <source>Ctrl-C ends the view, not the connection.</source>
        <translation>Strg-C beendet die Ansicht, nicht die Verbindung.</translation>
    </message>
    <message>
        <source>%1  down %2  up %3  received %4  sent %5</source>
        <translation>%1  Empfang %2  Senden %3  empfangen %4  gesendet %5</translation>
    </message>
    <message>
        <source>Service</source>
        <translation>Dienstname</translation>
    </message>
    <message>
        <source>Show everything at one glance</source>
        <translation>Alles auf einen Blick zeigen</translation>
    </message>
    <message>
        <source>Start a connection</source>
        <translation>Eine Verbindung aufbauen</translation>
    </message>
    <message>
        <source>follow the phases until the connection is up or has failed</source>
        <translation>die Schritte verfolgen, bis die Verbindung steht oder gescheitert ist</translation>
    </message>
    <message>
        <source>wait no longer than this (180 by default)</source>
        <translation>nicht länger warten als so viele Sekunden (sonst 180)</translation>
    </message>
    <message>
        <source>End the connection</source>
        <translation>Die Verbindung beenden</translation>
    </message>
    <message>
        <source>do not ask, although this ends every other running pppd, too</source>
        <translation>nicht fragen, obwohl das auch jeden anderen laufenden pppd beendet</translation>
    </message>
    <message>
        <source>Print each signal of the daemon as one line</source>
        <translation>Jede Meldung des Dienstes als eine Zeile ausgeben</translation>
    </message>
    <message>
        <source>Live view with rates, totals and time</source>
        <translation>Laufende Ansicht mit Geschwindigkeit, Mengen und Dauer</translation>
    </message>
    <message>
        <source>end after so many seconds with figures</source>
        <translation>nach so vielen Sekunden mit Zahlen enden</translation>
    </message>
    <message>
        <source>Show the account&apos;s login</source>
        <translation>Den Benutzernamen des Kontos zeigen</translation>
    </message>
    <message>
        <source>show the password, too</source>
        <translation>auch das Passwort zeigen</translation>
    </message>
    <message>
        <source>Store login and password; the password is asked for or read from standard input</source>
        <translation>Benutzername und Passwort speichern; das Passwort wird erfragt oder von der Standardeingabe gelesen</translation>
    </message>
    <message>
        <source>Show the modem in use and whether it is plugged in</source>
        <translation>Das benutzte Modem zeigen und ob es eingesteckt ist</translation>
    </message>
    <message>
        <source>List the modems that are supported</source>
        <translation>Die unterstützten Modems aufzählen</translation>
    </message>
    <message>
        <source>List the supported modems that are plugged in</source>
        <translation>Die eingesteckten unterstützten Modems aufzählen</translation>
    </message>
    <message>
        <source>Take the modem that was plugged in last into use</source>
        <translation>Das zuletzt eingesteckte Modem übernehmen</translation>
    </message>
    <message>
        <source>Show VPI, VCI, protocol and service</source>
        <translation>VPI, VCI, Protokoll und Dienstname zeigen</translation>
    </message>
    <message>
        <source>Store VPI, VCI, protocol and service</source>
        <translation>VPI, VCI, Protokoll und Dienstname speichern</translation>
    </message>
    <message>
        <source>virtual path, 0 to 255</source>
        <translation>virtueller Pfad, 0 bis 255</translation>
    </message>
    <message>
        <source>virtual channel, 0 to 65535</source>
        <translation>virtueller Kanal, 0 bis 65535</translation>
    </message>
    <message>
        <source>PPPoE or PPPoA</source>
        <translation>PPPoE oder PPPoA</translation>
    </message>
    <message>
        <source>a note for desktop clients: the service&apos;s name</source>
        <translation>eine Notiz für Arbeitsplatzprogramme: der Name des Dienstes</translation>
    </message>
    <message>
        <source>List line parameters of common providers</source>
        <translation>Leitungswerte verbreiteter Anbieter aufzählen</translation>
    </message>
    <message>
        <source>Show or set whether connections start by themselves</source>
        <translation>Zeigen oder setzen, ob Verbindungen von selbst beginnen</translation>
    </message>
    <message>
        <source>only when the daemon starts</source>
        <translation>nur beim Start des Dienstes</translation>
    </message>
    <message>
        <source>only when a modem is plugged in</source>
        <translation>nur beim Einstecken eines Modems</translation>
    </message>
    <message>
        <source>Show or store the idle time for desktop clients</source>
        <translation>Die Ruhezeit für Arbeitsplatzprogramme zeigen oder speichern</translation>
    </message>
    <message>
        <source>Show the modem&apos;s driver</source>
        <translation>Den Treiber des Modems zeigen</translation>
    </message>
    <message>
        <source>Reload the driver; this ends a connection</source>
        <translation>Den Treiber neu laden; das beendet eine Verbindung</translation>
    </message>
    <message>
        <source>Show the resolver configuration</source>
        <translation>Die Einstellung der Namensauflösung zeigen</translation>
    </message>
    <message>
        <source>Print the daemon&apos;s log</source>
        <translation>Das Protokoll des Dienstes ausgeben</translation>
    </message>
    <message>
        <source>go on printing what is added</source>
        <translation>weiter ausgeben, was hinzukommt</translation>
    </message>
    <message>
        <source>only so many of the last lines</source>
        <translation>nur so viele der letzten Zeilen</translation>
    </message>
    <message>
        <source>today&apos;s connection facts instead</source>
        <translation>stattdessen die heutigen Verbindungsdaten</translation>
    </message>
    <message>
        <source>Check all that can stop a connection and name the remedy</source>
        <translation>Alles prüfen, was eine Verbindung verhindern kann, und die Abhilfe nennen</translation>
    </message>
    <message>
        <source>mend pppd&apos;s account and peer files (as root)</source>
        <translation>die Konto- und Peer-Dateien von pppd richten (als root)</translation>
    </message>
    <message>
        <source>Explain a command</source>
        <translation>Einen Befehl erklären</translation>
    </message>
    <message>
        <source>Print the completion script for a shell</source>
        <translation>Das Vervollständigungsskript für eine Shell ausgeben</translation>
    </message>
    <message>
        <source>use colours: auto, always or never</source>
        <translation>Farben benutzen: auto, always oder never</translation>
    </message>
    <message>
        <source>explain the command</source>
        <translation>den Befehl erklären</translation>
    </message>
    <message>
        <source>print the version</source>
        <translation>die Version ausgeben</translation>
    </message>
    <message>
        <source>print JSON</source>
        <translation>JSON ausgeben</translation>
    </message>
    <message>
        <source>print key=value lines or tab-separated rows</source>
        <translation>Zeilen der Form Schlüssel=Wert oder mit Tabulatoren getrennte Spalten ausgeben</translation>
    </message>
    <message>
        <source>Check VPI and VCI (“norvixctl line show”) and the bridge program.</source>
        <translation>Prüfen Sie VPI und VCI („norvixctl line show“) und das Brückenprogramm.</translation>
    </message>
    <message>
        <source>Correct the peer file or the key pppd_arguments of the settings.</source>
        <translation>Berichtigen Sie die Gegenstellendatei oder den Schlüssel pppd_arguments der Einstellungen.</translation>
    </message>
    <message>
        <source>Check VPI, VCI and protocol with the provider&apos;s letter: “norvixctl line set”.</source>
        <translation>Prüfen Sie VPI, VCI und Protokoll am Schreiben des Anbieters: „norvixctl line set“.</translation>
    </message>
    <message>
        <source>Plug the modem in; “norvixctl driver” shows the driver.</source>
        <translation>Stecken Sie das Modem ein; „norvixctl driver“ zeigt den Treiber.</translation>
    </message>
    <message>
        <source>Set them again: “norvixctl account set”.</source>
        <translation>Setzen Sie beides neu: „norvixctl account set“.</translation>
    </message>
    <message>
        <source>Add the line “noauth” to the peer file.</source>
        <translation>Fügen Sie der Gegenstellendatei die Zeile „noauth“ hinzu.</translation>
    </message>
    <message>
        <source>Wait for the line to come back, then connect again.</source>
        <translation>Warten Sie, bis die Leitung wieder steht, und verbinden Sie dann neu.</translation>
    </message>
    <message>
        <source>Connect again: “norvixctl connect”.</source>
        <translation>Verbinden Sie neu: „norvixctl connect“.</translation>
    </message>
    <message>
        <source>new modem plugged: %1 – “norvixctl modem adopt” takes it into use</source>
        <translation>neues Modem eingesteckt: %1 – „norvixctl modem adopt“ übernimmt es</translation>
    </message>
    <message>
        <source>%1 is plugged in, but the daemon does not see it: “norvixctl doctor”</source>
        <translation>%1 ist eingesteckt, aber der Dienst sieht es nicht: „norvixctl doctor“</translation>
    </message>
    <message>
        <source>With PPPoA the circuit that counts stands in /etc/ppp/peers/norvix: the line “%1.%2” behind “plugin pppoatm.so”. “sudo norvixctl doctor --fix” puts it there.</source>
        <translation>Bei PPPoA zählt der Kanal in /etc/ppp/peers/norvix: die Zeile „%1.%2“ hinter „plugin pppoatm.so“. „sudo norvixctl doctor --fix“ trägt ihn dort ein.</translation>
    </message>
    <message>
        <source>Install the firmware: “sudo apt install %1” (of the component non-free-firmware), then unplug the modem and plug it in again.</source>
        <translation>Die Firmware installieren: „sudo apt install %1“ (aus der Komponente non-free-firmware), dann das Modem ab- und wieder anstecken.</translation>
    </message>
    <message>
        <source>Let the shipped one be put there: “sudo norvixctl doctor --fix”.</source>
        <translation>Die mitgelieferte dorthin legen lassen: „sudo norvixctl doctor --fix“.</translation>
    </message>
    <message>
        <source>“sudo norvixctl doctor --fix” puts the shipped one in place of one that nobody has edited; otherwise correct it (norvix-daemon(8) shows one that works).</source>
        <translation>„sudo norvixctl doctor --fix“ setzt die mitgelieferte an die Stelle einer, die niemand verändert hat; sonst selbst berichtigen (norvix-daemon(8) zeigt eine, die funktioniert).</translation>
    </message>
    <message>
        <source>The daemon still connects. Repeat the command, or look at “norvixctl log”.</source>
        <translation>Der Dienst verbindet noch. Den Befehl wiederholen, oder in „norvixctl log“ nachsehen.</translation>
    </message>
    <message>
        <source>A connection is still being made: it can be ended for good only when the line is up or has failed. Waiting for that…</source>
        <translation>Eine Verbindung wird noch aufgebaut: Endgültig beendet werden kann sie erst, wenn die Leitung steht oder ausgefallen ist. Warten darauf …</translation>
    </message>
    <message>
        <source>The peer files that are shipped in /opt/norvix/share/peers are missing, too: install norvix again, or write this one by hand (norvix-daemon(8) shows one that works).</source>
        <translation>Auch die mitgelieferten Gegenstellendateien in /opt/norvix/share/peers fehlen: norvix neu installieren oder diese Datei von Hand schreiben (norvix-daemon(8) zeigt eine, die funktioniert).</translation>
    </message>
    <message>
        <source>The output can not be written: %1.</source>
        <translation>Die Ausgabe kann nicht geschrieben werden: %1.</translation>
    </message>
    <message>
        <source>“norvixctl doctor” tells which of pppd&apos;s files are missing.</source>
        <translation>„norvixctl doctor“ sagt, welche Dateien von pppd fehlen.</translation>
    </message>
    <message>
        <source>The daemon refuses this: %1.</source>
        <translation>Der Dienst lehnt das ab: %1.</translation>
    </message>
    <message>
        <source>The daemon could not store it: %1.</source>
        <translation>Der Dienst konnte es nicht speichern: %1.</translation>
    </message>
    <message>
        <source>Keeps</source>
        <translation>Wacht</translation>
    </message>
    <message>
        <source>Show how good the line has been</source>
        <translation>Zeigen, wie gut die Leitung war</translation>
    </message>
    <message>
        <source>of so many of the last days (1 by default)</source>
        <translation>so viele der letzten Tage (sonst 1)</translation>
    </message>
    <message>
        <source>Show or set whether a lost connection is brought back</source>
        <translation>Zeigen oder setzen, ob eine verlorene Verbindung wiederkommt</translation>
    </message>
    <message>
        <source>Show past connections, why they ended, and failed attempts</source>
        <translation>Frühere Verbindungen, die Gründe ihres Endes und gescheiterte Versuche zeigen</translation>
    </message>
    <message>
        <source>only so many of the newest (20 by default)</source>
        <translation>nur so viele der neuesten (sonst 20)</translation>
    </message>
    <message>
        <source>Show the traffic by day, and set its limit</source>
        <translation>Den Verkehr je Tag zeigen und seine Grenze setzen</translation>
    </message>
    <message>
        <source>by billing month instead</source>
        <translation>stattdessen je Abrechnungsmonat</translation>
    </message>
    <message>
        <source>only so many of the newest (14 by default)</source>
        <translation>nur so viele der neuesten (sonst 14)</translation>
    </message>
    <message>
        <source>set the limit of a billing month, such as 50GB, or “off”; it only warns</source>
        <translation>die Grenze eines Abrechnungsmonats setzen, etwa 50GB, oder „off“; sie warnt nur</translation>
    </message>
    <message>
        <source>set the day on which a billing month begins</source>
        <translation>den Tag setzen, an dem ein Abrechnungsmonat beginnt</translation>
    </message>
    <message>
        <source>It is still up.</source>
        <translation>Sie steht noch.</translation>
    </message>
    <message>
        <source>The provider hung up, as it does every day: nothing is wrong.</source>
        <translation>Der Anbieter hat aufgelegt, wie jeden Tag: Das ist kein Fehler.</translation>
    </message>
    <message numerus="yes">
        <source>%n failed attempt(s).</source>
        <translation>
            <numerusform>%n gescheiterter Versuch.</numerusform>
            <numerusform>%n gescheiterte Versuche.</numerusform>
        </translation>
    </message>
    <message>
        <source>Began</source>
        <translation>Beginn</translation>
    </message>
    <message>
        <source>Lasted</source>
        <translation>Dauer</translation>
    </message>
    <message>
        <source>What became of it</source>
        <translation>Was daraus wurde</translation>
    </message>
    <message>
        <source>Nothing has been connected yet.</source>
        <translation>Noch nie war etwas verbunden.</translation>
    </message>
    <message>
        <source>A connection that is wanted is kept from now on.</source>
        <translation>Eine gewünschte Verbindung wird ab jetzt gehalten.</translation>
    </message>
    <message>
        <source>Nothing is kept from now on: a connection that is lost stays lost.</source>
        <translation>Ab jetzt wird nichts gehalten: Eine verlorene Verbindung bleibt verloren.</translation>
    </message>
    <message>
        <source>--days takes a whole number of days from 1 to %1.</source>
        <translation>--days verlangt eine ganze Zahl von Tagen von 1 bis %1.</translation>
    </message>
    <message>
        <source>Nothing is known of the line in this time. It is looked at once a minute while a connection is up.</source>
        <translation>Über die Leitung ist aus dieser Zeit nichts bekannt. Nach ihr wird jede Minute gesehen, solange eine Verbindung steht.</translation>
    </message>
    <message>
        <source>The stored idle time (%1) is not honoured: the keeper keeps a connection that is wanted, used or not.</source>
        <translation>Die gespeicherte Ruhezeit (%1) wird nicht beachtet: Der Wächter hält eine gewünschte Verbindung, ob benutzt oder nicht.</translation>
    </message>
    <message>
        <source>There is no limit any more.</source>
        <translation>Es gibt keine Grenze mehr.</translation>
    </message>
    <message>
        <source>The limit is %1 in a billing month. It warns and ends no connection.</source>
        <translation>Die Grenze ist %1 im Abrechnungsmonat. Sie warnt und beendet keine Verbindung.</translation>
    </message>
    <message>
        <source>A billing month begins on day %1 from now on.</source>
        <translation>Ein Abrechnungsmonat beginnt von nun an am Tag %1.</translation>
    </message>
    <message>
        <source>Billing month</source>
        <translation>Abrechnungsmonat</translation>
    </message>
    <message>
        <source>Day</source>
        <translation>Tag</translation>
    </message>
    <message>
        <source>Together</source>
        <translation>Zusammen</translation>
    </message>
    <message>
        <source>%1 to %2</source>
        <translation>%1 bis %2</translation>
    </message>
    <message>
        <source>No traffic has been counted yet.</source>
        <translation>Noch ist kein Verkehr gezählt.</translation>
    </message>
    <message>
        <source>--limit takes a number with its unit, such as 50GB, or “off”.</source>
        <translation>--limit verlangt eine Zahl mit Einheit, etwa 50GB, oder „off“.</translation>
    </message>
    <message>
        <source>--billing-day takes a whole number from 1 to 31.</source>
        <translation>--billing-day verlangt eine ganze Zahl von 1 bis 31.</translation>
    </message>
    <message>
        <source>The keeper is not installed: “sudo apt install norvix-keeper”.</source>
        <translation>Der Wächter ist nicht installiert: „sudo apt install norvix-keeper“.</translation>
    </message>
    <message>
        <source>The keeper is not running. Start it with “sudo systemctl start norvix-keeper”.</source>
        <translation>Der Wächter läuft nicht. Starten Sie ihn mit „sudo systemctl start norvix-keeper“.</translation>
    </message>
    <message>
        <source>The keeper does not answer. Restart it with “sudo systemctl restart norvix-keeper”.</source>
        <translation>Der Wächter antwortet nicht. Starten Sie ihn neu: „sudo systemctl restart norvix-keeper“.</translation>
    </message>
    <message>
        <source>The keeper refuses this: %1.</source>
        <translation>Der Wächter lehnt das ab: %1.</translation>
    </message>
    <message>
        <source>The keeper&apos;s answer is not understood: it may be of another version.</source>
        <translation>Die Antwort des Wächters ist nicht zu verstehen: Er kann von einer anderen Fassung sein.</translation>
    </message>
    <message>
        <source>The keeper answered with an error: %1</source>
        <translation>Der Wächter antwortete mit einem Fehler: %1</translation>
    </message>
    <message>
        <source>not installed</source>
        <translation>nicht installiert</translation>
    </message>
    <message>
        <source>Wanted</source>
        <translation>Gewünscht</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Grund</translation>
    </message>
    <message>
        <source>Next attempt</source>
        <translation>Nächster Versuch</translation>
    </message>
    <message>
        <source>Failed attempts</source>
        <translation>Gescheiterte Versuche</translation>
    </message>
    <message>
        <source>Other links</source>
        <translation>Andere Verbindungen</translation>
    </message>
    <message>
        <source>The traffic of the billing month has reached the limit.</source>
        <translation>Der Verkehr des Abrechnungsmonats hat die Grenze erreicht.</translation>
    </message>
    <message>
        <source>Synchronised</source>
        <translation>Synchronisiert</translation>
    </message>
    <message>
        <source>Margin down</source>
        <translation>Reserve im Empfang</translation>
    </message>
    <message>
        <source>Margin up</source>
        <translation>Reserve beim Senden</translation>
    </message>
    <message>
        <source>Rate down</source>
        <translation>Rate im Empfang</translation>
    </message>
    <message>
        <source>Rate up</source>
        <translation>Rate beim Senden</translation>
    </message>
    <message>
        <source>Errors down</source>
        <translation>Fehler im Empfang</translation>
    </message>
    <message>
        <source>Errors up</source>
        <translation>Fehler beim Senden</translation>
    </message>
    <message>
        <source>%1: %2 in all</source>
        <translation>%1: %2 insgesamt</translation>
    </message>
    <message>
        <source>%1: last %2, lowest %3, highest %4</source>
        <translation>%1: zuletzt %2, mindestens %3, höchstens %4</translation>
    </message>
    <message>
        <source>Choose: end the connection of %1, then disconnect and connect again; or keep both and prefer this one: “sudo ip route add default dev %2”.</source>
        <translation>Wählen Sie: Beenden Sie die Verbindung von %1, trennen und verbinden Sie dann neu; oder behalten Sie beide und ziehen Sie diese vor: „sudo ip route add default dev %2“.</translation>
    </message>
    <message>
        <source>End the connection of %1, then disconnect and connect again.</source>
        <translation>Beenden Sie die Verbindung von %1, trennen und verbinden Sie dann neu.</translation>
    </message>
    <message>
        <source>Disconnect and connect again, or set it: “sudo ip route add default dev %1”. The peer file should have the line “defaultroute”.</source>
        <translation>Trennen und verbinden Sie neu, oder setzen Sie sie: „sudo ip route add default dev %1“. Die Peer-Datei sollte die Zeile „defaultroute“ haben.</translation>
    </message>
    <message>
        <source>Whichever connection comes up last writes them: connect the one again that you want to use.</source>
        <translation>Die Verbindung, die zuletzt kommt, schreibt sie: Verbinden Sie die neu, die Sie benutzen wollen.</translation>
    </message>
    <message>
        <source>Install it again: “sudo apt install --reinstall norvix-daemon”.</source>
        <translation>Installieren Sie sie neu: „sudo apt install --reinstall norvix-daemon“.</translation>
    </message>
    <message>
        <source>Give %1 another name, so that it no longer hides what is shipped.</source>
        <translation>Geben Sie %1 einen anderen Namen, damit sie die mitgelieferte nicht mehr verdeckt.</translation>
    </message>
    <message>
        <source>“sudo systemctl reload NetworkManager”, then disconnect and connect again.</source>
        <translation>„sudo systemctl reload NetworkManager“, dann trennen und neu verbinden.</translation>
    </message>
    <message>
        <source>Leave them out of your own files in /etc/systemd/network that sort before 10-norvix.network; then “sudo networkctl reload”, disconnect and connect again.</source>
        <translation>Nehmen Sie sie aus Ihren eigenen Dateien in /etc/systemd/network heraus, die vor 10-norvix.network kommen; dann „sudo networkctl reload“, trennen und neu verbinden.</translation>
    </message>
    <message>
        <source>Install it again: “sudo apt install --reinstall resolvconf”, or openresolv if that is it.</source>
        <translation>Installieren Sie es neu: „sudo apt install --reinstall resolvconf“, oder openresolv, wenn es das ist.</translation>
    </message>
    <message>
        <source>Install it: “sudo apt install norvix-keeper”.</source>
        <translation>Installieren Sie ihn: „sudo apt install norvix-keeper“.</translation>
    </message>
    <message>
        <source>Start it: “sudo systemctl enable --now norvix-keeper”.</source>
        <translation>Starten Sie ihn: „sudo systemctl enable --now norvix-keeper“.</translation>
    </message>
    <message>
        <source>Restart it: “sudo systemctl restart norvix-keeper”.</source>
        <translation>Starten Sie ihn neu: „sudo systemctl restart norvix-keeper“.</translation>
    </message>
    <message>
        <source>Install its bus policy again and reload the bus: “sudo apt install --reinstall norvix-keeper”, “sudo systemctl reload dbus”.</source>
        <translation>Installieren Sie seine Busregeln neu und laden Sie den Bus neu: „sudo apt install --reinstall norvix-keeper“, „sudo systemctl reload dbus“.</translation>
    </message>
    <message>
        <source>It must be in the group norvix: “sudo usermod -a -G norvix norvix-keeper”, “sudo systemctl restart norvix-keeper”.</source>
        <translation>Er muss in der Gruppe norvix sein: „sudo usermod -a -G norvix norvix-keeper“, „sudo systemctl restart norvix-keeper“.</translation>
    </message>
    <message>
        <source>Keeper</source>
        <translation>Wächter</translation>
    </message>
</context>
</TS>
