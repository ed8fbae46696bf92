#!/bin/sh
# SPDX-License-Identifier: MIT
# provider-room.sh FOLDER COMMAND [ARGUMENT...]: runs a command with the provider's own /etc/ppp and
# /run, so that its pppd and ours never see each other's secrets and pid files.
# Started in a mount namespace of its own.
set -e
mount --make-rprivate /
mount --bind "$1" /etc/ppp
mount -t tmpfs run /run
shift
exec "$@"
