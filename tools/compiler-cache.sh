# shellcheck shell=sh
# SPDX-License-Identifier: MIT
# Sourced by demo and check: lets ccache, where it is installed, keep what has been compiled. Whoever has
# settings for it keeps them.
cache=${CCACHE_DIR:-}
if [ -z "$cache" ] && [ "$(id -u)" -eq 0 ]; then
    cache=${NORVIX_LAB_CACHE:-/var/cache/norvix-lab}/ccache
fi
if command -v ccache >/dev/null 2>&1 \
    && { [ -z "$cache" ] || { mkdir -p "$cache" && [ -w "$cache" ]; } 2>/dev/null; }
then
    [ -z "$cache" ] || export CCACHE_DIR="$cache"
    # The same code in another folder is the same code.
    export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$PWD}" CCACHE_NOHASHDIR=1
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
