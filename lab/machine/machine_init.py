# SPDX-License-Identifier: MIT
"""Process 1 of a private machine: mounts its private folders, reaps, and obeys its maker.

Forked inside fresh namespaces by machine_starter.py. Ends, and with it everything in the machine, as
soon as the maker closes its end of the control socket or dies.
"""
import base64
import ctypes
import json
import os
import select
import shutil
import signal
import socket
import stat
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "standins"))
from netlink import Netlink  # noqa: E402

MS_RDONLY, MS_NOSUID, MS_NODEV, MS_NOEXEC = 1, 2, 4, 8
MS_REMOUNT, MS_NOATIME, MS_NODIRATIME, MS_BIND, MS_REC = 32, 1024, 2048, 4096, 16384
MS_MOVE, MS_RELATIME, MNT_DETACH = 8192, 1 << 21, 2
FLAG_NAMES = {"nosuid": MS_NOSUID, "nodev": MS_NODEV, "noexec": MS_NOEXEC, "noatime": MS_NOATIME,
              "nodiratime": MS_NODIRATIME, "relatime": MS_RELATIME}
HOST_NAME = "norvix-lab"
DEVICES = {"null": (1, 3), "zero": (1, 5), "full": (1, 7), "random": (1, 8), "urandom": (1, 9),
           "tty": (5, 0), "net/tun": (10, 200)}
DEVICE_LINKS = {"fd": "/proc/self/fd", "stdin": "fd/0", "stdout": "fd/1", "stderr": "fd/2",
                "ptmx": "pts/ptmx"}
libc = ctypes.CDLL(None, use_errno=True)


def mount(source, target, kind=None, flags=0, data=None):
    def raw(text):
        return None if text is None else os.fsencode(text)

    if libc.mount(raw(source), raw(target), raw(kind), ctypes.c_ulong(flags), raw(data)):
        error = ctypes.get_errno()
        raise OSError(error, "mounting %s: %s" % (target, os.strerror(error)))


def bind(source, target):
    mount(source, target, flags=MS_BIND | MS_REC)


def mounts_of_the_host():
    """Mount points and their flags, before anything private lies over them."""
    with open("/proc/self/mountinfo", encoding="utf-8", errors="surrogateescape") as file:
        for line in file:
            fields = line.split()
            flags = sum(FLAG_NAMES.get(name, 0) for name in fields[5].split(","))
            yield fields[4].replace("\\040", " "), flags


def make_read_only(points):
    """The host's files can be read inside, never written: not even by a daemon gone wild."""
    for point, flags in points:
        if point == "/" or not point.startswith(("/dev", "/proc", "/sys")):
            try:
                mount(None, point, flags=MS_REMOUNT | MS_BIND | MS_RDONLY | flags)
            except OSError:
                if point == "/":
                    raise


def show_of_the_host(names):
    """Shows these entries of the host's /etc, those that are there, under /mnt/host-etc, where links
    of the private /etc lead. Returns the places that this makes."""
    os.mkdir("/mnt/host-etc")
    shown = ["/mnt/host-etc/" + name for name in names if os.path.exists("/etc/" + name)]
    for place in shown:
        source = "/etc/" + os.path.basename(place)
        if os.path.isdir(source):
            os.mkdir(place)
        else:
            os.mknod(place)
        bind(source, place)
    return shown


def make_mount_points(places):
    """A small host lacks some of the folders that the machine lays its own over. They are added to
    their parents by an overlay, as nothing may be made on the host."""
    layers = {}
    for place in places:
        parent = place = os.path.realpath(place)
        while not os.path.isdir(parent):
            parent = os.path.dirname(parent)
        if parent != place:
            layer = layers.setdefault(parent, "/mnt/layer-%d" % len(layers))
            os.makedirs(layer + place[len(parent):])
    for parent, layer in layers.items():
        mount("overlay", parent, "overlay", MS_RDONLY, "lowerdir=%s:%s" % (layer, parent))


def make_devices():
    """The machine's own /dev. What is done to a node of it is done to no node of the host's."""
    os.mkdir("/mnt/dev")
    mount("tmpfs", "/mnt/dev", "tmpfs", MS_NOSUID, "mode=755")
    for name in ("net", "pts", "shm"):
        os.mkdir("/mnt/dev/" + name)
    for name, number in DEVICES.items():
        node, of_the_host = "/mnt/dev/" + name, "/dev/" + name
        try:
            os.mknod(node, stat.S_IFCHR, os.makedev(*number))
            os.chmod(node, 0o666)
        except PermissionError:  # an ordinary user's namespace: the host's node, as a mount point
            if os.path.exists(of_the_host):
                os.mknod(node)
                bind(of_the_host, node)
    for name, target in DEVICE_LINKS.items():
        os.symlink(target, "/mnt/dev/" + name)
    mount("devpts", "/mnt/dev/pts", "devpts", MS_NOSUID | MS_NOEXEC,
          "newinstance,ptmxmode=0666,mode=620")
    mount("tmpfs", "/mnt/dev/shm", "tmpfs", MS_NOSUID | MS_NODEV, "mode=1777")
    mount("/mnt/dev", "/dev", flags=MS_MOVE)


def show_the_kernel():
    """/proc and /sys as these namespaces see them. What of their settings has no namespace is the
    host's and cannot be changed."""
    safe = MS_NOSUID | MS_NODEV | MS_NOEXEC
    mount("proc", "/proc", "proc", safe)
    mount("sysfs", "/sys", "sysfs", safe | MS_RDONLY)
    # Each belongs to a namespace of ours: the network's settings, and the next process id.
    own = {place: "/mnt/own-" + os.path.basename(place)
           for place in ("/proc/sys/net", "/proc/sys/kernel/ns_last_pid") if os.path.exists(place)}
    for place, kept in own.items():
        if os.path.isdir(place):
            os.mkdir(kept)
        else:
            os.close(os.open(kept, os.O_CREAT | os.O_WRONLY))
        bind(place, kept)
    for place in ("/proc/sys", "/proc/sysrq-trigger"):
        if os.path.exists(place):
            bind(place, place)
            mount(None, place, flags=MS_REMOUNT | MS_BIND | MS_RDONLY | MS_RELATIME | safe)
    for place, kept in own.items():
        mount(kept, place, flags=MS_MOVE)


def arrange_files(state, folders, etc_of_the_host, shared):
    """Lays the state folder's parts over the host's places; only the shared ones of the host's folders
    can be written. Returns a descriptor of the folder that
    the state folder lies in, by which it can be removed although the path is out of sight."""
    of_the_host = list(mounts_of_the_host())
    for place in shared:
        bind(place, place)  # with flags of its own
    mount("tmpfs", "/mnt", "tmpfs", data="mode=755")
    os.mkdir("/mnt/lab")
    shown = show_of_the_host(etc_of_the_host)
    bind(os.path.dirname(state), "/mnt/lab")
    parent = os.open("/mnt/lab", os.O_RDONLY | os.O_DIRECTORY)
    libc.umount2(b"/mnt/lab", MNT_DETACH)
    bind(state, "/mnt/lab")
    # The state folder itself lies in /tmp, so its parts are taken from the new place from here on.
    make_read_only(of_the_host + [(place, MS_RELATIME) for place in shown])
    show_the_kernel()
    make_devices()
    places = [place for place in folders if not os.path.islink(place)]
    make_mount_points(places)
    for place in places:
        bind("/mnt/lab/root" + place, place)
    make_read_only([("/mnt", MS_RELATIME)])
    os.chdir("/")
    return parent


def process_facts(pid):
    """Who a process is, also when it has ended and waits to be reaped; None when it is gone."""
    try:
        with open("/proc/%d/stat" % pid, encoding="utf-8", errors="replace") as file:
            stat = file.read()
        with open("/proc/%d/cmdline" % pid, "rb") as file:
            argv = file.read().decode("utf-8", "surrogateescape").split("\0")[:-1]
    except OSError:
        return None
    fields = stat[stat.rindex(")") + 2:].split()
    return {"pid": pid, "comm": stat[stat.index("(") + 1:stat.rindex(")")], "state": fields[0],
            "ppid": int(fields[1]), "pgid": int(fields[2]), "argv": argv}


def processes():
    found = (process_facts(int(name)) for name in os.listdir("/proc") if name.isdigit())
    return [facts for facts in found if facts]


class Init:
    """Obeys one request at a time, each one line of JSON, and reaps in between."""

    def __init__(self, control, state):
        self.control, self.state = control, state
        self.parent = None  # the folder that the state folder lies in, once all is arranged
        self.exits = []
        self.wake, told = os.pipe()
        for descriptor in (self.wake, told):
            os.set_blocking(descriptor, False)
        signal.set_wakeup_fd(told)
        signal.signal(signal.SIGCHLD, lambda *_: None)
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, signal.SIG_IGN)

    def reap(self):
        """Takes the status of everyone who ended here, orphans included."""
        while True:
            try:
                ended = os.waitid(os.P_ALL, 0, os.WEXITED | os.WNOHANG | os.WNOWAIT)
            except ChildProcessError:
                return
            if ended is None:
                return
            facts = process_facts(ended.si_pid) or {"pid": ended.si_pid}
            _, status = os.waitpid(ended.si_pid, 0)
            facts.update(status=os.waitstatus_to_exitcode(status), time=time.monotonic())
            self.exits.append(facts)

    def serve(self):
        pending = b""
        while True:
            ready, _, _ = select.select([self.control, self.wake], [], [])
            if self.wake in ready:
                os.read(self.wake, 4096)
            self.reap()
            if self.control not in ready:
                continue
            try:
                data = self.control.recv(65536)
            except ConnectionResetError:  # the maker died while an answer was under way
                data = b""
            if not data:
                return
            pending += data
            while b"\n" in pending:
                line, pending = pending.split(b"\n", 1)
                self.answer(json.loads(line))

    def answer(self, request):
        descriptors = []
        try:
            reply = getattr(self, "do_" + request.pop("do"))(**request)
            if isinstance(reply, socket.socket):
                descriptors, reply = [reply.detach()], None
            text = {"result": reply}
        except OSError as error:
            text = {"error": str(error), "errno": error.errno}
        data = json.dumps(text).encode() + b"\n"
        try:
            if descriptors:
                socket.send_fds(self.control, [data[:1]], descriptors)
                data = data[1:]
            self.control.sendall(data)
        except OSError:
            pass  # the maker has gone away: the next read says so
        for descriptor in descriptors:
            os.close(descriptor)

    def do_arrange(self, folders, etc_of_the_host, shared):
        """The maker has filled the state folder: from here on the machine is as it shall be."""
        self.parent = arrange_files(self.state, folders, etc_of_the_host, shared)
        socket.sethostname(HOST_NAME)
        Netlink().set_up("lo")

    def do_spawn(self, argv, env, cwd, stdout, stderr, uid, gid, groups):
        """Starts a program in a process group of its own, by which its orphans are known."""
        broken, told = os.pipe()
        pid = os.fork()
        if pid == 0:
            try:
                os.setsid()
                for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGCHLD,
                               signal.SIGPIPE, signal.SIGXFSZ):
                    signal.signal(number, signal.SIG_DFL)
                os.dup2(os.open("/dev/null", os.O_RDONLY), 0)
                for target, path in ((1, stdout), (2, stderr)):
                    os.dup2(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_APPEND, 0o666), target)
                os.chdir(cwd)
                if (uid, gid) != (0, 0):
                    os.setgroups(groups)
                    os.setresgid(gid, gid, gid)
                    os.setresuid(uid, uid, uid)
                os.execvpe(argv[0], argv, env)
            except OSError as error:
                os.write(told, json.dumps([error.errno, str(error)]).encode())
            finally:
                os._exit(127)
        os.close(told)
        problem = os.read(broken, 4096)
        os.close(broken)
        if problem:
            raise OSError(*json.loads(problem))
        return pid

    def do_kill(self, pid, number):
        os.kill(pid, number)

    def do_exits(self, since):
        self.reap()
        return self.exits[since:]

    def do_processes(self):
        return processes()

    def do_read(self, path):
        with open(path, "rb") as file:
            return base64.b64encode(file.read()).decode()

    def do_write(self, path, content):
        with open(path, "wb", buffering=0) as file:
            file.write(base64.b64decode(content))

    def do_connect(self, path, uid, gid, groups):
        """A connection to a unix socket, made with that user's identity."""
        connection = socket.socket(socket.AF_UNIX)
        if (uid, gid) == (0, 0):
            connection.connect(path)
            return connection
        mine = os.getgroups()
        try:
            os.setgroups(groups)
            os.setegid(gid)
            os.seteuid(uid)
            connection.connect(path)
        finally:
            os.seteuid(0)
            os.setegid(0)
            os.setgroups(mine)
        return connection

    def do_hide(self, path):
        """The program behind this path is not there any more."""
        mount("/dev/null", path, flags=MS_BIND)

    def do_unhide(self, path):
        libc.umount2(os.fsencode(path), MNT_DETACH)


def end_everyone():
    """Everybody but this process ends now, so that nobody holds files of the state folder."""
    while True:
        try:
            os.kill(-1, signal.SIGKILL)
            os.waitpid(-1, 0)
        except (ProcessLookupError, ChildProcessError):
            return


def main(control, state, keep):
    """Obeys what comes by the control socket until its end. keep: the state folder stays."""
    control.set_inheritable(False)
    os.umask(0o022)
    init = Init(control, state)
    init.serve()
    end_everyone()
    if keep:
        return
    # From here too, not only by the maker: it may have died.
    shutil.rmtree(state if init.parent is None else "/mnt/lab", ignore_errors=True)
    if init.parent is not None:
        try:
            os.rmdir(os.path.basename(state), dir_fd=init.parent)
        except OSError:
            pass
