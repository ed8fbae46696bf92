// SPDX-License-Identifier: MIT
// The line's state never differs from the plain search's, whatever the kernel log holds.
#include "connection/line_state.h"
#include "tests/unit/plain_line_state.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    struct Family
    {
        int vendorId;
        PlainLineState plain = PlainLineState(vendorId);
    };
    static const Family families[] = {{0x1110}, {0x0483}, {0x06b9}, {0x0572}};

    const QByteArray log(reinterpret_cast<const char *>(data), int(size));
    for (const Family &family : families) {
        if (!sameReport(family.plain(log), lineStateFromLog(log, family.vendorId))) {
            abort();
        }
    }
    return 0;
}
