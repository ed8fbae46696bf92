// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>
#include <array>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

/// While it lives, the calling thread cannot kill other users' processes, as nobody can kill one
/// that waits in the kernel.
class WithoutRightToKill
{
public:
    WithoutRightToKill() { setEffective(false); }
    ~WithoutRightToKill() { setEffective(true); }
    Q_DISABLE_COPY_MOVE(WithoutRightToKill)

private:
    static void setEffective(bool has)
    {
        __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
        std::array<__user_cap_data_struct, 2> sets = {};
        syscall(SYS_capget, &header, sets.data());
        const quint32 bit = 1U << CAP_KILL;
        sets[0].effective = has ? sets[0].effective | bit : sets[0].effective & ~bit;
        syscall(SYS_capset, &header, sets.data());
    }
};
