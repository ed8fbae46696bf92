# SPDX-License-Identifier: MIT
"""A machine of its own for the daemon: own processes, network, files and system bus, one call away.

Everything happens in namespaces. What the daemon finds under /opt, /run, /tmp, /var/log, /etc and
/usr/local/sbin are folders of a state folder, which tests read and write from outside; accounts,
names, zone, locales, firmware and devices are the machine's own; programs and libraries are the
host's, read-only. When the machine is left, or its maker dies, all of it vanishes.
"""
import atexit
import base64
import errno
import json
import os
import select
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
from collections import namedtuple
from pathlib import Path

from .bus_client import SERVICE, BusError, Client
from .daemon_process import Daemon, Process
from .furnishing import ETC_OF_THE_HOST, furnish
from .kernel_log import KernelLog, RealKernelLog
from .pppd_script import Pppd
from .standin_control import Standin, read_calls
from ..waiting import PATIENCE, read_text, wait_until

REPOSITORY = Path(__file__).resolve().parents[2]
HERE = REPOSITORY / "lab/machine"
BUILD = Path(os.environ.get("NORVIX_BUILD_DIR") or REPOSITORY / "build" / "release").resolve()
PROFILES = BUILD / "profiles"  # where programs count what they execute, when they are built to
ADDRESS_SANITIZER = os.environ.get("NORVIX_SANITIZER") == "address"
REAL_PATH = "/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"
USUAL_PATH = "/usr/local/sbin:" + REAL_PATH  # the stand-ins come first
BUS_SOCKET = "/run/dbus/system_bus_socket"
# Private folders. /var/run and /var/lock are links into /run on Debian; elsewhere they are bound.
FOLDERS = ("/etc", "/opt", "/run", "/tmp", "/usr/lib/firmware", "/usr/lib/locale", "/usr/local/sbin",
           "/var/lib/dbus", "/var/log", "/var/run", "/var/lock", "/var/tmp")

MEMORY, ROOM_IN_MEMORY = "/dev/shm", 1 << 30  # bytes

Completed = namedtuple("Completed", "status stdout stderr")


def place_of_state_folders():
    """In memory: on a disk, the hundred small files of a machine take as long as all that happens in
    it. Among the temporary files where there is little memory, or none that programs start from."""
    try:
        facts = os.statvfs(MEMORY)
    except OSError:
        return tempfile.gettempdir()
    serves = (facts.f_bavail * facts.f_frsize >= ROOM_IN_MEMORY
              and not facts.f_flag & os.ST_NOEXEC and os.access(MEMORY, os.W_OK))
    return MEMORY if serves else tempfile.gettempdir()


def processes_inside(name):
    """The folders in the host's /proc of all processes inside machines whose state folder has a name
    that begins so: they see it as the root of a mount."""
    found = []
    for file in Path("/proc").glob("[0-9]*/mountinfo"):
        try:
            if "/" + name in file.read_text(encoding="utf-8", errors="replace"):
                found.append(file.parent)
        except OSError:  # it has just ended
            pass
    return found


class Starter:
    """The process of machine_starter.py, from the first machine of this program to the program's end."""

    def __init__(self):
        self._lock = threading.Lock()
        self._socket = None

    def start(self, control, state, keep):
        """Has a machine made that obeys that control socket; the id of the process that keeps it."""
        with self._lock:
            if self._socket is None:
                self._begin()
            request = json.dumps({"state": state, "keep": keep}).encode()
            socket.send_fds(self._socket, [request], [control.fileno()])
            return int(self._socket.recv(64))

    def _begin(self):
        self._socket, theirs = socket.socketpair()
        # In a session of its own, so that an interrupt typed at the terminal reaches only its maker.
        with theirs:
            process = subprocess.Popen(["/usr/bin/python3", "-ISB", str(HERE / "machine_starter.py"),
                                        str(theirs.fileno())], pass_fds=[theirs.fileno()],
                                       stdin=subprocess.DEVNULL, start_new_session=True)
        atexit.register(process.wait)
        atexit.register(self._socket.close)  # before: what is registered last comes first


STARTER = Starter()


class PrivateMachine:
    """Use as a context manager. As root everything works; as an ordinary user (user namespaces must
    be allowed) there is one user inside, root, and ppp0 is made without /dev/net/tun where need be.
    private_folders: further places of the host that shall be empty and writable inside."""

    def __init__(self, private_folders=(), real_kernel_log=False):
        self._folders = tuple(dict.fromkeys(FOLDERS + tuple(private_folders)))
        self._lock = threading.Lock()
        self._exits_lock = threading.Lock()
        self._spawned = 0
        self._exits = []
        self._bus = self._keeper = None
        self._clients = []
        self.rooted = os.geteuid() == 0
        self.keep = bool(os.environ.get("NORVIX_LAB_KEEP"))
        self.daemons = []
        self.state = self._new_state_folder()
        self.uses_real_kernel_log = real_kernel_log
        self.kernel_log = (RealKernelLog() if real_kernel_log
                           else KernelLog(self.path("/run/lab/kernel-log")))
        self.pppd = Pppd(self.path("/run/lab"))

    # ---- coming and going

    @staticmethod
    def _new_state_folder():
        return Path(tempfile.mkdtemp(prefix="nvx-%d-" % os.getpid(), dir=place_of_state_folders()))

    def __enter__(self):
        try:
            self._boot()
            furnish(self.state, self.path, self._folders, BUILD)
            self.pppd.play()
            self.request("arrange", folders=self._folders, etc_of_the_host=ETC_OF_THE_HOST,
                         shared=[str(PROFILES)] if PROFILES.is_dir() else [])
        except BaseException:
            self._end()
            raise
        return self

    def __exit__(self, kind, *_):
        reports = self.sanitizer_reports()
        self._end()
        if reports and kind is None:
            raise AssertionError("memory errors were reported:\n" + reports)

    def _boot(self):
        """Starts process 1. First of all, because it clears up when its maker dies."""
        self._control, theirs = socket.socketpair()
        with theirs:
            self._keeper = STARTER.start(theirs, str(self.state), self.keep)
        self._keeper_end = open(os.pidfd_open(self._keeper), "rb", buffering=0)

    def _end(self):
        for client in self._clients:
            client.close()
        if self._keeper:
            self._control.shutdown(socket.SHUT_WR)  # everything inside ends by this
            if not self._has_closed(PATIENCE):
                os.kill(self._keeper, signal.SIGKILL)
                self._has_closed(PATIENCE)
            self._control.close()
            # Process 1 lets go of the socket before the others inside are gone; its keeper ends last.
            with self._keeper_end:
                select.select([self._keeper_end], [], [], PATIENCE)
            self._keeper = None
        if self.keep:
            print("kept: %s" % self.state)
        else:
            shutil.rmtree(self.state, ignore_errors=True)

    def _has_closed(self, timeout):
        """Whether process 1 closes the control socket within that time: it has ended then."""
        self._control.settimeout(timeout)
        try:
            while self._control.recv(1 << 16):
                pass
        except TimeoutError:
            return False
        except OSError:  # it ended before it had read everything
            pass
        return True

    # ---- talking with process 1

    def _receive(self):
        data, descriptors = b"", []
        while not data.endswith(b"\n"):
            part, passed, _, _ = socket.recv_fds(self._control, 1 << 20, 1)
            if not part:
                raise RuntimeError("the private machine has ended")
            data += part
            descriptors += passed
        reply = json.loads(data)
        if "error" in reply:
            raise OSError(reply["errno"], reply["error"])
        return descriptors[0] if descriptors else reply["result"]

    def request(self, do, **arguments):
        """One request to process 1 of the machine; see machine_init.py."""
        with self._lock:
            try:
                self._control.sendall(json.dumps({"do": do, **arguments}).encode() + b"\n")
            except BrokenPipeError:
                raise RuntimeError("the private machine has ended, or did not begin") from None
            return self._receive()

    # ---- files

    def path(self, inside):
        """Where a file of the machine's private folders lies outside. Other places of the machine
        are the host's; /proc and /sys are reached by read()."""
        inside = os.path.normpath(inside)
        for link, target in (("/var/run", "/run"), ("/var/lock", "/run/lock")):
            if os.path.islink(link) and (inside == link or inside.startswith(link + "/")):
                inside = target + inside[len(link):]
        for folder in self._folders:
            if inside == folder or inside.startswith(folder + "/"):
                return Path(str(self.state) + "/root" + inside)
        raise ValueError("%s is not private to the machine" % inside)

    @property
    def root(self):
        """The machine's whole file system from outside, with all that is mounted inside."""
        return Path("/proc/%d/root" % self._keeper)

    def read(self, inside):
        """The bytes of any file as seen inside, /proc and /sys included."""
        return base64.b64decode(self.request("read", path=inside))

    def memory_kb(self, pid):
        """What a process inside holds of memory of its own."""
        words = self.read("/proc/%d/smaps_rollup" % pid).decode().split()
        return int(words[words.index("Private_Dirty:") + 1])

    def write(self, inside, content):
        """Writes any file as seen inside, in one write."""
        self.request("write", path=inside, content=base64.b64encode(content).decode())

    def add_locale(self, name):
        """Adds a locale, for example "fa_IR": inside there is only C, and C.UTF-8, without. It takes
        seconds to generate one, so the build tree keeps them."""
        file = name + ".utf8"
        kept, place = BUILD / "locales" / file, self.path("/usr/lib/locale") / file
        if kept.exists():
            shutil.copytree(kept, place)
            return
        result = self.run(["/usr/bin/localedef", "--no-archive", "-i", name, "-f", "UTF-8",
                           "/usr/lib/locale/" + file], label="localedef")
        if result.status != 0:
            raise RuntimeError("localedef has failed:\n" + result.stderr)
        kept.parent.mkdir(exist_ok=True)
        with tempfile.TemporaryDirectory(dir=kept.parent) as folder:
            shutil.copytree(place, folder + "/" + file)
            if not kept.exists():
                os.rename(folder + "/" + file, kept)

    def settings(self, **keys):
        """Writes the daemon's settings file anew with these keys, as a client would have left it."""
        lines = ["%s=%s" % (key, str(value).lower() if isinstance(value, bool) else value)
                 for key, value in keys.items()]
        self.path("/opt/norvix/.daemon_ng.ini").write_text("[General]\n" + "\n".join(lines) + "\n",
                                                           encoding="utf-8")

    # ---- processes

    def spawn(self, argv, env=None, cwd="/", uid=0, gid=None, groups=(), label="process"):
        """Starts a program inside; the result is a Process. env is added to a plain environment, in
        which programs are the real ones; a value of None takes a variable away."""
        self._spawned += 1
        name = "%03d-%s" % (self._spawned, label)
        environment = {"PATH": REAL_PATH, "HOME": "/tmp", "LANG": "C.UTF-8"}
        environment.update(env or {})
        environment = {key: value for key, value in environment.items() if value is not None}
        for stream in ("stdout", "stderr"):
            file = self.state / "out" / ("%s.%s" % (name, stream))
            file.touch()
            file.chmod(0o666)
        pid = self.request("spawn", argv=[str(word) for word in argv], env=environment, cwd=cwd,
                           stdout="/mnt/lab/out/%s.stdout" % name,
                           stderr="/mnt/lab/out/%s.stderr" % name,
                           uid=uid, gid=uid if gid is None else gid, groups=list(groups))
        return Process(self, pid, self.state / "out" / name)

    def run(self, argv, timeout=PATIENCE, **options):
        """Runs a program inside to its end: status (negative: the signal), stdout, stderr."""
        process = self.spawn(argv, **options)
        return Completed(process.wait(timeout), process.output(), process.errors())

    def kill(self, pid, number=signal.SIGTERM):
        """Sends a signal to a process, by its id inside."""
        self.request("kill", pid=pid, number=int(number))

    def processes(self, comm=None):
        """Everyone inside: dictionaries of pid, ppid, pgid, comm, state, argv."""
        return [facts for facts in self.request("processes") if comm in (None, facts["comm"])]

    def exits(self):
        """All that process 1 has reaped, orphans included, in order: the same facts with status
        (negative: the signal) and time."""
        with self._exits_lock:
            self._exits += self.request("exits", since=len(self._exits))
            return list(self._exits)

    def exit_of(self, pid):
        """The record of a process that has ended and been reaped, or None."""
        return next((record for record in self.exits() if record["pid"] == pid), None)

    # ---- stand-in programs

    def standin(self, name):
        """The stand-in of that name, to be scripted: pppd, modprobe, ifconfig, ..."""
        return Standin(self, name)

    def calls(self, program=None):
        """The calls of stand-in programs so far, in order."""
        return read_calls(self.path("/run/lab/calls.jsonl"), program)

    def wait_call(self, program, count=1, timeout=PATIENCE):
        """Waits for the count-th call of a program and returns it."""
        return wait_until(lambda: self.calls(program)[count - 1:count], timeout,
                          "call %d of %s" % (count, program),
                          lambda: [call.command for call in self.calls()])[0]

    def traffic(self, bytes_per_second, seconds, device="ppp0"):
        """Sends that much through an interface, at an even rate; does not wait."""
        return self.spawn(["/mnt/lab/lib/traffic", device, bytes_per_second, seconds],
                          label="traffic")

    # ---- the bus

    def start_bus(self, policy=REPOSITORY / "packaging" / "norvix.conf", policies=(), names=(), owner="root"):
        """Starts the system bus with a policy for the daemon (None: without). policies are further
        files to be installed beside it. names are those of services that a test plays: their owner may
        own them, everybody may talk to them. Waits until it answers."""
        folder = self.path("/etc/dbus-1/system.d")
        if policy:
            shutil.copy(policy, folder / "norvix.conf")
        for file in policies:
            shutil.copy(file, folder)
        rules = "".join('<policy user="%s"><allow own="%s"/></policy><policy context="default">'
                        '<allow send_destination="%s"/></policy>' % (owner, name, name) for name in names)
        (folder / "played.conf").write_text("<busconfig>%s</busconfig>" % rules, encoding="ascii")
        self._bus = self.spawn(["/usr/bin/dbus-daemon", "--nofork", "--nopidfile",
                                "--config-file=/etc/dbus-1/system.conf"], label="bus")

        def answers():
            if self._bus.ended():
                raise RuntimeError("the bus has ended:\n" + self._bus.errors())
            try:
                self.client().call_bus("GetId")
                return True
            except OSError:
                return False

        wait_until(answers, what="the bus answers")

    def stop_bus(self):
        """Ends the bus, as a crash would."""
        self._bus.signal(signal.SIGKILL)
        self._bus.wait()
        self.path(BUS_SOCKET).unlink(missing_ok=True)

    def client(self, uid=0, gid=None, groups=(), kind=Client, path=BUS_SOCKET):
        """A connection to the bus as that user (as seen inside), closed with the machine. path: the
        socket of another bus than the system's."""
        descriptor = self.request("connect", path=path, uid=uid,
                                  gid=uid if gid is None else gid, groups=list(groups))
        client = kind(socket.socket(fileno=descriptor), uid)
        self._clients.append(client)
        return client

    # ---- the daemon

    def start_daemon(self, *arguments, env=None, wait=True, cwd="/", under=()):
        """Starts /opt/norvix/bin/norvix-daemon and, unless told otherwise, waits until it owns its
        name. under: words of a program that becomes the one that follows it. The result is a Daemon.
        """
        if not self.path("/opt/norvix/bin/norvix-daemon").exists():
            raise FileNotFoundError(errno.ENOENT, "the daemon is not built",
                                    str(BUILD / "bin/norvix-daemon"))
        environment = {"PATH": USUAL_PATH}
        if not self.uses_real_kernel_log:
            environment["LD_PRELOAD"] = "/mnt/lab/lib/libklogctl-standin.so"
        if ADDRESS_SANITIZER:
            environment.update(SANITIZER_OPTIONS)
        environment.update(env or {})
        if wait:
            self._wait_until_the_bus_knows_who_has_ended()
        process = self.spawn([*under, "/opt/norvix/bin/norvix-daemon", *arguments], env=environment,
                             cwd=cwd, label="daemon")
        daemon = Daemon(process)
        self.daemons.append(daemon)
        if wait:
            daemon.wait_ready()
        return daemon

    def _wait_until_the_bus_knows_who_has_ended(self):
        """On a busy machine an ended daemon owns its name for a moment longer."""
        exited = {record["pid"] for record in self.exits()}
        ended = [daemon.last_pid for daemon in self.daemons if daemon.last_pid in exited]
        if ended and self._bus and not self._bus.ended():
            observer = self.client()

            def let_go():
                try:
                    return observer.pid_of(SERVICE) not in ended
                except BusError:  # nobody owns it
                    return True

            wait_until(let_go, what="the bus has let go of the daemon's name")
            observer.close()

    def daemon_log(self):
        """The text of the daemon's main log."""
        return read_text(self.path("/opt/norvix/daemon.log"))  # a daemon that starts takes it away

    def sanitizer_reports(self):
        """What the memory checkers of daemon and companion have reported, as text; empty when all is
        well."""
        folder = self.state / "out"
        on_stderr = [file for file in folder.glob("*.stderr")
                     if any(word in file.read_bytes() for word in REPORT_WORDS)]
        return "\n".join(file.read_text(encoding="utf-8", errors="replace")
                         for file in sorted([*folder.glob("asan.*"), *on_stderr]))


REPORT_WORDS = (b"ERROR: AddressSanitizer", b": runtime error: ")
SANITIZER_OPTIONS = {
    "ASAN_OPTIONS": "verify_asan_link_order=0:detect_leaks=0:abort_on_error=0:quarantine_size_mb=8"
                    ":log_path=/mnt/lab/out/asan",
    "UBSAN_OPTIONS": "print_stacktrace=1:log_path=/mnt/lab/out/asan",
}
