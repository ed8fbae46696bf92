# SPDX-License-Identifier: MIT
"""ATM cells in the transfers of a modem: 53 bytes each, in slots that may be longer."""

CELL = 53


def split(data, padding):
    """The cells in a transfer whose slots have `padding` bytes behind each cell."""
    slot = CELL + padding
    return [data[at:at + CELL] for at in range(0, len(data) - CELL + 1, slot)]


def padded(cell, padding):
    """One slot that holds `cell`."""
    return cell + b"\0" * padding


def circuit(cell):
    """VPI and VCI that a cell is addressed to."""
    vpi = (cell[0] & 0x0F) << 4 | cell[1] >> 4
    vci = (cell[1] & 0x0F) << 12 | cell[2] << 4 | cell[3] >> 4
    return vpi, vci
