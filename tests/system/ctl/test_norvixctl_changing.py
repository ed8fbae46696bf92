# SPDX-License-Identifier: MIT
"""norvixctl as it changes things: account, line, automatic connections, modem, driver."""
import pytest
from norvixctl import (FAILED, NO_DAEMON, NORVIX_GROUP, NOT_PERMITTED, OK, REFUSED, USAGE, Ctl, words)

from lab.machine.fake_hal import SERVICE, FakeHal
from lab.waiting import wait_until

MEMBER = {"uid": 1000, "groups": [NORVIX_GROUP]}


@pytest.fixture(name="running")
def running_fixture(bus_machine):
    for name in ("norvix", "norvix_unicorn"):
        bus_machine.path("/etc/ppp/peers/" + name).write_text("noauth\n", encoding="ascii")
    for name in ("pap-secrets", "chap-secrets"):
        bus_machine.path("/etc/ppp/" + name).write_text('"norvix" * "norvix" *\n', encoding="ascii")
    bus_machine.start_daemon()
    return bus_machine


def settings_of(machine):
    text = machine.path("/opt/norvix/.daemon_ng.ini").read_text(encoding="utf-8")
    return dict(line.split("=", 1) for line in text.splitlines() if "=" in line)


# ---- account set

def test_an_account_from_standard_input_reaches_pppds_files(running):
    result = Ctl(running)("account", "set", "user@isp", stdin="s3cret word\n")
    assert (result.status, result.stderr) == (OK, "")
    assert '"user@isp" * "s3cret word" *\n' == running.path("/etc/ppp/pap-secrets").read_text()
    assert 'user "user@isp"' in running.path("/etc/ppp/peers/norvix").read_text()


def test_the_password_never_appears_on_the_command_line_or_screen(running):
    dialogue = [("Login:", "user@isp\r"), ("Password:", "s3cret\r"), ("again:", "s3cret\r")]
    result = Ctl(running).on_terminal("account", "set", dialogue=dialogue)
    assert result.status == OK
    assert "user@isp" in result.stdout and "s3cret" not in result.stdout
    assert '"s3cret"' in running.path("/etc/ppp/chap-secrets").read_text()
    assert Ctl(running)("account", "set", "user@isp", "s3cret").status == USAGE


def test_a_mistyped_password_changes_nothing(running):
    dialogue = [("Password:", "one\r"), ("again:", "two\r")]
    result = Ctl(running).on_terminal("account", "set", "me", dialogue=dialogue)
    assert result.status == REFUSED
    assert "differ" in result.stdout
    assert "norvix" in running.path("/etc/ppp/pap-secrets").read_text()


def test_the_terminals_echo_comes_back_after_an_interrupt(running):
    result = Ctl(running).on_terminal("account", "set", "me", dialogue=[("Password:", "\x03")])
    assert result.status == 128 + 2


@pytest.mark.parametrize("login, password, said", [
    ("a" * 51, "pw", "51 characters"), ("", "pw", "is empty"), ("\\" * 26, "pw", "52 characters"),
    ("a\nb", "pw", "line feed"), ("a\tb", "pw", "control character"),
    ("me", "a" * 51, "51 characters"), ("me", "", "is empty"), ("me", '"' * 26, "52 characters"),
    ("a" * 50, "b" * 41, "100 bytes"), ("me", "@/etc/passwd", "name of a file"),
    ("me", "a\nb", "line feed"), ("me", "a\x1bb", "control character"),
    ("me", b"a\0b", "control character"), ("me", b"\xff", "not valid text"),
    ("me", "x\r\n", "line feed"),
])
def test_values_that_would_do_harm_are_refused(running, login, password, said):
    result = Ctl(running)("account", "set", "--", login, stdin=password)
    assert result.status == REFUSED
    assert said in words(result.stderr)
    assert '"norvix" * "norvix" *\n' == running.path("/etc/ppp/pap-secrets").read_text()


@pytest.mark.parametrize("login, password", [
    ("me", "\\1"), ("me", 'a"b'), ('a"b', '" * "'), ("a\\2", '\\"\\'), ("me", "caf\u00e9")])
def test_an_account_with_any_signs_is_stored_and_shown_as_it_was_given(running, login, password):
    ctl = Ctl(running)
    for name in ("pap-secrets", "chap-secrets"):
        with running.path("/etc/ppp/" + name).open("a", encoding="ascii") as file:
            file.write("# the rest\n")
    for _ in range(2):  # the second time over itself
        result = ctl("account", "set", "--", login, stdin=password)
        assert (result.status, result.stderr) == (OK, "")
        shown = ctl.json("account", "show", "--reveal")
        assert (shown["login"], shown["password"]) == (login, password)
        assert running.path("/etc/ppp/pap-secrets").read_text().endswith("*\n# the rest\n")
    assert "is not the login of the peer file" not in words(ctl("doctor").stdout)


def test_without_a_login_and_without_a_terminal_nothing_is_stored(running):
    assert Ctl(running)("account", "set", stdin="pw").status == USAGE


def test_a_file_that_could_not_be_written_is_reported(running):
    running.path("/etc/ppp/chap-secrets").unlink()
    result = Ctl(running)("account", "set", "me", stdin="pw")
    assert (result.status, "norvixctl doctor" in words(result.stderr)) == (FAILED, True)


def test_an_account_that_will_not_take_effect_is_warned_of(running):
    for name in ("pap-secrets", "chap-secrets"):
        running.path("/etc/ppp/" + name).write_text('# comment\n"old" * "pw" *\n')
    result = Ctl(running)("account", "set", "new", stdin="pw")
    assert (result.status, "doctor --fix" in words(result.stderr)) == (OK, True)
    assert Ctl(running)("doctor", "--fix").stderr.count("begins with") == 2
    assert Ctl(running).json("account", "show")["login"] == "new"


# ---- line set, autoconnect, idle

def test_line_parameters_reach_the_file_and_the_daemon(running):
    result = Ctl(running)("line", "set", "--vpi", "8", "--vci=35", "--protocol", "PPPoE",
                          "--service", "at home")
    assert (result.status, result.stderr) == (OK, "")
    client = running.client()
    assert [client.call(name) for name in ("getVPI", "getVCI", "getProtocol", "getService")] == [
        "8", "35", "PPPoE", "at home"]


def test_line_parameters_are_stored_without_a_daemon_and_keep_the_rest(machine):
    machine.settings(modem="CXACRU modem", vendor_id=1394, pppd_arguments="mtu, 1400")
    file = machine.path("/opt/norvix/.daemon_ng.ini")
    file.chmod(0o640)
    before = settings_of(machine)
    result = Ctl(machine)("line", "set", "--vpi", "1", "--vci", "32", "--protocol", "PPPoA")
    assert (result.status, "1.32" in result.stdout) == (OK, True)
    assert settings_of(machine) == {**before, "vpi": "1", "vci": "32", "protocol": "PPPoA"}
    assert file.stat().st_mode & 0o777 == 0o640


def test_the_file_keeps_its_owner_when_root_writes_it(machine):
    machine.settings(vpi=8)
    machine.run(["/bin/chown", "1000:1000", "/opt/norvix/.daemon_ng.ini"])
    assert Ctl(machine)("line", "set", "--vpi", "1").status == OK
    assert machine.path("/opt/norvix/.daemon_ng.ini").stat().st_uid == 1000


def test_a_member_sets_the_line_although_only_root_may_write_the_file(running):
    file = running.path("/opt/norvix/.daemon_ng.ini")
    running.settings(pppd_arguments="mtu, 1400")
    running.run(["/bin/chown", "0:%d" % NORVIX_GROUP, "/opt/norvix/.daemon_ng.ini"])
    file.chmod(0o640)
    member = Ctl(running, **MEMBER)
    assert member("line", "set", "--vpi", "8", "--protocol", "PPPoE").status == OK
    assert settings_of(running) == {"pppd_arguments": "mtu, 1400", "vpi": "8", "protocol": "PPPoE"}
    assert (file.stat().st_mode & 0o777, file.stat().st_gid) == (0o640, NORVIX_GROUP)
    assert member.json("line")["vpi"] == "8"


def test_line_parameters_are_for_the_group_only(running):
    result = Ctl(running, uid=1000)("line", "set", "--vpi", "8")
    assert result.status == NOT_PERMITTED
    assert running.client().call("getVPI") == "error"


@pytest.mark.parametrize("options", [
    [], ["--vpi", "256"], ["--vpi", "-1"], ["--vci", "65536"], ["--vci", "x"],
    ["--protocol", "pppoe"], ["--service", "a\nb"]])
def test_line_parameters_that_can_not_be_are_refused(machine, options):
    result = Ctl(machine)("line", "set", *options)
    assert result.status == (REFUSED if options else USAGE) and result.stderr
    assert not machine.path("/opt/norvix/.daemon_ng.ini").exists()


@pytest.mark.parametrize("options, expected", [
    ([], (True, True, True)), (["--boot"], (True, False, False)),
    (["--plug"], (False, True, True)), (["--boot", "--plug"], (True, True, True))])
def test_automatic_connections_are_switched(running, options, expected):
    assert Ctl(running)("autoconnect", "on", *options).status == OK
    client = running.client()
    in_file = settings_of(running).get("autoconnect") == "true" if expected[2] else False
    assert (client.call("getConnectAtBoot"), client.call("getConnectAtModemPlug"),
            in_file) == expected
    assert Ctl(running)("autoconnect", "off").status == OK
    assert Ctl(running).json("autoconnect") == {"boot": False, "newModem": False, "modem": False}


def test_a_member_switches_automatic_connections(running):
    assert Ctl(running, **MEMBER)("autoconnect", "on").status == OK
    assert settings_of(running)["autoconnect"] == "true"
    assert Ctl(running)("autoconnect", "maybe").status == USAGE


def test_the_idle_time_is_stored(running):
    assert Ctl(running)("idle", "30").status == OK
    assert running.client().call("getIdlenessTime") == 30
    assert Ctl(running)("idle", "--", "-5").status == REFUSED
    assert Ctl(running)("idle", "2147483648").status == REFUSED


@pytest.mark.parametrize("command", [["idle", "1"], ["autoconnect", "on"], ["driver", "restart"]])
def test_changing_is_for_the_group_only(running, command):
    result = Ctl(running, uid=1000)(*command)
    assert (result.status, "usermod -a -G" in " ".join(result.stderr.split())) == (NOT_PERMITTED, True)


@pytest.mark.parametrize("command", [["idle", "1"], ["autoconnect", "on"], ["driver", "restart"],
                                     ["modem", "adopt"], ["account", "set", "me"],
                                     ["line", "set", "--vpi", "8"]])
def test_changing_needs_a_daemon(bus_machine, command):
    result = Ctl(bus_machine, **MEMBER)(*command, stdin="pw")
    assert (result.status, "systemctl start" in words(result.stderr)) == (NO_DAEMON, True)


# ---- driver restart, modem adopt

def test_restarting_the_driver_waits_for_its_end(running):
    running.settings(vendor_id=1394)
    result = Ctl(running)("driver", "restart")
    assert (result.status, "reloaded" in result.stdout) == (OK, True)
    assert running.calls("modprobe")[-1].argv == ["cxacru"]


def test_a_daemon_that_ends_during_the_restart_is_reported(running):
    running.settings(vendor_id=1394)
    running.standin("rmmod").set(sleep=60)
    process = Ctl(running).start("driver", "restart")
    running.wait_call("rmmod")
    running.client().call("reply")  # answered after the call that has begun the restart
    running.daemons[0].stop()
    assert process.wait() == NO_DAEMON


@pytest.fixture(name="with_usb")
def with_usb_fixture(new_machine):
    machine = new_machine(private_folders=["/sys/bus"])
    machine.start_bus(names=[SERVICE])
    return machine


def plug(machine):
    device = machine.path("/sys/bus/usb/devices/1-1")
    device.mkdir(parents=True)
    (device / "idVendor").write_text("06b9\n", encoding="ascii")
    (device / "idProduct").write_text("4061\n", encoding="ascii")


def test_a_modem_that_has_left_is_not_adopted_and_nothing_is_forgotten(with_usb):
    with_usb.settings(modem="CXACRU modem", vendor_id=1394, product_id=51966, udi="/known")
    hal = FakeHal.start(with_usb)
    with_usb.start_daemon().wait_for_log("getModemState(): klogctl()")
    plug(with_usb)
    client = with_usb.client()
    udi = hal.plug("usb_device_6b9_4061_1", 0x06B9, 0x4061)
    client.wait_signal("newModemPlugged")
    hal.unplug(udi)
    client.wait_signal("newModemUnplugged")
    result = Ctl(with_usb, **MEMBER)("modem", "adopt")
    assert (result.status, "plug it in again" in words(result.stderr)) == (FAILED, True)
    assert settings_of(with_usb)["udi"] == "/known"


def test_a_new_modem_is_adopted(with_usb):
    hal = FakeHal.start(with_usb)
    with_usb.start_daemon().wait_for_log("getModemState(): klogctl()")
    plug(with_usb)
    client = with_usb.client()
    hal.plug("usb_device_6b9_4061_1", 0x06B9, 0x4061)
    client.wait_signal("newModemPlugged")
    result = Ctl(with_usb)("modem", "adopt")
    assert (result.status, result.stdout) == (OK, "Thomson Speedtouch 330 is now in use.\n")
    assert Ctl(with_usb)("modem", "adopt").stdout.startswith("The modem that is plugged in is")
    shown = Ctl(with_usb).json("modem")
    wait_until(lambda: Ctl(with_usb).json("modem")["name"], what="the settings are written")
    assert shown["plugged"] is True


def test_nothing_is_adopted_when_nothing_is_plugged_in(with_usb):
    with_usb.settings(modem="CXACRU modem", vendor_id=1394)
    FakeHal.start(with_usb)
    with_usb.start_daemon()
    result = Ctl(with_usb)("modem", "adopt")
    assert (result.status, "No supported modem" in result.stderr) == (FAILED, True)
    assert Ctl(with_usb).json("modem")["name"] == "CXACRU modem"


def test_a_modem_that_the_daemon_did_not_notice_has_to_be_plugged_in_again(with_usb):
    plug(with_usb)
    FakeHal.start(with_usb)
    with_usb.start_daemon()
    result = Ctl(with_usb)("modem", "adopt")
    assert (result.status, "plug it in again" in words(result.stderr)) == (FAILED, True)
