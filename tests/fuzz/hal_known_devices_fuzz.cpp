// SPDX-License-Identifier: MIT
// The list that an earlier run left may have been spoilt.
#include "hal/known_devices.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const auto known
        = hal::knownDevicesFrom(std::string_view(reinterpret_cast<const char *>(data), size));
    if (!known) {
        return 0;
    }
    const auto again = hal::knownDevicesFrom(hal::knownDevicesText(*known));
    if (!again || again->size() != known->size()) {
        std::abort();
    }
    hal::DeviceTable table;
    table.restore(*known);
    table.reconcile({});
    if (table.objects().size() != 1) {
        std::abort();
    }
    return 0;
}
