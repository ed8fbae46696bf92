# SPDX-License-Identifier: MIT
"""norvix-keeper beside the daemon when modem, programs or people come and go."""

import signal
import time

import pytest

from lab.kernel import chain as world
from lab.kernel import system
from lab.kernel.kept import Kept
from lab.waiting import wait_until

# The daemon waits 35 s for the line; three times, with a modem restart and training after them.
STUCK_SECONDS = 400
# Time to do something to the modem while nothing is tried.
LONG_PAUSE = "pause_hung_up = 20\n"


@pytest.fixture(params=["PPPoE", "PPPoA"])
def protocol(request):
    return request.param


def test_a_modem_that_is_unplugged_and_plugged_again_connects(chain, protocol):
    kept = Kept(chain, protocol).connect()
    chain.unplug()
    kept.note("unplugged, told after", kept.wait_lost("unplugged"))
    kept.client.wait_signal("modemUnplugged")  # between it and the disconnect nobody knows whose that is
    kept.wait("waiting-for-modem", "unplugged")
    kept.stays_quiet(kept.attempts(), "waiting-for-modem")
    chain.plug("cxacru")
    kept.comes_back("plugged in")


@pytest.mark.quick
def test_a_killed_daemon_costs_no_link_and_a_lost_one_waits_for_it(chain):
    kept = Kept(chain, "PPPoE").connect()
    chain.daemon.end(signal.SIGKILL)
    wait_until(world.carries_traffic, 60, "traffic passes")
    assert kept.keeper.properties()["State"] == "connected"
    chain.provider.say_goodbye()
    kept.wait("waiting-for-daemon", "hung-up")
    kept.keeper.stays(5, lambda now: now["State"] == "waiting-for-daemon")
    chain.start_daemon()
    kept.comes_back("daemon started")


def test_a_link_that_is_lost_without_a_keeper_comes_back_with_the_next_one(chain, protocol):
    kept = Kept(chain, protocol).connect()
    kept.keeper.end(signal.SIGKILL)
    chain.provider.say_goodbye()
    chain.wait_state(2)
    kept.keeper = chain.start_keeper()
    kept.comes_back("keeper started")
    assert kept.keeper.ended() == ["unknown"]


def test_a_modem_that_was_unplugged_without_a_keeper_is_wanted_again(chain):
    kept = Kept(chain, "PPPoE").connect()
    kept.keeper.end(signal.SIGKILL)
    kept.wait_unheard()
    chain.unplug()
    kept.client.wait_signal("modemUnplugged")
    kept.keeper = chain.start_keeper()
    kept.wait("waiting-for-modem", "unplugged")
    chain.plug("cxacru")
    kept.comes_back("plugged in")


def test_a_driver_that_tells_of_no_line_any_more_is_loaded_anew(chain, protocol):
    kept = Kept(chain, protocol).connect()
    chain.modem.is_mute = True
    chain.wait_kernel_log("polling disabled")
    chain.modem.is_mute = False
    assert kept.keeper.properties()["State"] == "connected"
    chain.provider.say_goodbye()
    kept.wait_lost("hung-up")
    began = time.monotonic()
    kept.client.wait_signal("restartModemFinished", timeout=STUCK_SECONDS)
    kept.note("modem restarted after", time.monotonic() - began)
    assert "restarting the modem" in kept.keeper.errors()
    kept.comes_back("restarted")


def test_a_modem_that_is_restarted_after_a_loss_connects(chain, protocol):
    """The lost link's bridge outlives the link, but not the device that it was made for."""
    kept = Kept(chain, protocol, LONG_PAUSE).connect()
    chain.provider.say_goodbye()
    kept.wait_lost("hung-up")
    kept.wait("waiting", "hung-up")
    kept.client.call("restartModem")
    kept.client.wait_signal("restartModemFinished", timeout=90)
    kept.comes_back("restarted after a loss")
    assert kept.keeper.losses() == ["hung-up"] and kept.attempts() == 2


def test_a_modem_that_is_plugged_anew_after_a_loss_connects(chain, protocol):
    kept = Kept(chain, protocol, LONG_PAUSE).connect()
    chain.provider.say_goodbye()
    kept.wait_lost("hung-up")
    kept.wait("waiting", "hung-up")
    chain.unplug()
    kept.client.wait_signal("modemUnplugged")
    kept.wait("waiting-for-modem", "unplugged")
    chain.plug("cxacru")
    kept.comes_back("plugged in after a loss")
    assert kept.keeper.losses() == ["hung-up"] and kept.attempts() == 2


def test_what_the_user_ends_in_any_state_stays_ended(chain, protocol):
    kept = Kept(chain, protocol).connect()
    kept.client.call("terminateConnection")
    kept.wait("idle", "user")
    kept.stays_quiet(kept.attempts())

    # While the line is waited for: the attempt goes on and brings a link up all the same.
    chain.line.comes_up = False
    chain.line.drop()
    chain.wait_kernel_log("ADSL line: down")
    mark = kept.client.mark()
    kept.client.call("establishConnection")
    kept.client.wait_signal("synchronizing", after=mark)
    kept.client.call("terminateConnection")
    kept.wait("idle")
    chain.line.come_up()
    ends_what_comes_up(kept, mark, "while the line was waited for")

    if protocol == "PPPoE":
        mark = kept.client.mark()
        kept.client.call("establishConnection")
        wait_until(lambda: system.processes("br2684ctl_amd64"), what="the bridge is made")
        kept.client.call("terminateConnection")
        ends_what_comes_up(kept, mark, "in the bridge step")

    # During an attempt that nobody answers, and in the pause after it.
    chain.line.cut = True
    mark = kept.client.mark()
    kept.client.call("establishConnection")
    chain.wait_state(1)
    wait_until(lambda: system.processes("pppd"), what="pppd asks")
    kept.client.call("terminateConnection")
    kept.wait("idle", "user")
    kept.stays_quiet(kept.attempts())
    kept.client.call("establishConnection")
    kept.wait("waiting", seconds=150)
    kept.client.call("terminateConnection")
    kept.wait("idle", "user")
    chain.line.cut = False
    kept.stays_quiet(kept.attempts())
    assert kept.keeper.losses() == []


def ends_what_comes_up(kept, mark, when):
    """The attempt goes on after a disconnect; where it still brings up a link, that is ended. It may be
    gone before the daemon has told of it: only the keeper has seen it then."""
    kept.client.wait_signal("connectionState", timeout=90, after=mark)
    wait_until(lambda: not system.processes("pppd"), 30, "no link is left")
    kept.wait("idle")
    begun = kept.client.named("establishingConnection", after=mark)[0].time
    states = [(signal.time, signal.args[1]["State"][1]) for signal in kept.keeper.client.signals
              if signal.name == "PropertiesChanged" and "State" in signal.args[1] and signal.time > begun]
    for (up, state), (over, _) in zip(states, states[1:]):
        if state == "connected":
            kept.note(f"disconnected {when}: the link that came up was ended after", over - up)
            assert over - up < 3  # a second on a computer that is none
    kept.stays_quiet(kept.attempts())


def test_a_limit_is_reached_no_more_when_the_billing_month_ends(chain):
    """Connected or not, without a look at the clock in between."""
    kept = Kept(chain, "PPPoE").connect()
    kept.client.call("terminateConnection")
    kept.wait("idle")
    try:
        system.run("date", "-s", "2031-03-31 23:59:00 UTC")
        system.run("date", "-s", "2031-03-10 12:00:00 UTC")
        kept.keeper.call("SetLimit", "t", 1)
        assert kept.keeper.properties()["LimitReached"] is False  # what was used was used years ago
        kept.client.call("establishConnection")
        kept.wait("connected")
        wait_until(world.carries_traffic, 60, "traffic passes")
        kept.client.call("terminateConnection")
        kept.wait("idle")
        kept.keeper.wait_for(LimitReached=True)
        system.run("date", "-s", "2031-03-31 23:59:57 UTC")
        assert kept.keeper.properties()["LimitReached"] is True
        kept.keeper.wait_for(LimitReached=False)
    finally:
        system.run("hwclock", "--hctosys", check=False)
