# SPDX-License-Identifier: MIT
"""clang-tidy over all that a build tree compiles: python3 -m lab.tidy BUILD_FOLDER JOBS

What was found sound is remembered in the cache folder by everything that the analysis depends on: the
preprocessed text with macros and comments, the configuration and the program. So a second run analyses
only what has changed, in whatever folder. Status 0 when all is sound.
"""
import concurrent.futures
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
import time
from pathlib import Path

KEPT_SECONDS = 30 * 24 * 3600
# "12 warnings generated.": by system headers, and none of them shown.
COUNT = re.compile(r"(?m)^\d+ warnings? generated\.\n")


def memory():
    """The folder with one empty file for each sound unit; old ones go. None where none can be."""
    chosen = os.environ.get("NORVIX_LAB_CACHE")
    if not chosen and os.geteuid() != 0:
        return None
    folder = Path(chosen or "/var/cache/norvix-lab") / "sound"
    try:
        folder.mkdir(parents=True, exist_ok=True)
        for file in folder.iterdir():
            if time.time() - file.stat().st_mtime > KEPT_SECONDS:
                file.unlink()
    except OSError:
        return None
    return folder


def units(build):
    """The sources of the tree with their compile commands; generated ones are Qt's."""
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        path = os.path.relpath(entry["file"])
        if not path.startswith("build") and path.endswith(".cpp"):
            yield path, shlex.split(entry["command"]), entry["directory"]


def fingerprint(command, directory, setting):
    """Names everything that the analysis of a unit depends on; None when it does not compile."""
    words = [word for word in command if word != "-c"]
    output = words.index("-o")
    del words[output:output + 2]
    done = subprocess.run([*words, "-E", "-dD", "-CC", "-P"], cwd=directory, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, check=False)
    text = done.stdout.replace(os.fsencode(os.getcwd()), b"")
    return None if done.returncode else hashlib.sha256(setting + text).hexdigest()


def judge(unit, build, setting, known):
    """What is said of one unit; nothing when it is sound."""
    path, command, directory = unit
    name = fingerprint(command, directory, setting + path.encode()) if known else None
    if name and (known / name).exists():
        (known / name).touch()
        return ""
    done = subprocess.run(["clang-tidy", "-p", str(build), "--quiet", path], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace", check=False)
    said = COUNT.sub("", done.stdout)
    if done.returncode == 0 and not said.strip():
        if name:
            (known / name).touch()
        return ""
    return said or "%s: clang-tidy ended with %d\n" % (path, done.returncode)


def main(build, jobs):
    version = subprocess.run(["clang-tidy", "--version"], stdout=subprocess.PIPE, check=True).stdout
    setting = version + Path(".clang-tidy").read_bytes()
    known = memory()
    sound = True
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        found = sorted(units(build), key=lambda unit: unit[0])
        for said in pool.map(lambda unit: judge(unit, build, setting, known), found):
            sound = sound and not said
            print(said, end="", flush=True)
    print("%d files were analysed." % len(found))
    return 0 if sound else 1


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), int(sys.argv[2])))
