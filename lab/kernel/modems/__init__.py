# SPDX-License-Identifier: MIT
"""USB ADSL modems that exist only as programs, plugged into a real kernel.

A modem here is a UsbDevice (device.py) that answers USB requests over USB/IP framing (usbip.py) on
one end of a socket pair, whose other end the kernel's virtual host controller has (vhci.py). The
kernel's own driver binds to it. Its ATM cells go through a Line (line.py) to an exchange
(exchange.py), which is a second device of this kind. A mobile phone (phone.py) is one, too.
"""
