#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Form and static analysis of all C and C++ code: lint.sh BUILD_FOLDER JOBS
set -euo pipefail
build=$1
jobs=$2

rooms=()
for room in support daemon connection driver network dbus hal client ctl lab tests bench; do
    [[ ! -d $room ]] || rooms+=("$room")
done

echo "clang-format..."
find "${rooms[@]}" '(' -name '*.cpp' -o -name '*.h' -o -name '*.c' ')' -print0 \
    | xargs -0 clang-format --dry-run -Werror

# What is generated must be there before includes can be followed; nothing else is built.
cmake --build "$build" -j "$jobs" --target autogen

echo "clang-tidy..."
/usr/bin/python3 -B -m lab.tidy "$build" "$jobs"
