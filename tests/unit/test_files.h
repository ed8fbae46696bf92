// SPDX-License-Identifier: MIT
// Small files that tests write and read whole.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Writes a file anew. Ends the test program when that fails.
inline void writeFile(const QString &path, const QByteArray &bytes = {})
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

/// The bytes of a file, or "no file".
inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}
