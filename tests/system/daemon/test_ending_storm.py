# SPDX-License-Identifier: MIT
"""Ended by a signal at a hundred random moments, under load: always the line, always 255."""
import random
import signal
import time

from lab.machine import fake_hal
from lab.machine.bus_client import SERVICE, BusError
from lab.machine.pppd_script import link_up, stay
from lab.waiting import wait_until

ROUNDS = 100  # more by hand: tests/faults/endurance
# Seconds from the signal to the end: the daemon's own share, and what a busy machine may add.
USUAL, LONGEST = 1.0, 15.0
SIGNALS = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)


def load(client, randomness):
    """Calls without waiting for answers: logging, settings writes, a connection under way."""
    for number in range(40):
        choice = randomness.random()
        if choice < 0.4:
            client.start_call("reply")
        elif choice < 0.6:
            client.start_call("setIdlenessTime", "i", number)
        elif choice < 0.8:
            client.start_call("getIP", "s", "none%d" % number)
        elif choice < 0.9:
            client.start_call("getDefaultRoute")
        else:
            client.start_call("establishConnection")


def test_whenever_a_signal_comes_the_daemon_says_so_and_is_gone(bus_machine):
    seed = random.SystemRandom().randrange(1 << 32)
    randomness = random.Random(seed)
    print("seed", seed)
    bus_machine.kernel_log.line_up()
    bus_machine.settings(idleness=1)
    bus_machine.pppd.script(link_up() + [stay()])
    observer = bus_machine.client()
    times = []
    for round_ in range(ROUNDS):
        client = bus_machine.client()
        daemon = bus_machine.start_daemon(wait=round_ % 3 == 0)
        wait_until(lambda: "it: " in daemon.output(), what="the signal handler is in place",
                   detail=daemon.everything_said)
        try:
            load(client, randomness)
        except BusError:
            pass
        time.sleep(randomness.uniform(0, 0.12))  # the random moment is the point
        number = randomness.choice(SIGNALS)
        begun = time.monotonic()
        daemon.signal(number)
        if randomness.random() < 0.3:  # a second one close behind
            try:
                daemon.signal(randomness.choice(SIGNALS))
            except OSError:
                pass  # it was quick
        assert daemon.wait_exit() == 255, (seed, round_, daemon.everything_said())
        record = bus_machine.exit_of(daemon.pid)
        times.append(record["time"] - begun)
        lines = [line for line in daemon.output().splitlines() if "handled" in line]
        assert len(lines) == 1, (seed, round_, lines)
        # A child on its way to exec still bears the daemon's name; a copy left behind would keep it.
        wait_until(lambda: not bus_machine.processes("norvix-daemon"), 5, "no copy of the daemon is left",
                   lambda: (seed, round_, bus_machine.processes("norvix-daemon")))
        wait_until(lambda: observer.owner_of(SERVICE) is None, what="the name is free")
        client.close()
        bus_machine.run(["/usr/bin/killall", "-q", "-9", "pppd"])
    times.sort()
    assert times[len(times) * 9 // 10] < USUAL and times[-1] < LONGEST, (seed, times[-60:])
    bus_machine.start_daemon()
    assert observer.call("reply") is True


def test_a_signal_on_a_worker_thread_ends_the_daemon_too(bus_machine):
    bus_machine.kernel_log.append("ATM dev 0: ADSL line: initializing")
    for _ in range(20):
        client = bus_machine.client()
        daemon = bus_machine.start_daemon()
        daemon.wait_started()  # the thread that looks after the driver has ended
        client.call("establishConnection")
        client.wait_signal("synchronizing")  # the last of its thread's signs of life for five seconds
        tasks = [int(task) for task in
                 bus_machine.run(["ls", "/proc/%d/task" % daemon.pid]).stdout.split()]
        assert len(tasks) > 1
        # tgkill delivers to that thread alone.
        code = "import ctypes, sys; sys.exit(ctypes.CDLL(None).syscall(234, %d, %d, 15))" % (
            daemon.pid, max(tasks))
        assert bus_machine.run(["/usr/bin/python3", "-c", code]).status == 0
        assert daemon.wait_exit() == 255
        assert daemon.output().endswith("Norvix Daemon: Signal 15 handled\n")


def test_a_signal_while_hal_does_not_answer_ends_the_daemon(hal_machine):
    hal_machine.client().call_bus("RequestName", "su", fake_hal.SERVICE, 4)  # and never answers
    for _ in range(20):
        daemon = hal_machine.start_daemon()
        begun = time.monotonic()
        daemon.signal()
        assert daemon.wait_exit() == 255
        assert hal_machine.exit_of(daemon.pid)["time"] - begun < LONGEST
        assert daemon.output().endswith("Norvix Daemon: Signal 15 handled\n")
