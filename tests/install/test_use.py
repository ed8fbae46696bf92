# SPDX-License-Identifier: MIT
"""The installed system on a real system bus, used with norvixctl alone: by a fresh user of the group
and by one who is in no group. No network; the modem is for the emulated computer."""
import json

import pytest
from conftest import USER

STRANGER = "otto"


@pytest.fixture(scope="module")
def running(from_clone):
    """The bus runs; the daemon and its companion are started by calls to them."""
    from_clone.run("useradd", "--create-home", STRANGER)
    from_clone.run("mkdir", "-p", "/run/dbus", "/run/lock")
    from_clone.run("systemd-tmpfiles", "--create", "norvix-daemon.conf", "norvix-hald.conf")
    from_clone.run("dbus-daemon", "--system", "--fork", network=False)
    yield from_clone
    from_clone.run("sh", "-c", "kill $(cat /run/dbus/pid)", check=False)


def ctl(system, *words, user=USER, **options):
    return system.run("norvixctl", *words, user=user, check=False, **options)


def test_a_call_starts_the_daemon_and_its_companion(running):
    running.run("dbus-send", "--system", "--print-reply", "--dest=com.norvix.Daemon",
                "/com/norvix/Daemon", "com.norvix.Daemon.reply", user=STRANGER)
    assert json.loads(ctl(running, "status", "--json").output)["daemon"]["running"] is True
    told = running.run("ps", "-eo", "user:20,args").output
    assert "/opt/norvix/bin/norvix-daemon" in told
    assert any(line.startswith("norvix-hal ") for line in told.splitlines()), told


def test_a_member_sets_line_and_account_and_reads_the_log(running):
    assert ctl(running, "line", "set", "--vpi", "8", "--vci", "35", "--protocol", "PPPoE").status == 0
    assert ctl(running, "account", "set", "me@isp", stdin="secret\n").status == 0
    assert "me@isp" in ctl(running, "account", "show").output
    assert running.path("/etc/ppp/pap-secrets").read_text().startswith('"me@isp" * "secret" *\n')
    assert 'user "me@isp"' in running.path("/etc/ppp/peers/norvix").read_text()
    shown = json.loads(ctl(running, "line", "show", "--json").output)
    assert (shown["vpi"], shown["vci"], shown["protocol"]) == ("8", "35", "PPPoE")
    assert ctl(running, "autoconnect", "on").status == 0
    assert ctl(running, "autoconnect", "off").status == 0
    assert "ctor invoked" in ctl(running, "log").output


def test_the_check_up_finds_nothing_wrong_with_the_installation(running):
    findings = {check["id"]: check for check in
                json.loads(ctl(running, "doctor", "--json", user="root").output)["checks"]}
    sound = ("daemon", "companion", "policy", "permission", "line-settings", "bridge", "peer",
             "secrets", "other-pppd")
    assert {name: findings[name] for name in sound if findings[name]["verdict"] != "ok"} == {}


def test_a_stranger_may_look_but_not_change(running):
    assert ctl(running, "status", user=STRANGER).status == 0
    for words in (("connect",), ("disconnect",), ("account", "show"), ("autoconnect", "on"),
                  ("line", "set", "--vpi", "1")):
        refused = ctl(running, *words, user=STRANGER)
        assert refused.status != 0 and refused.output, words
    findings = {check["id"]: check for check in
                json.loads(ctl(running, "doctor", "--json", user=STRANGER).output)["checks"]}
    assert "norvix" in findings["permission"]["remedy"]


def test_the_secrets_stay_roots_alone(running):
    for name in ("/etc/ppp/pap-secrets", "/etc/ppp/chap-secrets"):
        facts = running.path(name).stat()
        assert (facts.st_mode & 0o777, facts.st_uid) == (0o600, 0)
