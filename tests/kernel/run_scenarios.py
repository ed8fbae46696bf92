# SPDX-License-Identifier: MIT
"""Runs the scenarios: one guest for each file, one guest at a time.

usage: /usr/bin/python3 tests/kernel/run_scenarios.py [--results FOLDER] [NAME...]

A NAME is a part of a file's name (test_NAME.py); without one all are run. With "file::test" one
scenario is run alone. Logs of each scenario are below the results folder afterwards.
"""

import argparse
import os
import pathlib
import sys
import tempfile
import time
import xml.etree.ElementTree

HERE = pathlib.Path(__file__).resolve().parent
REPOSITORY = HERE.parent.parent
sys.path.insert(0, str(REPOSITORY))

from lab.kernel import guest  # noqa: E402

GUEST_SECONDS = 900
PYTEST = ["/usr/bin/python3", "-B", "-m", "pytest", "-v", "-rs", "--tb=short", "--strict-markers",
          "-p", "no:cacheprovider", "--junitxml=/results/report.xml"]


def chosen(names):
    """The files to run with the scenario in each, or None for all of it."""
    files = sorted(HERE.glob("test_*.py"))
    if not names:
        return [(path, None) for path in files]
    picked = []
    for name in names:
        part, _, scenario = name.partition("::")
        found = [path for path in files if part in path.stem]
        if not found:
            raise SystemExit(f"run_scenarios.py: no file is called {part}")
        picked += [(path, scenario or None) for path in found]
    return picked


def run_file(path, scenario, results):
    """Runs one file in a guest of its own. Returns its report's rows and whether all is well."""
    target = str(path.relative_to(REPOSITORY))
    selection = ["-k", scenario] if scenario else []
    environment = {name: os.environ[name] for name in ("NORVIX_BUILD_DIR",) if name in os.environ}
    environment["PYTHONDONTWRITEBYTECODE"] = "1"
    try:
        status = guest.run([*PYTEST, str(REPOSITORY / target), *selection], results, GUEST_SECONDS,
                           environment)
    except guest.GuestFailed as problem:
        print(f"{path.stem}: the guest failed\n{problem}", flush=True)
        return [], False
    if status != 0:
        print((results / "output").read_text(errors="replace"), flush=True)
    return report_rows(results / "report.xml"), status == 0


def report_rows(path):
    """Name, seconds and outcome of each scenario."""
    rows = []
    for case in xml.etree.ElementTree.parse(path).getroot().iter("testcase"):
        problems = [child.tag for child in case if child.tag in ("failure", "error", "skipped")]
        rows.append((case.get("name"), float(case.get("time")), problems[0] if problems else "ok"))
    return rows


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--results", type=pathlib.Path)
    parser.add_argument("names", nargs="*")
    options = parser.parse_args()
    folder = options.results or pathlib.Path(tempfile.mkdtemp(prefix="norvix-kernel-"))
    everything_well = True
    for path, scenario in chosen(options.names):
        began = time.monotonic()
        rows, well = run_file(path, scenario, folder.resolve() / path.stem)
        everything_well = everything_well and well
        print(f"{path.stem}: {'ok' if well else 'FAILED'}, {time.monotonic() - began:.0f} s")
        for name, seconds, outcome in rows:
            print(f"  {outcome:8}{seconds:6.1f} s  {name}", flush=True)
    print(f"results are in {folder}")
    return 0 if everything_well else 1


if __name__ == "__main__":
    sys.exit(main())
