// SPDX-License-Identifier: MIT
#include "support/process/line_cutter.h"

#include <utility>

void LineCutter::keep(const char *bytes, int size)
{
    m_partial.append(bytes, qMin(size, maxLineLength - m_partial.size()));
}

QByteArrayList LineCutter::feed(const QByteArray &bytes)
{
    QByteArrayList lines;
    int start = 0;
    for (int end = bytes.indexOf('\n'); end >= 0; end = bytes.indexOf('\n', start)) {
        keep(bytes.constData() + start, end - start);
        lines.append(takeRest());
        start = end + 1;
    }
    keep(bytes.constData() + start, bytes.size() - start);
    return lines;
}

QByteArray LineCutter::takeRest()
{
    return std::exchange(m_partial, QByteArray());
}
