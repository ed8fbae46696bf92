# SPDX-License-Identifier: MIT
"""The interfaces on the bus as their descriptions have them."""
import collections
import xml.etree.ElementTree as ElementTree

from lab.machine.private_machine import REPOSITORY

DAEMON, SETUP = "com.norvix.Daemon", "com.norvix.Setup1"

# What goes in and what comes out: pairs of a D-Bus type and a name, which may be None.
Member = collections.namedtuple("Member", "name given back")


def description(interface):
    return REPOSITORY / "dbus" / (interface + ".xml")


def members(interface, kind):
    """The methods or the signals of an interface, in its order; what a signal carries is given."""
    found = []
    for element in ElementTree.parse(description(interface)).getroot()[0].findall(kind):
        pairs = {True: [], False: []}
        for argument in element:
            is_back = kind == "method" and argument.get("direction") == "out"
            pairs[is_back].append((argument.get("type"), argument.get("name")))
        found.append(Member(element.get("name"), pairs[False], pairs[True]))
    return found


def names(interface, kind):
    """Their names, each once."""
    return list(dict.fromkeys(member.name for member in members(interface, kind)))
