# SPDX-License-Identifier: MIT
"""norvix-desktop beside the tray applet and the editor of another network service, in one run."""
import mmap
import re
import shutil
import signal
import statistics
import subprocess
import sys
import time
from collections import namedtuple
from pathlib import Path

from lab.desktop.computer import Computer
from lab.desktop.picture import BYTES_PER_COLOUR, BYTES_PER_LINE, COLOURS, HEADER, HEIGHT, SIZE, WIDTH
from lab.desktop.session import Session
from lab.machine.bus_client import BusError
from lab.machine.private_machine import BUILD, PrivateMachine
from lab.waiting import wait_until

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "tests/desktop"))
from window_world import WindowWorld  # noqa: E402

Effort = namedtuple("Effort", "starts seconds rounds")
RESULT, LOOK = Effort(9, 60, 5), Effort(2, 15, 2)
SETTLED_SECONDS = 30  # after a start; what it left to do is done by then
SETTLING_ANSWERS = 10  # after something was done to a window
OTHER = "/opt/other"
OURS = "/opt/norvix/bin/norvix-desktop"
APPLET, EDITOR = OTHER + "/usr/bin/nm-applet", OTHER + "/usr/bin/nm-connection-editor"
PACKAGE = "network-manager-gnome"
SERVICE = "org.freedesktop.NetworkManager"
PAGES = ("Connection", "History", "Check-up", "Account and line", "Modem and driver", "Log", "Preferences")


class Figures:
    """Rows of a table: the middle of all rounds on both sides."""

    def __init__(self):
        self.rows = {}

    def add(self, name, ours=None, other=None):
        pair = self.rows.setdefault(name, ([], []))
        for column, value in zip(pair, (ours, other)):
            if value is not None:
                column.append(value)

    def print(self):
        row = "%-52s %14s %14s %7s"
        print(row % ("", "norvix-desktop", "the other", "ratio"))
        for name, columns in self.rows.items():
            ours, other = (statistics.median(column) if column else None for column in columns)
            ratio = "%.2f" % (ours / other) if ours is not None and other else ""
            print(row % (name, *("" if value is None else "%.1f" % value for value in (ours, other)), ratio))


class Screen:
    """A few points of the screen, which are looked at quickly: it is black until a window is painted."""

    ACROSS, DOWN = 48, 30

    def __init__(self, file):
        with open(file, "rb") as screen:
            self._pixels = mmap.mmap(screen.fileno(), 0, access=mmap.ACCESS_READ)
        header = HEADER.unpack_from(self._pixels)
        begin, line = header[SIZE] + header[COLOURS] * BYTES_PER_COLOUR, header[BYTES_PER_LINE]
        self._points = [begin + line * (header[HEIGHT] * (2 * y + 1) // (2 * self.DOWN))
                        + 4 * (header[WIDTH] * (2 * x + 1) // (2 * self.ACROSS))
                        for y in range(self.DOWN) for x in range(self.ACROSS)]

    def is_painted(self):
        return any(self._pixels[point:point + 3] != b"\0\0\0" for point in self._points)


class Running:
    """A program of the session, until it is left. Nobody reads the screen to it meanwhile."""

    def __init__(self, session, command):
        self.session, self.machine = session, session.machine
        self.process = session.spawn(command, env=OTHERS_PLACES, label="measured")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()

    def end(self):
        self.process.signal(signal.SIGKILL)
        self.process.wait()

    def _read(self, name):
        return self.machine.read("/proc/%d/%s" % (self.process.pid, name)).decode()

    def processor_ms(self):
        fields = self._read("stat").rsplit(")", 1)[1].split()
        return sum(map(int, fields[11:13])) * 10

    def memory_kb(self):
        """Memory of this process alone that lies nowhere in a file, see measure.py."""
        return int(re.search(r"Anonymous:\s+(\d+)", self._read("smaps_rollup"))[1])

    def switches(self):
        """How often each of its threads has waited so far."""
        counts = {}
        for task in (self.machine.root / ("proc/%d/task" % self.process.pid)).iterdir():
            try:
                text = (task / "status").read_text(encoding="utf-8")
            except OSError:  # that thread has just ended
                continue
            counts[task.name] = int(re.search(r"\nvoluntary_ctxt_switches:\s+(\d+)", text)[1])
        return counts


class WakeUps:
    """How often threads of a program began to run after they had waited, since this was made. Who ends
    takes what it has done since the last look with it."""

    def __init__(self, program):
        self._program = program
        self._first = self._last = program.switches()

    def look(self):
        self._last = {**self._last, **self._program.switches()}

    def total(self):
        return sum(count - self._first.get(thread, 0) for thread, count in self._last.items())


OTHERS_PLACES = {"GSETTINGS_SCHEMA_DIR": OTHER + "/usr/share/glib-2.0/schemas", "GTK_THEME": "Adwaita"}


# ---- the other one

def unpack(machine):
    """The other package, in this machine only: installed it would bring its service along."""
    kept = BUILD / "bench" / PACKAGE
    kept.mkdir(exist_ok=True)
    if not list(kept.glob("*.deb")):
        subprocess.run(["apt-get", "-q", "download", PACKAGE], cwd=kept, check=True, stdout=sys.stderr)
    [archive] = kept.glob("*.deb")
    subprocess.run(["dpkg-deb", "-x", archive, machine.path(OTHER)], check=True)
    subprocess.run(["glib-compile-schemas", machine.path(OTHER + "/usr/share/glib-2.0/schemas")], check=True)


class OtherService:
    """What stands for the other one's service: a wireless device, connected when asked for."""

    MANAGER = "/org/freedesktop/NetworkManager"

    def __init__(self, machine):
        self.client = machine.client()
        self.process = machine.spawn(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template",
                                      "networkmanager"], label="other-service")
        wait_until(self._serves, what="the other service is there", detail=self.process.errors)
        self.device = self._do("AddWiFiDevice", "ssi", "radio", "wlan0", 30)
        self.point = self._do("AddAccessPoint", "ssssuuuyu", self.device, "point", "home",
                              "00:23:f8:7e:12:bb", 2, 2425, 5400, 82, 0x100)
        self.connection = self._do("AddWiFiConnection", "ssss", self.device, "home", "home", "wpa-psk")

    def _serves(self):
        try:
            return self.client.pid_of(SERVICE) == self.process.pid
        except BusError:
            return False

    def _do(self, method, signature, *arguments):
        return self.client.call_raw(method, signature, *arguments, service=SERVICE, path=self.MANAGER,
                                    interface="org.freedesktop.DBus.Mock")

    def connect(self):
        active = self._do("AddActiveConnection", "assssu", [self.device], self.connection, self.point,
                          "home", 2)
        self._do("SetDeviceActive", "ss", self.device, active)
        self._do("SetGlobalConnectionState", "u", 70)


# ---- the figures

def measure_start(figures, session, screen):
    """Until the first of a window is to be seen, and what has been computed by then."""
    taken = []
    for command in ([OURS], [EDITOR]):
        wait_until(lambda: not screen.is_painted(), what="the screen is empty")
        began = time.monotonic()
        with Running(session, command) as program:
            wait_until(screen.is_painted, what="a window", detail=program.process.errors)
            taken.append(((time.monotonic() - began) * 1000, program.processor_ms()))
    for name, pair in zip(("start to window shown, ms", "  processor of that, ms"), zip(*taken)):
        figures.add(name, *pair)


def measure_rest(figures, session, what, commands, seconds):
    """Memory and wake-ups of programs that run at the same time while nobody does anything."""
    programs = [Running(session, command) for command in commands]
    time.sleep(SETTLED_SECONDS)
    figures.add("private memory, %s, kB" % what, *(program.memory_kb() for program in programs))
    counts = [WakeUps(program) for program in programs]
    end = time.monotonic() + seconds
    while (left := end - time.monotonic()) > 0:
        time.sleep(min(1, left))
        for count in counts:
            count.look()
    figures.add("wake-ups a minute, " + what, *(count.total() * 60 / seconds for count in counts))
    for program in programs:
        program.end()


class Answers:
    """How long a window takes to answer, in ms. After each thing that is done to it again and again,
    until it has come to rest; of all rounds the quickest counts, which other work on the machine has
    disturbed least, and of all things that are done the slowest."""

    def __init__(self, window):
        self._window = window
        self._times = {}

    def after(self, what, do):
        times = []
        do()
        while len(times) < SETTLING_ANSWERS:
            times.append(self._window.answer_time() * 1000)
        self._times.setdefault(what, []).append(max(times))

    def slowest(self):
        return max(min(times) for times in self._times.values())

    def worst(self):
        return max(max(times) for times in self._times.values())


def measure_frozen(figures, session, freeze, rounds):
    """With the services stopped, what a person does to each window. They are asked by a screen reader."""
    taken = []
    for command, do in ((OURS, use_ours), (EDITOR, use_other)):
        session.window
        with Running(session, [command]):
            frame = session.window.find("frame")
            freeze(signal.SIGSTOP)
            answers = Answers(frame)
            for _ in range(rounds):
                do(session.window, answers)
            freeze(signal.SIGCONT)
            taken.append(answers)
    for name, values in (("slowest answer, services frozen, ms (limit 50)", Answers.slowest),
                         ("  with all that disturbed it", Answers.worst)):
        figures.add(name, *map(values, taken))


def use_ours(window, answers):
    answers.after("waiting", lambda: time.sleep(1))
    for page in PAGES:
        answers.after(page, lambda page=page: window.select("Pages", page))
    window.select("Pages", "Connection")
    answers.after("asking", lambda: window.find("push button", states={"sensitive"}).press())


def use_other(window, answers):
    answers.after("waiting", lambda: time.sleep(1))
    answers.after("folding", lambda: window.find("table cell", "Wi-Fi").press())


def print_table(quick):
    """Builds what is measured, measures and prints."""
    effort = LOOK if quick else RESULT
    subprocess.run(["cmake", "--build", BUILD, "--target", "norvix-desktop", "norvix-daemon", "norvix-keeper",
                    "norvix-hald"], check=True, stdout=subprocess.DEVNULL)
    figures = Figures()
    with PrivateMachine() as machine:
        shutil.copy(HERE / "bench.conf", machine.path("/etc/dbus-1/system.d"))
        computer = Computer(machine)
        unpack(machine)
        world = WindowWorld(computer, Session(machine, window_manager=False))
        session, other = world.desktop, OtherService(machine)
        computer.start_daemon()
        computer.start_keeper()
        session.tray.start()
        session.bus
        screen = Screen(session.screen_file)
        progress("starts ...")
        for _ in range(effort.starts):
            measure_start(figures, session, screen)
        hidden = [OURS, "--background"], [APPLET, "--indicator"]
        progress("at rest, four times %d s ..." % effort.seconds)
        measure_rest(figures, session, "hidden", hidden, effort.seconds)
        measure_rest(figures, session, "shown", ([OURS], [EDITOR]), effort.seconds)
        other.connect()
        world.client.call("establishConnection")
        world.client.wait_signal("connectionEstablished")
        measure_rest(figures, session, "hidden, connected", hidden, effort.seconds)
        measure_rest(figures, session, "shown, connected", ([OURS], [EDITOR]), effort.seconds)
        progress("frozen ...")

        def freeze(number):
            for process in (computer.daemon, computer.keeper.process, other.process):
                process.signal(number)

        measure_frozen(figures, session, freeze, effort.rounds)
    figures.print()
    return 0


def progress(text):
    print(text, file=sys.stderr, flush=True)
