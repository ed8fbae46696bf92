#!/bin/sh
# SPDX-License-Identifier: MIT
# sandbox.sh FOLDER PROGRAM ARGUMENTS...: runs a program that may do anything, changed by accident as it
# is, where it can harm nobody: processes and network of its own, all files read-only but /tmp, /run and
# FOLDER, no power over the kernel. As root.
set -eu
if [ "${1-}" != --inside ]; then
    exec unshare --mount --pid --net --ipc --fork --kill-child=KILL --mount-proc sh "$0" --inside "$@"
fi
writable=$2
shift 2
mount --make-rprivate /
awk '{ print $5 }' /proc/self/mountinfo | grep -vE '^/(proc|sys)(/|$)' | while read -r place; do
    mount -o remount,bind,ro "$(printf %b "$place")" 2>/dev/null || true
done
mount --bind "$writable" "$writable"
mount -o remount,bind,rw "$writable"
mount -t tmpfs tmpfs /tmp
chmod 1777 /tmp
mount -t tmpfs tmpfs /run
mkdir -p /run/lock
mount -t tmpfs tmpfs /dev/shm 2>/dev/null || true
ip link set lo up
if [ -n "${NORVIX_CHANGE-}" ]; then
    echo "$NORVIX_CHANGE" >/run/change
    mount --bind /run/change "$writable/change"
    unset NORVIX_CHANGE
fi
# As a child: the first process of a namespace is deaf to signals.
setpriv --bounding-set=-sys_module,-sys_boot,-sys_time,-syslog \
    --inh-caps=-sys_module,-sys_boot,-sys_time,-syslog "$@" || exit $?
