#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the Debian packages into build/packages and has them judged, and the way they were built.
set -eu
log=build/packages.log

echo "Building the packages..."
rm -rf build/packages
mkdir -p build
packaging/build-packages build/packages >"$log" 2>&1 || {
    tail -n 40 "$log" >&2
    exit 1
}

echo "lintian..."
lintian --allow-root --tag-display-limit 0 --display-info --pedantic \
    --fail-on error,warning,info,pedantic build/packages/*.changes

echo "blhc..."
blhc --debian --all "$log"
