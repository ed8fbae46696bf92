#!/bin/busybox sh
# SPDX-License-Identifier: MIT
# shellcheck shell=dash
# The guest's first program: puts the root file system together and hands over to start.sh.
# The host's / is seen read-only over 9p, the unpacked packages lie over it, writes go to memory.
export PATH=/bin
/bin/busybox --install -s /bin
mount -t proc proc /proc
mount -t sysfs sys /sys
mount -t devtmpfs dev /dev

fail() {
    echo "boot: $1"
    poweroff -f
}

for module in /modules/*; do
    insmod "$module" || fail "cannot load $module"
done
clean=no
# shellcheck disable=SC2013 # words are wanted, not lines
for word in $(cat /proc/cmdline); do
    case "$word" in
        lab.clean) clean=yes ;;
        lab.repository=*) repository=${word#lab.repository=} ;;
    esac
done

share=trans=virtio,version=9p2000.L,msize=512000
mount -t 9p -o "$share,ro,cache=loose" host /host || fail "no host files"
# A share of its own: the kernel refuses a lower folder that lies inside another one.
mount -t 9p -o "$share,ro,cache=loose" packages /packages || fail "no package files"
mount -t tmpfs memory /memory
mkdir /memory/upper /memory/work
mount -t overlay -o "lowerdir=/packages:/host,upperdir=/memory/upper,workdir=/memory/work" \
    overlay /root || fail "no root file system"
for folder in dev proc sys; do
    mount --move "/$folder" "/root/$folder"
done
mount -t tmpfs run /root/run
mount -t tmpfs tmp /root/tmp
case "$repository" in
    /tmp/* | /run/*)
        mkdir -p "/root$repository"
        mount --bind "/host$repository" "/root$repository" || fail "no $repository"
        ;;
esac
mkdir -p /root/results
mount -t 9p -o "$share" results /root/results || fail "no results folder"
[ "$clean" = yes ] || exec switch_root /root /bin/sh "$repository/lab/kernel/start.sh"

# Another system is booted, by its own systemd; the host's files become its folder /lab, in which the
# command runs beside it.
mkdir /clean-files /clean /memory/clean /memory/clean-work
mount -t 9p -o "$share,ro,cache=loose" clean /clean-files || fail "no clean system"
mount -t overlay -o "lowerdir=/clean-files,upperdir=/memory/clean,workdir=/memory/clean-work" \
    overlay /clean || fail "no clean root file system"
mkdir /clean/lab
mount --move /root /clean/lab
mkdir -p /clean/usr/lib/modules
mount --bind /clean/lab/usr/lib/modules /clean/usr/lib/modules || fail "no modules"
cat >/clean/etc/systemd/system/lab.service <<UNIT
[Unit]
Description=The laboratory's command
[Service]
ExecStart=/usr/sbin/chroot /lab /bin/sh $repository/lab/kernel/start.sh
StandardOutput=journal+console
UNIT
mkdir -p /clean/etc/systemd/system/multi-user.target.wants
ln -sf ../lab.service /clean/etc/systemd/system/multi-user.target.wants/lab.service
exec switch_root /clean /sbin/init
