# SPDX-License-Identifier: MIT
"""The five families of modems: what each is on the USB bus and which driver
it has and what that writes."""
from collections import namedtuple

from .kernel_log import line_up

# product_before: what it calls itself until its firmware has been loaded, or None.
# training: what the driver says while the line trains, with the seconds since it began.
Family = namedtuple("Family",
                    "name driver vendor product product_before serial interfaces training")

EAGLE_TRAINING = ((0, "usb 1-1: [ueagle-atm] (re)booting started"),
                  (2, "usb 1-1: [ueagle-atm] modem started, waiting synchronization..."))
FAMILIES = {
    "eagle-e4": Family("Sagem F@st 800 E4", "ueagle-atm", 0x1110, 0x9041, 0x9042, None, (0, 1, 2),
                       EAGLE_TRAINING),
    "eagle": Family("Sagem F@st 800", "ueagle-atm", 0x1110, 0x900F, 0x9010, None, (0, 1, 2),
                    EAGLE_TRAINING),
    "speedtch": Family("Thomson Speedtouch 330", "speedtch", 0x06B9, 0x4061, None, "0090D0123456",
                       (0, 1, 2), ((1, "ATM dev 0: ADSL line is synchronising"),)),
    "unicorn": Family("ZTE ZXDSL 852", "unicorn_usb_eth", 0x0483, 0x0138, None, None, (0,), ()),
    "cxacru": Family("CXACRU modem", "cxacru", 0x0572, 0xCB00, None, "1", (0,),
                     ((0, "ATM dev 0: ADSL line: initializing"),
                      (1, "ATM dev 0: ADSL line: attempting to activate"),
                      (3, "ATM dev 0: ADSL line: training"),
                      (5, "ATM dev 0: ADSL line: channel analysis"),
                      (6, "ATM dev 0: ADSL line: exchange"))),
}
# The unicorn's driver is in no distribution's kernel.
FAMILIES_OF_THE_KERNEL = tuple(name for name in FAMILIES if name != "unicorn")
TRAINED_AFTER = 7  # seconds


def identity(vendor, product):
    return "%04x:%04x" % (vendor, product)


def up_line(family):
    """What the driver writes when the line is synchronised."""
    return line_up(family.vendor)
