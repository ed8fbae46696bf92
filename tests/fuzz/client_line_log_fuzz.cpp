// SPDX-License-Identifier: MIT
// The line's state is what one line of the kernel log says.
#include "client/line_log.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray log = FuzzInput(data, size).rest();
    const LineStatus status = lineFromKernelLog(log);
    require((status.line == Line::Unknown) == status.driverLine.isEmpty());
    require(status.downKbit.has_value() == status.upKbit.has_value());
    if (status.downKbit) {
        require(*status.downKbit >= 0 && *status.downKbit <= 999999);
        require(status.driverLine.contains(QString::number(*status.downKbit)));
    }
    bool isThere = status.driverLine.isEmpty();
    for (const QByteArray &line : log.split('\n')) {
        const QByteArray words = line.trimmed();
        isThere
            = isThere || QString::fromUtf8(words.constData(), words.size()) == status.driverLine;
    }
    require(isThere);
    require(!lineWord(status.line).isEmpty() && !lineText(status).isEmpty());
    require(!lineText(status).contains(QLatin1Char('%')));
    return 0;
}
