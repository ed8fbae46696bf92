<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Say</name>
    <message>
        <source>%1 is empty.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 has %2 characters; more than %3 would not be recognised again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 contains a line feed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 contains a control character.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 contains a double quote, which ends the value in pppd&apos;s files.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 contains a backslash, which pppd&apos;s files take for an escape sign.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 contains a character that is not valid text.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No password was given.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Password again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The two passwords differ. Nothing was changed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Warning: pppd&apos;s files still answer with another account, so this one will not take effect. “sudo norvixctl doctor --fix” mends them.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Login</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>none stored</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>stored (--reveal shows it)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Give the login: “norvixctl account set LOGIN”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The login</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not all of pppd&apos;s files could be written; “norvixctl doctor” tells which are missing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon did not say whether the account was written; see “norvixctl log”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The account is stored. It counts from the next connection on.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>on</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>When the daemon starts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>When a modem is taken into use</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>When the modem in use is plugged in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unknown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Say “on” or “off”, not “%1”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Only a part is stored: whether a connection starts when the modem in use is plugged in is not.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connections now start by themselves.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connections no longer start by themselves.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon ended while connecting.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The system bus ended while connecting.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A connection is already being made.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connecting. “norvixctl watch” follows it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connecting…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Waiting for the line to synchronise…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The resolver configuration is wrong; the daemon corrects it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connected: address %1, default route through %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The line did not synchronise. Check the telephone cable and the filter; “norvixctl doctor” tells more.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time-out: the provider does not answer. Check VPI, VCI and protocol with “norvixctl line show”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The provider refused login or password. Set them again with “norvixctl account set”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The attempt was ended by another client.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The connection did not come up.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“norvixctl doctor” looks for the reason.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Still connecting. The daemon goes on; “norvixctl watch” follows it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon did not begin: an earlier attempt may still be ending, which takes up to 90 seconds.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--timeout takes a whole number of seconds from 1 to %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Already connected.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnect all the same? [y/N]</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>y</source>
        <comment>the letter that agrees to a question</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Warning: another pppd is running (process %1: %2).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnecting ends every pppd of this system.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing done. --force disconnects all the same.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing done.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnected.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Leads to</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Servers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>none</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Without a server the daemon writes one at the next connection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ok</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>look</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FAULT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing that stops a connection was found.</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n thing(s) stop a connection. Begin with the first.</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Only root may mend: “sudo norvixctl doctor --fix”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>loaded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>there, not loaded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>missing for this kernel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Driver</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not known without a modem</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Kernel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>State</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Being built</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>yes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon ended during the restart.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon did not report the end of the restart; see “norvixctl log”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The driver is reloaded. The line needs up to a minute to synchronise again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no command “%1”. “norvixctl --help” lists them.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Say “bash” or “zsh”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The idle time is a whole number from 0 to %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stored. The daemon itself does not act on it; desktop clients may.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Idle time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not set</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--%1 takes a whole number from 0 to %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--service takes text without control characters.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Give at least one of --vpi, --vci, --protocol and --service.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stored. The next connection uses it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>With PPPoA the circuit that counts stands in /etc/ppp/peers/norvix: the line “%1.%2” behind “plugin pppoatm.so”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Country</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Provider</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VPI</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VCI</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Protocol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Values that were common; the provider&apos;s own letter decides.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--lines takes a whole number.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not readable for you. Repeat the command with “sudo”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no log %1 yet.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modem</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>none taken into use</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>USB id</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Plugged in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not there or not readable for this user.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>USB ids</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Port</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In use</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Has firmware</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No supported modem is plugged in.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem that is plugged in is already in use.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon has not noticed a new modem: it only does when one is plugged in while it runs. Unplug it, plug it in again, wait ten seconds, and repeat the command.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is now in use.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the daemon has started</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the daemon has ended; waiting for it to come back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>listening to the daemon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the daemon is not running; waiting for it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The system bus has ended.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is plugged in but not taken into use: “norvixctl modem adopt”</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>plugged in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not plugged in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Received</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Interface</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Address</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Default route</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Daemon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>running</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not running</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem&apos;s driver is being built.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--count takes a whole number from 1 to %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no option “%1” here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The option “%1” takes no value.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The option “%1” needs a value.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is not possible for “%2”. Possible are: %3.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is one word too many.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Take either --json or --terse.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The system bus can not be reached: is dbus-daemon running?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The system bus does not let you do this. Members of the group “norvix” and root may: “sudo adduser $USER norvix”, then log in again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon does not answer. It may be waiting for another program; see “norvixctl log”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The system bus could not start the daemon: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon answered with an error: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon is not running. Start it with “sudo systemctl start norvix-daemon”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Repeat the check with “sudo norvixctl doctor”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The system bus can not be reached.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start it: “sudo systemctl start dbus”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon is not running.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start it: “sudo systemctl start norvix-daemon”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon is on the bus but does not answer.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Look at “norvixctl log”, then restart it: “sudo systemctl restart norvix-daemon”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>running and answering</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The companion that finds USB devices does not answer on the bus, so no modem is ever noticed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start it: “sudo systemctl start norvix-hald”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not known without the system bus</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>/etc/dbus-1/system.d/norvix.conf is missing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Install the bus policy again and reload the bus: “sudo systemctl reload dbus”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>installed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>this user may use the daemon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not known without the daemon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The bus refuses this user, and there is no group “norvix”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Create the group and join it: “sudo addgroup --system norvix”, “sudo adduser $USER norvix”, then log in again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This user is in the group “norvix”, but this session began earlier.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Log out and in again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The bus refuses this user: only root and the group “norvix” may.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Join the group: “sudo adduser $USER norvix”, then log in again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No modem that the daemon knows is plugged in.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Plug it in, without a hub if you can. “norvixctl modem known” lists what is supported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is plugged in but not taken into use.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unplug it, plug it in again, wait ten seconds, then: “norvixctl modem adopt”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is plugged in, but the daemon does not see it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unplug it and plug it in again; see the check of the companion.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is plugged in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The driver is being built now.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Wait until it has finished.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is loaded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is there for kernel %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the modules of kernel %1 can not be listed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no driver %1 for kernel %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Install the kernel&apos;s headers and restart the daemon: it then builds the driver (“sudo apt install linux-headers-%1”).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Install the distribution&apos;s full kernel, or put the driver&apos;s source into /opt/norvix/drivers and restart the daemon.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Put the modem&apos;s firmware files into /lib/firmware (%1), then unplug the modem and plug it in again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem still shows the id %1: it has not got its firmware.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The driver could not load the modem&apos;s firmware.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>none needed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>/lib/firmware/%1 is missing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is there</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Wait a minute. If it stays so, check the telephone cable and the filter, then “norvixctl driver restart”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The line is not up: %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>synchronised</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The ATM device reports no carrier.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the kernel log is not readable for this user</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>this modem needs none</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set them: “norvixctl line set --vpi 8 --vci 35 --protocol PPPoE”; “norvixctl line providers” lists common values.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VPI, VCI and protocol are not set.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PPPoE needs VPI and VCI, and one of them is not set.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VPI and VCI are both 0, which no bridge accepts.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The protocol “%1” is not known and means PPPoA.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>pppd is not installed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Install it: “sudo apt install ppp”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Kernel %1 has no support for PPP over this line.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Install the distribution&apos;s full kernel: “sudo apt install linux-image-amd64”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>/dev/ppp does not exist.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load the module: “sudo modprobe ppp_generic”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>pppd and the kernel&apos;s support are there</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not needed for this protocol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is missing or can not be run.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“sudo apt install br2684ctl”, then “sudo ln -s /usr/sbin/br2684ctl %1”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Kernel %1 has no module br2684.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>there</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is missing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Create the peer file (norvix-daemon(8) shows one that works).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not readable for this user</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Correct the peer file (norvix-daemon(8) shows one that works).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is fine</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Let it be mended: “sudo norvixctl doctor --fix”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 holds passwords, and others than root may read it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is readable for root only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 does not begin with the account&apos;s entry: a changed password would never take effect.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No account is stored yet.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set the account: “norvixctl account set”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>order and modes are right</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The login of the secrets is not the login of the peer file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 can not be read.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The daemon writes it at the next connection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 names no server.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Another pppd is running (%1); disconnecting ends every pppd.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>End the other connection first, or do not disconnect while it is needed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>there is no log yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the daemon&apos;s log is not readable for this user</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>nothing to report</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 (pppd: “%2”)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Usage: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bring a USB ADSL modem&apos;s connection up and down, and watch it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“norvixctl COMMAND --help” explains a command; norvixctl(1) all.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>synchronised, %1 kbit/s down, %2 kbit/s up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>synchronising</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>modem is starting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the modem&apos;s firmware could not be loaded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“norvixctl --help” lists the commands and “norvixctl COMMAND --help” the options of one.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Give a command.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” needs a further word.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“plugin pppoe.so” is missing, which PPPoE needs.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“nic-nas0” is missing, the interface that PPPoE uses.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“plugin pppoatm.so” is missing, which PPPoA needs.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The circuit “%1” of the line settings does not stand in it; for PPPoA the peer file decides.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“updetach” is missing: without it pppd goes to the background at once and the daemon never learns what becomes of the connection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“noipv6” is missing: with “updetach” alone pppd may detach before it has told the address.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“logfile” takes pppd&apos;s lines away from the daemon.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“noauth” is missing: pppd would demand that the provider authenticates itself.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no “user” line: set the account with “norvixctl account set”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 can not be written.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 now begins with the account&apos;s entry.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The mode of %1 can not be changed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is now readable for root only.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not a valid settings file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 can not be written by you. Repeat the command with “sudo”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>success</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connecting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the daemon is not running</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2  total %3  peak %4</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>errors: %1 receiving, %2 sending</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl-C ends the view, not the connection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1  down %2  up %3  received %4  sent %5</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>norvixctl</name>
    <message>
        <source>Protocol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VPI</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VCI</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Service</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show everything at one glance</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start a connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>follow the phases until the connection is up or has failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>wait no longer than this (180 by default)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>End the connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>do not ask, although this ends every other running pppd, too</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Print each signal of the daemon as one line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Live view with rates, totals and time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>end after so many seconds with figures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show the account&apos;s login</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>show the password, too</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Store login and password; the password is asked for or read from standard input</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show the modem in use and whether it is plugged in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>List the modems that are supported</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>List the supported modems that are plugged in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Take the modem that was plugged in last into use</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show VPI, VCI, protocol and service</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Store VPI, VCI, protocol and service</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>virtual path, 0 to 255</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>virtual channel, 0 to 65535</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PPPoE or PPPoA</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a note for desktop clients: the service&apos;s name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>List line parameters of common providers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or set whether connections start by themselves</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>only when the daemon starts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>only when a modem is plugged in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or store the idle time for desktop clients</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show the modem&apos;s driver</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reload the driver; this ends a connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show the resolver configuration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Print the daemon&apos;s log</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>go on printing what is added</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>only so many of the last lines</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>today&apos;s connection facts instead</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check all that can stop a connection and name the remedy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>mend order and modes of the account files (as root)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Explain a command</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Print the completion script for a shell</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>use colours: auto, always or never</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>explain the command</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>print the version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>print JSON</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>print key=value lines or tab-separated rows</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Daemon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Device companion</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bus policy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bus permission</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modem</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Driver</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Line settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PPP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bridge program</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Peer file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Account files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Resolver</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Other pppd</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Last attempt</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>pppd did not find the peer file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Create the peer file (norvix-daemon(8) shows one that works).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The bridge interface did not exist when pppd started.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check VPI and VCI (“norvixctl line show”) and the bridge program.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>pppd does not know an option that it was given.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Correct the peer file or the key pppd_arguments of the settings.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No concentrator of the provider answered.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check VPI, VCI and protocol with the provider&apos;s letter: “norvixctl line set”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no ATM device: the modem or its driver is missing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Plug the modem in; “norvixctl driver” shows the driver.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The provider refused login or password.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set them again: “norvixctl account set”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>pppd demanded that the provider authenticates itself.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add the line “noauth” to the peer file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No password is stored for the login that the peer file names.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set the account: “norvixctl account set”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The far end did not answer the PPP negotiation.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The far end stopped answering: the line was lost.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Wait for the line to come back, then connect again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The provider ended the connection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connect again: “norvixctl connect”.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The link was hung up.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>pppd was told to end.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The connection ended.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The link came up.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>speed: %1 down, %2 up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>errors: %1 receiving, %2 sending</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>totals: %1 received, %2 sent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>address: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>default route: through %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connected for %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>modem plugged: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>new modem plugged: %1 – “norvixctl modem adopt” takes it into use</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>modem unplugged</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>new modem unplugged</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>resolver configuration is wrong</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>writing the OpenDNS resolvers: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connection established</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connection terminated</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connecting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a new connection can be started: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connection state: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>time-out: the provider does not answer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>restarting the modem</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>modem driver reloaded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>account written: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>building the modem&apos;s driver</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>driver build finished: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>waiting for the line to synchronise</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the line did not synchronise</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the provider refused login or password</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
