# SPDX-License-Identifier: MIT
"""The line's state, as the kernel log tells it and as establishConnection prints it."""
from pathlib import Path

import pytest

from lab.machine.kernel_log import RealKernelLog
from lab.machine.private_machine import PrivateMachine
from lab.machine.pppd_script import stay

RECORDINGS = Path(__file__).resolve().parents[2] / "data" / "kernel-log"
SPEEDTCH, UNICORN, EAGLE, CXACRU = 0x06B9, 0x0483, 0x1110, 0x0572

NOTES = {
    "synchronized.": None,
    "synchronizing.": "Modem is synchronizing, returning...",
    "booting": None,
    "error": "Modem driver returned error, returning...",
    "idx < 0": "Modem state is unknown, returning...",
    None: "Modem state is unknown, returning...",
}


@pytest.mark.parametrize("recording,vendor,trace", [
    ("cxacru-initializing", CXACRU, "booting"),
    ("cxacru-attempting-to-activate", CXACRU, "synchronizing."),
    ("cxacru-training", CXACRU, None),
    ("cxacru-up", CXACRU, "synchronized."),
    ("cxacru-line-lost", CXACRU, None),
    ("speedtch-synchronising", SPEEDTCH, "synchronizing."),
    ("speedtch-up", SPEEDTCH, "synchronized."),
    ("speedtch-upload-failed", SPEEDTCH, "error"),
    ("eagle-booting", EAGLE, "booting"),
    ("eagle-operational", EAGLE, "synchronized."),
    ("eagle-operational", UNICORN, "idx < 0"),
])
def test_the_last_line_of_the_driver_decides(bus_machine, recording, vendor, trace):
    bus_machine.settings(vendor_id=vendor)
    bus_machine.kernel_log.load(RECORDINGS / ("klog-%s.txt" % recording))
    daemon = bus_machine.start_daemon("-d")
    already = daemon.output()
    bus_machine.client().call("establishConnection")
    said = daemon.output()[len(already):]
    told = [line[len("Norvix_Daemon::getModemState(): "):] for line in said.splitlines()
            if line.startswith("Norvix_Daemon::getModemState(): ")]
    assert told[:1] == ([trace] if trace else [])
    notes = [line for line in said.splitlines() if line.endswith("returning...")]
    assert notes[:1] == ([NOTES[trace]] if NOTES[trace] else [])


def test_a_line_that_tells_nothing_is_examined_five_times(bus_machine):
    bus_machine.kernel_log.append("ATM dev 0: ADSL line: up")
    bus_machine.kernel_log.append("ATM dev 0: ADSL line: training")
    bus_machine.start_daemon().wait_for_log("debugHandler: i: 4 \n")
    log = bus_machine.daemon_log()
    assert [log.count("debugHandler: i: %d \n" % number) for number in range(6)] == [1] * 5 + [0]


@pytest.mark.parametrize("log", ["missing", "empty"])
def test_a_log_that_cannot_be_read_is_logged_and_unknown(bus_machine, log):
    if log == "empty":
        bus_machine.kernel_log.clear()
    daemon = bus_machine.start_daemon()
    daemon.wait_for_log("Norvix_Daemon::getModemState(): klogctl() <= 0!\n")
    bus_machine.client().call("establishConnection")
    daemon.wait_for_output("Modem state is unknown, returning...\n")


def test_a_full_log_without_an_end_is_read_to_its_last_line(bus_machine):
    filler = "<6>[    1.000000] nothing to see\n" * 4000
    bus_machine.kernel_log.write(filler + "<6>[    2.0] ATM dev 0: ADSL line: up")
    bus_machine.pppd.script([stay()])
    daemon = bus_machine.start_daemon("-d")
    daemon.wait_for_output("Norvix_Daemon::getModemState(): synchronized.\n")


def test_only_what_stands_before_the_first_zero_byte_counts(bus_machine):
    bus_machine.kernel_log.write(b"ATM dev 0: ADSL line: initializing\n\0ATM dev 0: ADSL line: up\n")
    bus_machine.start_daemon("-d").wait_for_output("Norvix_Daemon::getModemState(): booting\n")


@pytest.mark.skipif(bool(RealKernelLog.reason_to_skip()), reason=RealKernelLog.reason_to_skip())
def test_the_real_kernel_log_is_read():
    with PrivateMachine(real_kernel_log=True) as machine:
        machine.start_bus()
        machine.settings(vendor_id=UNICORN)
        machine.kernel_log.append("unicorn_msw: Event Reported (2): Initializing")
        machine.start_daemon("-d").wait_for_output("Norvix_Daemon::getModemState(): booting\n")
        machine.client().call("reply")
        machine.kernel_log.append("unicorn_msw: Current Modem State (1): SHOWTIME_L1")
        machine.client().call("establishConnection")
        machine.daemons[0].wait_for_output("Norvix_Daemon::getModemState(): synchronized.\n")
