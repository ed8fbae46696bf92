# SPDX-License-Identifier: MIT
"""The whole way of a plugged modem: kernel event, udev, companion, daemon, client."""
from hald_fixtures import place, usb  # noqa: F401

from lab.machine.companion import DEVICES, HalCompanion
from lab.machine.pppd_script import link_up, stay
from lab.waiting import wait_for_line, wait_until

SPEEDTOUCH = (0x06B9, 0x4061)
NAME = "Thomson Speedtouch 330"


def start_daemon(place):
    """Starts it and waits for the last line of its start: from then on it hears of modems."""
    daemon = place.start_daemon()
    daemon.wait_for_log("debugHandler: i: ")
    return daemon


def test_a_modem_is_announced_adopted_connected_and_unplugged(place, usb):
    HalCompanion(place, usb)
    place.kernel_log.line_up(SPEEDTOUCH[0])
    place.pppd.script(link_up() + [stay()])
    client = place.client()
    start_daemon(place)
    assert client.call("getIsModemPlugged") is False

    path = usb.plug("1-1", *SPEEDTOUCH, serial="0090D0123456", interfaces=(0, 1, 2))
    assert client.wait_signal("newModemPlugged").args == (NAME,)
    client.call("useNewModem")
    assert client.wait_signal("modemPlugged").args == (NAME,)
    assert client.call("getIsModemPlugged") is True
    wait_for_line(place.path("/opt/norvix/.daemon_ng.ini"),
                  "^udi=" + DEVICES + "usb_device_6b9_4061_0090D0123456$")

    client.call("establishConnection")
    client.wait_signal("connectionEstablished")
    usb.unplug(path)
    client.wait_signal("modemUnplugged")
    assert client.names().count("connectionTerminated") == 1
    wait_until(lambda: not place.processes("pppd"), what="pppd is gone")
    assert client.call("getIsModemPlugged") is False

    usb.plug("1-2", *SPEEDTOUCH, serial="0090D0123456", interfaces=(0, 1, 2))  # another port
    assert client.wait_signal("modemPlugged", count=2).args == (NAME,)
    client.mark()
    assert client.names().count("newModemPlugged") == 1


def test_firmware_re_enumeration_is_one_announcement_of_the_right_modem(place, usb):
    HalCompanion(place, usb)
    client = place.client()
    place.kernel_log.append("usb usb1: new device")  # the start says nothing of an empty log
    daemon = start_daemon(place)
    before = usb.plug("1-1", 0x1110, 0x9042)
    daemon.wait_for_log("device added: ")
    usb.many(usb.remove_requests(before), usb.add_requests("1-1", 0x1110, 0x9041))
    assert client.wait_signal("newModemPlugged").args == ("Sagem F@st 800 E4",)
    client.call("useNewModem")
    wait_for_line(place.path("/opt/norvix/.daemon_ng.ini"), "^product_id=%d$" % 0x9041)
    client.mark()
    assert client.names().count("newModemPlugged") == 1
