// SPDX-License-Identifier: MIT
// The interface of the last route never differs from the plain rule's.
#include "network/route_table.h"
#include "tests/unit/plain_route_search.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromLatin1(reinterpret_cast<const char *>(data), int(size));
    if (interfaceOfLastRoute(text) != plainRouteSearch(text)) {
        abort();
    }
    return 0;
}
