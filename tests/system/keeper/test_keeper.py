# SPDX-License-Identifier: MIT
"""Keeping the connection: losses, refusals, disconnects, sleep, and what clients are told."""
import os
import signal
import time

import pytest
from keeper_world import World, world  # noqa: F401
from machine_fixtures import ROOT_ONLY

from lab.machine import keeper_service
from lab.machine.bus_client import BusError
from lab.machine.keeper_service import NO_PAUSES, FakeLogind
from lab.machine.pppd_script import end, out, stay
from lab.waiting import wait_until

LOSSES = int(os.environ.get("NORVIX_LOSSES") or 12)


# ---- the link is lost

def test_nothing_happens_that_nobody_asked_for(world):
    world.client.mark()
    assert world.keeper.properties()["State"] == "idle"
    assert world.attempts() == 0


def test_a_link_that_the_provider_hung_up_comes_back(world):
    world.connect()
    world.hang_up()
    assert world.wait_lost() == ["hung-up"]
    wait_until(lambda: world.attempts() == 2, what="a second attempt")
    world.keeper.wait_for(State="connected", Reason="", Attempts=0)
    assert world.keeper.ended() == ["hung-up"]
    assert world.links() == ["ppp0"]


def test_a_killed_pppd_is_a_loss(world):
    world.connect()
    [pppd] = [facts for facts in world.machine.processes() if "norvix" in facts["argv"]]
    world.machine.kill(pppd["pid"], 9)
    assert world.wait_lost() == ["hung-up"]
    world.keeper.wait_for(State="connected")


def test_a_bridge_that_ended_is_told(machine):
    world = World(machine, NO_PAUSES, protocol="PPPoE")
    world.start_keeper()
    world.connect()
    [bridge] = [facts for facts in machine.processes() if "-a" in facts["argv"] and "8.35" in facts["argv"]]
    machine.kill(bridge["pid"])
    wait_until(lambda: b"nas0" not in machine.read("/proc/net/dev"), what="the bridge is gone")
    world.hang_up()
    assert world.wait_lost() == ["bridge-gone"]
    world.keeper.wait_for(State="connected")


def test_a_silent_far_end_is_told(machine):
    """The address goes, the interface stays for a while: nothing had come in for 25 s."""
    world = World(machine, protocol="PPPoE")
    world.start_keeper()
    world.connect()
    time.sleep(36)  # what is tested is that nothing happens meanwhile
    machine.run(["/usr/sbin/ip", "addr", "flush", "dev", "ppp0"])
    world.hang_up()
    assert world.wait_lost() == ["silent"]
    world.keeper.wait_for(State="connected")


def test_an_address_that_comes_back_ends_nothing(world):
    world.connect()
    machine = world.machine
    machine.run(["/usr/sbin/ip", "addr", "del", "10.64.0.100", "dev", "ppp0"])
    machine.run(["/usr/sbin/ip", "addr", "add", "10.64.0.100", "peer", "10.64.0.1", "dev", "ppp0"])
    machine.run(["/usr/sbin/ip", "link", "add", "other0", "type", "veth", "peer", "other1"])
    time.sleep(1)  # longer than any look
    assert world.keeper.properties()["State"] == "connected"
    assert world.keeper.losses() == [] and world.attempts() == 1


def test_the_modem_unplugged_and_plugged_again(world):
    world.connect()
    world.hal.unplug(world.modem)
    assert world.wait_lost() == ["unplugged"]
    world.keeper.wait_for(State="waiting-for-modem", Wanted=True)
    world.hal.plug("usb_device_6b9_4061_1", 0x06B9, 0x4061)
    world.keeper.wait_for(State="connected")


def test_a_modem_restart_is_no_disconnect(world):
    world.connect()
    world.client.call("restartModem")
    assert world.wait_lost() == ["modem-restart"]
    world.keeper.wait_for(State="connected")


def test_a_daemon_that_was_killed_is_waited_for(world):
    world.connect()
    world.daemon.stop(9)
    world.hang_up()
    world.keeper.wait_for(State="waiting-for-daemon")
    assert world.client.owner_of() is None
    world.start_daemon()
    world.keeper.wait_for(State="connected")


def test_a_keeper_that_was_killed_goes_on(world):
    world.connect()
    world.keeper.kill()
    world.start_keeper()
    world.keeper.wait_for(State="connected", Wanted=True)
    world.hang_up()
    world.keeper.wait_for(State="connected", Reason="")
    wait_until(lambda: world.keeper.ended() == ["hung-up"], what="one session",
               detail=lambda: world.keeper.rows("GetSessions"))


def test_a_link_lost_while_nobody_looked_comes_back(world):
    world.connect()
    world.keeper.kill()
    world.hang_up()
    wait_until(lambda: world.links() == [], what="the link is gone")
    world.start_keeper()
    world.keeper.wait_for(State="connected")
    assert world.keeper.ended() == ["unknown"]


def test_a_stopped_daemon_is_never_started(machine):
    world = World(machine)
    machine.path("/etc/dbus-1/services/com.norvix.Daemon.service").write_text(
        "[D-BUS Service]\nName=com.norvix.Daemon\nExec=/usr/bin/touch /run/lab/started\nUser=root\n",
        encoding="ascii")
    world.start_keeper()
    world.connect()
    world.daemon.stop()
    world.hang_up()
    world.keeper.wait_for(State="waiting-for-daemon")
    world.keeper.call("Connect")
    assert not machine.path("/run/lab/started").exists()


def test_many_losses_in_a_row_leave_nothing_behind(machine):
    """NORVIX_LOSSES says how many."""
    world = World(machine, NO_PAUSES)
    world.start_keeper()
    world.connect()

    def size():
        status = machine.read("/proc/%d/status" % world.keeper.process.pid).decode()
        resident = int(status.split("RssAnon:")[1].split()[0])
        return resident, len(machine.run(["/usr/bin/ls", "/proc/%d/fd" % world.keeper.process.pid],
                                         uid=0).stdout.split())

    early = None
    for number in range(1, LOSSES + 1):
        world.hang_up()
        world.wait_lost(number)
        world.keeper.wait_for(State="connected")
        if number == min(LOSSES // 2, 50):
            early = size()
    # What it is just reading is open for a moment.
    wait_until(lambda: size()[1] == early[1], what="as many descriptors as before",
               detail=lambda: (early, size()))
    late = size()
    print("memory (KiB) and descriptors: %s, then %s" % (early, late))
    assert world.keeper.ended() == ["hung-up"] * LOSSES
    assert late[0] - early[0] <= 400


# ---- attempts that fail

def test_an_attempt_that_nobody_answers_is_told_with_the_next_one(world):
    world.be_silent()
    world.client.call("establishConnection")
    properties = world.keeper.wait_for(State="waiting", Reason="no-concentrator", Attempts=1)
    assert 0 < properties["NextAttempt"] - properties["Since"] <= 7
    world.answer()
    world.keeper.wait_for(State="connected", Attempts=0, NextAttempt=0)
    [row] = world.keeper.rows("GetAttempts")
    assert row["reason"] == "no-concentrator" and row["count"] >= 1


def test_a_refused_account_is_tried_seldom_and_at_once_when_it_changes(world):
    world.connect()
    world.refuse()
    world.machine.pppd.trigger("hang-up-1")
    properties = world.keeper.wait_for(Reason="account-refused")
    assert properties["State"] == "waiting"
    assert 50 <= properties["NextAttempt"] - properties["Since"] <= 67  # it worked a moment ago
    attempts = world.attempts()
    world.answer()
    world.client.call("setAccountData", "me@isp", "secret")
    world.keeper.wait_for(State="connected")
    assert world.attempts() == attempts + 1


def test_a_driver_that_tells_of_no_line_any_more_is_loaded_anew(machine):
    """Three attempts of 35 s each find none, although the modem is there."""
    world = World(machine, NO_PAUSES)
    world.start_keeper()
    machine.kernel_log.clear()
    world.client.call("establishConnection")
    world.client.wait_signal("restartModemFinished", timeout=180)
    assert [row["count"] for row in world.keeper.rows("GetAttempts")] == [3]
    assert world.keeper.properties()["Reason"] == "modem-restart"
    assert "restarting the modem" in world.keeper.process.errors()
    assert machine.calls("rmmod")[-1].argv == ["speedtch"]
    machine.kernel_log.line_up(0x06B9)
    world.keeper.wait_for(State="connected", Wanted=True)


def test_a_missing_peer_file_is_waited_for(machine):
    world = World(machine, NO_PAUSES)
    world.start_keeper()
    machine.pppd.script([out("pppd: Can't open options file /etc/ppp/peers/norvix: "
                             "No such file or directory\n"), end(2)])
    world.client.call("establishConnection")
    world.keeper.wait_for(State="waiting-for-settings", Reason="peer-file-missing", NextAttempt=0)
    assert world.attempts() == 1
    world.answer()
    machine.path("/etc/ppp/peers/norvix").write_text("plugin pppoatm.so\n", encoding="ascii")
    world.keeper.wait_for(State="connected")


def test_another_link_is_told_and_holds_up_nobody_for_ever(world):
    machine = world.machine
    world.add_foreign("ppp0")
    world.keeper.wait_for(ForeignLinks=["ppp0"])
    assert world.keeper.properties()["State"] == "idle"
    machine.pppd.script([out("Using interface ppp1\n"), out("Connect: ppp1 <--> 8.35\n"),
                         out("local  IP address 10.64.0.100\n"), stay()], mode="updetach")
    world.keeper.call("Connect")
    world.keeper.wait_for(Reason="foreign-link", State="waiting")
    world.keeper.wait_for(State="connected")
    assert world.links() == ["ppp0", "ppp1"]


# ---- the user disconnects

def stays_idle(world):
    world.keeper.wait_for(State="idle", Wanted=False)
    attempts = world.attempts()
    time.sleep(3)  # what is tested is that nothing happens
    assert world.links() == [] and world.attempts() == attempts
    assert world.keeper.properties()["State"] == "idle"
    assert world.keeper.losses() == []


def test_what_the_user_has_ended_does_not_come_back(world):
    world.connect()
    world.client.call("terminateConnection")
    stays_idle(world)
    wait_until(lambda: world.keeper.ended() == ["user"], what="it is clear who ended it",
               detail=world.keeper.ended)


def test_a_disconnect_during_the_bridge_step_ends_the_link_that_comes_all_the_same(machine):
    world = World(machine, protocol="PPPoE")
    world.start_keeper()
    world.client.call("establishConnection")
    machine.wait_call("br2684ctl_amd64")
    world.client.call("terminateConnection")
    up = world.client.wait_signal("connectionEstablished")
    over = world.client.wait_signal("connectionTerminated", count=2)
    print("ended after %.2f s" % (over.time - up.time))
    assert over.time - up.time < 5  # as soon as the link is seen, not at the next look of ten seconds
    stays_idle(world)


def test_a_disconnect_during_the_wait_for_the_line_ends_the_link_that_comes_all_the_same(world):
    world.machine.kernel_log.clear()
    world.client.call("establishConnection")
    world.keeper.wait_for(State="waiting-for-line")
    world.client.call("terminateConnection")
    world.keeper.wait_for(State="idle")
    world.machine.kernel_log.line_up(0x06B9)
    world.client.wait_signal("connectionEstablished")
    world.client.wait_signal("connectionTerminated", count=2)
    stays_idle(world)


def test_a_disconnect_during_a_pause_stops_it(world):
    world.be_silent()
    world.client.call("establishConnection")
    world.keeper.wait_for(State="waiting")
    world.answer()
    world.client.call("terminateConnection")
    time.sleep(6)  # longer than the pause
    stays_idle(world)


@pytest.mark.parametrize("late", [False, True], ids=["at once", "late"])
def test_who_asks_again_while_the_attempt_runs_keeps_the_link(machine, late):
    world = World(machine, protocol="PPPoE")
    world.start_keeper()
    world.client.call("establishConnection")
    machine.wait_call("br2684ctl_amd64")
    if late:  # it hears of the disconnect when the log is further
        world.keeper.wait_for(Wanted=True)
        world.keeper.process.signal(signal.SIGSTOP)
    world.client.call("terminateConnection")
    world.client.call("establishConnection")  # dropped, the log tells
    if late:
        world.keeper.process.signal(signal.SIGCONT)
    world.client.wait_signal("connectionEstablished")
    world.keeper.wait_for(State="connected", Wanted=True)
    time.sleep(1)
    assert world.links() == ["ppp0"]


@ROOT_ONLY
def test_a_disconnect_while_nobody_listened_is_found_in_the_log(world):
    world.connect()
    time.sleep(2.1)  # the log tells seconds
    world.keeper.kill()
    world.client.call("terminateConnection")
    wait_until(lambda: world.links() == [], what="the link is gone")
    world.start_keeper()
    stays_idle(world)


@ROOT_ONLY
def test_a_settings_value_that_is_no_plain_one_does_not_end_it(world):
    """The daemon leaves it alone, too: decoded it would take all memory."""
    world.connect()
    world.keeper.kill()
    ini = world.machine.path("/opt/norvix/.daemon_ng.ini")
    ini.write_bytes(ini.read_bytes() + b"foreign=@Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)\n")
    world.start_keeper()
    world.keeper.wait_for(State="connected", Wanted=True)


@ROOT_ONLY
def test_an_unplugging_while_nobody_listened_is_no_disconnect(world):
    world.connect()
    time.sleep(2.1)  # the log tells seconds
    world.keeper.kill()
    world.hal.unplug(world.modem)
    world.client.wait_signal("modemUnplugged")
    wait_until(lambda: world.links() == [], what="the link is gone")
    world.start_keeper()
    world.keeper.wait_for(State="waiting-for-modem", Wanted=True, Reason="unplugged")
    world.hal.plug("usb_device_6b9_4061_1", 0x06B9, 0x4061)
    world.keeper.wait_for(State="connected")


@ROOT_ONLY
def test_a_modem_replugged_while_nobody_listened_is_no_disconnect(world):
    world.connect()
    time.sleep(2.1)  # the log tells seconds
    world.keeper.kill()
    world.hal.unplug(world.modem)
    world.client.wait_signal("modemUnplugged")
    world.hal.plug("usb_device_6b9_4061_1", 0x06B9, 0x4061)
    world.client.wait_signal("modemPlugged")
    world.start_keeper()
    world.keeper.wait_for(State="connected", Wanted=True)


def test_switched_off_it_keeps_nothing(world):
    world.connect()
    world.keeper.call("SetKeep", "b", False)
    world.hang_up()
    world.keeper.wait_for(State="off", Keep=False)
    world.keeper.stop()
    world.start_keeper()
    world.keeper.wait_for(State="off", Keep=False)
    world.keeper.call("SetKeep", "b", True)
    world.keeper.wait_for(State="connected")


# ---- sleep

def test_the_link_ends_before_sleep_and_comes_back_after_it(machine):
    world = World(machine)
    logind = FakeLogind.start(machine)
    world.start_keeper()
    world.connect()
    wait_until(lambda: logind.is_held, what="sleep is held up")
    begun = time.monotonic()
    logind.announce_sleep(True)
    wait_until(lambda: not logind.is_held, what="sleep is let go")
    print("let go after %.2f s" % (time.monotonic() - begun))
    assert time.monotonic() - begun < 5  # the log-in service waits no longer
    wait_until(lambda: world.links() == [], what="the link is gone")
    world.keeper.wait_for(State="asleep")
    assert logind.asked == 1
    logind.announce_sleep(False)
    world.keeper.wait_for(State="connected")
    wait_until(lambda: logind.is_held and logind.asked == 2, what="the next sleep is held up")
    assert world.keeper.ended() == ["sleep"] and world.keeper.losses() == []


@pytest.mark.parametrize("address", ["10.9.9.9", "2001:db8::9"])
def test_a_link_of_somebody_else_is_not_killed_for_sleep(machine, address):
    world = World(machine)
    logind = FakeLogind.start(machine)
    world.start_keeper()
    world.connect()
    world.add_foreign("ppp7", address)
    world.keeper.wait_for(ForeignLinks=["ppp7"])
    wait_until(lambda: logind.is_held, what="sleep is held up")
    logind.announce_sleep(True)
    wait_until(lambda: not logind.is_held, what="sleep is let go")
    world.client.expect_no_signal("connectionTerminated")
    assert "ppp0" in world.links()


# ---- the bus

@ROOT_ONLY
def test_everybody_reads_the_state_and_the_group_does_the_rest(world):
    anybody = world.machine.client(uid=1000)
    member = world.machine.client(uid=1000, groups=[keeper_service.NORVIX_GROUP])
    assert world.keeper.properties(anybody)["State"] == "idle"
    for method, signature, arguments in (
            ("SetKeep", "b", (True,)), ("Connect", "", ()), ("GetSessions", "u", (1,)),
            ("GetAttempts", "u", (1,)), ("GetDays", "u", (1,)), ("GetMonths", "u", (1,)),
            ("GetLineQuality", "xx", (0, 1)), ("GetPlan", "", ()), ("SetLimit", "t", (0,)),
            ("SetBillingDay", "u", (1,))):
        with pytest.raises(BusError) as caught:
            world.keeper.call(method, signature, *arguments, client=anybody)
        assert caught.value.name == "org.freedesktop.DBus.Error.AccessDenied"
    with pytest.raises(BusError):
        anybody.call_bus("RequestName", "su", keeper_service.NAME, 2)


def test_changes_are_announced_with_their_values(world):
    world.connect()
    told = {}
    for signal in world.keeper.client.signals:
        if signal.name == "PropertiesChanged" and signal.path == keeper_service.PATH:
            assert signal.args[0] == keeper_service.INTERFACE and signal.args[2] == []
            told.update({name: value for name, (_, value) in signal.args[1].items()})
    assert told["State"] == "connected" and told["Wanted"] is True


def test_the_description_is_what_is_offered(world):
    import xml.etree.ElementTree as tree
    file = tree.parse(keeper_service.REPOSITORY / "dbus" / "com.norvix.Keeper1.xml")
    seen = world.client.introspect(keeper_service.PATH, keeper_service.NAME)

    def members(root):
        [interface] = [node for node in root.iter("interface")
                       if node.get("name") == keeper_service.INTERFACE]
        return [(node.tag, node.get("name"), node.get("type"),
                 [(arg.get("type"), arg.get("direction")) for arg in node]) for node in interface]

    assert members(seen) == members(file.getroot())
    offered = set(world.keeper.properties())
    assert offered == {name for kind, name, *_ in members(seen) if kind == "property"}


def test_traffic_is_counted_by_day_and_month_and_a_limit_only_warns(world):
    world.connect()
    world.machine.traffic(50_000, seconds=2)

    def used():
        return sum(month["received"] + month["sent"] for month in world.keeper.rows("GetMonths"))

    wait_until(lambda: used() > 100_000, what="traffic is counted", detail=used)
    world.keeper.call("SetLimit", "t", 50_000)
    world.keeper.wait_for(LimitReached=True, State="connected")
    world.keeper.call("SetLimit", "t", 0)
    world.keeper.wait_for(LimitReached=False)
    world.keeper.call("SetBillingDay", "u", 15)
    assert world.keeper.call("GetPlan") == {"limit": ("t", 0), "billing_day": ("u", 15)}
    with pytest.raises(BusError) as caught:
        world.keeper.call("SetBillingDay", "u", 32)
    assert caught.value.name == "com.norvix.Keeper1.Error.InvalidValue"
    world.hang_up()
    world.wait_lost()
    [session] = [row for row in world.keeper.rows("GetSessions") if "reason" in row]
    days = sum(day["received"] + day["sent"] for day in world.keeper.rows("GetDays"))  # two at midnight
    assert session["received"] + session["sent"] <= days
    assert session["sent"] > 50_000
