// SPDX-License-Identifier: MIT
#include "keeper/history/schema.h"

#include <QtEndian>

namespace keeper {

int versionInHeader(const QByteArray &fileBegin)
{
    constexpr int place = 60; // of the user version, by the file format
    constexpr int headerBytes = 100;
    if (fileBegin.size() < headerBytes || !fileBegin.startsWith("SQLite format 3")) {
        return 0;
    }
    return qFromBigEndian<qint32>(fileBegin.constData() + place);
}

} // namespace keeper
