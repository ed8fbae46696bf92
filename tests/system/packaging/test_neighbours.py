# SPDX-License-Identifier: MIT
"""What pppd's hook tells systemd-resolved when a link is up."""
import socket
from pathlib import Path

import pytest

from lab.waiting import read_text

HOOK = Path(__file__).resolve().parents[3] / "packaging/neighbours/norvix-resolved"
UP = {"LINKNAME": "norvix", "USEPEERDNS": "1", "DNS1": "192.0.2.53", "DNS2": "192.0.2.54",
      "PPP_IFACE": "ppp0", "PATH": "/usr/local/sbin:/usr/sbin:/usr/bin:/sbin:/bin"}


def ip(machine, *arguments):
    outcome = machine.run(["/sbin/ip", *arguments])
    assert outcome.status == 0, outcome.stderr


def interface_up(machine, name):
    ip(machine, "link", "add", name, "type", "veth", "peer", "far-" + name)
    for end in (name, "far-" + name):
        ip(machine, "link", "set", end, "up")


@pytest.fixture
def resolved(machine):
    """A machine in which systemd-resolved seems to run, and a resolvectl that writes down its calls."""
    folder = machine.path("/run/systemd/resolve")
    folder.mkdir(parents=True)
    with socket.socket(socket.AF_UNIX) as varlink:
        varlink.bind(str(folder / "io.systemd.Resolve"))
    program = machine.path("/usr/local/sbin/resolvectl")
    program.write_text("#!/bin/sh\necho \"$*\" >>/run/told\nexit ${RESOLVED_FAILS:-0}\n")
    program.chmod(0o755)
    interface_up(machine, "ppp0")
    return machine


def told(machine, **environment):
    outcome = machine.run([HOOK, "ppp0", "", "0", "192.0.2.1", "192.0.2.2", "norvix"], env={**UP, **environment})
    assert (outcome.status, outcome.stderr) == (0, "")
    return read_text(machine.path("/run/told")).splitlines()


def route(machine, device, metric):
    ip(machine, "route", "add", "default", "dev", device, "metric", metric)


def test_the_servers_are_told_and_asked_for_every_name_over_the_default_route(resolved):
    route(resolved, "ppp0", "0")
    assert told(resolved) == ["dns ppp0 192.0.2.53 192.0.2.54", "domain ppp0 ~."]


def test_one_server_is_enough(resolved):
    route(resolved, "ppp0", "0")
    assert told(resolved, DNS2="")[0] == "dns ppp0 192.0.2.53"


def test_beside_another_default_route_the_servers_are_not_asked_for_every_name(resolved):
    interface_up(resolved, "wlan0")
    route(resolved, "wlan0", "0")
    route(resolved, "ppp0", "600")
    assert told(resolved) == ["dns ppp0 192.0.2.53 192.0.2.54", "default-route ppp0 no"]


@pytest.mark.parametrize("environment", [
    {"LINKNAME": "work"}, {"LINKNAME": ""}, {"USEPEERDNS": ""}, {"DNS1": "", "DNS2": ""}])
def test_links_of_others_and_links_without_servers_are_left_alone(resolved, environment):
    assert told(resolved, **environment) == []


def test_nothing_is_told_where_resolved_does_not_run(resolved):
    resolved.path("/run/systemd/resolve/io.systemd.Resolve").unlink()
    assert told(resolved) == []


def test_a_resolved_that_refuses_does_not_fail_the_hook(resolved):
    assert told(resolved, RESOLVED_FAILS="1") == ["dns ppp0 192.0.2.53 192.0.2.54"]
