# SPDX-License-Identifier: MIT
"""Runs what the README tells newcomers to run, in a clean Debian: check --fresh 12|13 [check|demo]

The system has git and a clone of what is committed here, and nothing else beside Debian's minimum; what
is compiled in it is kept for the next one of the release.
"""
import argparse
import re
import shutil
import signal
import subprocess
import sys
import tempfile

from .clean_system import RELEASES, REPOSITORY, CleanSystem, mirror

CLONE = "/root/norvix"


def command_of_the_readme(name, readme, has_sudo):
    """The line "sudo ./NAME" of the text; without sudo where there is none, because there one is
    root already."""
    [line] = re.findall(r"(?m)^(sudo \./%s)(?:\s|$)" % name, readme)
    return line if has_sudo else line[len("sudo "):]


def main(arguments):
    parser = argparse.ArgumentParser(prog="check --fresh", add_help=False)
    parser.add_argument("release", choices=RELEASES)
    parser.add_argument("name", choices=("check", "demo"), nargs="?", default="check")
    wanted = parser.parse_args(arguments)
    packages = ["git"]
    if any(address.startswith("https:") for address in mirror()):
        packages.append("ca-certificates")
    # So that the system is taken away when this is asked to end, too.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(128 + signal.SIGTERM))
    with CleanSystem(wanted.release, packages, kept=True) as system:
        with tempfile.TemporaryDirectory() as outside:
            # By the host's git, which trusts whoever called it.
            subprocess.run(["git", "clone", "-q", "--no-local", str(REPOSITORY), outside],
                           check=True, stdin=subprocess.DEVNULL)
            shutil.copytree(outside, system.path(CLONE), symlinks=True)
        command = command_of_the_readme(
            wanted.name, system.path(CLONE + "/README.md").read_text(encoding="utf-8"),
            has_sudo=system.run("which", "sudo", check=False).status == 0)
        print("Debian %s: %s" % (wanted.release, command), flush=True)
        return subprocess.run(system.command("sh", "-c", command, cwd=CLONE),
                              stdin=subprocess.DEVNULL, check=False).returncode


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
