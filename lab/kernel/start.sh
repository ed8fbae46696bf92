#!/bin/sh
# SPDX-License-Identifier: MIT
# The guest's process 1 once its files are there: runs /results/command and powers off.
export PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 LC_ALL=C.UTF-8
mkdir -p /dev/pts /dev/shm /run/lock
mount -t devpts devpts /dev/pts
mount -t tmpfs shm /dev/shm
ln -sf /proc/self/fd /dev/fd
hostname guest
ip link set lo up

read -r up _ </proc/uptime
echo "shell after $up s" >/results/times
cd / || exit
/bin/sh /results/command >/results/output 2>&1
echo $? >/results/status.new
read -r up _ </proc/uptime
echo "command ended after $up s" >>/results/times
dmesg >/results/kernel.log
mv /results/status.new /results/status
sync
busybox poweroff -f
