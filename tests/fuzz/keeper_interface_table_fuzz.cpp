// SPDX-License-Identifier: MIT
// Datagrams of the kernel, one after the other, whole or not.
#include "keeper/notices/interface_table.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    keeper::InterfaceTable table;
    table.take(bytes.left(bytes.size() / 2));
    table.take(bytes);
    for (const keeper::Interface &interface : table.interfaces()) {
        keeper::addressText(interface);
    }
    return 0;
}
