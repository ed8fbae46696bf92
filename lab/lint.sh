#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Form and static analysis of all C and C++ code: lint.sh BUILD_FOLDER JOBS
set -euo pipefail
build=$1
jobs=$2

rooms=()
for room in support daemon connection driver network dbus hal client lab tests bench; do
    [[ ! -d $room ]] || rooms+=("$room")
done

echo "clang-format..."
find "${rooms[@]}" '(' -name '*.cpp' -o -name '*.h' -o -name '*.c' ')' -print0 \
    | xargs -0 clang-format --dry-run -Werror

# What the build generates must be there before includes can be followed.
cmake --build "$build" -j "$jobs"

# Only what this build compiles has the arguments that clang-tidy needs; generated files are Qt's.
compiled_sources() {
    /usr/bin/python3 - "$build" <<'PY'
import json, os, sys
for entry in json.load(open(sys.argv[1] + "/compile_commands.json")):
    path = os.path.relpath(entry["file"])
    if not path.startswith("build") and path.endswith(".cpp"):
        print(path)
PY
}

echo "clang-tidy..."
compiled_sources | sort -u | xargs -P "$jobs" -n 2 clang-tidy -p "$build" --quiet 2>&1 \
    | { grep -v '^[0-9]* warnings\? generated\.$' || true; }
