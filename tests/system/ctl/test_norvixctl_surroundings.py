# SPDX-License-Identifier: MIT
"""What norvixctl says of others that look after networks: default routes, name servers, neighbours."""
import pytest
from fake_keeper import CONNECTED, FakeService, start_keeper
from keeper_world import World
from norvixctl import FAULTS, OK, Ctl, words
from test_norvixctl_reading import check_schema

from lab.machine import keeper_service

NETWORKD, RESOLVED = "org.freedesktop.network1", "org.freedesktop.resolve1"
MANAGER = "org.freedesktop.NetworkManager"
PROVIDERS = "nameserver 203.0.113.1\nnameserver 203.0.113.2\n"


def ip(machine, line):
    result = machine.run(["/usr/sbin/ip", *line.split()])
    assert result.status == 0, result.stderr


def finding(machine, name, **user):
    return {check["id"]: check for check in Ctl(machine, **user).json("doctor")["checks"]}[name]


def told(check):
    return "%s %s" % (check["text"], check["remedy"])


# ---- default routes

@pytest.fixture(name="world")
def world_fixture(new_machine):
    """A provider that answers; somebody has a second interface, and the keeper runs."""
    made = World(new_machine())
    made.start_keeper()
    ip(made.machine, "link add wlan0 type veth peer name router")
    ip(made.machine, "link set wlan0 up")
    ip(made.machine, "link set router up")
    ip(made.machine, "addr add 192.168.1.20/24 dev wlan0")
    return made


def test_a_link_that_has_the_default_route_is_used(world):
    world.connect()
    shown = Ctl(world.machine).json("status")
    check_schema("status", shown)
    assert (shown["connection"]["route"], shown["connection"]["isUsed"]) == ("ppp0", True)
    check = finding(world.machine, "route")
    assert (check["verdict"], check["text"]) == ("ok", "through ppp0")


def test_without_a_link_the_default_route_is_nobodys_fault(world):
    ip(world.machine, "route add default via 192.168.1.1 dev wlan0 metric 600")
    connection = Ctl(world.machine).json("status")["connection"]
    assert (connection["route"], connection["isUsed"]) == ("wlan0", None)
    assert finding(world.machine, "route")["verdict"] == "ok"


def test_a_link_beside_another_default_route_is_said_to_be_unused_until_one_chooses(world):
    ip(world.machine, "route add default via 192.168.1.1 dev wlan0 metric 600")
    world.connect()
    ctl = Ctl(world.machine)
    connection = ctl.json("status")["connection"]
    assert (connection["route"], connection["isUsed"]) == ("wlan0", False)
    check = finding(world.machine, "route")
    assert check["verdict"] == "warning"
    for text in (words(ctl("status")), told(check)):
        assert "ppp0 is up, but nothing goes through it: the default route leads through wlan0." in text
        assert "end the connection of wlan0" in text
        assert "“sudo ip route add default dev ppp0”" in text
        assert "replacedefaultroute" not in text
    ip(world.machine, "route add default dev ppp0")  # as it says
    assert ctl.json("status")["connection"]["isUsed"] is True
    assert finding(world.machine, "route")["verdict"] == "ok"


def test_where_ours_cannot_be_preferred_it_is_not_recommended(world):
    ip(world.machine, "route add default via 192.168.1.1 dev wlan0")
    world.connect()
    text = told(finding(world.machine, "route"))
    assert "End the connection of wlan0" in text and "ip route" not in text


def test_a_link_without_any_default_route_is_said_to_be_unused(world):
    world.connect()
    ip(world.machine, "route del default")
    assert Ctl(world.machine).json("status")["connection"]["isUsed"] is False
    text = told(finding(world.machine, "route"))
    assert "there is no default route" in text and "ip route add default dev ppp0" in text


def test_the_providers_name_servers_are_named_when_another_connection_leads(world):
    ip(world.machine, "route add default via 192.168.1.1 dev wlan0 metric 600")
    world.connect()
    for file in ("/etc/resolv.conf", "/etc/ppp/resolv.conf"):
        world.machine.path(file).write_text(PROVIDERS, encoding="ascii")
    check = finding(world.machine, "resolver")
    assert check["verdict"] == "warning"
    for text in (told(check), words(Ctl(world.machine)("status"))):
        for server in ("203.0.113.1", "203.0.113.2"):
            assert "The name server %s is the provider's, but is asked through wlan0." % server in text


def test_another_connections_name_server_is_named_while_the_link_leads(world):
    world.connect()
    world.machine.path("/etc/resolv.conf").write_text("nameserver 192.168.1.1\n", encoding="ascii")
    assert "192.168.1.1 is asked through wlan0" in told(finding(world.machine, "resolver"))
    world.machine.path("/etc/resolv.conf").write_text(PROVIDERS, encoding="ascii")
    assert finding(world.machine, "resolver")["verdict"] == "ok"


# ---- the keeper

@pytest.fixture(name="lone")
def lone_fixture(new_machine):
    """A machine with a bus on which anything may be owned, and nobody is."""
    machine = new_machine(private_folders=["/usr/lib/systemd/network"])
    keeper_service.prepare(machine)
    machine.start_bus(policies=[keeper_service.POLICY], names=[NETWORKD, RESOLVED, MANAGER])
    return machine


def test_doctor_names_a_keeper_that_is_stopped_or_missing(lone):
    stopped = finding(lone, "keeper")
    assert stopped["verdict"] == "warning" and "systemctl enable --now norvix-keeper" in told(stopped)
    lone.request("hide", path=keeper_service.PROGRAM)
    missing = finding(lone, "keeper")
    assert missing["verdict"] == "warning" and "apt install norvix-keeper" in told(missing)


@pytest.mark.parametrize("answer, text", [
    (None, "does not answer"), (("s", "hello"), "not understood"),
    (("org.freedesktop.DBus.Error.AccessDenied", "no"), "does not let this user ask"),
    (("a{sv}", {**CONNECTED, "Reason": ("s", "request-refused"), "State": ("s", "waiting")}),
     "does not listen to the keeper"),
    (("a{sv}", {**CONNECTED, "History": ("s", "unwritable")}), "history can not be written")],
    ids=["hanging", "nonsense", "refused", "refused by the daemon", "no history"])
def test_doctor_names_a_keeper_that_is_of_no_use(lone, answer, text):
    start_keeper(lone, GetAll=answer)
    check = finding(lone, "keeper")
    assert check["verdict"] == "warning"
    assert text in told(check)


def test_a_keeper_that_keeps_is_fine(lone):
    start_keeper(lone)
    assert finding(lone, "keeper")["verdict"] == "ok"


# ---- neighbours

NETWORKD_FILE = "/usr/lib/systemd/network/10-norvix.network"
HOOK = "/etc/ppp/ip-up.d/norvix-resolved"


def test_neighbours_that_are_not_there_are_not_missed(lone):
    for name in ("networkmanager", "networkd", "resolved"):
        check = finding(lone, name)
        assert (check["verdict"], check["text"]) == ("ok", "not in use here")


def test_networkd_needs_its_file_which_nothing_may_hide(lone):
    FakeService.start(lone, NETWORKD)
    check = finding(lone, "networkd")
    assert check["verdict"] == "warning" and "10-norvix.network is missing" in told(check)
    lone.path(NETWORKD_FILE).write_text("[Link]\nUnmanaged=yes\n", encoding="ascii")
    assert finding(lone, "networkd")["verdict"] == "ok"
    hiding = lone.path("/etc/systemd/network/10-norvix.network")
    hiding.parent.mkdir(parents=True, exist_ok=True)
    hiding.symlink_to("/dev/null")
    check = finding(lone, "networkd")
    assert check["verdict"] == "warning"
    assert "Give /etc/systemd/network/10-norvix.network another name" in told(check)


def test_networkmanager_needs_its_file(lone):
    FakeService.start(lone, MANAGER)
    check = finding(lone, "networkmanager")
    assert check["verdict"] == "warning" and "conf.d/norvix.conf is missing" in told(check)


def test_resolved_needs_a_hook_that_can_be_run(lone):
    FakeService.start(lone, RESOLVED)
    assert "norvix-resolved is missing" in told(finding(lone, "resolved"))
    hook = lone.path(HOOK)
    hook.parent.mkdir(parents=True, exist_ok=True)
    hook.write_text("#!/bin/sh\n", encoding="ascii")
    assert finding(lone, "resolved")["verdict"] == "warning"
    hook.chmod(0o755)
    assert finding(lone, "resolved")["verdict"] == "ok"


@pytest.fixture(name="resolved_world")
def resolved_world_fixture(new_machine):
    made = World(new_machine(), names=[RESOLVED, NETWORKD])
    made.start_keeper()
    made.connect()
    made.machine.path("/etc/ppp/resolv.conf").write_text(PROVIDERS, encoding="ascii")
    hook = made.machine.path(HOOK)
    hook.parent.mkdir(parents=True, exist_ok=True)
    hook.write_text("#!/bin/sh\n", encoding="ascii")
    hook.chmod(0o755)
    return made


def test_resolved_is_asked_whether_it_knows_the_providers_servers(resolved_world):
    machine = resolved_world.machine
    resolved = FakeService.start(machine, RESOLVED)
    number = int(machine.run(["/bin/cat", "/sys/class/net/ppp0/ifindex"]).stdout)
    for interface, verdict in ((number, "ok"), (number + 1, "warning")):
        servers = [(interface, 2, bytes([203, 0, 113, 1]))]
        resolved.answers["Get"] = ("v", ("a(iiay)", servers))
        assert finding(machine, "resolved")["verdict"] == verdict
    for nonsense in (("s", "x"), ("v", ("s", "x")), None):
        resolved.answers["Get"] = nonsense
        assert finding(machine, "resolved")["verdict"] == "ok"


def test_networkd_is_believed_what_it_says_of_the_link(resolved_world):
    machine = resolved_world.machine
    number = machine.run(["/bin/cat", "/sys/class/net/ppp0/ifindex"]).stdout.strip()
    machine.run(["/bin/mkdir", "-p", "/run/systemd/netif/links"])
    FakeService.start(machine, NETWORKD)
    machine.run(["/bin/sh", "-c", "echo ADMIN_STATE=configured > /run/systemd/netif/links/" + number])
    check = finding(machine, "networkd")
    assert check["verdict"] == "warning"
    assert "10-norvix.network" in told(check)


def test_neighbours_that_hang_do_not_hang_doctor(lone):
    for name in (NETWORKD, RESOLVED, MANAGER):
        FakeService.start(lone, name, Get=None, GetDeviceByIpIface=None)
    start_keeper(lone, GetAll=None)
    assert Ctl(lone)("doctor").status in (OK, FAULTS)
