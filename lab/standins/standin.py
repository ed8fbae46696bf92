# SPDX-License-Identifier: MIT
"""What every stand-in program does first: write down how it was called, then do as scripted."""
import json
import os
import sys
import time

FOLDER = "/run/lab"
REAL_FOLDERS = ("/usr/local/bin", "/usr/sbin", "/usr/bin", "/sbin", "/bin")
# What a program does when nothing is scripted: these run the real one, all others succeed silently.
REALLY_RUN = ("ifconfig", "ip", "kill", "killall", "ps")

program = os.path.basename(sys.argv[0])


def open_descriptors():
    """The descriptors that the caller left open, and what each leads to."""
    found = {}
    for name in os.listdir("/proc/self/fd"):
        try:
            found[name] = os.readlink("/proc/self/fd/" + name)
        except OSError:  # the descriptor of this listing
            pass
    return found


def record():
    """One line for this call, in one write, so that calls at the same time do not mix."""
    call = {
        "time": time.monotonic(),
        "program": program,
        "argv": sys.argv[1:],
        "env": dict(os.environ),
        "pid": os.getpid(),
        "ppid": os.getppid(),
        "fds": open_descriptors(),
    }
    out = os.open(FOLDER + "/calls.jsonl", os.O_WRONLY | os.O_APPEND | os.O_CREAT, 0o666)
    os.write(out, json.dumps(call).encode() + b"\n")
    os.close(out)


def script():
    """What the test has written down for this program; empty when nothing."""
    try:
        with open("%s/standins/%s.json" % (FOLDER, program), encoding="ascii") as file:
            return json.load(file)
    except FileNotFoundError:
        return {}


def write_all(descriptor, data):
    """Writes everything; a reader that has gone away is no reason to stop."""
    try:
        while data:
            data = data[os.write(descriptor, data):]
    except OSError:
        pass


def run_real():
    for folder in REAL_FOLDERS:
        path = folder + "/" + program
        if os.access(path, os.X_OK):
            os.execv(path, [program] + sys.argv[1:])
    write_all(2, ("%s: the real program is not installed\n" % program).encode())
    sys.exit(127)


def only_asks():
    """Whether modprobe is asked what it would load, which changes nothing."""
    return program == "modprobe" and "--show-depends" in sys.argv


def status_if_installed():
    """0 when the module named is installed in the machine's own module folder, else 1: as loading it
    would end if its kernel were running."""
    null = [(os.POSIX_SPAWN_OPEN, target, "/dev/null", os.O_RDWR, 0) for target in (0, 1, 2)]
    pid = os.posix_spawn("/usr/sbin/modprobe", ["modprobe", "--show-depends"] + sys.argv[1:],
                         os.environ, file_actions=null)
    return 1 if os.waitpid(pid, 0)[1] else 0


def act(behaviour):
    """Does as scripted; what is not scripted is success in silence."""
    if only_asks():
        run_real()
    write_all(1, behaviour.get("stdout", "").encode("latin-1"))
    write_all(2, behaviour.get("stderr", "").encode("latin-1"))
    time.sleep(behaviour.get("sleep", 0))
    if behaviour.get("exec_real", program in REALLY_RUN and "exit" not in behaviour):
        run_real()
    if behaviour.get("if_installed"):
        sys.exit(status_if_installed())
    sys.exit(behaviour.get("exit", 0))
