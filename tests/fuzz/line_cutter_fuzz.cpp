// SPDX-License-Identifier: MIT
// The line cutter gives the same lines however its input is split, and loses no byte.
#include "support/process/line_cutter.h"

#include <cstdint>
#include <cstdlib>

namespace {

QByteArrayList cut(const QByteArray &text, int pieceSize)
{
    LineCutter cutter;
    QByteArrayList parts;
    for (int i = 0; i < text.size(); i += pieceSize) {
        parts += cutter.feed(text.mid(i, pieceSize));
    }
    parts.append(cutter.takeRest());
    return parts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    const int pieceSize = 1 + data[0]; // the first byte says how the rest is split
    const QByteArray text(reinterpret_cast<const char *>(data) + 1, int(size) - 1);

    const QByteArrayList parts = cut(text, pieceSize);
    if (parts != cut(text, text.size() + 1)) {
        abort();
    }
    if (text.size() <= LineCutter::maxLineLength && parts.join('\n') != text) {
        abort();
    }
    return 0;
}
