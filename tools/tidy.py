# SPDX-License-Identifier: MIT
"""clang-tidy over all that a build tree compiles: tools/tidy.py BUILD_FOLDER JOBS

What was found sound is remembered in the cache folder by everything that the analysis depends on: the
source and all that it includes, how it is compiled, the configuration and the program. So a second run
analyses only what has changed, in whatever folder. Status 0 when all is sound.
"""
import concurrent.futures
import functools
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


def included(command, directory):
    """The source and all files that it includes, by the compiler's account; none when it fails."""
    words = [word for word in command if word != "-c"]
    output = words.index("-o")
    del words[output:output + 2]
    done = subprocess.run([*words, "-M"], cwd=directory, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True, check=False)
    rule = done.stdout.partition(":")[2].replace("\\\n", " ") if done.returncode == 0 else ""
    names = [re.sub(r"\\(.)", r"\1", name) for name in re.findall(r"(?:\\.|\S)+", rule)]
    # In another clone of this repository it is the same.
    return [os.path.join(directory, name).removeprefix(os.getcwd() + "/") for name in names]


@functools.lru_cache(maxsize=None)
def digest(file):
    """Names a file with its content; nothing of it when it is not there any more."""
    path = Path(file)
    content = path.read_bytes() if path.is_file() else b""
    return file.encode() + b"\0" + hashlib.sha256(content).digest()


def fingerprint(setting, files):
    """Names everything that the analysis of a unit depends on."""
    return hashlib.sha256(setting + b"".join(map(digest, files))).hexdigest()


def judge(unit, build, setting, known):
    """What is said of one unit; nothing when it is sound."""
    path, command, directory = unit
    if known:
        setting += " ".join(command).replace(os.getcwd(), "").encode()
        listed = known / (hashlib.sha256(setting).hexdigest() + ".files")
        # Were something else included now than then, one of these would be another file than then.
        files = listed.read_text(encoding="utf-8").splitlines() if listed.exists() else []
        if files and (known / fingerprint(setting, files)).exists():
            for file in (listed, known / fingerprint(setting, files)):
                file.touch()
            return ""
        files = included(command, directory)
    done = subprocess.run(["clang-tidy", "-p", str(build), "--quiet", path], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace", check=False)
    said = COUNT.sub("", done.stdout)
    if done.returncode == 0 and not said.strip():
        if known and files:
            listed.write_text("\n".join(files), encoding="utf-8")
            (known / fingerprint(setting, files)).touch()
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
