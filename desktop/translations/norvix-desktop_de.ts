<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Say</name>
    <message>
        <source>The program pkexec, which asks for an administrator&apos;s password, is not installed. This command does the same:</source>
        <translation>Das Programm pkexec, das nach dem Passwort eines Verwalters fragt, ist nicht installiert. Dieser Befehl tut dasselbe:</translation>
    </message>
    <message>
        <source>not entered yet</source>
        <translation>noch nicht eingetragen</translation>
    </message>
    <message>
        <source>The modem&apos;s driver could not be built.</source>
        <translation>Der Treiber des Modems konnte nicht gebaut werden.</translation>
    </message>
    <message>
        <source>The modem is not restarted. %1</source>
        <translation>Das Modem wird nicht neu gestartet. %1</translation>
    </message>
    <message>
        <source>The build has ended without an error.</source>
        <translation>Der Bau ist ohne Fehler zu Ende gegangen.</translation>
    </message>
    <message>
        <source>The driver could not be built. The end of the output tells why, and the check-up what is missing; then build it anew.</source>
        <translation>Der Treiber konnte nicht gebaut werden. Das Ende der Ausgabe sagt, warum, und die Überprüfung, was fehlt; danach bauen Sie ihn neu.</translation>
    </message>
    <message>
        <source>The service that decides about administrator&apos;s rights does not answer. This command does the same:</source>
        <translation>Der Dienst, der über Verwalterrechte entscheidet, antwortet nicht. Dieser Befehl tut dasselbe:</translation>
    </message>
    <message>
        <source>No program of this session can ask for an administrator&apos;s password. This command does the same:</source>
        <translation>Kein Programm dieser Sitzung kann nach dem Passwort eines Verwalters fragen. Dieser Befehl tut dasselbe:</translation>
    </message>
    <message>
        <source>An administrator&apos;s rights were not given: the password was wrong, or this system does not allow it. Nothing was changed.</source>
        <translation>Die Rechte eines Verwalters wurden nicht erteilt: Das Passwort war falsch, oder dieses System erlaubt es nicht. Nichts wurde geändert.</translation>
    </message>
    <message>
        <source>The password was not entered. Nothing was changed.</source>
        <translation>Das Passwort wurde nicht eingegeben. Nichts wurde geändert.</translation>
    </message>
    <message>
        <source>Nobody waits for the password any more.</source>
        <translation>Auf das Passwort wird nicht mehr gewartet.</translation>
    </message>
    <message>
        <source>A program that is needed for it is not installed. This command does the same:</source>
        <translation>Ein Programm, das dafür gebraucht wird, ist nicht installiert. Dieser Befehl tut dasselbe:</translation>
    </message>
    <message>
        <source>There is no group norvix yet.</source>
        <translation>Es gibt noch keine Gruppe norvix.</translation>
    </message>
    <message>
        <source>It did not succeed.</source>
        <translation>Es ist nicht gelungen.</translation>
    </message>
    <message>
        <source>&amp;Show the password</source>
        <translation>Passwort &amp;zeigen</translation>
    </message>
    <message>
        <source>&amp;Login</source>
        <translation>&amp;Benutzername</translation>
    </message>
    <message>
        <source>&amp;Password</source>
        <translation>&amp;Passwort</translation>
    </message>
    <message>
        <source>Login and password stand in your provider&apos;s letter. Leave both empty to keep what is stored.</source>
        <translation>Benutzername und Passwort stehen im Schreiben Ihres Anbieters. Lassen Sie beide leer, um zu behalten, was gespeichert ist.</translation>
    </message>
    <message>
        <source>The account is not stored yet. %1</source>
        <translation>Das Konto ist noch nicht gespeichert. %1</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Skip</source>
        <translation>Überspringen</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Set up the ADSL modem</source>
        <translation>Das ADSL-Modem einrichten</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>You are connected. “Close” leads to the window; the connection stays. There, “Account and line” can have it made by itself when the computer starts.</source>
        <translation>Sie sind verbunden. „Schließen“ führt zum Fenster; die Verbindung bleibt. Dort kann sie unter „Konto und Leitung“ beim Start des Computers von selbst hergestellt werden.</translation>
    </message>
    <message>
        <source>This takes up to a minute.</source>
        <translation>Das dauert bis zu einer Minute.</translation>
    </message>
    <message>
        <source>Everything that was entered is stored. “Connect” tries it.</source>
        <translation>Alles, was eingegeben wurde, ist gespeichert. „Verbinden“ probiert es aus.</translation>
    </message>
    <message>
        <source>Back to “May I?”</source>
        <translation>Zurück zu „Darf ich?“</translation>
    </message>
    <message>
        <source>Back to the provider</source>
        <translation>Zurück zum Anbieter</translation>
    </message>
    <message>
        <source>Back to the account</source>
        <translation>Zurück zum Konto</translation>
    </message>
    <message>
        <source>The modem&apos;s service, the daemon, is there</source>
        <translation>Der Dienst für das Modem ist da</translation>
    </message>
    <message>
        <source>The line is synchronised</source>
        <translation>Die Leitung ist synchronisiert</translation>
    </message>
    <message>
        <source>The provider lets you in</source>
        <translation>Der Anbieter lässt Sie ein</translation>
    </message>
    <message>
        <source>There is an address</source>
        <translation>Eine Adresse ist da</translation>
    </message>
    <message>
        <source>not yet</source>
        <translation>noch nicht</translation>
    </message>
    <message>
        <source>under way</source>
        <translation>läuft</translation>
    </message>
    <message>
        <source>done</source>
        <translation>erledigt</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>misslungen</translation>
    </message>
    <message>
        <source>Looking for the modem…</source>
        <translation>Das Modem wird gesucht …</translation>
    </message>
    <message>
        <source>No modem that is supported is plugged in. Plug it in, without a hub if you can; it appears here. Supported are: %1.</source>
        <translation>Es ist kein unterstütztes Modem eingesteckt. Stecken Sie es ein, wenn möglich ohne Hub; es erscheint hier. Unterstützt werden: %1.</translation>
    </message>
    <message>
        <source>%1 is plugged in. Its driver is being built for this kernel; this may take some minutes.</source>
        <translation>%1 ist eingesteckt. Sein Treiber wird für diesen Kernel gebaut; das kann einige Minuten dauern.</translation>
    </message>
    <message>
        <source>%1 is plugged in, but has not got its firmware.</source>
        <translation>%1 ist eingesteckt, hat aber seine Firmware nicht erhalten.</translation>
    </message>
    <message>
        <source>%1 was just plugged in. It is looked at; this takes some seconds.</source>
        <translation>%1 wurde gerade eingesteckt. Es wird angesehen; das dauert einige Sekunden.</translation>
    </message>
    <message>
        <source>%1 was found. “Next” takes it into use.</source>
        <translation>%1 wurde gefunden. „Weiter“ übernimmt es.</translation>
    </message>
    <message>
        <source>%1 is plugged in. Unplug it, wait a moment, and plug it in again: a new modem is noticed only as it is plugged in, and this one was there before.</source>
        <translation>%1 ist eingesteckt. Ziehen Sie es ab, warten Sie einen Augenblick, und stecken Sie es wieder ein: Ein neues Modem wird nur beim Einstecken bemerkt, und dieses war schon vorher da.</translation>
    </message>
    <message>
        <source>%1 is plugged in and in use, but the daemon does not find it. Unplug it, wait a moment, and plug it in again.</source>
        <translation>%1 ist eingesteckt und in Gebrauch, aber der Dienst findet es nicht. Ziehen Sie es ab, warten Sie einen Augenblick, und stecken Sie es wieder ein.</translation>
    </message>
    <message>
        <source>%1 is plugged in. The daemon, which takes it into use, is not running.</source>
        <translation>%1 ist eingesteckt. Der Dienst, der es übernimmt, läuft nicht.</translation>
    </message>
    <message>
        <source>%1 is plugged in. The daemon, which takes it into use, does not answer.</source>
        <translation>%1 ist eingesteckt. Der Dienst, der es übernimmt, antwortet nicht.</translation>
    </message>
    <message>
        <source>%1 is ready.</source>
        <translation>%1 ist bereit.</translation>
    </message>
    <message>
        <source>No modem is ready yet. “Skip” goes on without one.</source>
        <translation>Noch ist kein Modem bereit. „Überspringen“ geht ohne weiter.</translation>
    </message>
    <message>
        <source>Modems that are plugged in</source>
        <translation>Eingesteckte Modems</translation>
    </message>
    <message>
        <source>These modems are plugged in:</source>
        <translation>Diese Modems sind eingesteckt:</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Take it into use</source>
        <translation>Übernehmen</translation>
    </message>
    <message>
        <source>The modem is not there any more. Plug it in again.</source>
        <translation>Das Modem ist nicht mehr da. Stecken Sie es wieder ein.</translation>
    </message>
    <message>
        <source>You may use the modem.</source>
        <translation>Sie dürfen das Modem benutzen.</translation>
    </message>
    <message>
        <source>You may not use the modem yet. “Skip” goes on without that.</source>
        <translation>Noch dürfen Sie das Modem nicht benutzen. „Überspringen“ geht trotzdem weiter.</translation>
    </message>
    <message>
        <source>You joined the group norvix after you had logged in, so this program does not know it yet. “Use it now” starts it anew; then it may use the modem.</source>
        <translation>Sie sind der Gruppe norvix nach Ihrer Anmeldung beigetreten, deshalb weiß dieses Programm noch nichts davon. „Jetzt benutzen“ startet es neu; dann darf es das Modem benutzen.</translation>
    </message>
    <message>
        <source>Only members of the group norvix may use the modem, and you are not one yet. An administrator&apos;s password makes you one: the one that is asked for when programs are installed on this computer.</source>
        <translation>Nur Mitglieder der Gruppe norvix dürfen das Modem benutzen, und Sie sind noch keines. Das Passwort eines Verwalters macht Sie dazu: das, nach dem beim Installieren von Programmen auf diesem Computer gefragt wird.</translation>
    </message>
    <message>
        <source>Only members of the group norvix may use the modem, and there is no such group yet. An administrator&apos;s password creates it.</source>
        <translation>Nur Mitglieder der Gruppe norvix dürfen das Modem benutzen, und diese Gruppe gibt es noch nicht. Das Passwort eines Verwalters legt sie an.</translation>
    </message>
    <message>
        <source>You are a member of the group norvix, but the bus refuses you all the same. The check-up tells why.</source>
        <translation>Sie sind Mitglied der Gruppe norvix, aber der Bus lässt Sie trotzdem nicht zu. Die Überprüfung sagt, warum.</translation>
    </message>
    <message>
        <source>Looking…</source>
        <translation>Es wird nachgesehen …</translation>
    </message>
    <message>
        <source>This assistant leads to the first connection. Each of its pages can be skipped, and nothing that you enter is lost.</source>
        <translation>Dieser Assistent führt zur ersten Verbindung. Jede Seite kann übersprungen werden, und nichts, was Sie eingeben, geht verloren.</translation>
    </message>
    <message>
        <source>This program begins anew…</source>
        <translation>Dieses Programm beginnt neu …</translation>
    </message>
    <message>
        <source>You are a member now, but this program could not be started anew. Log out and in again.</source>
        <translation>Sie sind jetzt Mitglied, aber dieses Programm konnte nicht neu gestartet werden. Melden Sie sich ab und wieder an.</translation>
    </message>
    <message>
        <source>Put a fitting file in place…</source>
        <translation>Eine passende Datei hinlegen …</translation>
    </message>
    <message>
        <source>&amp;Country</source>
        <translation>&amp;Land</translation>
    </message>
    <message>
        <source>&amp;Provider</source>
        <translation>&amp;Anbieter</translation>
    </message>
    <message>
        <source>P&amp;rotocol</source>
        <translation>P&amp;rotokoll</translation>
    </message>
    <message>
        <source>&amp;VPI</source>
        <translation>&amp;VPI</translation>
    </message>
    <message>
        <source>VC&amp;I</source>
        <translation>VC&amp;I</translation>
    </message>
    <message>
        <source>Choose country and provider: the three values below become those that it commonly uses. Where it is not in the list, or your provider&apos;s letter says otherwise, enter what the letter says: it decides.</source>
        <translation>Wählen Sie Land und Anbieter: Die drei Werte unten werden die, die er üblicherweise verwendet. Wo er nicht in der Liste steht oder das Schreiben Ihres Anbieters anderes sagt, geben Sie ein, was dort steht: Das Schreiben entscheidet.</translation>
    </message>
    <message>
        <source>The file fits now.</source>
        <translation>Die Datei passt jetzt.</translation>
    </message>
    <message>
        <source>choose</source>
        <translation>wählen</translation>
    </message>
    <message>
        <source>Choose your provider, or enter the values of its letter. “Skip” leaves them as they are.</source>
        <translation>Wählen Sie Ihren Anbieter, oder geben Sie die Werte aus seinem Schreiben ein. „Überspringen“ lässt sie, wie sie sind.</translation>
    </message>
    <message>
        <source>The values are not stored yet. %1</source>
        <translation>Die Werte sind noch nicht gespeichert. %1</translation>
    </message>
    <message>
        <source>The values are stored. A file of the system does not fit them yet; only an administrator may change it.</source>
        <translation>Die Werte sind gespeichert. Eine Datei des Systems passt noch nicht zu ihnen; nur ein Verwalter darf sie ändern.</translation>
    </message>
    <message>
        <source>The values are stored. They stand in a file of the system, too, which only an administrator may change.</source>
        <translation>Die Werte sind gespeichert. Sie stehen auch in einer Datei des Systems, die nur ein Verwalter ändern darf.</translation>
    </message>
    <message>
        <source>May I?</source>
        <translation>Darf ich?</translation>
    </message>
    <message>
        <source>Modem</source>
        <translation>Modem</translation>
    </message>
    <message>
        <source>Provider</source>
        <translation>Anbieter</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>Konto</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
    <message>
        <source>%1 “norvix-desktop --help” tells what there is.</source>
        <translation>%1 „norvix-desktop --help“ sagt, was es gibt.</translation>
    </message>
    <message>
        <source>It is running already and does not answer.</source>
        <translation>Es läuft schon und antwortet nicht.</translation>
    </message>
    <message>
        <source>One thing stops a connection</source>
        <translation>Eines verhindert eine Verbindung</translation>
    </message>
    <message numerus="yes">
        <source>%n thing(s) stop a connection</source>
        <translation>
            <numerusform>%n Sache verhindert eine Verbindung</numerusform>
            <numerusform>%n Sachen verhindern eine Verbindung</numerusform>
        </translation>
    </message>
    <message>
        <source>Nothing stops a connection, but look at this</source>
        <translation>Nichts verhindert eine Verbindung, aber sehen Sie sich das an</translation>
    </message>
    <message>
        <source>Nothing stops a connection</source>
        <translation>Nichts verhindert eine Verbindung</translation>
    </message>
    <message numerus="yes">
        <source>%n check(s) found nothing wrong</source>
        <translation>
            <numerusform>%n Prüfung fand nichts auszusetzen</numerusform>
            <numerusform>%n Prüfungen fanden nichts auszusetzen</numerusform>
        </translation>
    </message>
    <message>
        <source>%1; %2</source>
        <translation>%1; %2</translation>
    </message>
    <message numerus="yes">
        <source>%n had nothing to look at yet</source>
        <translation>
            <numerusform>%n hatte noch nichts anzusehen</numerusform>
            <numerusform>%n hatten noch nichts anzusehen</numerusform>
        </translation>
    </message>
    <message>
        <source>fine</source>
        <translation>in Ordnung</translation>
    </message>
    <message>
        <source>look at this</source>
        <translation>bitte ansehen</translation>
    </message>
    <message>
        <source>fault</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>not looked at</source>
        <translation>nicht angesehen</translation>
    </message>
    <message>
        <source>nothing: there is no default route</source>
        <translation>nichts: es gibt keine Standardroute</translation>
    </message>
    <message>
        <source>not known</source>
        <translation>nicht bekannt</translation>
    </message>
    <message>
        <source>this line (%1)</source>
        <translation>diese Leitung (%1)</translation>
    </message>
    <message>
        <source>another connection (%1)</source>
        <translation>eine andere Verbindung (%1)</translation>
    </message>
    <message>
        <source>answer (%1)</source>
        <translation>antworten (%1)</translation>
    </message>
    <message>
        <source>do not answer (%1)</source>
        <translation>antworten nicht (%1)</translation>
    </message>
    <message>
        <source>%1 down, %2 up, %3</source>
        <translation>%1 Empfang, %2 Senden, %3</translation>
    </message>
    <message>
        <source>kbit/s</source>
        <translation>kbit/s</translation>
    </message>
    <message>
        <source>%1 kbit/s down</source>
        <translation>%1 kbit/s Empfang</translation>
    </message>
    <message>
        <source>dB</source>
        <translation>dB</translation>
    </message>
    <message>
        <source>%1 dB down</source>
        <translation>%1 dB Empfang</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>its driver is being built</source>
        <translation>sein Treiber wird gebaut</translation>
    </message>
    <message>
        <source>none in use</source>
        <translation>keines in Gebrauch</translation>
    </message>
    <message>
        <source>%1, not set up yet</source>
        <translation>%1, noch nicht eingerichtet</translation>
    </message>
    <message>
        <source>ready</source>
        <translation>bereit</translation>
    </message>
    <message>
        <source>%1, ready</source>
        <translation>%1, bereit</translation>
    </message>
    <message>
        <source>%1, for %2</source>
        <translation>%1, für %2</translation>
    </message>
    <message>
        <source>good</source>
        <translation>gut</translation>
    </message>
    <message>
        <source>fair</source>
        <translation>mäßig</translation>
    </message>
    <message>
        <source>poor</source>
        <translation>schlecht</translation>
    </message>
    <message>
        <source>today, %1</source>
        <translation>heute, %1</translation>
    </message>
    <message>
        <source>yesterday, %1</source>
        <translation>gestern, %1</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>Internet goes through</source>
        <translation>Internet geht über</translation>
    </message>
    <message>
        <source>Name servers</source>
        <translation>Nameserver</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Leitung</translation>
    </message>
    <message>
        <source>Noise margin</source>
        <translation>Störabstand</translation>
    </message>
    <message>
        <source>Last connected</source>
        <translation>Zuletzt verbunden</translation>
    </message>
    <message>
        <source>Today, this month</source>
        <translation>Heute, dieser Monat</translation>
    </message>
    <message>
        <source>What to do…</source>
        <translation>Was zu tun ist …</translation>
    </message>
    <message>
        <source>Show command…</source>
        <translation>Befehl zeigen …</translation>
    </message>
    <message>
        <source>How to choose…</source>
        <translation>Wie man wählt …</translation>
    </message>
    <message>
        <source>Set the line…</source>
        <translation>Leitung einstellen …</translation>
    </message>
    <message>
        <source>Set VPI, VCI and protocol as your provider&apos;s letter says.</source>
        <translation>Stellen Sie VPI, VCI und Protokoll so ein, wie es das Schreiben Ihres Anbieters sagt.</translation>
    </message>
    <message>
        <source>Check line…</source>
        <translation>Leitung prüfen …</translation>
    </message>
    <message>
        <source>Compare VPI, VCI and protocol with your provider&apos;s letter.</source>
        <translation>Vergleichen Sie VPI, VCI und Protokoll mit dem Schreiben Ihres Anbieters.</translation>
    </message>
    <message>
        <source>Look at the modem…</source>
        <translation>Modem ansehen …</translation>
    </message>
    <message>
        <source>Set the account…</source>
        <translation>Konto einstellen …</translation>
    </message>
    <message>
        <source>Enter login and password as your provider&apos;s letter says.</source>
        <translation>Geben Sie Benutzername und Passwort so ein, wie es das Schreiben Ihres Anbieters sagt.</translation>
    </message>
    <message>
        <source>Start the system bus, or the computer anew.</source>
        <translation>Starten Sie den Systembus, oder den Rechner neu.</translation>
    </message>
    <message>
        <source>Start the daemon</source>
        <translation>Dienst starten</translation>
    </message>
    <message>
        <source>Start the daemon.</source>
        <translation>Starten Sie den Dienst.</translation>
    </message>
    <message>
        <source>Restart the daemon…</source>
        <translation>Dienst neu starten …</translation>
    </message>
    <message>
        <source>Restart the daemon. Its log tells what it did last.</source>
        <translation>Starten Sie den Dienst neu. Sein Protokoll sagt, was er zuletzt tat.</translation>
    </message>
    <message>
        <source>Install the daemon&apos;s package again, and have the bus read it.</source>
        <translation>Installieren Sie das Paket des Dienstes noch einmal, und lassen Sie den Bus es lesen.</translation>
    </message>
    <message>
        <source>Create the group…</source>
        <translation>Gruppe anlegen …</translation>
    </message>
    <message>
        <source>Create the group norvix; then join it.</source>
        <translation>Legen Sie die Gruppe norvix an; treten Sie ihr dann bei.</translation>
    </message>
    <message>
        <source>Let me use it…</source>
        <translation>Benutzen erlauben …</translation>
    </message>
    <message>
        <source>Join the group norvix, then log in again.</source>
        <translation>Treten Sie der Gruppe norvix bei, und melden Sie sich dann neu an.</translation>
    </message>
    <message>
        <source>Use it now</source>
        <translation>Jetzt benutzen</translation>
    </message>
    <message>
        <source>Start this program anew, or log out and in again.</source>
        <translation>Starten Sie dieses Programm neu, oder melden Sie sich ab und wieder an.</translation>
    </message>
    <message>
        <source>Look as administrator…</source>
        <translation>Als Verwalter nachsehen …</translation>
    </message>
    <message>
        <source>Repeat the check as administrator.</source>
        <translation>Wiederholen Sie die Prüfung als Verwalter.</translation>
    </message>
    <message>
        <source>Install the distribution&apos;s full kernel, not one for clouds or a minimal one, and start the computer anew.</source>
        <translation>Installieren Sie den vollen Kernel der Distribution, keinen für die Cloud und keinen verkleinerten, und starten Sie den Rechner neu.</translation>
    </message>
    <message>
        <source>Install the kernel&apos;s headers and restart the daemon: it then builds the driver.</source>
        <translation>Installieren Sie die Header des Kernels und starten Sie den Dienst neu: Er baut dann den Treiber.</translation>
    </message>
    <message>
        <source>Install the kernel&apos;s headers and what this kernel&apos;s modules are compressed with, and restart the daemon: it then builds the driver.</source>
        <translation>Installieren Sie die Header des Kernels und das, womit die Module dieses Kernels komprimiert sind, und starten Sie den Dienst neu: Er baut dann den Treiber.</translation>
    </message>
    <message>
        <source>Install the distribution&apos;s full kernel, or put the driver&apos;s source into /opt/norvix/drivers and restart the daemon.</source>
        <translation>Installieren Sie den vollen Kernel der Distribution, oder legen Sie die Quellen des Treibers nach /opt/norvix/drivers und starten Sie den Dienst neu.</translation>
    </message>
    <message>
        <source>Show the build…</source>
        <translation>Bau zeigen …</translation>
    </message>
    <message>
        <source>Wait until it has finished.</source>
        <translation>Warten Sie, bis das beendet ist.</translation>
    </message>
    <message>
        <source>Plug it in, without a hub if you can.</source>
        <translation>Stecken Sie es ein, wenn möglich ohne Hub.</translation>
    </message>
    <message>
        <source>Unplug it and plug it in again.</source>
        <translation>Ziehen Sie es ab und stecken Sie es wieder ein.</translation>
    </message>
    <message>
        <source>Take into use…</source>
        <translation>Übernehmen …</translation>
    </message>
    <message>
        <source>Unplug it, plug it in again, and take it into use.</source>
        <translation>Ziehen Sie es ab, stecken Sie es wieder ein, und übernehmen Sie es.</translation>
    </message>
    <message>
        <source>Install the firmware (of the component non-free-firmware), then unplug the modem and plug it in again.</source>
        <translation>Installieren Sie die Firmware (aus dem Bereich non-free-firmware), ziehen Sie dann das Modem ab und stecken Sie es wieder ein.</translation>
    </message>
    <message>
        <source>Put the modem&apos;s firmware files into /lib/firmware (%1), then unplug the modem and plug it in again.</source>
        <translation>Legen Sie die Firmware-Dateien des Modems nach /lib/firmware (%1), ziehen Sie dann das Modem ab und stecken Sie es wieder ein.</translation>
    </message>
    <message>
        <source>Wait a minute. If it stays so, look at the telephone cable and the filter, then restart the modem on the page “Modem and driver”.</source>
        <translation>Warten Sie eine Minute. Bleibt es so, dann sehen Sie nach Telefonkabel und Splitter, und starten Sie das Modem auf der Seite „Modem und Treiber“ neu.</translation>
    </message>
    <message>
        <source>Plug the modem in, and look whether its driver is there.</source>
        <translation>Stecken Sie das Modem ein, und sehen Sie nach, ob sein Treiber da ist.</translation>
    </message>
    <message>
        <source>Install pppd.</source>
        <translation>Installieren Sie pppd.</translation>
    </message>
    <message>
        <source>Load it…</source>
        <translation>Laden …</translation>
    </message>
    <message>
        <source>Load the kernel&apos;s support for PPP.</source>
        <translation>Laden Sie die PPP-Unterstützung des Kernels.</translation>
    </message>
    <message>
        <source>Install the bridge program, and put it where the daemon looks for it.</source>
        <translation>Installieren Sie das Brückenprogramm, und legen Sie es dorthin, wo der Dienst es sucht.</translation>
    </message>
    <message>
        <source>Put it there…</source>
        <translation>Hinlegen …</translation>
    </message>
    <message>
        <source>Let the shipped file be put there.</source>
        <translation>Lassen Sie die mitgelieferte Datei dorthin legen.</translation>
    </message>
    <message>
        <source>Put yours in place…</source>
        <translation>Eigene hinlegen …</translation>
    </message>
    <message>
        <source>The shipped file is put in place of one that nobody has edited. One that somebody has edited is left alone: correct it by hand; the manual page norvix-daemon(8) shows one that works.</source>
        <translation>Die mitgelieferte Datei ersetzt eine, die niemand bearbeitet hat. Eine bearbeitete bleibt, wie sie ist: Berichtigen Sie sie von Hand; die Handbuchseite norvix-daemon(8) zeigt eine, die funktioniert.</translation>
    </message>
    <message>
        <source>The shipped files are missing, too: install the daemon&apos;s package again.</source>
        <translation>Auch die mitgelieferten Dateien fehlen: Installieren Sie das Paket des Dienstes noch einmal.</translation>
    </message>
    <message>
        <source>Somebody has set an option that pppd does not take. Look into the peer file below /etc/ppp/peers and at the daemon&apos;s setting pppd_arguments; the log names the option.</source>
        <translation>Jemand hat eine Option gesetzt, die pppd nicht kennt. Sehen Sie in die Gegenstellendatei unter /etc/ppp/peers und auf die Einstellung pppd_arguments des Dienstes; das Protokoll nennt die Option.</translation>
    </message>
    <message>
        <source>Mend…</source>
        <translation>Richten …</translation>
    </message>
    <message>
        <source>The line “noauth” is missing. A file that somebody has edited is left alone: add the line to the peer file below /etc/ppp/peers by hand.</source>
        <translation>Die Zeile „noauth“ fehlt. Eine Datei, die jemand bearbeitet hat, bleibt, wie sie ist: Fügen Sie die Zeile in die Gegenstellendatei unter /etc/ppp/peers von Hand ein.</translation>
    </message>
    <message>
        <source>Put yours first…</source>
        <translation>Eigenen nach vorn …</translation>
    </message>
    <message>
        <source>Let the account&apos;s entry be put first, readable for root only.</source>
        <translation>Lassen Sie den Eintrag des Kontos nach vorn stellen, nur für root lesbar.</translation>
    </message>
    <message>
        <source>The daemon writes the name servers at the next connection.</source>
        <translation>Der Dienst schreibt die Nameserver bei der nächsten Verbindung.</translation>
    </message>
    <message>
        <source>Another program uses PPP, for example for a mobile modem or a tunnel. Disconnecting here ends its connection, too. End it first, or do not disconnect while you need it.</source>
        <translation>Ein anderes Programm benutzt PPP, zum Beispiel für ein Mobilfunkmodem oder einen Tunnel. Trennen beendet auch dessen Verbindung. Beenden Sie es zuerst, oder trennen Sie nicht, solange Sie es brauchen.</translation>
    </message>
    <message>
        <source>Connect again.</source>
        <translation>Verbinden Sie erneut.</translation>
    </message>
    <message>
        <source>Wait for the line to come back, then connect again.</source>
        <translation>Warten Sie, bis die Leitung wieder steht, und verbinden Sie dann neu.</translation>
    </message>
    <message>
        <source>The next try begins now.</source>
        <translation>Der nächste Versuch beginnt jetzt.</translation>
    </message>
    <message>
        <source>Next try at %1.</source>
        <translation>Nächster Versuch um %1.</translation>
    </message>
    <message>
        <source>The line did not synchronise. Is the telephone cable plugged in?</source>
        <translation>Die Leitung hat sich nicht synchronisiert. Steckt das Telefonkabel?</translation>
    </message>
    <message>
        <source>The provider does not answer.</source>
        <translation>Der Anbieter antwortet nicht.</translation>
    </message>
    <message>
        <source>The provider refused login or password.</source>
        <translation>Der Anbieter hat Benutzername oder Passwort abgelehnt.</translation>
    </message>
    <message>
        <source>The connection did not come up. The check-up tells why.</source>
        <translation>Die Verbindung kam nicht zustande. Die Überprüfung sagt, warum.</translation>
    </message>
    <message>
        <source>The connection was lost.</source>
        <translation>Die Verbindung ging verloren.</translation>
    </message>
    <message>
        <source>Connected, but names are not resolved.</source>
        <translation>Verbunden, aber Namen werden nicht aufgelöst.</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1 so far.</source>
        <translation>Bisher %1.</translation>
    </message>
    <message>
        <source>Connecting</source>
        <translation>Verbindet</translation>
    </message>
    <message>
        <source>Waiting for the line to synchronise.</source>
        <translation>Warten auf die Synchronisation der Leitung.</translation>
    </message>
    <message>
        <source>Ending</source>
        <translation>Endet</translation>
    </message>
    <message>
        <source>The attempt ends as soon as it can; it may still wait for the line.</source>
        <translation>Der Versuch endet, sobald er kann; vielleicht wartet er noch auf die Leitung.</translation>
    </message>
    <message>
        <source>The provider is called.</source>
        <translation>Der Anbieter wird gerufen.</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Verbunden</translation>
    </message>
    <message>
        <source>For %1.</source>
        <translation>Seit %1.</translation>
    </message>
    <message>
        <source>The month&apos;s limit is reached.</source>
        <translation>Die Grenze des Monats ist erreicht.</translation>
    </message>
    <message>
        <source>Now: %1.</source>
        <translation>Jetzt: %1.</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>Nicht verbunden</translation>
    </message>
    <message>
        <source>The modem is not plugged in, or not set up yet.</source>
        <translation>Das Modem ist nicht eingesteckt oder noch nicht eingerichtet.</translation>
    </message>
    <message>
        <source>A new modem was found: %1.</source>
        <translation>Ein neues Modem wurde gefunden: %1.</translation>
    </message>
    <message>
        <source>The daemon is started.</source>
        <translation>Der Dienst wird gestartet.</translation>
    </message>
    <message>
        <source>Daemon away</source>
        <translation>Dienst nicht da</translation>
    </message>
    <message>
        <source>The connection stays; until the daemon runs again nothing is known of it.</source>
        <translation>Die Verbindung bleibt; bis der Dienst wieder läuft, ist nichts über sie bekannt.</translation>
    </message>
    <message>
        <source>The daemon is not running; “Connect” starts it.</source>
        <translation>Der Dienst läuft nicht; „Verbinden“ startet ihn.</translation>
    </message>
    <message>
        <source>%1 d %2 h</source>
        <translation>%1 d %2 h</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 h %2 min</translation>
    </message>
    <message>
        <source>%1 min</source>
        <translation>%1 min</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>The system bus can not be reached.</source>
        <translation>Der Systembus ist nicht erreichbar.</translation>
    </message>
    <message>
        <source>The daemon is not running.</source>
        <translation>Der Dienst läuft nicht.</translation>
    </message>
    <message>
        <source>The daemon could not be started.</source>
        <translation>Der Dienst konnte nicht gestartet werden.</translation>
    </message>
    <message>
        <source>You are not allowed to use the modem yet.</source>
        <translation>Sie dürfen das Modem noch nicht benutzen.</translation>
    </message>
    <message>
        <source>The daemon does not answer.</source>
        <translation>Der Dienst antwortet nicht.</translation>
    </message>
    <message>
        <source>The file %1 can not be used.</source>
        <translation>Die Datei %1 kann nicht benutzt werden.</translation>
    </message>
    <message>
        <source>No system bus</source>
        <translation>Kein Systembus</translation>
    </message>
    <message>
        <source>Nothing on this system can be asked about the modem.</source>
        <translation>Auf diesem System kann nichts nach dem Modem gefragt werden.</translation>
    </message>
    <message>
        <source>No answer</source>
        <translation>Keine Antwort</translation>
    </message>
    <message>
        <source>The daemon is running but does not answer.</source>
        <translation>Der Dienst läuft, antwortet aber nicht.</translation>
    </message>
    <message>
        <source>Modem restarts</source>
        <translation>Modem startet neu</translation>
    </message>
    <message>
        <source>The driver is loaded anew; this takes up to a minute.</source>
        <translation>Der Treiber wird neu geladen; das dauert bis zu einer Minute.</translation>
    </message>
    <message>
        <source>The connection was asked for.</source>
        <translation>Um die Verbindung wurde gebeten.</translation>
    </message>
    <message>
        <source>Driver is built</source>
        <translation>Treiber wird gebaut</translation>
    </message>
    <message>
        <source>It is built for this kernel; this may take some minutes.</source>
        <translation>Er wird für diesen Kernel gebaut; das kann einige Minuten dauern.</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Trennen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Try now</source>
        <translation>Jetzt versuchen</translation>
    </message>
    <message>
        <source>Set up…</source>
        <translation>Einrichten …</translation>
    </message>
    <message>
        <source>Check account…</source>
        <translation>Konto prüfen …</translation>
    </message>
    <message>
        <source>Check-up…</source>
        <translation>Überprüfung …</translation>
    </message>
    <message>
        <source>Show…</source>
        <translation>Zeigen …</translation>
    </message>
    <message>
        <source>Still connected.</source>
        <translation>Noch verbunden.</translation>
    </message>
    <message>
        <source>The provider hung up, as it does every day.</source>
        <translation>Der Anbieter hat aufgelegt, wie jeden Tag.</translation>
    </message>
    <message>
        <source>An attempt failed. %1</source>
        <translation>Ein Versuch schlug fehl. %1</translation>
    </message>
    <message>
        <source>No connection</source>
        <translation>Keine Verbindung</translation>
    </message>
    <message>
        <source>Connection lost</source>
        <translation>Verbindung verloren</translation>
    </message>
    <message>
        <source>A new modem was found</source>
        <translation>Ein neues Modem wurde gefunden</translation>
    </message>
    <message>
        <source>%1 can be set up.</source>
        <translation>%1 kann eingerichtet werden.</translation>
    </message>
    <message>
        <source>The month&apos;s limit is reached</source>
        <translation>Die Grenze des Monats ist erreicht</translation>
    </message>
    <message>
        <source>The connection stays; the history shows the traffic.</source>
        <translation>Die Verbindung bleibt; der Verlauf zeigt die Datenmenge.</translation>
    </message>
    <message>
        <source>The check-up tells what is known about it.</source>
        <translation>Die Überprüfung sagt, was darüber bekannt ist.</translation>
    </message>
    <message>
        <source>Mbit/s</source>
        <translation>Mbit/s</translation>
    </message>
    <message>
        <source>MB</source>
        <translation>MB</translation>
    </message>
    <message>
        <source>GB</source>
        <translation>GB</translation>
    </message>
    <message>
        <source>Traffic</source>
        <translation>Datenmenge</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Empfang</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Senden</translation>
    </message>
    <message>
        <source>No traffic yet. It is counted while the keeper runs.</source>
        <translation>Noch keine Datenmenge. Sie wird gezählt, solange der Wächter läuft.</translation>
    </message>
    <message>
        <source>per day</source>
        <translation>je Tag</translation>
    </message>
    <message>
        <source>per billing month</source>
        <translation>je Abrechnungsmonat</translation>
    </message>
    <message>
        <source>%1 to %2</source>
        <translation>%1 bis %2</translation>
    </message>
    <message>
        <source>Line rate</source>
        <translation>Leitungsrate</translation>
    </message>
    <message>
        <source>last day</source>
        <translation>letzter Tag</translation>
    </message>
    <message>
        <source>last 30 days</source>
        <translation>letzte 30 Tage</translation>
    </message>
    <message>
        <source>No line rates yet. They are noted while the keeper runs and the driver tells them.</source>
        <translation>Noch keine Leitungsraten. Sie werden notiert, solange der Wächter läuft und der Treiber sie nennt.</translation>
    </message>
    <message>
        <source>No noise margins yet. They are noted while the keeper runs and the driver tells them.</source>
        <translation>Noch keine Störabstände. Sie werden notiert, solange der Wächter läuft und der Treiber sie nennt.</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <translation>%1 %2</translation>
    </message>
    <message>
        <source>%1 not known</source>
        <translation>%1 nicht bekannt</translation>
    </message>
    <message>
        <source>%1 at most %2 (%3).</source>
        <translation>%1 höchstens %2 (%3).</translation>
    </message>
    <message>
        <source>%1: not known</source>
        <translation>%1: nicht bekannt</translation>
    </message>
    <message>
        <source>%1: %2, %3</source>
        <translation>%1: %2, %3</translation>
    </message>
    <message>
        <source>%1 %2.</source>
        <translation>%1 %2.</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Geschwindigkeit</translation>
    </message>
    <message>
        <source>last five minutes</source>
        <translation>letzte fünf Minuten</translation>
    </message>
    <message>
        <source>The speed of the last five minutes appears here while connected.</source>
        <translation>Die Geschwindigkeit der letzten fünf Minuten erscheint hier, solange Sie verbunden sind.</translation>
    </message>
    <message>
        <source>now</source>
        <translation>jetzt</translation>
    </message>
    <message>
        <source>There is no option “%1”.</source>
        <translation>Es gibt keine Option „%1“.</translation>
    </message>
    <message>
        <source>“%1” is not understood: no file or address is taken.</source>
        <translation>„%1“ wird nicht verstanden: Dateien und Adressen werden nicht angenommen.</translation>
    </message>
    <message>
        <source>usage: norvix-desktop [--background]

Shows the window of the USB ADSL modem. Where it is open already, it comes to the front.

  --background   begin in the tray; where there is none, the window is shown
  --help         show this text
  --version      show the version
</source>
        <translation>Aufruf: norvix-desktop [--background]

Zeigt das Fenster des USB-ADSL-Modems. Wo es schon offen ist, kommt es nach vorn.

  --background   in der Leiste beginnen; wo es keine gibt, wird das Fenster gezeigt
  --help         diesen Text zeigen
  --version      die Version zeigen
</translation>
    </message>
    <message>
        <source>The window is in the tray</source>
        <translation>Das Fenster ist in der Leiste</translation>
    </message>
    <message>
        <source>A click on the icon there opens it again; “Quit” ends the program.</source>
        <translation>Ein Klick auf das Symbol dort öffnet es wieder; „Beenden“ beendet das Programm.</translation>
    </message>
    <message>
        <source>The connection stays</source>
        <translation>Die Verbindung bleibt</translation>
    </message>
    <message>
        <source>Only the window has ended. To end the connection, choose “Disconnect” before.</source>
        <translation>Nur das Fenster ist beendet. Um die Verbindung zu beenden, wählen Sie vorher „Trennen“.</translation>
    </message>
    <message>
        <source>Open the window</source>
        <translation>Fenster öffnen</translation>
    </message>
    <message>
        <source>Address: %1</source>
        <translation>Adresse: %1</translation>
    </message>
    <message>
        <source>Modem: %1</source>
        <translation>Modem: %1</translation>
    </message>
    <message>
        <source>Quit (the connection stays)</source>
        <translation>Beenden (die Verbindung bleibt)</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Zeigen</translation>
    </message>
    <message>
        <source>Store account</source>
        <translation>Konto speichern</translation>
    </message>
    <message>
        <source>type it to change it</source>
        <translation>eingeben, um es zu ändern</translation>
    </message>
    <message>
        <source>Show the password</source>
        <translation>Passwort zeigen</translation>
    </message>
    <message>
        <source>Login and password stand in your provider&apos;s letter.</source>
        <translation>Benutzername und Passwort stehen im Schreiben Ihres Anbieters.</translation>
    </message>
    <message>
        <source>Hide</source>
        <translation>Verbergen</translation>
    </message>
    <message>
        <source>Hide the password</source>
        <translation>Passwort verbergen</translation>
    </message>
    <message>
        <source>The account is being stored.</source>
        <translation>Das Konto wird gespeichert.</translation>
    </message>
    <message>
        <source>The account is stored. It counts from the next connection on.</source>
        <translation>Das Konto ist gespeichert. Es gilt ab der nächsten Verbindung.</translation>
    </message>
    <message>
        <source>Account and line</source>
        <translation>Konto und Leitung</translation>
    </message>
    <message>
        <source>%1 What is shown here may not be what is stored.</source>
        <translation>%1 Was hier steht, ist vielleicht nicht das, was gespeichert ist.</translation>
    </message>
    <message>
        <source>An idle time of %1 is stored. Nothing acts on it: a connection that somebody wants stays.</source>
        <translation>Eine Ruhezeit von %1 ist gespeichert. Nichts richtet sich danach: Eine Verbindung, die jemand will, bleibt.</translation>
    </message>
    <message>
        <source>Automatic connection</source>
        <translation>Automatische Verbindung</translation>
    </message>
    <message>
        <source>Connect when the computer &amp;starts</source>
        <translation>Verbinden, wenn der Rechner &amp;startet</translation>
    </message>
    <message>
        <source>Connect when the &amp;modem is plugged in</source>
        <translation>Verbinden, wenn das &amp;Modem eingesteckt wird</translation>
    </message>
    <message>
        <source>Connect again a&amp;fter a loss</source>
        <translation>Nach einem &amp;Verlust wieder verbinden</translation>
    </message>
    <message>
        <source>The keeper, which does that, is not running. The check-up helps.</source>
        <translation>Der Wächter, der das tut, läuft nicht. Die Überprüfung hilft.</translation>
    </message>
    <message>
        <source>Check again</source>
        <translation>Noch einmal prüfen</translation>
    </message>
    <message>
        <source>Copy report</source>
        <translation>Bericht kopieren</translation>
    </message>
    <message>
        <source>Findings</source>
        <translation>Befunde</translation>
    </message>
    <message>
        <source>This program could not be started anew as a member of the group norvix. Log out and in again.</source>
        <translation>Dieses Programm konnte nicht als Mitglied der Gruppe norvix neu gestartet werden. Melden Sie sich ab und wieder an.</translation>
    </message>
    <message>
        <source>Check-up</source>
        <translation>Überprüfung</translation>
    </message>
    <message>
        <source>Looking for %1 already; the daemon may be slow to answer.</source>
        <translation>Es wird schon %1 nachgesehen; vielleicht antwortet der Dienst langsam.</translation>
    </message>
    <message>
        <source>Hidden</source>
        <translation>Verborgen</translation>
    </message>
    <message>
        <source>Only an administrator can look at this: %1.</source>
        <translation>Nur ein Verwalter kann das ansehen: %1.</translation>
    </message>
    <message>
        <source>Copy command</source>
        <translation>Befehl kopieren</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Befehl</translation>
    </message>
    <message>
        <source>Connection</source>
        <translation>Verbindung</translation>
    </message>
    <message>
        <source>The daemon is being started.</source>
        <translation>Der Dienst wird gestartet.</translation>
    </message>
    <message>
        <source>none needed</source>
        <translation>keine nötig</translation>
    </message>
    <message>
        <source>%1, there</source>
        <translation>%1, vorhanden</translation>
    </message>
    <message>
        <source>%1, missing</source>
        <translation>%1, fehlt</translation>
    </message>
    <message>
        <source>USB id</source>
        <translation>USB-Kennung</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>Firmware</translation>
    </message>
    <message>
        <source>Driver</source>
        <translation>Treiber</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Kernel</source>
        <translation>Kernel</translation>
    </message>
    <message>
        <source>Restart the modem…</source>
        <translation>Modem neu starten …</translation>
    </message>
    <message>
        <source>Build the driver anew…</source>
        <translation>Treiber neu bauen …</translation>
    </message>
    <message>
        <source>Output of the last build:</source>
        <translation>Ausgabe des letzten Baus:</translation>
    </message>
    <message>
        <source>The driver is being built</source>
        <translation>Der Treiber wird gebaut</translation>
    </message>
    <message>
        <source>Output of the build</source>
        <translation>Ausgabe des Baus</translation>
    </message>
    <message>
        <source>The daemon has begun anew. Where the kernel has no driver for the modem it builds one now.</source>
        <translation>Der Dienst hat neu begonnen. Wo der Kernel keinen Treiber für das Modem hat, baut er jetzt einen.</translation>
    </message>
    <message>
        <source>Modem and driver</source>
        <translation>Modem und Treiber</translation>
    </message>
    <message>
        <source>The driver is being built, for %1 already. Connections wait until then.</source>
        <translation>Der Treiber wird gebaut, schon seit %1. Verbindungen warten so lange.</translation>
    </message>
    <message>
        <source>No driver was built yet, or its output is not readable for you.</source>
        <translation>Es wurde noch kein Treiber gebaut, oder Sie dürfen die Ausgabe nicht lesen.</translation>
    </message>
    <message>
        <source>Restart the modem</source>
        <translation>Modem neu starten</translation>
    </message>
    <message>
        <source>This ends the connection. The line needs up to a minute to synchronise again.</source>
        <translation>Das beendet die Verbindung. Die Leitung braucht bis zu einer Minute, um sich wieder zu synchronisieren.</translation>
    </message>
    <message>
        <source>Restart</source>
        <translation>Neu starten</translation>
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
        <source>Ended because</source>
        <translation>Grund des Endes</translation>
    </message>
    <message>
        <source>Sessions and failed attempts</source>
        <translation>Sitzungen und fehlgeschlagene Versuche</translation>
    </message>
    <message>
        <source>No session yet. The first one appears here when you connect.</source>
        <translation>Noch keine Sitzung. Die erste erscheint hier, wenn Sie verbinden.</translation>
    </message>
    <message>
        <source>Store</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Traffic per day</source>
        <translation>Datenmenge je Tag</translation>
    </message>
    <message>
        <source>Traffic per month</source>
        <translation>Datenmenge je Monat</translation>
    </message>
    <message>
        <source>Line rate, last day</source>
        <translation>Leitungsrate, letzter Tag</translation>
    </message>
    <message>
        <source>Line rate, last 30 days</source>
        <translation>Leitungsrate, letzte 30 Tage</translation>
    </message>
    <message>
        <source>Noise margin, last day</source>
        <translation>Störabstand, letzter Tag</translation>
    </message>
    <message>
        <source>Noise margin, last 30 days</source>
        <translation>Störabstand, letzte 30 Tage</translation>
    </message>
    <message>
        <source> GB</source>
        <translation> GB</translation>
    </message>
    <message>
        <source>&amp;Limit in a billing month</source>
        <translation>&amp;Grenze im Abrechnungsmonat</translation>
    </message>
    <message>
        <source>Billing month begins on &amp;day</source>
        <translation>Abrechnungsmonat beginnt am &amp;Tag</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>The keeper is not running. It remembers sessions and counts traffic while it runs; what is shown here may be old.</source>
        <translation>Der Wächter läuft nicht. Er merkt sich Sitzungen und zählt die Datenmenge, solange er läuft; was hier steht, kann alt sein.</translation>
    </message>
    <message>
        <source>The keeper is not running. It remembers sessions and counts traffic while it runs.</source>
        <translation>Der Wächter läuft nicht. Er merkt sich Sitzungen und zählt die Datenmenge, solange er läuft.</translation>
    </message>
    <message>
        <source>The keeper has been asked and does not answer yet: %1 so far.</source>
        <translation>Der Wächter wurde gefragt und antwortet noch nicht: bisher %1.</translation>
    </message>
    <message>
        <source>Only members of the group “norvix” may see the history.</source>
        <translation>Nur Mitglieder der Gruppe „norvix“ dürfen den Verlauf sehen.</translation>
    </message>
    <message>
        <source>The keeper does not answer.</source>
        <translation>Der Wächter antwortet nicht.</translation>
    </message>
    <message>
        <source>This billing month: %1</source>
        <translation>Dieser Abrechnungsmonat: %1</translation>
    </message>
    <message>
        <source>The keeper does not answer; nothing was stored.</source>
        <translation>Der Wächter antwortet nicht; nichts wurde gespeichert.</translation>
    </message>
    <message>
        <source>Stored.</source>
        <translation>Gespeichert.</translation>
    </message>
    <message>
        <source>PPPoE (PPP over Ethernet)</source>
        <translation>PPPoE (PPP über Ethernet)</translation>
    </message>
    <message>
        <source>PPPoA (PPP over ATM)</source>
        <translation>PPPoA (PPP über ATM)</translation>
    </message>
    <message>
        <source>Store line</source>
        <translation>Leitung speichern</translation>
    </message>
    <message>
        <source>choose to fill in its usual values</source>
        <translation>wählen, um die üblichen Werte einzutragen</translation>
    </message>
    <message>
        <source>Pro&amp;vider</source>
        <translation>Anbie&amp;ter</translation>
    </message>
    <message>
        <source>These are values that providers have commonly used; your provider&apos;s letter decides.</source>
        <translation>Diese Werte haben Anbieter üblicherweise verwendet; es entscheidet das Schreiben Ihres Anbieters.</translation>
    </message>
    <message>
        <source>VP&amp;I</source>
        <translation>VP&amp;I</translation>
    </message>
    <message>
        <source>V&amp;CI</source>
        <translation>V&amp;CI</translation>
    </message>
    <message>
        <source>Servic&amp;e (only noted)</source>
        <translation>Di&amp;enst (nur notiert)</translation>
    </message>
    <message>
        <source>VPI and VCI are missing: choose your provider, or enter the values of its letter.</source>
        <translation>VPI und VCI fehlen: Wählen Sie Ihren Anbieter, oder geben Sie die Werte aus seinem Schreiben ein.</translation>
    </message>
    <message>
        <source>The line is being stored.</source>
        <translation>Die Leitung wird gespeichert.</translation>
    </message>
    <message>
        <source>The line is stored. It counts from the next connection on.</source>
        <translation>Die Leitung ist gespeichert. Sie gilt ab der nächsten Verbindung.</translation>
    </message>
    <message>
        <source>Follow</source>
        <translation>Mitlaufen</translation>
    </message>
    <message>
        <source>Which log</source>
        <translation>Welches Protokoll</translation>
    </message>
    <message>
        <source>Clear the filter</source>
        <translation>Filter leeren</translation>
    </message>
    <message>
        <source>Since the daemon&apos;s start</source>
        <translation>Seit dem Start des Dienstes</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Copies what is shown, without login and password</source>
        <translation>Kopiert, was gezeigt wird, ohne Benutzername und Passwort</translation>
    </message>
    <message>
        <source>Only the end is shown; %1 has all of it.</source>
        <translation>Nur das Ende wird gezeigt; %1 enthält alles.</translation>
    </message>
    <message>
        <source>There is no log %1 yet.</source>
        <translation>Es gibt noch kein Protokoll %1.</translation>
    </message>
    <message>
        <source>You may not read %1: that is for root and the members of the group norvix. The check-up helps to become one.</source>
        <translation>Sie dürfen %1 nicht lesen: Das dürfen root und die Mitglieder der Gruppe norvix. Die Überprüfung hilft, eines zu werden.</translation>
    </message>
    <message>
        <source>Copied, without login and password.</source>
        <translation>Kopiert, ohne Benutzername und Passwort.</translation>
    </message>
    <message>
        <source>Copied. The daemon did not say what the login is: look whether it stands in the copy before you give it away.</source>
        <translation>Kopiert. Der Dienst hat den Benutzernamen nicht genannt: Sehen Sie nach, ob er in der Kopie steht, bevor Sie sie weitergeben.</translation>
    </message>
    <message>
        <source>ADSL modem</source>
        <translation>ADSL-Modem</translation>
    </message>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
    <message>
        <source>Start with the session, in the tray</source>
        <translation>Mit der Sitzung beginnen, in der Leiste</translation>
    </message>
    <message>
        <source>Tell me when</source>
        <translation>Mitteilen, wenn</translation>
    </message>
    <message>
        <source>an attempt to connect has failed</source>
        <translation>ein Verbindungsversuch fehlgeschlagen ist</translation>
    </message>
    <message>
        <source>the connection was lost, and nobody ended it</source>
        <translation>die Verbindung verloren ging, ohne dass jemand sie beendet hat</translation>
    </message>
    <message>
        <source>a new modem was found</source>
        <translation>ein neues Modem gefunden wurde</translation>
    </message>
    <message>
        <source>the month&apos;s limit is reached</source>
        <translation>die Grenze des Monats erreicht ist</translation>
    </message>
    <message>
        <source>This program</source>
        <translation>Dieses Programm</translation>
    </message>
    <message>
        <source>Where the desktop has no tray, the window is shown then. The connection does not need this program: it stays when the program ends.</source>
        <translation>Wo der Desktop keine Leiste hat, wird dann das Fenster gezeigt. Die Verbindung braucht dieses Programm nicht: Sie bleibt, wenn es endet.</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>This could not be stored in your folder for settings.</source>
        <translation>Das konnte nicht in Ihrem Ordner für Einstellungen gespeichert werden.</translation>
    </message>
    <message>
        <source>Stop waiting</source>
        <translation>Nicht mehr warten</translation>
    </message>
    <message>
        <source>It said: “%1”.</source>
        <translation>Es sagte: „%1“.</translation>
    </message>
    <message>
        <source>Waiting for an administrator&apos;s password.</source>
        <translation>Warten auf das Passwort eines Verwalters.</translation>
    </message>
    <message>
        <source>Waiting for an administrator&apos;s password for %1.</source>
        <translation>Warten auf das Passwort eines Verwalters, seit %1.</translation>
    </message>
    <message>
        <source>The window that asks for it may be behind this one.</source>
        <translation>Das Fenster, das danach fragt, kann hinter diesem sein.</translation>
    </message>
    <message>
        <source>not connected</source>
        <translation>nicht verbunden</translation>
    </message>
    <message>
        <source>connected</source>
        <translation>verbunden</translation>
    </message>
    <message>
        <source>needs attention</source>
        <translation>braucht Aufmerksamkeit</translation>
    </message>
    <message>
        <source>Back to the modem</source>
        <translation>Zurück zum Modem</translation>
    </message>
    <message>
        <source>Internet traffic goes through %1. End that connection, then disconnect and connect here again; or keep both and prefer this line by the command below.</source>
        <translation>Der Internetverkehr geht über %1. Beenden Sie jene Verbindung, trennen und verbinden Sie dann hier neu; oder behalten Sie beide und bevorzugen Sie diese Leitung mit dem Befehl unten.</translation>
    </message>
    <message>
        <source>Internet traffic goes through %1. End that connection, then disconnect and connect here again.</source>
        <translation>Der Internetverkehr geht über %1. Beenden Sie jene Verbindung, trennen und verbinden Sie dann hier neu.</translation>
    </message>
    <message>
        <source>Disconnect and connect again, or set the route by hand.</source>
        <translation>Trennen und verbinden Sie neu, oder setzen Sie die Route von Hand.</translation>
    </message>
    <message>
        <source>Whichever connection comes up last writes the name servers: connect the one again that you want to use.</source>
        <translation>Die Verbindung, die zuletzt zustande kommt, schreibt die Nameserver: Verbinden Sie die neu, die Sie benutzen wollen.</translation>
    </message>
    <message>
        <source>Install the daemon&apos;s package again.</source>
        <translation>Installieren Sie das Paket des Dienstes noch einmal.</translation>
    </message>
    <message>
        <source>Somebody&apos;s file %1 hides what is shipped. Give it another name.</source>
        <translation>Die Datei %1 von jemandem verdeckt die mitgelieferte. Geben Sie ihr einen anderen Namen.</translation>
    </message>
    <message>
        <source>Have NetworkManager read its settings, then disconnect and connect again.</source>
        <translation>Lassen Sie NetworkManager seine Einstellungen lesen, trennen und verbinden Sie dann neu.</translation>
    </message>
    <message>
        <source>Leave the modem&apos;s interfaces out of your own files in /etc/systemd/network that sort before 10-norvix.network; then have them read, and disconnect and connect again.</source>
        <translation>Lassen Sie die Schnittstellen des Modems aus Ihren eigenen Dateien in /etc/systemd/network heraus, die vor 10-norvix.network kommen; lassen Sie sie dann lesen, und trennen und verbinden Sie neu.</translation>
    </message>
    <message>
        <source>Install resolvconf again, or openresolv if that is it.</source>
        <translation>Installieren Sie resolvconf noch einmal, oder openresolv, wenn es das ist.</translation>
    </message>
    <message>
        <source>Install the keeper.</source>
        <translation>Installieren Sie den Wächter.</translation>
    </message>
    <message>
        <source>Start the keeper.</source>
        <translation>Starten Sie den Wächter.</translation>
    </message>
    <message>
        <source>Install the keeper&apos;s package again, and have the bus read it.</source>
        <translation>Installieren Sie das Paket des Wächters noch einmal, und lassen Sie den Bus es lesen.</translation>
    </message>
    <message>
        <source>The keeper must be in the group norvix.</source>
        <translation>Der Wächter muss in der Gruppe norvix sein.</translation>
    </message>
    <message>
        <source>The keeper is not installed.</source>
        <translation>Der Wächter ist nicht installiert.</translation>
    </message>
    <message>
        <source>The keeper is not running.</source>
        <translation>Der Wächter läuft nicht.</translation>
    </message>
    <message>
        <source>The keeper&apos;s answer is not understood: it may be of another version.</source>
        <translation>Die Antwort des Wächters ist nicht zu verstehen: Er kann von einer anderen Fassung sein.</translation>
    </message>
    <message>
        <source>Assistant…</source>
        <translation>Assistent …</translation>
    </message>
    <message>
        <source>Next try in %1.</source>
        <translation>Nächster Versuch in %1.</translation>
    </message>
    <message>
        <source>%1 attempts failed until %2. %3</source>
        <translation>%1 Versuche schlugen bis %2 fehl. %3</translation>
    </message>
    <message>
        <source>kB</source>
        <translation>kB</translation>
    </message>
    <message>
        <source>S&amp;how</source>
        <translation>&amp;Zeigen</translation>
    </message>
    <message>
        <source>The connection was lost at %1, back after %2.</source>
        <translation>Die Verbindung ging um %1 verloren und stand nach %2 wieder.</translation>
    </message>
    <message>
        <source>Restart it…</source>
        <translation>Neu starten …</translation>
    </message>
    <message>
        <source>Restart the companion.</source>
        <translation>Starten Sie den Begleitdienst neu.</translation>
    </message>
    <message>
        <source>Start the keeper…</source>
        <translation>Wächter starten …</translation>
    </message>
    <message>
        <source>Restart the keeper…</source>
        <translation>Wächter neu starten …</translation>
    </message>
    <message>
        <source>Restart the keeper.</source>
        <translation>Starten Sie den Wächter neu.</translation>
    </message>
</context>
</TS>
