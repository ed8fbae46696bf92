# SPDX-License-Identifier: MIT
"""Setting things up over the bus: com.norvix.Setup1."""
import xml.etree.ElementTree
from pathlib import Path

import pytest
from account import COMMENT, FILES, OPTIONS, PAP, PEER, UNICORN, Account
from machine_fixtures import ROOT_ONLY
from setup_client import INVALID, NOT_STORED, OBJECT, Setup

from lab.machine.bus_client import BusError
from lab.machine.furnishing import NORVIX_GROUP
from lab.waiting import wait_until

INI = "/opt/norvix/.daemon_ng.ini"
SPEEDTOUCH = (0x06B9, 0x4061)
NOBODY = 65534
MEMBER = {"uid": NOBODY, "groups": [NORVIX_GROUP]}


@pytest.fixture(name="running")
def running_fixture(bus_machine):
    bus_machine.start_daemon()
    return bus_machine


def error_of(call, *arguments, **more):
    with pytest.raises(BusError) as error:
        call(*arguments, **more)
    return error.value.name


def test_the_description_is_served_as_it_stands_in_the_file(running):
    served = running.client().call_raw("Introspect", path=OBJECT["path"],
                                       interface="org.freedesktop.DBus.Introspectable")
    file = Path(__file__).resolve().parents[3] / "dbus/com.norvix.Setup1.xml"
    text = file.read_text(encoding="ascii")
    assert text[text.index("  <interface"):text.index("</node>")] in served
    assert xml.etree.ElementTree.fromstring(text)[0].get("name") == OBJECT["interface"]


# ---- settings

def test_settings_that_were_never_set_are_missing(running):
    assert Setup(running.client()).settings() == {}


def test_settings_are_on_the_disk_when_the_call_returns(running):
    setup = Setup(running.client())
    wanted = {"protocol": "PPPoE", "vpi": 8, "vci": 35, "service": "at home, or not",
              "autoconnect": True, "connect_at_boot": True, "connect_at_modem_plug": False,
              "idleness": 300}
    setup.set(**wanted)
    text = running.path(INI).read_text(encoding="ascii")
    assert "vpi=8\n" in text and "autoconnect=true\n" in text and "idleness=300\n" in text
    assert setup.settings() == wanted
    client = running.client()
    assert [client.call(name) for name in ("getVPI", "getVCI", "getProtocol", "getService")] == [
        "8", "35", "PPPoE", "at home, or not"]
    assert client.call("getConnectAtBoot") is True


def test_one_bad_value_stores_nothing_and_says_what_is_expected(running):
    setup = Setup(running.client())
    setup.set(vpi=1)
    before = running.path(INI).read_bytes()
    with pytest.raises(BusError) as error:
        setup.set(vci=35, vpi=256)
    assert (error.value.name, "vpi" in error.value.text, "255" in error.value.text) == (
        INVALID, True, True)
    assert error_of(setup.set, vendor_id=1394) == INVALID
    assert error_of(setup.set, pppd_arguments="mtu") == INVALID
    assert error_of(setup.set, vpi=("as", ["8"])) == INVALID
    assert error_of(setup.set, vpi=("ay", b"8" * 100000)) == INVALID
    assert (running.path(INI).read_bytes(), setup.settings()) == (before, {"vpi": 1})


def test_a_change_is_told_once_with_what_changed_by_whatever_method(running):
    setup = Setup(running.client())
    setup.set(vpi=8, vci=35)
    assert setup.changes() == [{"vpi": 8, "vci": 35}]
    setup.set(vpi=8, vci=36)
    setup.client.call("setConnectAtBoot", True)
    assert setup.changes()[1:] == [{"vci": 36}, {"connect_at_boot": True}]
    setup.set(vpi=8)
    assert len(setup.changes()) == 3


def test_what_somebody_else_wrote_is_told_when_the_daemon_notices_it(machine, hal):
    daemon = machine.start_daemon()
    daemon.wait_for_log("getModemState(): klogctl()")
    setup = Setup(machine.client())
    setup.set(vpi=8)
    ini = machine.path(INI)
    ini.write_text("[General]\nvpi=1\nvci=35\n", encoding="ascii")
    hal.unplug("/org/freedesktop/Hal/devices/another")  # any removal has the file read
    wait_until(lambda: setup.changes() == [{"vpi": 8}, {"vpi": 1, "vci": 35}], what="it is told")
    # The thread that connects reads it, too.
    ini.write_text("[General]\nvpi=1\nvci=36\n", encoding="ascii")
    machine.kernel_log.line_up()
    setup.client.call("establishConnection")
    machine.wait_call("pppd")
    wait_until(lambda: setup.changes()[2:] == [{"vci": 36}], what="it is told")


def test_arguments_for_pppd_are_set_and_taken_away(running):
    setup = Setup(running.client())
    setup.set_arguments("mtu", "1400")
    assert setup.arguments() == ["mtu", "1400"]
    assert 'pppd_arguments=mtu, 1400\n' in running.path(INI).read_text(encoding="ascii")
    assert error_of(setup.set_arguments, "mtu\nplugin") == INVALID
    setup.set_arguments()
    assert setup.arguments() == []
    assert "pppd_arguments" not in running.path(INI).read_text(encoding="ascii")


@pytest.mark.parametrize("written, told", [("", []), ("mtu, , 1400", ["mtu", "", "1400"])])
def test_arguments_are_told_as_pppd_gets_them(bus_machine, written, told):
    bus_machine.settings(pppd_arguments=written)
    bus_machine.start_daemon()
    assert Setup(bus_machine.client()).arguments() == told


def test_a_file_that_can_not_be_written_is_an_error_and_stays(running):
    setup = Setup(running.client())
    setup.set(vpi=8)
    before = running.path(INI).read_bytes()
    running.run(["/usr/bin/mount", "--bind", "-o", "ro", "/opt/norvix", "/opt/norvix"])
    assert error_of(setup.set, vpi=1, vci=2) == NOT_STORED
    assert setup.settings() == {"vpi": 8}
    running.run(["/usr/bin/umount", "/opt/norvix"])
    setup.set(vci=35)
    assert setup.settings() == {"vpi": 8, "vci": 35}
    assert running.path(INI).read_bytes() == before.replace(b"vpi", b"vci=35\nvpi")


def test_what_a_killed_writer_left_of_the_file_costs_no_setting(bus_machine):
    bus_machine.settings(protocol="PPPoE", vpi=8, vci=35)
    bus_machine.start_daemon()
    ini = bus_machine.path(INI)
    ini.write_text("", encoding="ascii")
    setup = Setup(bus_machine.client())
    setup.set(vpi=1)
    assert ini.read_text(encoding="ascii") == "[General]\nprotocol=PPPoE\nvci=35\nvpi=1\n"
    assert setup.settings() == {"protocol": "PPPoE", "vpi": 1, "vci": 35}


def test_a_file_on_which_something_is_mounted_is_written_in_place(running):
    """As container managers do with single files: no rename reaches it."""
    setup = Setup(running.client())
    setup.set(vpi=8)
    mounted = running.path("/opt/mounted.ini")
    mounted.write_text("[General]\nkept=by hand\nvci=35\n", encoding="ascii")
    mounted.chmod(0o640)
    running.run(["/usr/bin/mount", "--bind", "/opt/mounted.ini", INI])
    inode = mounted.stat().st_ino
    setup.set(protocol="PPPoE")
    assert mounted.read_text(encoding="ascii") == (
        "[General]\nkept=by hand\nprotocol=PPPoE\nvci=35\n")
    assert (mounted.stat().st_ino, mounted.stat().st_mode & 0o777) == (inode, 0o640)
    # What somebody else writes there is neither missed nor undone by what was set before.
    mounted.write_text("[General]\nprotocol=PPPoA\nvpi=1\n", encoding="ascii")
    running.client().call("setConnectAtBoot", True)
    wait_until(lambda: "connect_at_boot" in mounted.read_text(encoding="ascii"),
               what="the setting is in the file")
    setup.set(vci=36)
    assert mounted.read_text(encoding="ascii") == (
        "[General]\nconnect_at_boot=true\nprotocol=PPPoA\nvci=36\nvpi=1\n")
    assert setup.settings() == {"protocol": "PPPoA", "vpi": 1, "vci": 36, "connect_at_boot": True}
    # Nor what a writer has left that was killed.
    mounted.write_text("", encoding="ascii")
    setup.set(vci=37)
    assert mounted.read_text(encoding="ascii") == (
        "[General]\nconnect_at_boot=true\nprotocol=PPPoA\nvci=37\nvpi=1\n")
    folder = [path.name for path in running.path("/opt/norvix").iterdir()]
    assert [name for name in folder if name.startswith(".daemon_ng.ini.")] == []
    assert running.daemons[0].stop() == 255
    running.start_daemon()
    assert Setup(running.client()).settings()["vci"] == 37


# ---- the account

def test_an_account_is_stored_as_the_daemon_stores_one(bus_machine):
    account = Account(bus_machine)
    setup = Setup(account.client)
    setup.set_account("user@isp", "se cret#1")
    assert account.client.named("accountDataChanged")[0].args == (True,)
    assert account.content(PAP) == COMMENT + b'"user@isp" * "se cret#1" *\n'
    assert account.content(PEER) == b'user "user@isp"\n' + OPTIONS
    assert account.content(UNICORN) == OPTIONS + b'user "user@isp"\n'
    assert account.get() == ["user@isp", "se cret#1"]


@pytest.mark.parametrize("value", [
    "", "x\nplugin evil.so", "x\rplugin evil.so", 'x" plugin evil.so "', 'x\\" plugin evil.so "',
    "x\\", "\x1b[1m", "x" * 51, "\\1"])
def test_what_would_be_more_than_a_value_to_pppd_changes_nothing(bus_machine, value):
    account = Account(bus_machine)
    for path in (PAP, "/etc/ppp/chap-secrets"):
        account.write(path, b'"login" * "password" *\n')
    setup = Setup(account.client)
    assert error_of(setup.set_account, value, "password") == INVALID
    assert error_of(setup.set_account, "login", value) == INVALID
    assert {path: account.content(path) for path in FILES} == account.before
    account.client.mark()
    assert account.client.named("accountDataChanged") == []


def test_an_account_that_reaches_only_some_files_is_an_error(bus_machine):
    account = Account(bus_machine)
    bus_machine.path(UNICORN).unlink()
    assert error_of(Setup(account.client).set_account, "user", "secret") == NOT_STORED
    assert account.client.named("accountDataChanged")[0].args == (False,)
    assert account.content(PEER) == b'user "user"\n' + OPTIONS


# ---- the announced modem

def test_the_modem_that_would_be_adopted_is_told_from_its_announcement_on(machine, hal):
    client = machine.client()
    daemon = machine.start_daemon()
    daemon.wait_for_log("getModemState(): klogctl()")
    setup = Setup(client)
    assert setup.announced() == ("", 0, 0, "")
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("newModemPlugged", timeout=20)
    assert setup.announced() == ("Thomson Speedtouch 330", *SPEEDTOUCH, udi)
    client.call("useNewModem")
    assert setup.announced() == ("", 0, 0, "")
    assert setup.settings()["udi"] == udi


def test_a_modem_is_not_told_once_another_device_has_been_looked_at(machine, hal):
    client = machine.client()
    machine.start_daemon().wait_for_log("getModemState(): klogctl()")
    setup = Setup(client)
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("newModemPlugged", timeout=20)
    hal.plug("usb_device_46d_c526_1", 0x046D, 0xC526)  # useNewModem would store its identifier
    wait_until(lambda: setup.announced() == ("", 0, 0, ""), 20, "the other device is looked at")


def test_a_modem_that_has_left_is_not_told(machine, hal):
    client = machine.client()
    daemon = machine.start_daemon()
    daemon.wait_for_log("getModemState(): klogctl()")
    setup = Setup(client)
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("newModemPlugged", timeout=20)
    hal.unplug(udi)
    client.wait_signal("newModemUnplugged")
    assert setup.announced() == ("", 0, 0, "")


# ---- who may

@ROOT_ONLY
def test_members_set_settings_and_account_and_only_root_the_arguments(running):
    member = Setup(running.client(**MEMBER))
    member.set(vpi=8)
    assert member.settings() == {"vpi": 8} and member.arguments() == []
    assert error_of(member.set_account, "a\nb", "c") == INVALID
    denied = "org.freedesktop.DBus.Error.AccessDenied"
    assert error_of(member.set_arguments, "plugin", "evil.so") == denied
    assert error_of(member.client.call, "setAccountData", "a", "b") == denied
    stranger = Setup(running.client(uid=NOBODY))
    assert stranger.settings() == {"vpi": 8} and stranger.announced()[0] == ""
    assert error_of(stranger.set, vpi=1) == denied
    assert error_of(stranger.set_account, "a", "b") == denied
    assert error_of(stranger.arguments) == denied
