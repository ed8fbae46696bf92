# SPDX-License-Identifier: MIT
"""Every place that repeats what the descriptions of the interfaces say, compared with them."""
import inspect
import re
import xml.etree.ElementTree as ElementTree

import pytest
from bus_contract import DAEMON, SETUP, members, names

from lab.machine import bus_client, signal_text
from lab.machine.private_machine import REPOSITORY

# What anybody may not ask for, though it changes nothing.
SECRET = {DAEMON: ["getLoginAndPassword"], SETUP: ["GetPppdArguments"]}
# Members of the group may not: these give root's rights.
ROOT_ONLY = {DAEMON: ["setAccountData"], SETUP: ["SetPppdArguments"]}


def rules(**policy):
    """The rules of one policy of the bus: (allow or deny, interface, member or None)."""
    tree = ElementTree.parse(REPOSITORY / "packaging/norvix.conf").getroot()
    [chosen] = [one for one in tree.findall("policy") if policy.items() <= one.attrib.items()]
    return [(rule.tag, rule.get("send_interface"), rule.get("send_member")) for rule in chosen]


@pytest.mark.parametrize("interface", [DAEMON, SETUP])
def test_the_policy_opens_to_anybody_what_only_reads_and_is_no_secret(interface):
    reading = [method.name for method in members(interface, "method") if method.back]
    opened = [member for _, found, member in rules(context="default")
              if found == interface and member is not None]
    assert sorted(opened) == sorted(set(reading) - set(SECRET[interface]))


def test_the_policy_opens_to_the_group_all_that_does_not_make_it_root():
    found = rules(group="norvix")
    assert ("allow", DAEMON, None) in found
    denied = [member for tag, interface, member in found if (tag, interface) == ("deny", DAEMON)]
    assert denied == ROOT_ONLY[DAEMON]
    for_all = [member for _, interface, member in rules(context="default") if interface == SETUP]
    for_group = [member for _, interface, member in found if interface == SETUP]
    assert sorted(for_all + for_group) == sorted(set(names(SETUP, "method")) - set(ROOT_ONLY[SETUP]))


@pytest.mark.parametrize("interface", [DAEMON, SETUP])
def test_the_bus_page_has_every_method_and_signal_in_order(interface):
    text = (REPOSITORY / "docs" / (interface + ".7")).read_text(encoding="utf-8")
    text = text.replace("\\-", "-")
    for kind, heading in (("method", "METHODS"), ("signal", "SIGNALS")):
        section = re.split(r"^\.SH ", text.split(".SH %s\n" % heading)[1], flags=re.MULTILINE)[0]
        expected = []
        for member in members(interface, kind):
            given = ", ".join("%s %s" % pair for pair in member.given)
            # A single answer needs no name.
            back = (member.back[0][0] if len(member.back) == 1
                    else ", ".join("%s %s" % pair for pair in member.back))
            expected.append("%s(%s)%s" % (member.name, given, " -> " + back if back else ""))
        assert re.findall(r'^\.B "(.*)"$', section, re.MULTILINE) == expected


def test_the_demo_has_words_for_every_signal_and_its_arguments():
    told = {name: len(inspect.signature(words).parameters)
            for name, words in signal_text.TEXTS.items()}
    assert told == {signal.name: len(signal.given) for signal in members(DAEMON, "signal")}


def test_the_benchmarks_floor_has_the_same_members():
    text = (REPOSITORY / "bench/floor_qt.cpp").read_text(encoding="utf-8")
    relayed = re.search(r"#define FLOOR_SIGNALS(.*?)\n\n", text, re.DOTALL).group(1)
    assert sorted(re.findall(r"void (\w+)\(", relayed)) == sorted(names(DAEMON, "signal"))
    assert set(re.findall(r'(?:call|ask)\("(\w+)"', text)) == set(names(DAEMON, "method"))
    sent = re.findall(r'send_signal\("(\w+)"',
                      (REPOSITORY / "bench/floor_statistics.c").read_text(encoding="utf-8"))
    assert sent and set(sent) <= set(names(DAEMON, "signal"))


def test_who_asks_by_hand_uses_the_same_names():
    text = (REPOSITORY / "dbus/contract.h").read_text(encoding="utf-8")
    told = dict(re.findall(r'char (\w+)\[\] = "(.*)";', text))
    assert (told["service"], told["daemonPath"], told["daemonInterface"]) == (
        bus_client.SERVICE, bus_client.PATH, bus_client.INTERFACE)
    assert told["daemonInterface"] == DAEMON and told["setupInterface"] == SETUP
    activation = (REPOSITORY / "packaging/com.norvix.Daemon.service").read_text(encoding="utf-8")
    assert "\nName=%s\n" % told["service"] in activation
