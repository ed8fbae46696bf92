# SPDX-License-Identifier: MIT
"""Measures the daemon beside its floors and prints one table. Runs inside a private machine, in
which a system bus answers and /opt/norvix holds the daemon; bench/run makes one and starts this."""
import os
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

from jeepney import DBusAddress, new_method_call
from jeepney.io.blocking import open_dbus_connection

HERE = Path(__file__).parent
RECORDING = HERE / "pppd-lines.txt"
QUICK = "--quick" in sys.argv

DAEMON = "/opt/norvix/bin/norvix-daemon"
DAEMON_LOG = Path("/opt/norvix/daemon.log")
LAST_LINE = "sent [the last line]"
KERNEL_LOG = Path("/run/lab/kernel-log")
STANDIN = "/mnt/lab/lib/libklogctl-standin.so"  # the daemon's kernel log is that file then
WORK = Path("/run/bench")

SERVICES = {
    "daemon": ("com.norvix.Daemon", "/com/norvix/Daemon", "com.norvix.Daemon"),
    "c": ("com.norvix.bench.Plain", "/com/norvix/bench", "com.norvix.bench.Plain"),
    "qt": ("com.norvix.bench.Qt", "/com/norvix/bench", "com.norvix.bench.Qt"),
}
PROGRAMS = {
    "daemon": [DAEMON],
    "c": [HERE / "floor-service"],
    "qt": [HERE / "floor-qt", "fork"],
}


class Running:
    """A started service, found by its name on the bus."""

    def __init__(self, kind, environment=None):
        self.bus = open_dbus_connection(bus="SYSTEM")
        self.name = SERVICES[kind][0]
        subprocess.Popen(PROGRAMS[kind], stdout=subprocess.DEVNULL,
                         env=dict(os.environ, **(environment or {})))
        wait_until(lambda: self.ask("NameHasOwner"), self.name)
        self.pid = self.ask("GetConnectionUnixProcessID")

    def ask(self, member):
        bus = DBusAddress("/org/freedesktop/DBus", "org.freedesktop.DBus", "org.freedesktop.DBus")
        return self.bus.send_and_get_reply(new_method_call(bus, member, "s", (self.name,))).body[0]

    def call(self, member):
        name, path, interface = SERVICES["daemon"]
        return self.bus.send_and_get_reply(
            new_method_call(DBusAddress(path, name, interface), member)).body

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.kill(self.pid, signal.SIGTERM)
        wait_until(lambda: not self.ask("NameHasOwner"), self.name + " to end")
        self.bus.close()


def wait_until(condition, what, seconds=60):
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            raise TimeoutError("waited for %s" % what)
        time.sleep(0.005)


def processor_ns(pid):
    """The processor time that a process has used, all its threads, without its children."""
    return time.clock_gettime_ns(~pid << 3 | 2)  # the clock of another process, see clock_getcpuclockid


def output_of(*argv, **options):
    return subprocess.run([str(word) for word in argv], check=True, capture_output=True, text=True,
                          **options).stdout.strip()


def lower_quartile(values):
    return None if None in values else sorted(values)[len(values) // 4]


class Figure:
    """One row: ours and the floor's, measured in turn. The lower quartile of the rounds counts on
    both sides: other work on the machine adds to a time, and a lucky round is luck."""

    rows = []

    def __init__(self, name, unit="us", scale=1e-3, aim="", limit=""):
        self.name, self.unit, self.scale, self.aim, self.limit = name, unit, scale, aim, limit
        self.pairs = []
        Figure.rows.append(self)

    def add(self, ours, floor=None):
        self.pairs.append((ours, floor))

    def cells(self):
        ours, floor = (lower_quartile(column) for column in zip(*self.pairs))
        cells = [self.name, "%.4g %s" % (ours * self.scale, self.unit), "", "", self.aim, self.limit]
        if floor is not None:
            cells[2:4] = ["%.4g %s" % (floor * self.scale, self.unit), "%.2f" % (ours / floor)]
        return cells


def progress(text):
    print(text, file=sys.stderr, flush=True)


# ---- the figures

def calls(kind, count, clients):
    """Nanoseconds a call: wall, and of the service's processor."""
    words = output_of(HERE / "bench-caller", "calls", *SERVICES[kind], count, clients)
    return [int(word) for word in words.split()]


def measure_calls():
    wall = Figure("reply, round trip, wall", aim="1.30", limit="1.45")
    processor = Figure("reply, processor of the service", aim="3.2", limit="3.6")
    crowd = Figure("reply, 8 clients at once, wall", aim="1.2", limit="1.4")
    beside_qt = Figure("  for information: round trip beside the Qt floor")
    progress("calls ...")
    with Running("daemon"), Running("c"), Running("qt"):
        for _ in range(10 if QUICK else 100):
            ours, floor, qt = (calls(kind, 500, 1) for kind in ("daemon", "c", "qt"))
            wall.add(ours[0], floor[0])
            processor.add(ours[1], floor[1])
            beside_qt.add(ours[0], qt[0])
            ours, floor = (calls(kind, 100, 8) for kind in ("daemon", "c"))
            crowd.add(ours[0], floor[0])


def measure_signals():
    figure = Figure("one signal, processor (Qt floor)", aim="1.05", limit="1.2")
    progress("signals ...")
    for _ in range(3 if QUICK else 11):
        figure.add(int(output_of(HERE / "daemon-emission", 20000)),
                   int(output_of(HERE / "floor-qt", 20000)))


def measure_start():
    figure = Figure("exec to name owned, no HAL (Qt floor)", "ms", 1e-6, "1.1", "1.5")
    progress("starts ...")
    caller = HERE / "bench-caller"
    for _ in range(5 if QUICK else 41):
        figure.add(*(int(output_of(caller, "start", SERVICES[kind][0], *PROGRAMS[kind]).split()[-1])
                     for kind in ("daemon", "qt")))


def memory_kb(pid):
    """Memory that exists for this process alone and nowhere in a file. Not the kernel's sum of private
    dirty memory: files that lie in memory, as a machine's do, count there for whoever maps them."""
    text = Path("/proc/%d/smaps_rollup" % pid).read_text()
    return int(re.search(r"^Anonymous:\s+(\d+) kB", text, re.M).group(1))


def switches(pid):
    """How often the threads of a process have given up or lost the processor so far."""
    total = 0
    for thread in Path("/proc/%d/task" % pid).iterdir():
        total += sum(int(number) for number in
                     re.findall(r"ctxt_switches:\s+(\d+)", (thread / "status").read_text()))
    return total


def measure_rest():
    memory = Figure("private dirty memory at rest", "kB", 1, "850 kB", "1000 kB")
    idle = Figure("context switches a second, no link", "/s", 1, "0", "0.02")
    with Running("daemon") as daemon, Running("qt") as floor:
        assert daemon.call("reply") == (True,)
        time.sleep(3)  # what the start left to do is done by then
        memory.add(memory_kb(daemon.pid), memory_kb(floor.pid))
        seconds = 5 if QUICK else 60
        progress("at rest, %d s ..." % seconds)
        before = switches(daemon.pid), switches(floor.pid)
        time.sleep(seconds)
        idle.add((switches(daemon.pid) - before[0]) / seconds)


def ip(*words):
    output_of("ip", *words)


def measure_statistics():
    figure = Figure("one tick of the statistics, processor (C)", aim="1.5", limit="2.0")
    seconds = 5 if QUICK else 30
    progress("statistics, %d s ..." % seconds)
    ip("tuntap", "add", "ppp0", "mode", "tun")
    ip("addr", "add", "10.64.1.1", "peer", "10.64.64.64", "dev", "ppp0")
    ip("link", "set", "ppp0", "up")
    pid_file = Path("/run/ppp-norvix.pid")
    pid_file.write_text("%d\nppp0\n" % os.getpid())
    floor = subprocess.Popen([HERE / "floor-statistics"])
    try:
        with Running("daemon") as daemon:
            time.sleep(2)
            assert daemon.call("getConnectionState") == (0,)
            before = processor_ns(daemon.pid), processor_ns(floor.pid)
            time.sleep(seconds)
            figure.add((processor_ns(daemon.pid) - before[0]) / seconds,
                       (processor_ns(floor.pid) - before[1]) / seconds)
    finally:
        floor.kill()
        floor.wait()
        pid_file.unlink()
        ip("link", "del", "ppp0")


def lines_of_pppd(count):
    """Recorded lines that make the daemon log them and do nothing more."""
    lines = [line for line in RECORDING.read_text().splitlines()
             if line.startswith(("sent [", "rcvd [")) and "TermReq" not in line]
    return [lines[i % len(lines)] for i in range(count - 1)] + [LAST_LINE]


def is_last_line_logged():
    # Not all of them: the log keeps only an attempt's begin and end.
    return LAST_LINE.encode() in DAEMON_LOG.read_bytes()


def measure_lines():
    figure = Figure("a line of pppd to the log, processor (C)", aim="1.3", limit="2.0")
    progress("lines of pppd ...")
    count = 5000 if QUICK else 30000
    programs = WORK / "bin"
    programs.mkdir(parents=True)
    lines = WORK / "lines"
    lines.write_text("\n".join(lines_of_pppd(count)) + "\n")
    pppd = programs / "pppd"
    pppd.write_text("#!/bin/sh\nexec cat %s\n" % lines)
    pppd.chmod(0o755)
    KERNEL_LOG.write_text("ATM dev 0: ADSL line: up\n")
    floor = HERE / "floor-log"
    for _ in range(2 if QUICK else 5):
        environment = {"PATH": "%s:%s" % (programs, os.environ["PATH"]), "LD_PRELOAD": STANDIN}
        with Running("daemon", environment) as daemon:
            assert daemon.call("reply") == (True,)
            before = processor_ns(daemon.pid)
            daemon.call("establishConnection")
            wait_until(is_last_line_logged, "the last line in the log")
            ours = (processor_ns(daemon.pid) - before) / count
        figure.add(ours, int(output_of("/bin/sh", "-c", "cat %s | %s %s" % (
            lines, floor, WORK / "floor.log"))))


def measure_line_state():
    typical = Figure("line state, full log, typical")
    worst = Figure("line state, full log, worst case", aim="200 us", limit="300 us")
    progress("line state ...")
    cases = [line.split("|") for line in output_of(HERE / "line-state-query").splitlines()]
    times = [(int(ours), int(floor), kind, family) for kind, family, ours, floor in cases]
    typical.add(*max(case for case in times if case[2] == "typical")[:2])
    slowest = max(times)
    worst.add(*slowest[:2])
    worst.name += " (%s: %s)" % slowest[:1:-1]


def print_table():
    heads = ["figure", "ours", "floor", "ratio", "aim", "never worse than"]
    table = [heads] + [figure.cells() for figure in Figure.rows]
    widths = [max(len(row[i]) for row in table) for i in range(len(heads))]
    for row in table:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def main():
    measure_calls()
    measure_signals()
    measure_start()
    measure_rest()
    measure_statistics()
    measure_lines()
    measure_line_state()
    print_table()


main()
