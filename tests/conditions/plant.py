#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Plants what may be odd about a system, a shell or a clone, and sees what `demo` and `check` make of it.

Each condition gets a layer over this system, or over a clean root that has the packages of the list, and
over this repository with what is built in it; all that happens, happens in there and vanishes. Prints a
table: "works", "refuses" with its one line, or FAILED with the file that tells more. Needs root.
"""
import argparse
import ctypes
import os
import shutil
import socket
import stat
import struct
import subprocess
import sys
import tempfile
import time
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]
PATH = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"
USUAL_TESTS = r"^(unit\.(logging|my_process)|system\.(norvixctl_reading|logging|packaging))$"
REFUSAL_SECONDS, REFUSAL_LINES, LONGEST = 20, 2, 3600
DEVICES = {"null": (1, 3), "zero": (1, 5), "full": (1, 7), "random": (1, 8), "urandom": (1, 9),
           "tty": (5, 0), "kmsg": (1, 11), "net/tun": (10, 200)}
CONDITIONS = {}


def condition(tests=USUAL_TESTS):
    """Registers a function that plants something; it is named as its function. tests: which ones of
    check the condition could hurt."""
    def register(function):
        CONDITIONS[function.__name__.replace("_", "-")] = (function, tests)
        return function
    return register


class System:
    """The system in which one condition is planted: a root folder, and how the commands are called."""

    def __init__(self, root, clone):
        self.root, self.clone = root, clone
        self.environment = {"PATH": PATH, "HOME": "/root", "TERM": "dumb"}
        self.umask, self.user, self.sudo = 0o022, None, False
        self.prefix, self.times, self.at_once = [], 1, 1
        self.companions = []

    def path(self, name):
        return self.root / name.lstrip("/")

    def append(self, name, text):
        with open(self.path(name), "a", encoding="utf-8") as file:
            file.write(text)

    def enter(self):
        """From here on this process sees nothing else. No change of root: below one, an ordinary
        user makes no namespaces."""
        os.chdir(self.root)
        libc = ctypes.CDLL(None, use_errno=True)
        pivot_root = {"x86_64": 155, "aarch64": 41}[os.uname().machine]
        detach = 2
        if libc.syscall(pivot_root, b".", b".") or libc.umount2(b".", detach):
            raise OSError(ctypes.get_errno(), "the root stays")
        os.chdir("/")
        self.root = Path("/")

    def run(self, *argv):
        """Runs a program in the system, as root and before enter(); it has to end well."""
        subprocess.run(["chroot", str(self.root), *argv], check=True, env={"PATH": PATH})

    def sources(self):
        """The files of the repository, without what is built, and their folders."""
        top = self.path(str(self.clone))
        for folder, folders, files in os.walk(top):
            if Path(folder) == top:
                folders[:] = [name for name in folders if name != "build"]
            yield Path(folder)
            yield from (Path(folder) / name for name in files)

    def everything(self):
        """The same, and what is built."""
        build = self.path(str(self.clone)) / "build"
        return [*self.sources(), build, *build.rglob("*")]

    def configure_anew(self):
        """The next build asks for the compiler again."""
        build = self.path(str(self.clone)) / "build/release"
        for name in ("CMakeCache.txt", "build.ninja"):
            (build / name).unlink(missing_ok=True)

    def start(self, *argv):
        command = list(argv)
        if self.sudo:
            command = ["sudo", *command]
        words = []
        if self.user:
            words = ["setpriv", "--reuid=" + self.user, "--regid=" + self.user, "--clear-groups"]
        words += ["env", "-i", "-C", str(self.clone),
                  *("%s=%s" % pair for pair in self.environment.items()), *self.prefix, *command]
        return subprocess.Popen(words, umask=self.umask, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)


def need_locale(system, name):
    """Generates a locale, and sees that programs accept it."""
    folder = system.path("/usr/lib/locale/%s.utf8" % name)
    folder.parent.mkdir(exist_ok=True)
    subprocess.run(["localedef", "--no-archive", "-i", name, "-f", "UTF-8", str(folder)], check=True)
    value = name + ".UTF-8"
    system.run("/usr/bin/env", "LC_ALL=" + value, "/usr/bin/python3", "-c",
               "import locale; assert locale.setlocale(locale.LC_ALL, '') == %r" % value)
    system.environment.update(LC_ALL=value, LANG=value, LANGUAGE=name[:2])


def mount(*words):
    subprocess.run(["mount", *words], check=True)


def plain_user(system):
    """An ordinary user who owns the clone."""
    system.append("/etc/passwd", "somebody:x:1000:1000::/home/somebody:/bin/sh\n")
    system.append("/etc/shadow", "somebody:*:20000:0:99999:7:::\n")
    system.append("/etc/group", "somebody:x:1000:\n")
    home = system.path("/home/somebody")
    home.mkdir(parents=True)
    os.chown(home, 1000, 1000)
    for file in system.everything():
        os.chown(file, 1000, 1000, follow_symlinks=False)
    system.user = "1000"
    system.environment["HOME"] = "/home/somebody"


# ---- what can be planted

@condition()
def nothing(system):
    """The layer as it is."""


@condition("^system\\.(norvixctl_.*|private_machine|hald_process)$")
def only_root(system):
    """Nobody but root and the distribution's own users has an account."""
    for name in ("passwd", "group"):
        file = system.path("/etc/" + name)
        lines = [line for line in file.read_text(encoding="utf-8").splitlines(True)
                 if not 1000 <= int(line.split(":")[2]) < 65000]
        file.write_text("".join(lines), encoding="utf-8")


@condition()
def umask_077(system):
    """A clone that was made, and is used, with umask 077."""
    for file in system.sources():
        if not file.is_symlink():
            file.chmod(stat.S_IMODE(file.stat().st_mode) & 0o700)
    system.umask = 0o077


@condition()
def zone_unset(system):
    for name in ("localtime", "timezone"):
        system.path("/etc/" + name).unlink(missing_ok=True)


@condition()
def zone_kathmandu(system):
    system.path("/etc/localtime").unlink(missing_ok=True)
    zone = "Asia/Kathmandu"
    if system.path("/usr/share/zoneinfo/" + zone).exists():
        system.path("/etc/localtime").symlink_to("/usr/share/zoneinfo/" + zone)
        system.environment["TZ"] = zone
    else:
        system.environment["TZ"] = "<+0545>-5:45"


@condition()
def locale_c(system):
    system.environment["LC_ALL"] = "C"


@condition()
def locale_de(system):
    need_locale(system, "de_DE")


@condition()
def locale_tr(system):
    need_locale(system, "tr_TR")


@condition()
def locale_fa(system):
    need_locale(system, "fa_IR")


@condition("^system\\.(driver_build|packaging)$")
def odd_compiler(system):
    system.configure_anew()
    system.environment.update(CC="/bin/false", CXX="/bin/false", CFLAGS="-no-such-flag",
                              CXXFLAGS="-no-such-flag", LDFLAGS="-no-such-flag", AR="/bin/false",
                              CMAKE_GENERATOR="Unix Makefiles", ARCH="arm")


@condition("^system\\.(driver_build|packaging)$")
def odd_make(system):
    system.environment.update(MAKEFLAGS="-n --no-such-flag", MAKELEVEL="3", NINJA_STATUS="%p%%",
                              V="1", KBUILD_OUTPUT="/nonexistent")


@condition()
def odd_python(system):
    folder = system.path("/srv/odd")
    folder.mkdir()
    for name in ("json", "socket", "jeepney", "pytest", "tempfile"):
        (folder / (name + ".py")).write_text("raise SystemExit('the odd one')\n", encoding="ascii")
    system.environment.update(PYTHONPATH="/srv/odd", PYTHONHOME="/nonexistent",
                              PYTEST_ADDOPTS="--no-such-option", PYTHONSTARTUP="/nonexistent")


@condition()
def odd_cdpath(system):
    """A folder on CDPATH has the name of the one that is gone to."""
    system.path("/srv/odd/tests").mkdir(parents=True)
    system.environment.update(CDPATH="/srv/odd:/", ENV="/nonexistent", IFS="/", GREP_OPTIONS="-v")


@condition()
def no_home(system):
    del system.environment["HOME"]


@condition()
def odd_names(system):
    """The host's name is not resolved."""
    socket.sethostname("no-such-name")
    system.path("/etc/hosts").write_text("127.0.0.1 localhost\n", encoding="ascii")
    system.path("/etc/hostname").write_text("no-such-name\n", encoding="ascii")


@condition("^system\\.(network_status|resolver.*|norvixctl_reading|private_machine|connection)$")
def no_ipv6(system):
    """No socket of IPv6 can be had, as on a kernel without it."""
    refuse_ipv6_sockets()


@condition()
def path_with_a_space(system):
    new = Path("/srv/a clone of it")
    shutil.copytree(system.path(str(system.clone)), system.path(str(new)), symlinks=True,
                    ignore=shutil.ignore_patterns("build", "__pycache__"))
    system.clone = new


@condition("^(system\\.(driver_build|packaging|norvixctl_reading)|unit\\.trusted_file)$")
def owned_by_another(system):
    for file in system.sources():
        os.chown(file, 4321, 4321, follow_symlinks=False)


@condition("^system\\.(packaging|norvixctl_documents)$")
def without_git(system):
    repository = system.path(str(system.clone)) / ".git"
    if repository.is_dir():
        shutil.rmtree(repository)
    else:
        repository.unlink(missing_ok=True)


@condition("^(unit\\.(programs|my_process)|system\\.(driver_build|packaging|norvixctl_reading))$")
def tmp_noexec(system):
    mount("-t", "tmpfs", "-o", "noexec,mode=1777", "tmpfs", str(system.path("/tmp")))


@condition("^(unit\\.(programs|my_process)|system\\.(driver_build|packaging|norvixctl_reading))$")
def tmp_8_mb(system):
    mount("-t", "tmpfs", "-o", "size=8m,mode=1777", "tmpfs", str(system.path("/tmp")))


@condition()
def no_room_for_temporary_files(system):
    for place in ("/tmp", "/var/tmp"):
        mount("-t", "tmpfs", "-o", "size=8m,mode=1777", "tmpfs", str(system.path(place)))


@condition("^system\\.(packaging|norvixctl_doctor|bus_interface)$")
def group_norvix(system):
    system.append("/etc/group", "norvix:x:500:\n")


@condition("^(unit\\.(my_process|logging)|system\\.(logging|settings|start_and_end))$")
def busy(system):
    """One processor, and eight others who want it."""
    os.sched_setaffinity(0, {min(os.sched_getaffinity(0))})
    system.companions += [subprocess.Popen(["sh", "-c", "while :; do :; done"]) for _ in range(8)]


@condition("^system\\.(connection|start_and_end|private_machine)$")
def pppd_of_the_host(system):
    """It has to be there still when all is over."""
    code = "import time; open('/proc/self/comm', 'w').write('pppd'); time.sleep(100000)"
    system.companions.append(subprocess.Popen(["/usr/bin/python3", "-c", code]))


@condition()
def user_with_sudo(system):
    plain_user(system)
    system.append("/etc/sudoers", "somebody ALL=(ALL) NOPASSWD: ALL\n")
    system.sudo = True


@condition()
def ordinary_user(system):
    plain_user(system)


@condition()
def clone_of_root_used_by_a_user(system):
    """Everything is built, and belongs to root."""
    plain_user(system)
    for file in system.everything():
        os.chown(file, 0, 0, follow_symlinks=False)


@condition()
def again(system):
    system.times = 2


@condition()
def two_at_once(system):
    system.configure_anew()
    system.at_once = 2


def refuse_ipv6_sockets():
    """From here on socket(AF_INET6, ...) fails, in this process and all that it starts."""
    def step(code, yes, no, value):
        return struct.pack("HBBI", code, yes, no, value)

    load, equal, answer = 0x20, 0x15, 0x06
    socket_call = {"x86_64": 41, "aarch64": 198}[os.uname().machine]
    program = [step(load, 0, 0, 0), step(equal, 0, 3, socket_call), step(load, 0, 0, 16),
               step(equal, 0, 1, socket.AF_INET6), step(answer, 0, 0, 0x00050000 | 97),  # EAFNOSUPPORT
               step(answer, 0, 0, 0x7FFF0000)]
    steps = ctypes.create_string_buffer(b"".join(program))
    descriptor = struct.pack("HxxxxxxP", len(program), ctypes.addressof(steps))
    set_seccomp, filter_mode = 22, 2
    if ctypes.CDLL(None, use_errno=True).prctl(set_seccomp, filter_mode, descriptor, 0, 0):
        raise OSError(ctypes.get_errno(), "the filter was refused")
    try:
        socket.socket(socket.AF_INET6)
    except OSError:
        return
    raise AssertionError("IPv6 is still there")


# ---- running

def layer(lower, work, name, target):
    for part in ("upper", "inner"):
        (work / name / part).mkdir(parents=True)
    target.mkdir(parents=True, exist_ok=True)
    mount("-t", "overlay", "overlay", "-o", "lowerdir=%s,upperdir=%s,workdir=%s" % (
        lower, work / name / "upper", work / name / "inner"), str(target))


def make_system(lower, work):
    """Called in namespaces of its own."""
    mount("-t", "tmpfs", "-o", "mode=755", "tmpfs", str(work))
    root = work / "root"
    layer(lower, work, "system", root)
    layer(REPOSITORY, work, "clone", root / str(REPOSITORY).lstrip("/"))
    mount("-t", "proc", "proc", str(root / "proc"))
    mount("-t", "sysfs", "sysfs", str(root / "sys"))
    devices = root / "dev"
    mount("-t", "tmpfs", "-o", "mode=755", "tmpfs", str(devices))
    for name, number in DEVICES.items():
        (devices / name).parent.mkdir(exist_ok=True)
        os.mknod(devices / name, stat.S_IFCHR, os.makedev(*number))
        (devices / name).chmod(0o666)
    for name in ("pts", "shm"):
        (devices / name).mkdir()
    mount("-t", "devpts", "-o", "newinstance,ptmxmode=0666", "devpts", str(devices / "pts"))
    mount("-t", "tmpfs", "-o", "mode=1777", "tmpfs", str(devices / "shm"))
    (devices / "ptmx").symlink_to("pts/ptmx")
    (devices / "fd").symlink_to("/proc/self/fd")
    for place, mode in (("tmp", "1777"), ("run", "755")):
        mount("-t", "tmpfs", "-o", "mode=" + mode, "tmpfs", str(root / place))
    # A cache of the compiler's that the environment names, so that what is built anew is built soon.
    cache = os.environ.get("CCACHE_DIR")
    if cache:
        (root / cache.lstrip("/")).mkdir(parents=True, exist_ok=True)
        mount("--bind", cache, str(root / cache.lstrip("/")))
    return System(root, REPOSITORY)


def judge(system, command):
    """Runs a command as often as the condition wants; the verdict, and all that was printed."""
    said = ""
    for _ in range(system.times):
        start = time.monotonic()
        runs = [system.start(*command) for _ in range(system.at_once)]
        for run in runs:
            try:
                output = run.communicate(timeout=LONGEST)[0].decode(errors="replace")
            except subprocess.TimeoutExpired:
                run.kill()
                return "FAILED: it does not end", said + run.communicate()[0].decode(errors="replace")
            said += output
            if run.returncode == 0:
                continue
            lines = output.strip().splitlines()
            soon = time.monotonic() - start < REFUSAL_SECONDS
            if soon and 0 < len(lines) <= REFUSAL_LINES and "Traceback" not in output:
                return "refuses: " + lines[-1], said
            return "FAILED: status %d" % run.returncode, said
        if any(one.poll() is not None for one in system.companions):
            return "FAILED: another process of the host was ended", said
    return "works", said


def inside(options):
    """In the namespaces: plants one condition and prints one line a command."""
    plant, tests = CONDITIONS[options.conditions[0]]
    work = Path(options.inside)
    subprocess.run(["ip", "link", "set", "lo", "up"], check=False)
    system = make_system(options.root, work)
    for name in os.environ:
        if name.startswith(("CCACHE_", "CMAKE_CXX_COMPILER_L", "CMAKE_C_COMPILER_L")):
            system.environment[name] = os.environ[name]
    logs = os.open(options.logs, os.O_RDONLY | os.O_DIRECTORY)
    plant(system)
    system.enter()
    commands = {"demo": ["./demo", "--seconds", "1"],
                "check": ["./check", "-R", options.tests or tests, "-j", "3"]}
    for name in options.commands:
        verdict, said = judge(system, commands[name])
        file = "%s.%s" % (options.conditions[0], name)
        with open(file, "w", encoding="utf-8",
                  opener=lambda path, flags: os.open(path, flags, dir_fd=logs)) as log:
            log.write(said)
        print("%-30s %-6s %s" % (options.conditions[0], name, verdict)
              + (" (%s/%s)" % (options.logs, file) if verdict.startswith("FAILED") else ""), flush=True)
    for companion in system.companions:
        companion.kill()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("conditions", nargs="*", metavar="CONDITION", help="all, or: "
                        + " ".join(CONDITIONS))
    parser.add_argument("--root", default="/", help="the system under the layers (this one)")
    parser.add_argument("--tests", help="which tests check shall run (what the condition could hurt)")
    parser.add_argument("--commands", type=str.split, default=["demo", "check"])
    parser.add_argument("--logs", default=None, help="folder for what the commands print")
    parser.add_argument("--inside", help=argparse.SUPPRESS)
    options = parser.parse_args()
    unknown = set(options.conditions) - set(CONDITIONS)
    if unknown:
        parser.error("no such condition: " + " ".join(sorted(unknown)))
    if os.geteuid() != 0:
        parser.error("this needs root")
    if options.inside:
        inside(options)
        return 0
    options.logs = options.logs or tempfile.mkdtemp(prefix="norvix-conditions-")
    os.makedirs(options.logs, exist_ok=True)
    failed = False
    for name in options.conditions or CONDITIONS:
        work = tempfile.mkdtemp(prefix="norvix-planted-")
        words = [sys.executable, "-B", __file__, "--inside", work, "--root", options.root,
                 "--logs", options.logs, "--commands", " ".join(options.commands)]
        words += ["--tests", options.tests] if options.tests else []
        done = subprocess.run(["unshare", "--mount", "--propagation=private", "--pid", "--ipc",
                               "--uts", "--net", "--fork", "--kill-child=KILL", "--mount-proc", *words,
                               name], stdout=subprocess.PIPE, text=True, check=False)
        print(done.stdout, end="", flush=True)
        if done.returncode:
            print("%-30s        FAILED: could not be planted" % name, flush=True)
        failed = failed or done.returncode != 0 or "FAILED" in done.stdout
        os.rmdir(work)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
