# shellcheck shell=sh
# SPDX-License-Identifier: MIT
# Sourced by demo and check before anything else: whatever the shell that they are called from holds,
# they do the same. Ends with one line where they could not work.

# Variables that stay: who and where one is, what the terminal can do, the way to the packages, a
# compiler cache, and the project's own.
unset_what_a_shell_holds() {
    for variable in $(env | sed -n 's/^\([A-Za-z_][A-Za-z0-9_]*\)=.*/\1/p'); do
        case $variable in
        PATH | PWD | HOME | USER | LOGNAME | TERM | COLUMNS | LINES | NO_COLOR | CI | XDG_CACHE_HOME) ;;
        http_proxy | https_proxy | no_proxy | HTTP_PROXY | HTTPS_PROXY | NO_PROXY) ;;
        CCACHE_* | CMAKE_C_COMPILER_LAUNCHER | CMAKE_CXX_COMPILER_LAUNCHER | CTEST_PARALLEL_LEVEL) ;;
        NORVIX_LAB_* | NORVIX_RECORD) ;;
        *) unset "$variable" ;;
        esac
    done
}

# Whether a folder takes half a gigabyte, and programs in it can be started.
serves_for_temporary_files() {
    room=$(df -k --output=avail "$1" 2>/dev/null | tail -n 1)
    [ "${room:-0}" -ge 500000 ] || return 1
    probe=$(mktemp "$1/norvix-probe-XXXXXX" 2>/dev/null) || return 1
    printf '#!/bin/sh\n' >"$probe"
    chmod 700 "$probe"
    "$probe" 2>/dev/null && started=yes || started=no
    rm -f "$probe"
    [ "$started" = yes ]
}

umask 022
unset_what_a_shell_holds
# An ordinary user's path may lack the folders of the administrator's programs.
export PATH="${PATH:-/usr/local/bin:/usr/bin:/bin}:/usr/local/sbin:/usr/sbin:/sbin"
export LC_ALL=C.UTF-8
[ -d "${HOME:-}" ] || HOME=$(getent passwd "$(id -u)" | cut -d: -f6)
[ -d "$HOME" ] || HOME=/
export HOME
if serves_for_temporary_files /tmp; then
    export TMPDIR=/tmp
elif serves_for_temporary_files /var/tmp; then
    export TMPDIR=/var/tmp
else
    echo "Neither /tmp nor /var/tmp has 500 MB and lets programs be started from it." >&2
    exit 1
fi

# Ends with one line where no private machine can be made: everything runs the daemon in one.
need_namespaces() {
    user=
    [ "$(id -u)" -eq 0 ] || user="--user --map-root-user"
    # Words without blanks, or none.
    # shellcheck disable=SC2086
    if ! problem=$(unshare $user --mount --net --pid --ipc --uts --fork true 2>&1); then
        echo "No private machine can be made here ($problem): run this as root, in no chroot." >&2
        exit 1
    fi
}

# Whether this user may build in the build tree that is named.
may_build_in() {
    mkdir -p build 2>/dev/null && [ -w build ] || return 1
    for place in "$1" build/lock; do
        [ ! -e "$place" ] || [ -w "$place" ] || return 1
    done
}

# Runs a command that builds. Two at the same time, in one build tree, would break each other's files.
one_at_a_time() {
    (
        flock -n 9 || {
            echo "Waiting for another build in this folder to end..."
            flock 9
        }
        # Not as the last command, in place of which this shell would end, and the lock with it.
        status=0
        "$@" 9>&- || status=$?
        exit $status
    ) 9>build/lock
}
