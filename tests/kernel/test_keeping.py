# SPDX-License-Identifier: MIT
"""norvix-keeper beside the daemon when provider or line fail: what the user is told, how long until the link
is back, and that nothing tries when it should not. Seconds that a scenario has taken are in its folder's
"figures"; an emulated processor makes them upper bounds."""

import os
import time

import pytest

from lab.kernel import chain as world
from lab.kernel.kept import BACK_SECONDS, Kept
from lab.kernel.provider import LOGIN
from lab.waiting import wait_until

# The shipped peer files ask for echoes every 10 s and miss three; pppd lives on for some seconds more.
ECHO_SECONDS = 90
# So long the provider stays away; ten minutes are as the shorter time, and take longer.
AWAY_SECONDS = int(os.environ.get("NORVIX_AWAY_SECONDS") or 60)


@pytest.fixture(params=["PPPoE", "PPPoA"])
def protocol(request):
    return request.param


def test_a_link_that_the_provider_hangs_up_comes_back(chain, protocol):
    kept = Kept(chain, protocol).connect()
    chain.provider.say_goodbye()
    kept.note("hung up, told after", kept.wait_lost("hung-up"))
    kept.comes_back("hung up")
    assert kept.attempts() == 2
    assert kept.keeper.ended() == ["hung-up"]


def test_a_provider_that_restarts_is_a_hang_up_over_ethernet(chain):
    kept = Kept(chain, "PPPoE").connect()
    chain.provider.fall_silent()
    chain.provider.hang_up()
    chain.provider.serve()
    kept.wait_lost("hung-up")
    kept.comes_back("provider restarted")


def test_a_provider_that_restarts_is_no_loss_over_atm(chain):
    """The same pppd negotiates with the new one: the address goes for a moment."""
    kept = Kept(chain, "PPPoA").connect()
    chain.provider.hang_up()
    wait_until(lambda: chain.provider.said().count("remote IP address") == 2, 60,
               "the provider's next pppd has negotiated", chain.provider.said)
    kept.comes_back("provider restarted")
    assert kept.keeper.losses() == [] and kept.attempts() == 1


def test_a_provider_that_falls_silent_is_tried_for_until_it_answers(chain, protocol):
    kept = Kept(chain, protocol).connect()
    chain.line.cut = True  # up, but no cell gets through
    kept.note("silent, told after", kept.wait_lost("silent", seconds=ECHO_SECONDS))
    kept.keeper.stays(AWAY_SECONDS, lambda now: now["State"] in ("connecting", "waiting")
                      and now["NextAttempt"] - time.time() < 7)
    assert 1 <= kept.keeper.properties()["Attempts"]
    chain.line.cut = False
    kept.comes_back("silent for %d s" % AWAY_SECONDS)
    [failed] = kept.keeper.rows("GetAttempts")
    kept.note("%(count)d attempts in between, %(reason)s" % failed)


def test_a_line_that_is_lost_and_trains_anew_brings_the_link_back(chain, protocol):
    kept = Kept(chain, protocol).connect()
    chain.line.comes_up = False
    chain.line.drop()
    mark = kept.client.mark()
    kept.note("line lost, told after", kept.wait_lost("line-lost", seconds=ECHO_SECONDS))
    kept.client.wait_signal("synchronizing", after=mark)  # the attempt has found that there is none
    kept.wait("waiting-for-line")
    chain.line.come_up()
    kept.comes_back("line up again")


def test_a_line_that_is_back_before_the_echoes_fail_keeps_its_session(chain, protocol):
    kept = Kept(chain, protocol).connect()
    chain.line.drop()
    chain.wait_kernel_log("ADSL line: down")
    time.sleep(3)  # so long it is away
    chain.line.come_up()
    chain.wait_kernel_log(world.UP_LINES["cxacru"], count=2)
    kept.keeper.stays(45, lambda now: now["State"] == "connected")  # by then echoes would have failed
    wait_until(world.carries_traffic, 60, "traffic passes")
    assert kept.keeper.losses() == [] and kept.attempts() == 1


def test_a_password_that_is_wrong_from_one_day_to_the_next_is_tried_seldom(chain, protocol):
    """The first pause is a minute; two seconds here. The next one is a quarter of an hour."""
    kept = Kept(chain, protocol, "pause_refused_once = 2\n").connect()
    chain.provider.change_password("another")
    chain.provider.say_goodbye()
    properties = kept.keeper.wait_properties(
        lambda now: now["NextAttempt"] - time.time() > 600, BACK_SECONDS, "the next attempt is far away")
    assert (properties["State"], properties["Reason"]) == ("waiting", "account-refused")
    attempts = kept.attempts()
    kept.note("password refused: %d attempts, the next in %d s" % (
        attempts - 1, properties["NextAttempt"] - time.time()))
    kept.stays_quiet(attempts, "waiting")
    kept.client.call("setAccountData", LOGIN, "another")
    kept.comes_back("account corrected")
    assert kept.attempts() == attempts + 1
