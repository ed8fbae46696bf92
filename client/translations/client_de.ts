<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Say</name>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 ist leer.</translation>
    </message>
    <message>
        <source>%1 has %2 characters; more than %3 would not be recognised again.</source>
        <translation>%1 hat %2 Zeichen; mehr als %3 würden nicht wiedererkannt.</translation>
    </message>
    <message>
        <source>%1 contains a line feed.</source>
        <translation>%1 enthält einen Zeilenumbruch.</translation>
    </message>
    <message>
        <source>%1 contains a control character.</source>
        <translation>%1 enthält ein Steuerzeichen.</translation>
    </message>
    <message>
        <source>%1 contains a character that is not valid text.</source>
        <translation>%1 enthält ein Zeichen, das kein gültiger Text ist.</translation>
    </message>
    <message>
        <source>The password</source>
        <translation>Das Passwort</translation>
    </message>
    <message>
        <source>The login</source>
        <translation>Der Benutzername</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
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
        <source>yes</source>
        <translation>ja</translation>
    </message>
    <message>
        <source>no</source>
        <translation>nein</translation>
    </message>
    <message>
        <source>Modem</source>
        <translation>Modem</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Leitung</translation>
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
        <source>The system bus can not be reached.</source>
        <translation>Der Systembus ist nicht erreichbar.</translation>
    </message>
    <message>
        <source>The daemon is not running.</source>
        <translation>Der Dienst läuft nicht.</translation>
    </message>
    <message>
        <source>The daemon is on the bus but does not answer.</source>
        <translation>Der Dienst ist am Bus, antwortet aber nicht.</translation>
    </message>
    <message>
        <source>running and answering</source>
        <translation>läuft und antwortet</translation>
    </message>
    <message>
        <source>The companion that finds USB devices does not answer on the bus, so no modem is ever noticed.</source>
        <translation>Der Begleitdienst, der USB-Geräte findet, antwortet nicht am Bus; so wird kein Modem bemerkt.</translation>
    </message>
    <message>
        <source>not known without the system bus</source>
        <translation>ohne den Systembus nicht bekannt</translation>
    </message>
    <message>
        <source>/etc/dbus-1/system.d/norvix.conf is missing.</source>
        <translation>/etc/dbus-1/system.d/norvix.conf fehlt.</translation>
    </message>
    <message>
        <source>installed</source>
        <translation>installiert</translation>
    </message>
    <message>
        <source>this user may use the daemon</source>
        <translation>dieser Benutzer darf den Dienst benutzen</translation>
    </message>
    <message>
        <source>not known without the daemon</source>
        <translation>ohne den Dienst nicht bekannt</translation>
    </message>
    <message>
        <source>The bus refuses this user, and there is no group “norvix”.</source>
        <translation>Der Bus weist diesen Benutzer ab, und die Gruppe „norvix“ gibt es nicht.</translation>
    </message>
    <message>
        <source>This user is in the group “norvix”, but this session began earlier.</source>
        <translation>Dieser Benutzer ist in der Gruppe „norvix“, aber diese Sitzung begann früher.</translation>
    </message>
    <message>
        <source>The bus refuses this user: only root and the group “norvix” may.</source>
        <translation>Der Bus weist diesen Benutzer ab: Nur root und die Gruppe „norvix“ dürfen.</translation>
    </message>
    <message>
        <source>No modem that the daemon knows is plugged in.</source>
        <translation>Kein Modem, das der Dienst kennt, ist eingesteckt.</translation>
    </message>
    <message>
        <source>%1 is plugged in but not taken into use.</source>
        <translation>%1 ist eingesteckt, aber nicht übernommen.</translation>
    </message>
    <message>
        <source>%1 is plugged in, but the daemon does not see it.</source>
        <translation>%1 ist eingesteckt, aber der Dienst sieht es nicht.</translation>
    </message>
    <message>
        <source>%1 is plugged in</source>
        <translation>%1 ist eingesteckt</translation>
    </message>
    <message>
        <source>The driver is being built now.</source>
        <translation>Der Treiber wird gerade gebaut.</translation>
    </message>
    <message>
        <source>%1 is loaded</source>
        <translation>%1 ist geladen</translation>
    </message>
    <message>
        <source>%1 is there for kernel %2</source>
        <translation>%1 ist für Kernel %2 vorhanden</translation>
    </message>
    <message>
        <source>the modules of kernel %1 can not be listed</source>
        <translation>die Module von Kernel %1 lassen sich nicht auflisten</translation>
    </message>
    <message>
        <source>There is no driver %1 for kernel %2.</source>
        <translation>Für Kernel %2 gibt es keinen Treiber %1.</translation>
    </message>
    <message>
        <source>The modem still shows the id %1: it has not got its firmware.</source>
        <translation>Das Modem zeigt noch die Kennung %1: Es hat seine Firmware nicht bekommen.</translation>
    </message>
    <message>
        <source>The driver could not load the modem&apos;s firmware.</source>
        <translation>Der Treiber konnte die Firmware des Modems nicht laden.</translation>
    </message>
    <message>
        <source>none needed</source>
        <translation>keine nötig</translation>
    </message>
    <message>
        <source>/lib/firmware/%1 is missing.</source>
        <translation>/lib/firmware/%1 fehlt.</translation>
    </message>
    <message>
        <source>%1 is there</source>
        <translation>%1 ist vorhanden</translation>
    </message>
    <message>
        <source>The line is not up: %1.</source>
        <translation>Die Leitung steht nicht: %1.</translation>
    </message>
    <message>
        <source>synchronised</source>
        <translation>synchronisiert</translation>
    </message>
    <message>
        <source>The ATM device reports no carrier.</source>
        <translation>Das ATM-Gerät meldet keinen Träger.</translation>
    </message>
    <message>
        <source>the kernel log is not readable for this user</source>
        <translation>das Kernelprotokoll ist für diesen Benutzer nicht lesbar</translation>
    </message>
    <message>
        <source>this modem needs none</source>
        <translation>dieses Modem braucht keine</translation>
    </message>
    <message>
        <source>VPI, VCI and protocol are not set.</source>
        <translation>VPI, VCI und Protokoll sind nicht gesetzt.</translation>
    </message>
    <message>
        <source>PPPoE needs VPI and VCI, and one of them is not set.</source>
        <translation>PPPoE braucht VPI und VCI, und eines davon ist nicht gesetzt.</translation>
    </message>
    <message>
        <source>VPI and VCI are both 0, which no bridge accepts.</source>
        <translation>VPI und VCI sind beide 0, was keine Brücke annimmt.</translation>
    </message>
    <message>
        <source>The protocol “%1” is not known and means PPPoA.</source>
        <translation>Das Protokoll „%1“ ist nicht bekannt und bedeutet PPPoA.</translation>
    </message>
    <message>
        <source>pppd is not installed.</source>
        <translation>pppd ist nicht installiert.</translation>
    </message>
    <message>
        <source>Kernel %1 lacks what this connection needs: %2.</source>
        <translation>Kernel %1 fehlt, was diese Verbindung braucht: %2.</translation>
    </message>
    <message>
        <source>/dev/ppp does not exist.</source>
        <translation>/dev/ppp gibt es nicht.</translation>
    </message>
    <message>
        <source>pppd and the kernel&apos;s support are there</source>
        <translation>pppd und die Unterstützung des Kernels sind vorhanden</translation>
    </message>
    <message>
        <source>not needed for this protocol</source>
        <translation>für dieses Protokoll nicht nötig</translation>
    </message>
    <message>
        <source>%1 is missing or can not be run.</source>
        <translation>%1 fehlt oder ist nicht ausführbar.</translation>
    </message>
    <message>
        <source>there</source>
        <translation>vorhanden</translation>
    </message>
    <message>
        <source>%1 is missing.</source>
        <translation>%1 fehlt.</translation>
    </message>
    <message>
        <source>%1 is not readable for this user</source>
        <translation>%1 ist für diesen Benutzer nicht lesbar</translation>
    </message>
    <message>
        <source>%1 is fine</source>
        <translation>%1 ist in Ordnung</translation>
    </message>
    <message>
        <source>%1 holds passwords, and others than root may read it.</source>
        <translation>%1 enthält Passwörter, und andere als root dürfen es lesen.</translation>
    </message>
    <message>
        <source>%1 is readable for root only</source>
        <translation>%1 ist nur für root lesbar</translation>
    </message>
    <message>
        <source>%1 does not begin with the account&apos;s entry: a changed password would never take effect.</source>
        <translation>%1 beginnt nicht mit dem Eintrag des Kontos: Ein geändertes Passwort würde nie wirken.</translation>
    </message>
    <message>
        <source>No account is stored yet.</source>
        <translation>Es ist noch kein Konto gespeichert.</translation>
    </message>
    <message>
        <source>order and modes are right</source>
        <translation>Reihenfolge und Rechte stimmen</translation>
    </message>
    <message>
        <source>The login of the secrets is not the login of the peer file.</source>
        <translation>Der Benutzername der Passwortdateien ist nicht der der Gegenstellendatei.</translation>
    </message>
    <message>
        <source>%1 can not be read.</source>
        <translation>%1 kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>%1 names no server.</source>
        <translation>%1 nennt keinen Server.</translation>
    </message>
    <message>
        <source>Another pppd is running (%1); disconnecting ends every pppd.</source>
        <translation>Ein anderer pppd läuft (%1); Trennen beendet jeden pppd.</translation>
    </message>
    <message>
        <source>there is no log yet</source>
        <translation>es gibt noch kein Protokoll</translation>
    </message>
    <message>
        <source>the daemon&apos;s log is not readable for this user</source>
        <translation>das Protokoll des Dienstes ist für diesen Benutzer nicht lesbar</translation>
    </message>
    <message>
        <source>nothing to report</source>
        <translation>nichts zu melden</translation>
    </message>
    <message>
        <source>%1 (pppd: “%2”)</source>
        <translation>%1 (pppd: „%2“)</translation>
    </message>
    <message>
        <source>synchronised, %1 kbit/s down</source>
        <translation>synchronisiert, %1 kbit/s Empfang</translation>
    </message>
    <message>
        <source>synchronised, %1 kbit/s down, %2 kbit/s up</source>
        <translation>synchronisiert, %1 kbit/s Empfang, %2 kbit/s Senden</translation>
    </message>
    <message>
        <source>synchronising</source>
        <translation>synchronisiert sich</translation>
    </message>
    <message>
        <source>modem is starting</source>
        <translation>das Modem startet</translation>
    </message>
    <message>
        <source>the modem&apos;s firmware could not be loaded</source>
        <translation>die Firmware des Modems konnte nicht geladen werden</translation>
    </message>
    <message>
        <source>“plugin pppoe.so” is missing, which PPPoE needs.</source>
        <translation>„plugin pppoe.so“ fehlt, das PPPoE braucht.</translation>
    </message>
    <message>
        <source>“nic-nas0” is missing, the interface that PPPoE uses.</source>
        <translation>„nic-nas0“ fehlt, die Schnittstelle, die PPPoE benutzt.</translation>
    </message>
    <message>
        <source>“plugin pppoatm.so” is missing, which PPPoA needs.</source>
        <translation>„plugin pppoatm.so“ fehlt, das PPPoA braucht.</translation>
    </message>
    <message>
        <source>The circuit “%1” of the line settings does not stand in it; for PPPoA the peer file decides.</source>
        <translation>„%1“ aus den Leitungseinstellungen steht nicht darin; bei PPPoA entscheidet die Gegenstellendatei.</translation>
    </message>
    <message>
        <source>“updetach” is missing: without it pppd goes to the background at once and the daemon never learns what becomes of the connection.</source>
        <translation>„updetach“ fehlt: Ohne es geht pppd sofort in den Hintergrund, und der Dienst erfährt nie, was aus der Verbindung wird.</translation>
    </message>
    <message>
        <source>“noipv6” is missing: with “updetach” alone pppd may detach before it has told the address.</source>
        <translation>„noipv6“ fehlt: Mit „updetach“ allein löst sich pppd vielleicht, bevor er die Adresse genannt hat.</translation>
    </message>
    <message>
        <source>“logfile” takes pppd&apos;s lines away from the daemon.</source>
        <translation>„logfile“ nimmt dem Dienst die Zeilen von pppd weg.</translation>
    </message>
    <message>
        <source>“noauth” is missing: pppd would demand that the provider authenticates itself.</source>
        <translation>„noauth“ fehlt: pppd würde verlangen, dass sich der Anbieter ausweist.</translation>
    </message>
    <message>
        <source>%1 now begins with the account&apos;s entry.</source>
        <translation>%1 beginnt nun mit dem Eintrag des Kontos.</translation>
    </message>
    <message>
        <source>%1 is now readable for root only.</source>
        <translation>%1 ist nun nur für root lesbar.</translation>
    </message>
    <message>
        <source>success</source>
        <translation>gelungen</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>misslungen</translation>
    </message>
    <message>
        <source>connected</source>
        <translation>verbunden</translation>
    </message>
    <message>
        <source>connecting</source>
        <translation>wird verbunden</translation>
    </message>
    <message>
        <source>not connected</source>
        <translation>nicht verbunden</translation>
    </message>
    <message>
        <source>errors: %1 receiving, %2 sending</source>
        <translation>Fehler: %1 beim Empfangen, %2 beim Senden</translation>
    </message>
    <message>
        <source>Device companion</source>
        <translation>Begleitdienst</translation>
    </message>
    <message>
        <source>Bus policy</source>
        <translation>Busregeln</translation>
    </message>
    <message>
        <source>Bus permission</source>
        <translation>Busrecht</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>Firmware</translation>
    </message>
    <message>
        <source>Line settings</source>
        <translation>Leitungswerte</translation>
    </message>
    <message>
        <source>PPP</source>
        <translation>PPP</translation>
    </message>
    <message>
        <source>Bridge program</source>
        <translation>Brückenprogramm</translation>
    </message>
    <message>
        <source>Peer file</source>
        <translation>Gegenstelle</translation>
    </message>
    <message>
        <source>Account files</source>
        <translation>Kontodateien</translation>
    </message>
    <message>
        <source>Resolver</source>
        <translation>Namensauflösung</translation>
    </message>
    <message>
        <source>Other pppd</source>
        <translation>Andere pppd</translation>
    </message>
    <message>
        <source>Last attempt</source>
        <translation>Letzter Versuch</translation>
    </message>
    <message>
        <source>pppd did not find the peer file.</source>
        <translation>pppd hat die Gegenstellendatei nicht gefunden.</translation>
    </message>
    <message>
        <source>The bridge interface did not exist when pppd started.</source>
        <translation>Die Schnittstelle der Brücke fehlte, als pppd begann.</translation>
    </message>
    <message>
        <source>pppd does not know an option that it was given.</source>
        <translation>pppd kennt eine Option nicht, die ihm gegeben wurde.</translation>
    </message>
    <message>
        <source>No concentrator of the provider answered.</source>
        <translation>Kein Konzentrator des Anbieters hat geantwortet.</translation>
    </message>
    <message>
        <source>There is no ATM device: the modem or its driver is missing.</source>
        <translation>Es gibt kein ATM-Gerät: Das Modem oder sein Treiber fehlt.</translation>
    </message>
    <message>
        <source>The provider refused login or password.</source>
        <translation>Der Anbieter hat Benutzername oder Passwort abgelehnt.</translation>
    </message>
    <message>
        <source>pppd demanded that the provider authenticates itself.</source>
        <translation>pppd hat verlangt, dass sich der Anbieter ausweist.</translation>
    </message>
    <message>
        <source>No password is stored for the login that the peer file names.</source>
        <translation>Für den Benutzernamen der Gegenstellendatei ist kein Passwort gespeichert.</translation>
    </message>
    <message>
        <source>The far end did not answer the PPP negotiation.</source>
        <translation>Die Gegenstelle hat auf die PPP-Aushandlung nicht geantwortet.</translation>
    </message>
    <message>
        <source>The far end stopped answering: the line was lost.</source>
        <translation>Die Gegenstelle antwortet nicht mehr: Die Leitung ging verloren.</translation>
    </message>
    <message>
        <source>The provider ended the connection.</source>
        <translation>Der Anbieter hat die Verbindung beendet.</translation>
    </message>
    <message>
        <source>The link was hung up.</source>
        <translation>Die Strecke wurde getrennt.</translation>
    </message>
    <message>
        <source>pppd was told to end.</source>
        <translation>pppd wurde beendet.</translation>
    </message>
    <message>
        <source>The connection ended.</source>
        <translation>Die Verbindung endete.</translation>
    </message>
    <message>
        <source>The link came up.</source>
        <translation>Die Verbindung kam zustande.</translation>
    </message>
    <message>
        <source>speed: %1 down, %2 up</source>
        <translation>Geschwindigkeit: %1 Empfang, %2 Senden</translation>
    </message>
    <message>
        <source>totals: %1 received, %2 sent</source>
        <translation>Mengen: %1 empfangen, %2 gesendet</translation>
    </message>
    <message>
        <source>address: %1</source>
        <translation>Adresse: %1</translation>
    </message>
    <message>
        <source>default route: through %1</source>
        <translation>Standardroute: über %1</translation>
    </message>
    <message>
        <source>connected for %1</source>
        <translation>verbunden seit %1</translation>
    </message>
    <message>
        <source>modem plugged: %1</source>
        <translation>Modem eingesteckt: %1</translation>
    </message>
    <message>
        <source>new modem plugged: %1</source>
        <translation>neues Modem eingesteckt: %1</translation>
    </message>
    <message>
        <source>There is no “user” line.</source>
        <translation>Es gibt keine Zeile „user“.</translation>
    </message>
    <message>
        <source>modem unplugged</source>
        <translation>Modem abgezogen</translation>
    </message>
    <message>
        <source>new modem unplugged</source>
        <translation>neues Modem abgezogen</translation>
    </message>
    <message>
        <source>resolver configuration is wrong</source>
        <translation>Einstellung der Namensauflösung ist falsch</translation>
    </message>
    <message>
        <source>writing the OpenDNS resolvers: %1</source>
        <translation>Eintragen der OpenDNS-Server: %1</translation>
    </message>
    <message>
        <source>connection established</source>
        <translation>Verbindung steht</translation>
    </message>
    <message>
        <source>connection terminated</source>
        <translation>Verbindung beendet</translation>
    </message>
    <message>
        <source>a new connection can be started: %1</source>
        <translation>eine neue Verbindung kann beginnen: %1</translation>
    </message>
    <message>
        <source>connection state: %1</source>
        <translation>Verbindungszustand: %1</translation>
    </message>
    <message>
        <source>time-out: the provider does not answer</source>
        <translation>Zeitüberschreitung: der Anbieter antwortet nicht</translation>
    </message>
    <message>
        <source>restarting the modem</source>
        <translation>Modem wird neu gestartet</translation>
    </message>
    <message>
        <source>modem driver reloaded</source>
        <translation>Treiber des Modems neu geladen</translation>
    </message>
    <message>
        <source>account written: %1</source>
        <translation>Konto geschrieben: %1</translation>
    </message>
    <message>
        <source>building the modem&apos;s driver</source>
        <translation>Treiber des Modems wird gebaut</translation>
    </message>
    <message>
        <source>driver build finished: %1</source>
        <translation>Bau des Treibers beendet: %1</translation>
    </message>
    <message>
        <source>waiting for the line to synchronise</source>
        <translation>warten auf die Synchronisation der Leitung</translation>
    </message>
    <message>
        <source>the line did not synchronise</source>
        <translation>die Leitung hat sich nicht synchronisiert</translation>
    </message>
    <message>
        <source>the provider refused login or password</source>
        <translation>der Anbieter hat Benutzername oder Passwort abgelehnt</translation>
    </message>
    <message>
        <source>no synchronisation</source>
        <translation>keine Synchronisation</translation>
    </message>
    <message>
        <source>%1 is now the one for this modem and protocol.</source>
        <translation>%1 ist jetzt die für dieses Modem und Protokoll.</translation>
    </message>
    <message>
        <source>%1 has %2 characters in pppd&apos;s files, where a double quote and a backslash take up to four; more than %3 would not be recognised again.</source>
        <translation>%1 hat in pppds Dateien %2 Zeichen, denn ein Anführungszeichen und ein Rückstrich nehmen dort bis zu vier ein; mehr als %3 würden nicht wiedererkannt.</translation>
    </message>
    <message>
        <source>%1 begins with “@/”, which pppd takes for the name of a file.</source>
        <translation>%1 beginnt mit „@/“, was pppd für den Namen einer Datei hält.</translation>
    </message>
    <message>
        <source>Login and password make a line of %1 bytes; more than %2 would not be recognised again.</source>
        <translation>Benutzername und Passwort ergeben eine Zeile von %1 Byte; mehr als %2 würden nicht wiedererkannt.</translation>
    </message>
    <message>
        <source>nobody wants the connection</source>
        <translation>niemand will die Verbindung</translation>
    </message>
    <message>
        <source>switched off</source>
        <translation>abgeschaltet</translation>
    </message>
    <message>
        <source>waiting for the next attempt</source>
        <translation>wartet auf den nächsten Versuch</translation>
    </message>
    <message>
        <source>waiting for the modem</source>
        <translation>wartet auf das Modem</translation>
    </message>
    <message>
        <source>waiting for the modem&apos;s driver, which is being built</source>
        <translation>wartet auf den Treiber des Modems, der gerade gebaut wird</translation>
    </message>
    <message>
        <source>waiting for the modem, which is being restarted</source>
        <translation>wartet auf das Modem, das gerade neu gestartet wird</translation>
    </message>
    <message>
        <source>waiting for the daemon</source>
        <translation>wartet auf den Dienst</translation>
    </message>
    <message>
        <source>waiting until the settings are corrected</source>
        <translation>wartet, bis die Einstellungen berichtigt sind</translation>
    </message>
    <message>
        <source>asleep, like the computer</source>
        <translation>schläft, wie der Rechner</translation>
    </message>
    <message>
        <source>The provider hung up.</source>
        <translation>Der Anbieter hat aufgelegt.</translation>
    </message>
    <message>
        <source>The provider fell silent: nothing came over the line.</source>
        <translation>Der Anbieter ist verstummt: Über die Leitung kam nichts mehr.</translation>
    </message>
    <message>
        <source>The line lost its synchronisation.</source>
        <translation>Die Leitung hat ihre Synchronisation verloren.</translation>
    </message>
    <message>
        <source>The bridge interface to the line was gone.</source>
        <translation>Die Brückenschnittstelle zur Leitung war fort.</translation>
    </message>
    <message>
        <source>The modem was unplugged.</source>
        <translation>Das Modem wurde ausgesteckt.</translation>
    </message>
    <message>
        <source>The modem&apos;s driver was reloaded.</source>
        <translation>Der Treiber des Modems wurde neu geladen.</translation>
    </message>
    <message>
        <source>Somebody ended the connection.</source>
        <translation>Jemand hat die Verbindung beendet.</translation>
    </message>
    <message>
        <source>The computer went to sleep.</source>
        <translation>Der Rechner ist schlafen gegangen.</translation>
    </message>
    <message>
        <source>The provider hung up before the link was up.</source>
        <translation>Der Anbieter hat aufgelegt, bevor die Verbindung stand.</translation>
    </message>
    <message>
        <source>The line did not synchronise.</source>
        <translation>Die Leitung hat sich nicht synchronisiert.</translation>
    </message>
    <message>
        <source>VPI and VCI are not set.</source>
        <translation>VPI und VCI sind nicht gesetzt.</translation>
    </message>
    <message>
        <source>The daemon was still busy with an earlier attempt.</source>
        <translation>Der Dienst war noch mit einem früheren Versuch beschäftigt.</translation>
    </message>
    <message>
        <source>The daemon did not take the request.</source>
        <translation>Der Dienst hat den Auftrag nicht angenommen.</translation>
    </message>
    <message>
        <source>The link of another program stands in the way.</source>
        <translation>Die Verbindung eines anderen Programms steht im Weg.</translation>
    </message>
    <message>
        <source>The reason is not known.</source>
        <translation>Der Grund ist nicht bekannt.</translation>
    </message>
    <message>
        <source>The history was damaged; a new one was begun.</source>
        <translation>Der Verlauf war beschädigt; ein neuer wurde begonnen.</translation>
    </message>
    <message>
        <source>The history is of a newer version of the keeper; nothing is written into it.</source>
        <translation>Der Verlauf stammt von einer neueren Fassung des Wächters; nichts wird hineingeschrieben.</translation>
    </message>
    <message>
        <source>The history can not be written.</source>
        <translation>Der Verlauf kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>waiting for the line</source>
        <translation>wartet auf die Leitung</translation>
    </message>
    <message>
        <source>Default route</source>
        <translation>Standardroute</translation>
    </message>
    <message>
        <source>the table of routes can not be read</source>
        <translation>die Routentabelle ist nicht lesbar</translation>
    </message>
    <message>
        <source>no connection is up</source>
        <translation>keine Verbindung steht</translation>
    </message>
    <message>
        <source>through %1</source>
        <translation>über %1</translation>
    </message>
    <message>
        <source>(IPv6: through %1)</source>
        <translation>(IPv6: über %1)</translation>
    </message>
    <message>
        <source>not in use here</source>
        <translation>hier nicht in Gebrauch</translation>
    </message>
    <message>
        <source>%1 is missing: %2</source>
        <translation>%1 fehlt: %2</translation>
    </message>
    <message>
        <source>%1 takes the place of %2: %3</source>
        <translation>%1 steht an der Stelle von %2: %3</translation>
    </message>
    <message>
        <source>leaves the modem&apos;s interfaces alone</source>
        <translation>lässt die Schnittstellen des Modems in Ruhe</translation>
    </message>
    <message>
        <source>It manages the modem&apos;s interfaces.</source>
        <translation>Es verwaltet die Schnittstellen des Modems.</translation>
    </message>
    <message>
        <source>it may take the modem&apos;s interfaces into its hands.</source>
        <translation>Es kann die Schnittstellen des Modems an sich nehmen.</translation>
    </message>
    <message>
        <source>is told the provider&apos;s servers</source>
        <translation>erfährt die Server des Anbieters</translation>
    </message>
    <message>
        <source>It has not been told the provider&apos;s servers.</source>
        <translation>Es hat die Server des Anbieters nicht erfahren.</translation>
    </message>
    <message>
        <source>it is not told the provider&apos;s servers, and no name may resolve.</source>
        <translation>Es erfährt die Server des Anbieters nicht, und womöglich wird kein Name aufgelöst.</translation>
    </message>
    <message>
        <source>The keeper is not installed: a connection that is lost stays lost.</source>
        <translation>Der Wächter ist nicht installiert: Eine verlorene Verbindung bleibt verloren.</translation>
    </message>
    <message>
        <source>The keeper is not running: a connection that is lost stays lost.</source>
        <translation>Der Wächter läuft nicht: Eine verlorene Verbindung bleibt verloren.</translation>
    </message>
    <message>
        <source>The bus does not let this user ask the keeper, which everybody may.</source>
        <translation>Der Bus lässt diesen Benutzer den Wächter nicht fragen, was jeder darf.</translation>
    </message>
    <message>
        <source>The keeper is on the bus but does not answer.</source>
        <translation>Der Wächter ist am Bus, antwortet aber nicht.</translation>
    </message>
    <message>
        <source>What the keeper answers is not understood.</source>
        <translation>Was der Wächter antwortet, ist nicht zu verstehen.</translation>
    </message>
    <message>
        <source>The daemon does not listen to the keeper.</source>
        <translation>Der Dienst hört nicht auf den Wächter.</translation>
    </message>
    <message>
        <source>%1 Now: %2.</source>
        <translation>%1 Jetzt: %2.</translation>
    </message>
    <message>
        <source>NetworkManager</source>
        <translation>NetworkManager</translation>
    </message>
    <message>
        <source>systemd-networkd</source>
        <translation>systemd-networkd</translation>
    </message>
    <message>
        <source>systemd-resolved</source>
        <translation>systemd-resolved</translation>
    </message>
    <message>
        <source>resolvconf</source>
        <translation>resolvconf</translation>
    </message>
    <message>
        <source>Keeper</source>
        <translation>Wächter</translation>
    </message>
    <message>
        <source>%1 is up, but there is no default route: nothing goes through it.</source>
        <translation>%1 steht, aber es gibt keine Standardroute: Nichts geht hindurch.</translation>
    </message>
    <message>
        <source>%1 is up, but nothing goes through it: the default route leads through %2.</source>
        <translation>%1 steht, aber nichts geht hindurch: Die Standardroute führt über %2.</translation>
    </message>
    <message>
        <source>The name server %1 is the provider&apos;s, but is asked through %2.</source>
        <translation>Der Namensserver %1 ist der des Anbieters, wird aber über %2 gefragt.</translation>
    </message>
    <message>
        <source>The name server %1 is asked through %2, where the default route does not lead.</source>
        <translation>Der Namensserver %1 wird über %2 gefragt, wohin die Standardroute nicht führt.</translation>
    </message>
    <message>
        <source>In the billing month until %1: %2.</source>
        <translation>Im Abrechnungsmonat bis %1: %2.</translation>
    </message>
    <message>
        <source>In the billing month until %1: %2, and the limit is %3.</source>
        <translation>Im Abrechnungsmonat bis %1: %2, und die Grenze ist %3.</translation>
    </message>
    <message>
        <source>In the billing month until %1: %2 of %3; what is left is %4 a day.</source>
        <translation>Im Abrechnungsmonat bis %1: %2 von %3; es bleiben %4 je Tag.</translation>
    </message>
    <message>
        <source>loaded</source>
        <translation>geladen</translation>
    </message>
    <message>
        <source>there, not loaded</source>
        <translation>vorhanden, nicht geladen</translation>
    </message>
    <message>
        <source>missing for this kernel</source>
        <translation>fehlt für diesen Kernel</translation>
    </message>
    <message>
        <source>Austria</source>
        <translation>Österreich</translation>
    </message>
    <message>
        <source>Australia</source>
        <translation>Australien</translation>
    </message>
    <message>
        <source>Belgium</source>
        <translation>Belgien</translation>
    </message>
    <message>
        <source>Brazil</source>
        <translation>Brasilien</translation>
    </message>
    <message>
        <source>Switzerland</source>
        <translation>Schweiz</translation>
    </message>
    <message>
        <source>Czechia</source>
        <translation>Tschechien</translation>
    </message>
    <message>
        <source>Germany</source>
        <translation>Deutschland</translation>
    </message>
    <message>
        <source>Denmark</source>
        <translation>Dänemark</translation>
    </message>
    <message>
        <source>Spain</source>
        <translation>Spanien</translation>
    </message>
    <message>
        <source>France</source>
        <translation>Frankreich</translation>
    </message>
    <message>
        <source>United Kingdom</source>
        <translation>Vereinigtes Königreich</translation>
    </message>
    <message>
        <source>Italy</source>
        <translation>Italien</translation>
    </message>
    <message>
        <source>Netherlands</source>
        <translation>Niederlande</translation>
    </message>
    <message>
        <source>Poland</source>
        <translation>Polen</translation>
    </message>
    <message>
        <source>Portugal</source>
        <translation>Portugal</translation>
    </message>
    <message>
        <source>Russia</source>
        <translation>Russland</translation>
    </message>
    <message>
        <source>Ukraine</source>
        <translation>Ukraine</translation>
    </message>
    <message>
        <source>United States</source>
        <translation>Vereinigte Staaten</translation>
    </message>
</context>
</TS>
