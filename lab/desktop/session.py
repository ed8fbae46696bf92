# SPDX-License-Identifier: MIT
"""A desktop session of an ordinary user in a private machine: screen, session bus, accessibility.

Nothing runs until it is needed. The services of the desktop (tray, notifications, portal, pkexec) are
played by the test's own process over the session bus, so that a test can stop, freeze and question them.
"""
import os
import shutil
import time
from functools import cached_property
from pathlib import Path

from . import accessibility
from .appearance import Appearance
from .notifications import Notifications
from .picture import Picture
from .pkexec import Pkexec
from .tray import Tray
from ..machine.bus_client import Client
from ..machine.furnishing import NORVIX_GROUP
from ..machine.private_machine import ADDRESS_SANITIZER, REAL_PATH
from ..waiting import PATIENCE, NotHappened, wait_until

HERE = Path(__file__).resolve().parent
SERVICES = "/etc/dbus-1/session-services"  # what session buses may start
BUS_CONFIGURATION = "/etc/dbus-1/session.conf"
ACCESSIBILITY_BUS = ("[D-BUS Service]\nName=org.a11y.Bus\n"
                     "Exec=/usr/libexec/at-spi-bus-launcher\n")
# One family of fonts, so that pictures are the same everywhere.
FONTS = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts/truetype/dejavu</dir>
  <alias><family>sans-serif</family><prefer><family>DejaVu Sans</family></prefer></alias>
  <alias><family>monospace</family><prefer><family>DejaVu Sans Mono</family></prefer></alias>
  <match>
    <edit name="family" mode="append_last"><string>DejaVu Sans</string></edit>
  </match>
  <cachedir prefix="xdg">fontconfig</cachedir>
</fontconfig>
"""
LOCALE = "/usr/lib/locale/C.utf8"  # what programs speak unless told otherwise
SCREEN = (1920, 1200)
PROGRAMS = "/opt/norvix/bin/"
STILL = 0.1  # seconds; a picture that stays the same as long is complete


class Session:
    """user: a name; one that the machine lacks is added. member: whether of the group norvix. wayland:
    instead of X. window_manager: on X; without one, windows cannot be given the keyboard by a program,
    and have no title bars."""

    def __init__(self, machine, user="user", member=True, wayland=False, window_manager=True):
        self.machine, self.user, self.member = machine, user, member
        self._wayland, self._window_manager = wayland, window_manager
        # As an ordinary user of the host there is only root inside.
        self.uid = self._number_of(user) if machine.rooted else 0
        self.runtime_folder = "/run/user/" + user
        self.home = "/run/home/%s" % user
        self.programs = self.home + "/bin"  # what stands for programs of the system
        self.started = []
        # What programs are started with; tests may add to it.
        self.env = {
            "HOME": self.home, "USER": user, "LOGNAME": user, "PATH": self.programs + ":" + REAL_PATH,
            "XDG_RUNTIME_DIR": self.runtime_folder, "GSETTINGS_BACKEND": "memory",
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=%s/bus" % self.runtime_folder}
        self._furnish()
        self.tray = Tray(self)
        self.notifications = Notifications(self)
        self.appearance = Appearance(self)

    # ---- who and where

    def _number_of(self, user):
        file = self.machine.path("/etc/passwd")
        text = file.read_text(encoding="ascii")
        numbers = {line.split(":")[0]: int(line.split(":")[2]) for line in text.splitlines()}
        if user not in numbers:
            numbers[user] = next(number for number in range(1001, 2000)
                                 if number not in numbers.values())
            file.write_text("%s%s:x:%d:%d::/:/bin/sh\n" % (text, user, numbers[user], numbers[user]),
                            encoding="ascii")
        return numbers[user]

    def _furnish(self):
        path = self.machine.path
        if self.member:
            join_group(self.machine, self.user)
        if not path(SERVICES).exists():
            path(SERVICES).mkdir()
            (path(SERVICES) / "org.a11y.Bus.service").write_text(ACCESSIBILITY_BUS, encoding="ascii")
            shutil.copy(HERE / "session-bus.conf", path(BUS_CONFIGURATION))
            path("/etc/fonts").mkdir()
            (path("/etc/fonts") / "fonts.conf").write_text(FONTS, encoding="ascii")
            # Without it letters beyond ASCII get lost between programs, as on no desktop of today.
            shutil.copytree(LOCALE, path(LOCALE), dirs_exist_ok=True)
            path("/tmp/.X11-unix").mkdir()
            path("/tmp/.X11-unix").chmod(0o1777)
        for folder, mode in ((self.runtime_folder, 0o700), (self.home, 0o700), (self.programs, 0o755)):
            place = path(folder)
            place.mkdir(parents=True)
            place.chmod(mode)
            if self.machine.rooted:
                os.chown(place, self.uid, self.uid)

    def spawn(self, argv, env=None, **options):
        """Starts any program as this session's user; see PrivateMachine.spawn."""
        groups = [NORVIX_GROUP] if self.member and self.machine.rooted else []
        return self.machine.spawn(argv, env={**self.env, **(env or {})}, cwd=self.home, uid=self.uid,
                                  groups=groups, **options)

    def run(self, argv, **options):
        """Runs a program as this session's user to its end: status, stdout, stderr."""
        process = self.spawn(argv, **options)
        status = process.wait()
        return status, process.output(), process.errors()

    # ---- what a session has

    @cached_property
    def _screen(self):
        """Where the picture of the screen is, once there is one; on Wayland None."""
        if self._wayland:
            self._start_weston()
            return None
        server = self.spawn(["/usr/bin/Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-noreset",
                             "-screen", "0", "%dx%dx24" % SCREEN, "-dpi", "96", "-fbdir", self.runtime_folder,
                             "-extension", "GLX", "-nocursor"], label="screen")
        number = self._wait_for(server, lambda: server.output().endswith("\n") and server.output())
        self.env.update(DISPLAY=":" + number.strip(), QT_QPA_PLATFORM="xcb")
        if self._window_manager:
            # A window that is there before its manager never gets the keyboard.
            manager = self.spawn(["/usr/bin/openbox", "--sm-disable", "--startup", "/bin/echo manages"],
                                 label="window-manager")
            self._wait_for(manager, lambda: "manages\n" in manager.output())
        return self.machine.path(self.runtime_folder) / "Xvfb_screen0"

    def _start_weston(self):
        server = self.spawn(["/usr/bin/weston", "--no-config", "--backend=headless-backend.so",
                             "--use-pixman", "--socket=wayland-1", "--idle-time=0", "--debug",
                             "--width=%d" % SCREEN[0], "--height=%d" % SCREEN[1]], label="screen")
        self._wait_for(server, lambda: self._listens(self.runtime_folder + "/wayland-1"))
        self.env.update(WAYLAND_DISPLAY="wayland-1", QT_QPA_PLATFORM="wayland")

    _bus_words = ["--config-file=" + BUS_CONFIGURATION]

    @cached_property
    def _bus_socket(self):
        self._screen  # what the bus starts needs it, too
        path = self.runtime_folder + "/bus"
        server = self.spawn(["/usr/bin/dbus-daemon", "--nofork", "--nopidfile", *self._bus_words],
                            label="session-bus")
        self._wait_for(server, lambda: self._listens(path))
        return path

    @cached_property
    def bus(self):
        """A client of the session bus. With it comes what nearly every desktop has."""
        client = self.bus_client()
        self.notifications.start()
        self.pkexec
        return client

    def bus_client(self, kind=Client, path=None):
        """Another connection to the session bus, or to the bus with that socket."""
        return self.machine.client(self.uid, kind=kind, path=path or self._bus_socket)

    @cached_property
    def window(self):
        """All windows of all programs, as a screen reader finds them."""
        target = {"service": "org.a11y.Bus", "path": "/org/a11y/bus"}
        self.bus.call_raw("Set", "ssv", "org.a11y.Status", "IsEnabled", ("b", True),
                          interface="org.freedesktop.DBus.Properties", **target)
        address = self.bus.call_raw("GetAddress", interface="org.a11y.Bus", **target)
        path = address.split("unix:path=")[1].split(",")[0]
        return accessibility.join(self.bus_client(path=path), self.keys)

    @cached_property
    def pkexec(self):
        return Pkexec(self)

    # ---- programs

    def start(self, program="norvix-desktop", *arguments, env=None):
        """Starts a program with a window (a name without a folder is one of ours); does not wait."""
        self.window
        path = program if "/" in str(program) else PROGRAMS + program
        # Memory is checked, where it is, as for every other program but for what libraries never free.
        checked = {"ASAN_OPTIONS": "detect_leaks=0"} if ADDRESS_SANITIZER else {}
        process = self.spawn([path, *arguments], env={**checked, **(env or {})}, label="program")
        self.started.append(process)
        return process

    def install_service(self, file):
        """Lets the session bus start a program: copies the file that describes its service."""
        shutil.copy(file, self.machine.path(SERVICES))
        self.bus.call_bus("ReloadConfig")

    def speak(self, language="de_DE"):
        """Programs that are started from now on speak it."""
        self.machine.add_locale(language)
        self.env.update(LC_ALL=language + ".UTF-8", LANGUAGE=language.split("_")[0])

    def enlarge(self, factor=2):
        """Programs that are started from now on are as large."""
        self.env["QT_SCALE_FACTOR"] = str(factor)

    def enlarge_fonts(self, factor=2):
        """Programs that are started from now on have letters as large."""
        self.env["QT_FONT_DPI"] = str(round(96 * factor))

    # ---- hands and eyes

    def keys(self, *names):
        """Presses keys one after another, by their X names: "Tab", "alt+c", "Escape". Keyboard and mouse
        need X, and the keyboard a window that is active: waits for one."""
        self._use("key", *names)

    def type(self, text):
        """Types a text, of letters that an American keyboard has: see Element.set_text for others."""
        self._use("type", "--delay", "1", text)

    def click(self, element):
        """Clicks into the middle of it."""
        self.window.find(states={"active"})  # before that the window manager may still move it
        x, y, width, height = self._place_of(element)
        self._use("mousemove", x + width // 2, y + height // 2, "click", 1)

    def _use(self, *words):
        self.window.find(states={"active"})
        status, _, errors = self.run(["/usr/bin/xdotool", *words], label="keyboard")
        assert (status, errors) == (0, ""), errors

    @property
    def screen_file(self):
        """Where the picture of the screen is, in X's form for dumps of windows. X only."""
        return self._screen

    def look(self, element=None):
        """The picture of the screen, or of one element, when nothing in it moves any more. X only.
        Where a text cursor blinks, two pictures of the same may differ."""
        before, deadline = None, time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            now = Picture.of_screen(self._screen, self._place_of(element))
            if now == before and not now.is_empty():
                return now
            before = now
            time.sleep(STILL)
        raise NotHappened("the picture does not come to rest")

    def _place_of(self, element):
        """Programs of this toolkit say where things are without their own enlargement."""
        scale = float(self.env.get("QT_SCALE_FACTOR", 1))
        return [round(scale * number) for number in element.extents] if element else None

    def picture(self, path, element=None):
        """Writes a picture of the screen, or of one element (X only), as PNG to a file outside."""
        if not self._wayland:
            self.look(element).save(Path(path))
            return
        folder = self.machine.path(self.home)
        status, _, errors = self.run(["/usr/bin/weston-screenshooter"], label="picture")
        assert status == 0, errors
        taken = next(folder.glob("wayland-screenshot-*.png"))
        shutil.copyfile(taken, path)
        taken.unlink()

    # ---- waiting

    def wait_on_bus(self, condition, timeout=PATIENCE, what="condition", detail=None):
        """Waits until condition is true; looks whenever a signal comes on the session bus."""
        deadline = time.monotonic() + timeout
        while True:
            position = len(self.bus.signals)
            if result := condition():
                return result
            left = deadline - time.monotonic()
            if left <= 0:
                raise NotHappened("not within %g s: %s\n%s" % (timeout, what, detail() if detail else ""))
            self.bus.signal_at(position, min(left, accessibility.LOOK_AGAIN))

    def _wait_for(self, server, ready):
        def there():
            if server.ended():
                raise RuntimeError("it has ended:\n" + server.errors())
            return ready()

        return wait_until(there, what="it is ready", detail=server.errors)

    def _listens(self, path):
        """A socket is there for a moment before it is listened at."""
        try:
            os.close(self.machine.request("connect", path=path, uid=self.uid, gid=self.uid, groups=[]))
        except OSError:
            return False
        return True

    def close(self):
        """Lets go of what is held in this process; the machine ends the rest."""
        if "pkexec" in vars(self):
            self.pkexec.close()

    def evidence(self):
        """What a failed test shows: title and text of each part."""
        parts = [("program's errors", process.errors()) for process in self.started]
        if "window" in vars(self):
            try:
                parts.append(("windows", self.window.outline()))
            except Exception as error:  # whatever made the test fail may make this fail
                parts.append(("windows", repr(error)))
        return parts


def join_group(machine, user, group="norvix"):
    """Makes somebody a member, for programs that start from then on."""
    file = machine.path("/etc/group")
    lines = file.read_text(encoding="ascii").splitlines()
    for number, line in enumerate(lines):
        if line.startswith(group + ":"):
            lines[number] = line + ("" if line.endswith(":") else ",") + user
    file.write_text("\n".join(lines) + "\n", encoding="ascii")
