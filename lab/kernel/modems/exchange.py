# SPDX-License-Identifier: MIT
"""The exchange at the far end of the line: a device that only carries cells (driver xusbatm)."""

from . import cells
from .descriptors import Description, Endpoint, Interface
from .device import UsbDevice

VENDOR, PRODUCT = 0xF00D, 0x0001
DATA = 1

MODULE_PARAMETERS = (f"vendor={VENDOR:#06x}", f"product={PRODUCT}", f"rx_endpoint={DATA}",
                     f"tx_endpoint={DATA}", "rx_padding=0", "tx_padding=0")


class Exchange(UsbDevice):
    stream_endpoints = (DATA,)

    def __init__(self, line):
        super().__init__(Description(
            vendor=VENDOR, product=PRODUCT, product_name="Exchange",
            interfaces=(Interface(0, (Endpoint(0x80 | DATA), Endpoint(DATA))),)))
        self._line = line
        line.to_exchange = lambda cell: self.send(DATA, cell)

    def received(self, endpoint, data):
        for cell in cells.split(data, 0):
            self._line.from_exchange(cell)
