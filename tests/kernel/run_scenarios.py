# SPDX-License-Identifier: MIT
"""Runs the scenarios: a guest for each file, as many guests at once as the machine bears.

usage: /usr/bin/python3 tests/kernel/run_scenarios.py [--results FOLDER] [--jobs N]
                                                      [12|13|newest...] [NAME...]

The guests have the kernel and the user land of Debian 12, Debian 13 or the coming Debian where such
are asked for, else those of this system. A NAME is a part of a file's name (test_NAME.py); without
one all are run. With "file::test" one scenario is run alone; "quick" stands for those that are
marked so. Logs of each scenario are below the results folder afterwards.
"""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import resource
import sys
import tempfile
import time
import xml.etree.ElementTree

HERE = pathlib.Path(__file__).resolve().parent
REPOSITORY = HERE.parent.parent
sys.path.insert(0, str(REPOSITORY))

from lab.kernel import guest, suites  # noqa: E402

GUEST_SECONDS = 2700
PYTEST = ["/usr/bin/python3", "-B", "-m", "pytest", "-v", "-rs", "--tb=short", "--strict-markers",
          "-p", "no:cacheprovider", "--junitxml=/results/report.xml"]

PASSED_ON = ("NORVIX_BUILD_DIR", "NORVIX_AWAY_SECONDS")

QUICK, QUICK_MARK = "quick", "pytest.mark.quick"

# So that no guest is left alone at the end of the run. Others follow in any order.
LONGEST_FIRST = ("test_keeping", "test_keeping_wish", "test_line", "test_plugging", "test_account",
                 "test_first_use", "test_restart", "test_peer_files", "test_driver_build")

Selection = collections.namedtuple("Selection", "path name options system", defaults=[None])
Row = collections.namedtuple("Row", "name seconds outcome")


def chosen(words):
    """What to run: for each guest a file, a name for its results, pytest's options, and whose kernel
    it has."""
    systems = [word for word in words if word in suites.CODENAMES]
    selections = chosen_files([word for word in words if word not in systems])
    return [selection._replace(name=f"{system}-{selection.name}", system=system)
            for system in systems for selection in selections] or selections


def chosen_files(names):
    """The same without a system."""
    files = sorted(HERE.glob("test_*.py"), key=position)
    if not names:
        return [Selection(path, path.stem, ()) for path in files]
    picked = []
    for name in names:
        part, _, scenario = name.partition("::")
        if name == QUICK:
            picked += [Selection(path, f"{path.stem}-{QUICK}", ("-m", QUICK)) for path in files
                       if QUICK_MARK in path.read_text()]
            continue
        found = [path for path in files if part in path.stem]
        if not found:
            raise SystemExit(f"run_scenarios.py: no file is called {part}")
        picked += [Selection(path, f"{path.stem}-{scenario}", ("-k", scenario)) if scenario
                   else Selection(path, path.stem, ()) for path in found]
    return picked


def position(path):
    known = path.stem in LONGEST_FIRST
    return LONGEST_FIRST.index(path.stem) if known else len(LONGEST_FIRST)


def run_file(selection, folder, jobs):
    """Runs one file in a guest of its own. Returns the rows of its report, and what to show."""
    results = folder / selection.name
    environment = {name: os.environ[name] for name in PASSED_ON if name in os.environ}
    environment["PYTHONDONTWRITEBYTECODE"] = "1"
    began = time.monotonic()
    try:
        status = guest.run([*PYTEST, str(selection.path), *selection.options], results,
                           GUEST_SECONDS, environment, jobs, system=selection.system)
    except guest.GuestFailed as problem:
        return [Row(selection.name, 0, "failure")], f"{selection.name}: the guest failed\n{problem}"
    rows = report_rows(results / "report.xml") if (results / "report.xml").exists() else []
    if not rows or (status != 0 and all(row.outcome == "ok" for row in rows)):
        rows.append(Row(f"{selection.name} (pytest's status is {status})", 0, "failure"))
    lines = [f"{selection.name}: {time.monotonic() - began:.0f} s"]
    lines += [f"  {row.outcome:8}{row.seconds:6.1f} s  {row.name}" for row in rows]
    if status != 0:
        lines.insert(0, (results / "output").read_text(errors="replace"))
    return rows, "\n".join(lines)


def report_rows(path):
    """Name, seconds and outcome of each scenario."""
    rows = []
    for case in xml.etree.ElementTree.parse(path).getroot().iter("testcase"):
        problems = [child.tag for child in case if child.tag in ("failure", "error", "skipped")]
        rows.append(Row(case.get("name"), float(case.get("time")),
                        problems[0] if problems else "ok"))
    return rows


def run_all(selections, folder, jobs):
    """Runs the guests and shows each file's rows as they come; returns all rows."""
    rows = []
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        waiting = [pool.submit(run_file, selection, folder, jobs) for selection in selections]
        try:
            for done in concurrent.futures.as_completed(waiting):
                more, text = done.result()
                rows += more
                print(text, flush=True)
        except BaseException:
            pool.shutdown(wait=False, cancel_futures=True)
            raise
    return rows


def summary(rows, seconds):
    """The last line, and whether all is well. What was skipped was not shown to work."""
    count = collections.Counter(row.outcome for row in rows)
    failed = count["failure"] + count["error"]
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    text = (f"{count['ok']} passed, {failed} failed, {count['skipped']} skipped in {seconds:.0f} s; "
            f"the guests used {used.ru_utime + used.ru_stime:.0f} s of processor time")
    return text, bool(rows) and count["ok"] == len(rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--results", type=pathlib.Path)
    parser.add_argument("--jobs", type=int, default=os.cpu_count() + 1,
                        help="guests at once; one more than there are processors otherwise")
    parser.add_argument("names", nargs="*")
    options = parser.parse_args()
    folder = options.results or pathlib.Path(tempfile.mkdtemp(prefix="norvix-kernel-"))
    began = time.monotonic()
    rows = run_all(chosen(options.names), folder.resolve(), max(options.jobs, 1))
    text, well = summary(rows, time.monotonic() - began)
    print(f"results are in {folder}\n{text}")
    return 0 if well else 1


if __name__ == "__main__":
    sys.exit(main())
