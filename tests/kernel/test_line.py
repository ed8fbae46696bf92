# SPDX-License-Identifier: MIT
"""The line: trains for long, never comes, is lost under a connection."""

import pytest

from lab.kernel import chain as world
from lab.kernel.modems.line import State

LONG_TRAINING = ((State.INITIALIZING, 2), (State.ACTIVATING, 4), (State.TRAINING, 4),
                 (State.ANALYSIS, 3), (State.EXCHANGE, 2))

# The daemon waits seven times five seconds for the line; a busy machine may take longer.
NO_LINE_SECONDS = 90

# lcp-echo-interval 10 and lcp-echo-failure 3 in the peer file.
ECHO_SECONDS = 90

# What each driver writes when the line is lost. An Eagle is started anew, for the second time then.
LOST_LINES = {"cxacru": ("ADSL line: down", 1), "speedtch": ("ADSL line is down", 1),
              "eagle-e4": ("(re)booting started", 2)}


@pytest.fixture(params=["cxacru", "speedtch", "eagle-e4"])
def kind(request):
    return request.param


def test_a_connection_waits_for_a_line_that_trains_for_long(chain, kind):
    chain.configure(kind)
    chain.write_account()
    chain.start_provider()
    client = chain.start_daemon()
    chain.line.training = LONG_TRAINING
    chain.plug(kind)
    client.call("establishConnection")
    client.wait_signal("synchronizing")
    client.wait_signal("connectionEstablished", timeout=120)
    assert client.names().count("synchronizing") == 1
    assert "synchronizationFailed" not in client.names()


def test_a_line_that_never_comes_is_given_up(chain, kind):
    chain.configure(kind)
    chain.write_account()
    client = chain.start_daemon()
    chain.line.comes_up = False
    chain.plug(kind)
    client.call("establishConnection")
    client.wait_signal("synchronizationFailed", timeout=NO_LINE_SECONDS)
    assert client.wait_signal("connectionState").args == (2,)
    assert client.names().count("synchronizing") == 1
    chain.wait_ended("pppd")

    chain.start_provider()
    chain.line.come_up()
    chain.wait_line_up()
    chain.connect()


def test_a_line_lost_under_a_connection_ends_it_by_unanswered_echoes(chain, kind):
    chain.configure(kind)
    chain.write_account()
    chain.start_provider()
    client = chain.start_daemon()
    chain.plug(kind)
    chain.wait_line_up()
    chain.connect()
    chain.wait_state(0)

    chain.line.comes_up = False
    chain.line.drop()
    text, count = LOST_LINES[kind]
    chain.wait_kernel_log(text, count=count)
    # pppd says nothing: for as long as it waits for echoes, the link counts as up.
    assert client.call("getConnectionState") == 0
    chain.wait_state(2, ECHO_SECONDS)
    chain.wait_ended("pppd")

    chain.line.come_up()
    chain.wait_kernel_log(world.UP_LINES[kind], count=2)
    chain.connect()


def test_a_line_that_loses_every_cell_brings_no_answer_from_a_concentrator(chain):
    chain.configure("cxacru")
    chain.write_account()
    chain.start_provider()
    client = chain.start_daemon()
    chain.plug("cxacru")
    chain.wait_line_up()
    chain.line.cut = True
    client.call("establishConnection")
    client.wait_signal("connectionTimeout", timeout=NO_LINE_SECONDS)
    chain.line.cut = False
    client.wait_signal("connectionState")
    chain.connect()
