#!/bin/sh
# SPDX-License-Identifier: MIT
# Form and static analysis of all C and C++ code: lint.sh BUILD_FOLDER JOBS
set -eu
build=$1
jobs=$2
rooms="support daemon connection driver network dbus hal client tests bench lab"

sources() {
    for room in $rooms; do
        [ ! -d "$room" ] || find "$room" -name '*.cpp' -o -name '*.h' -o -name '*.c'
    done
}

echo "clang-format..."
sources | xargs clang-format --dry-run -Werror

# What the build generates must be there before its includes can be followed.
cmake --build "$build" -j "$jobs"
echo "clang-tidy..."
# Only what this build compiles has the arguments that clang-tidy needs; generated files are Qt's.
/usr/bin/python3 - "$build" <<'PY' | xargs -P "$jobs" -n 2 clang-tidy -p "$build" --quiet
import json, os, sys
for entry in json.load(open(sys.argv[1] + "/compile_commands.json")):
    path = os.path.relpath(entry["file"])
    if not path.startswith("build") and path.endswith(".cpp"):
        print(path)
PY
