// SPDX-License-Identifier: MIT
// Whatever ps prints gives a time that stands in it, or none.
#include "connection/elapsed_time.h"

#include <QByteArrayList>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const std::optional<QTime> time = parseElapsedTime(QString::fromLatin1(bytes.constData()));
    if (time && time->isValid()
        && !bytes.contains(time->toString(QStringLiteral("mm:ss")).toLatin1())) {
        abort();
    }
    return 0;
}
