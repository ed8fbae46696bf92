// SPDX-License-Identifier: MIT
// Lets folders deep down fail to open: whoever lists a tree holds a descriptor for each level.
#pragma once

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

/// As long as it lives, this process can open only so many files more.
class FewDescriptors
{
public:
    explicit FewDescriptors(int left)
    {
        const int lowest = open("/dev/null", O_RDONLY | O_CLOEXEC);
        close(lowest);
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = rlim_t(lowest + left);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors &) = delete;
    FewDescriptors &operator=(const FewDescriptors &) = delete;

private:
    rlimit m_before = {};
};
