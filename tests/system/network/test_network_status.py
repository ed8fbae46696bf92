# SPDX-License-Identifier: MIT
"""Address, route, traffic and time of the connection."""
import time

import pytest

from lab.machine.pppd_script import link_up, out, stay, wait_for
from lab.waiting import wait_until

IP = "/usr/sbin/ip"
LINK_PID = "/run/ppp-norvix.pid"


def connected(machine, *arguments, steps=None):
    machine.kernel_log.line_up()
    machine.pppd.script(steps or link_up() + [stay()])
    client = machine.client()
    daemon = machine.start_daemon(*arguments)
    daemon.wait_started()  # before, no line of pppd means anything
    client.call("establishConnection")
    client.wait_signal("transmissionSpeed")
    return daemon, client


def counter(machine, name, interface="ppp0"):
    return int(machine.read("/sys/class/net/%s/statistics/%s" % (interface, name)))


def totals_after_traffic(machine, client, seconds):
    """Received and sent bytes after so much traffic, once the last answer of the far end is in, as the
    kernel counts them; by then they have been told."""
    traffic = machine.traffic(bytes_per_second=20000, seconds=seconds)
    assert traffic.wait() == 0, traffic.errors()

    def told():
        totals = (counter(machine, "rx_bytes"), counter(machine, "tx_bytes"))
        is_all = min(totals) >= int(traffic.output())
        return totals if is_all and client.named("transmissionBytes")[-1].args == totals else None

    return wait_until(told, what="the daemon tells what the kernel counts")


# ---- address

def test_an_unknown_interface_is_logged_and_has_no_address(bus_machine):
    daemon = bus_machine.start_daemon("-d")
    assert bus_machine.client().call("getIP", "none7") == "..."
    assert "Norvix_Daemon::getIP(): interface none7 is invalid!\n" in bus_machine.daemon_log()
    assert "Norvix_Daemon::getIP(): returning IP: ...\n" in daemon.output()


def test_an_interface_without_an_address_answers_dots_without_a_log_line(bus_machine):
    bus_machine.run([IP, "link", "add", "ppp0", "type", "veth", "peer", "name", "far0"])
    daemon = bus_machine.start_daemon()
    daemon.wait_for_log("klogctl() <= 0!")
    logged = bus_machine.daemon_log()
    client = bus_machine.client()
    assert client.call("getIP") == "..."
    assert client.call("getConnectionState") == 2
    assert bus_machine.daemon_log() == logged


@pytest.mark.parametrize("name", ["", "x" * 16, "x" * 100000, "../lo", "lo\n", "ünïcode", "%1"],
                         ids=["empty", "long", "very long", "path", "line feed", "other letters", "percent"])
def test_odd_interface_names_are_answered(bus_machine, name):
    bus_machine.start_daemon()
    client = bus_machine.client()
    assert client.call("getIP", name) == "..."
    assert client.call("reply") is True


def test_the_first_address_is_the_local_one(bus_machine):
    _, client = connected(bus_machine)
    assert client.call("getIP") == client.call("getIP", "ppp0") == "10.64.0.100"
    bus_machine.run([IP, "addr", "add", "192.0.2.7/32", "dev", "ppp0"])
    assert client.call("getIP") == "10.64.0.100"


@pytest.mark.parametrize("address, told, state", [("2001:db8::7", "2001:db8::7", "up"),
                                                  ("fe80::7", "fe80::7%ppp0", "down")])
def test_an_address_of_another_family_alone_counts_one_of_the_link_names_it(bus_machine, address, told, state):
    bus_machine.run([IP, "link", "add", "ppp0", "type", "veth", "peer", "name", "far0"])
    bus_machine.run([IP, "addr", "add", address + "/64", "dev", "ppp0", "nodad"])
    bus_machine.run([IP, "link", "set", "ppp0", state])
    bus_machine.start_daemon()
    client = bus_machine.client()
    assert client.call("getIP") == told
    assert client.call("getConnectionState") == 0


# ---- route and interface

def test_without_routes_there_is_no_default_route(bus_machine):
    bus_machine.start_daemon()
    assert bus_machine.client().call("getDefaultRoute") == "..."


@pytest.mark.parametrize("interfaces,answer", [
    (["eth0", "ppp0"], "ppp0"), (["ppp0", "eth0"], "eth0"), (["wlan0"], "wlan0"),
    (["enp0s3"], "enp0s3"), (["br-x", "up"], "..."),
])
def test_the_last_route_whose_interface_fits_is_the_answer(bus_machine, interfaces, answer):
    for number, name in enumerate(interfaces):
        bus_machine.run([IP, "link", "add", name, "type", "veth", "peer", "name", "f-" + name])
        bus_machine.run([IP, "link", "set", name, "up"])
        # The kernel lists routes by their destination.
        bus_machine.run([IP, "route", "add", "10.%d.0.0/16" % (number + 1), "dev", name])
    bus_machine.start_daemon()
    assert bus_machine.client().call("getDefaultRoute") == answer


def test_the_route_is_printed_under_the_name_it_always_had(bus_machine):
    daemon = bus_machine.start_daemon("-d")
    bus_machine.client().call("getDefaultRoute")
    assert "Norvix_Daemon::getIP(): returning Default Route: ...\n" in daemon.output()


@pytest.mark.parametrize("files,interface", [
    ({}, "ppp0"),
    ({"ppp-norvix.pid": "123\nppp3\n"}, "ppp3"),
    ({"ppp-norvix.pid": "123\n", "ppp2.pid": "5\n", "ppp1.pid": "5\n"}, "ppp1"),
    ({"ppp-norvix.pid": ""}, "ppp0"),
    ({"ppp10.pid": "5\n"}, "ppp0"),
    ({"ppp4.pid": "5\n", "ppp10.pid": "5\n"}, "ppp4"),
    ({"xppp4.pid": "5\n"}, "ppp0"),
    ({"ppp-norvix.pid": "123\ninterface ppp12 and ppp5\n"}, "ppp1"),
])
def test_the_interface_is_found_through_the_pid_files(bus_machine, files, interface):
    for name, content in files.items():
        bus_machine.path("/run/" + name).write_text(content, encoding="ascii")
    bus_machine.start_daemon()
    assert bus_machine.client().call("getInterface") == interface


# ---- traffic

def test_the_figures_are_the_kernels_own(bus_machine):
    _, client = connected(bus_machine)
    final = totals_after_traffic(bus_machine, client, seconds=3)
    assert final[0] > 50000 and final[1] > 50000
    totals = [signal.args for signal in client.named("transmissionBytes")]
    speeds = [signal.args for signal in client.named("transmissionSpeed")]
    assert speeds[0] == (0, 0)
    for before, now, speed in zip(totals, totals[1:], speeds[1:]):
        assert speed == (now[0] - before[0], now[1] - before[1])
    assert client.named("transmissionErrors")[-1].args == (0, 0)


def test_each_tick_tells_speed_errors_bytes_and_time_in_this_order(bus_machine):
    _, client = connected(bus_machine)
    client.wait_signal("connectionTime", count=3)
    ticks = [name for name in client.names() if name.startswith("transmission") or name == "connectionTime"]
    assert ticks[:8] == ["transmissionSpeed", "transmissionErrors", "transmissionBytes",
                         "connectionTime"] * 2


def test_counters_that_cannot_be_read_are_0_and_noted(bus_machine):
    daemon, client = connected(bus_machine, "-d")
    bus_machine.kill(bus_machine.calls("pppd")[0].pid, 9)
    daemon.wait_for_output("Norvix_Daemon::getTransmissionStatistics(): could not get tx_errors for"
                           " interface ppp0\n")
    client.wait_signal("transmissionBytes", where=lambda rx, tx: (rx, tx) == (0, 0), after=client.mark())
    for name in ("rx_bytes", "tx_bytes", "rx_errors"):
        assert ("Norvix_Daemon::getTransmissionStatistics(): could not get %s for interface ppp0\n"
                % name in daemon.output())


def test_the_totals_of_an_ended_link_go_to_the_daily_log(bus_machine):
    lines = link_up()
    _, client = connected(bus_machine, steps=lines + [wait_for("again"), *lines, stay()])
    final = totals_after_traffic(bus_machine, client, seconds=1)
    bus_machine.pppd.trigger("again")
    client.wait_signal("connectionEstablished", count=2)
    log = wait_until(lambda: next(iter(bus_machine.path("/var/log/norvix").glob("*.log")), None),
                     what="the daily log")
    wait_until(lambda: log.read_text(encoding="ascii").count("bytes: ") == 2, what="both totals")
    text = log.read_text(encoding="ascii")
    assert ": RX bytes: %d\n" % final[0] in text and ": TX bytes: %d\n" % final[1] in text
    # The first speed of the new link wraps: nothing is reset between links.
    client.wait_signal("transmissionSpeed", where=lambda rx, tx: rx > 1 << 31)


# ---- time

def test_the_clock_keeps_time_for_half_a_minute(bus_machine):
    _, client = connected(bus_machine)
    client.wait_signal("connectionTime", count=31, timeout=60)
    ticks = client.named("connectionTime")[:31]
    seconds = [3600 * s.args[0] + 60 * s.args[1] + s.args[2] for s in ticks]
    assert seconds == list(range(seconds[0], seconds[0] + 31))
    # Each may have come late on a busy machine; a coarse timer would be 50 ms later with each.
    late = [tick.time - number for number, tick in enumerate(ticks)]
    assert abs(min(late[-10:]) - min(late[:10])) < 0.5


@pytest.mark.parametrize("text,first", [
    ("      05:07\n", (0, 5, 8)), ("   01:02:59\n", (1, 3, 0)), (" 1-02:03:04\n", (2, 3, 5)),
    ("   23:59:59\n", (0, 0, 0)), ("      00:59\n", (0, 1, 0)), ("05:07", (0, 5, 8)),
    ("05:07\n" + "garbage\n" * 1000000, (0, 5, 8)),
], ids=["minutes", "hours", "days", "midnight", "a minute", "no end", "8 MB"])
def test_the_time_is_what_ps_says_and_a_second_more_with_each_tick(bus_machine, text, first):
    bus_machine.standin("ps").set(stdout=text, exit=0)
    _, client = connected(bus_machine)
    assert client.wait_signal("connectionTime").args == first
    pppd = bus_machine.calls("pppd")[0]
    assert bus_machine.calls("ps")[0].argv == ["-p", str(pppd.pid), "-o", "etime="]


@pytest.mark.parametrize("behaviour", [{"stdout": "garbage\n", "exit": 0}, {"exit": 1},
                                       {"missing": True}])
def test_a_time_that_cannot_be_read_is_asked_for_again_every_second(bus_machine, behaviour):
    bus_machine.standin("ps").set(**behaviour)
    daemon, client = connected(bus_machine, "-d")
    asked = "Norvix_Daemon::getConnectionTime(): returning QTime()!\n"
    daemon.wait_for_output(asked, count=3)
    assert "connectionTime" not in client.names()
    bus_machine.standin("ps").set(stdout="00:10\n", exit=0)
    client.wait_signal("connectionTime", where=lambda h, m, s: (h, m) == (0, 0) and s > 10)
    told = daemon.output().count(asked)
    client.wait_signal("connectionTime", after=client.mark(), count=2)
    assert daemon.output().count(asked) == told


def test_a_hanging_ps_costs_two_seconds_a_time(bus_machine):
    daemon, client = connected(bus_machine)
    bus_machine.standin("ps").set(sleep=1000)
    here = client.mark()
    daemon.stop()
    bus_machine.start_daemon()
    begun = time.monotonic()
    assert client.call("reply", timeout=20) is True
    assert time.monotonic() - begun < 10
    client.wait_signal("transmissionSpeed", after=here)


def test_the_interfaces_pid_file_serves_when_the_links_is_missing(bus_machine):
    lines = link_up()
    _, client = connected(bus_machine, steps=lines + [wait_for("again"), out(lines[-2]["text"]), stay()])
    bus_machine.path(LINK_PID).unlink()
    bus_machine.daemons[0].stop()
    here = client.signals and len(client.signals)
    bus_machine.start_daemon()
    client.wait_signal("connectionTime", after=here)
    assert bus_machine.calls("ps")[-1].argv[1] == str(bus_machine.calls("pppd")[0].pid)
