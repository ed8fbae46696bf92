# SPDX-License-Identifier: MIT
"""Which lines and branches the tests have reached: tools/coverage.py BUILD_FOLDER prepare|report

For a build that counts. Its programs keep their counters in files that are mapped into memory, so that
nothing is lost with one that is killed. Branches are those of the source: both outcomes of each
condition; ways that only an exception takes are none.
"""
import collections
import json
import os
import subprocess
import sys
from pathlib import Path

PROGRAMS = ("bin/norvix-daemon", "bin/norvixctl", "bin/norvix-hald", "bin/norvix-keeper",
            "bin/norvix-desktop", "libexec/norvix-desktop-join", "libexec/norvix-desktop-mend",
            "lib/libnorvix-support.so")
LEAST_COVERED = 12


def prepare(build):
    """Forgets all counts. Programs that ordinary users start as well are run once, because whoever
    is first makes the file of a program, and all others must be able to write it."""
    folder = build / "profiles"
    folder.mkdir(exist_ok=True)
    for file in folder.iterdir():
        file.unlink()
    for program in ("norvixctl", "norvix-hald", "norvix-keeper", "norvix-desktop"):
        subprocess.run([build / "bin" / program, "--help"], stdout=subprocess.DEVNULL, check=True)
    for file in folder.iterdir():
        file.chmod(0o666)


def summaries(build):
    """What has been counted: for each file {"lines": {"count", "covered"}, "branches": ...}."""
    counts = build / "coverage.profdata"
    profiles = [str(file) for file in sorted((build / "profiles").iterdir())]
    # A program killed while it began its file leaves one that says nothing.
    subprocess.run(["llvm-profdata", "merge", "-sparse", "--failure-mode=all", "-o", counts, *profiles],
                   stderr=subprocess.DEVNULL, check=True)
    objects = [word for program in PROGRAMS for word in ("-object", build / program)]
    done = subprocess.run(["llvm-cov", "export", "-summary-only", "-instr-profile", counts, *objects[1:]],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
    for file in json.loads(done.stdout)["data"][0]["files"]:
        path = os.path.relpath(file["filename"])
        if path.split("/")[0] not in ("..", "build"):  # neither the library's own nor generated
            yield path, file["summary"]


def share(counts):
    return 100 * counts["covered"] / counts["count"] if counts["count"] else 100


def row(name, summary):
    words = ["%-32s" % name]
    for kind in ("lines", "branches"):
        counts = summary[kind]
        words.append("%6d of %6d  %5.1f %%" % (counts["covered"], counts["count"], share(counts)))
    return "  ".join(words)


def report(build):
    files = dict(summaries(build))
    sums = collections.defaultdict(lambda: {kind: collections.Counter(count=0, covered=0)
                                            for kind in ("lines", "branches")})
    for path, summary in files.items():
        for name in (path.split("/")[0], "total"):
            for kind, counts in sums[name].items():
                counts.update({part: summary[kind][part] for part in counts})
    print("\n%-32s  %-25s  %s" % ("", "lines", "branches"))
    for name in (*sorted(set(sums) - {"total"}), "total"):
        print(row(name, sums[name]))
    print("\nLeast covered:")
    for path in sorted(files, key=lambda path: share(files[path]["lines"]))[:LEAST_COVERED]:
        print(row(path, files[path]))


if __name__ == "__main__":
    {"prepare": prepare, "report": report}[sys.argv[2]](Path(sys.argv[1]).resolve())
