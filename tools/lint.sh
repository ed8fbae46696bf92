#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Form and static analysis of code, scripts, texts, manual pages and bus interfaces:
# lint.sh BUILD_FOLDER JOBS
set -euo pipefail
build=$1
jobs=$2

# Prints the files of the tree, without what is built, of which that is true; each ends with a zero byte.
files() {
    find . '(' -path ./.git -o -path './build*' ')' -prune -o -type f "$@" -print0
}

echo "commit messages..."
tools/check-history

echo "clang-format..."
files -regex '.*\.\(c\|h\|cpp\)' | xargs -0 clang-format --dry-run -Werror

echo "shellcheck..."
# Shell is what its first line says, whatever the file is called.
files | xargs -0 awk 'FNR == 1 && /^#!.*[\/ ](ba|da)?sh$|^# shellcheck shell=/ { print FILENAME }
                    { nextfile }' \
    | xargs -d '\n' shellcheck

echo "codespell..." # .codespellrc says what it leaves out
codespell

echo "mandoc..."
# Below warnings it only minds that lines are as long as everywhere here.
mandoc -T lint -W warning docs/*.[1-8]

echo "desktop-file-validate, appstreamcli..."
desktop-file-validate packaging/desktop/*.desktop
appstreamcli validate --no-net packaging/desktop/*.metainfo.xml

echo "gdbus-codegen..."
generated=$(mktemp -d)
trap 'rm -rf "$generated"' EXIT
gdbus-codegen --interface-info-body --output "$generated/both" dbus/*.xml
# C has one function of a name. com.norvix.Daemon(7) tells how to leave one of the two getIP out.
advice=$(mandoc -T ascii docs/com.norvix.Daemon.7 | sed -n "s/^ *sed '\(.*\)'$/\1/p")
for description in dbus/*.xml; do
    name=$(basename "$description" .xml)
    sed -e "$advice" "$description" >"$generated/$name.xml"
    (cd "$generated" && gdbus-codegen --interface-prefix com.norvix. --generate-c-code "$name" "$name.xml")
    # Words, each one argument.
    # shellcheck disable=SC2046
    cc -Wall -Wextra -Werror -fsyntax-only $(pkg-config --cflags gio-unix-2.0) "$generated/$name.c"
done

# What is generated must be there before includes can be followed; nothing else is built.
cmake --build "$build" -j "$jobs" --target autogen

echo "clang-tidy..."
/usr/bin/python3 -B tools/tidy.py "$build" "$jobs"
