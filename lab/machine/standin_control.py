# SPDX-License-Identifier: MIT
"""Stand-in programs seen from a test: installing and scripting them, reading how they were called."""
import json
import os
import shutil
from collections import namedtuple

SBIN, NORVIX_BIN = "/usr/local/sbin", "/opt/norvix/bin"
RECORDED = ("modprobe", "rmmod", "ifconfig", "ip", "kill", "killall", "ps")
FOLDER_OF = {"br2684ctl_amd64": NORVIX_BIN, "br2684ctl_i386": NORVIX_BIN}
REAL_FOLDERS = ("/usr/local/bin", "/usr/sbin", "/usr/bin")
LIBRARY = ("netlink.py", "link.py", "traffic")
AS_USUAL = -1

# fds: the descriptors that the program inherited, {"0": what it leads to, ...}.
Call = namedtuple("Call", "time program argv env pid ppid fds")
Call.command = property(lambda call: [call.program] + call.argv)


def install(source, target):
    """Copies a file to where everybody can read and start it, whoever may at its old place."""
    shutil.copyfile(source, target)
    target.chmod(0o755)


def install_standins(source, standin, library, path):
    """Puts all stand-ins in their places in a machine's private folders. source is the folder of what
    they play, standin the built program that stands for each of them."""
    if not standin.exists():  # the host's own programs would be called in their place
        raise FileNotFoundError("%s is not built" % standin)
    for name in LIBRARY:
        install(source / name, library / name)
    programs = library / "programs"
    programs.mkdir()
    install(source / "pppd", programs / "pppd")
    for name in FOLDER_OF:
        install(source / "br2684ctl", programs / name)
    for name in ("pppd", *RECORDED, *FOLDER_OF):
        install(standin, path(FOLDER_OF.get(name, SBIN)) / name)


def read_calls(file, program=None):
    """The calls written down so far; a line that is being written is left for the next time."""
    if not file.exists():
        return []
    lines = file.read_bytes().split(b"\n")[:-1]
    calls = (Call(**json.loads(os.fsdecode(line))) for line in lines)
    return [call for call in calls if program in (None, call.program)]


class Standin:
    """One stand-in program of a machine."""

    def __init__(self, machine, name):
        self._machine = machine
        self._name = name
        self._file = machine.path(FOLDER_OF.get(name, SBIN)) / name
        self._script = machine.path("/run/lab/standins") / name
        self._away = self._file.with_name(name + ".away")

    def set(self, missing=False, not_executable=False, **behaviour):
        """What the next call does: stdout, stderr (text or bytes), sleep (seconds, before it ends),
        exit (status), exec_real (then becomes the real program), if_installed (modprobe: succeeds
        when the module is installed in the machine). missing and not_executable hold for the real
        program of the host, too. Nothing at all: the usual behaviour again."""
        if behaviour:
            self._write(**behaviour)
        else:
            self._script.unlink(missing_ok=True)
        self._set_presence(missing, not_executable)

    def _write(self, stdout="", stderr="", sleep=0, exit=AS_USUAL, exec_real=AS_USUAL,
               if_installed=False):
        said = [text.encode() if isinstance(text, str) else text for text in (stdout, stderr)]
        head = "%f %d %d %d %d %d\n" % (sleep, exit, exec_real, if_installed, *map(len, said))
        fresh = self._script.with_suffix(".new")
        fresh.write_bytes(head.encode() + b"".join(said))
        fresh.replace(self._script)

    def _set_presence(self, missing, not_executable):
        if missing and self._file.exists():
            self._file.rename(self._away)
        elif not missing and self._away.exists():
            self._away.rename(self._file)
        if not missing:
            self._file.chmod(0o644 if not_executable else 0o755)
        for folder in REAL_FOLDERS:
            real = "%s/%s" % (folder, self._name)
            if os.path.exists(real):
                self._machine.request("hide" if missing or not_executable else "unhide", path=real)

    def calls(self):
        return self._machine.calls(self._name)
