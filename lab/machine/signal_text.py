# SPDX-License-Identifier: MIT
"""The daemon's signals in words."""

STATES = {0: "connected", 1: "connecting", 2: "not connected"}


def size(count):
    """A number of bytes for people: 1234567 is 1.2 MB."""
    for unit in ("B", "kB", "MB"):
        if count < 1000:
            return "%d B" % count if unit == "B" else "%.1f %s" % (count, unit)
        count /= 1000
    return "%.1f GB" % count


def state(number):
    return STATES.get(number, "unknown state %d" % number)


TEXTS = {
    "transmissionSpeed": lambda rx, tx: "%s/s down, %s/s up" % (size(rx), size(tx)),
    "transmissionErrors": lambda rx, tx: "%d receiving, %d sending" % (rx, tx),
    "transmissionBytes": lambda rx, tx: "%s received, %s sent" % (size(rx), size(tx)),
    "IP": lambda address: "the address is " + address,
    "defaultRoute": lambda interface: "the default route leads through " + interface,
    "connectionTime": lambda h, m, s: "connected for %02d:%02d:%02d" % (h, m, s),
    "modemPlugged": lambda name: "modem: " + name,
    "newModemPlugged": lambda name: "a new modem: " + name,
    "modemUnplugged": lambda: "the modem is gone",
    "newModemUnplugged": lambda: "the new modem is gone",
    "incorrectDNS": lambda: "the resolver configuration is wrong",
    "settingOpenDNS": lambda done: "resolver repaired" if done else "resolver not repaired",
    "connectionEstablished": lambda: "the link is up",
    "connectionTerminated": lambda: "the link is down",
    "establishingConnection": lambda: "connecting",
    "setEnabledConnect": lambda on: "connecting is possible" + ("" if on else " later only"),
    "connectionState": lambda number: "now " + state(number),
    "connectionTimeout": lambda: "nobody answered in time",
    "restartModemStarted": lambda: "the modem is being restarted",
    "restartModemFinished": lambda: "the modem has been restarted",
    "accountDataChanged": lambda done: "account stored" if done else "account not stored",
    "compilingDriver": lambda: "the driver is being built",
    "compilationFinished": lambda done: "the driver is built" if done else "building failed",
    "synchronizing": lambda: "the line is training",
    "synchronizationFailed": lambda: "the line did not come up",
    "invalidAccountData": lambda: "the provider refused login or password",
}


def text_of(signal):
    """What a signal of the daemon says; its bare arguments where it is not known here."""
    describe = TEXTS.get(signal.name)
    return describe(*signal.args) if describe else " ".join(map(str, signal.args))
