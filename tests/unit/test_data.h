// SPDX-License-Identifier: MIT
// Access to the recorded texts in tests/data.
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>

/// The folder tests/data of the tree that the test was built from. Defined in one generated file,
/// so that the others compile to the same in every folder.
QString testDataFolder();

/// The bytes of @p path below tests/data. Ends the test program when it cannot be read: a missing
/// recording must never look like an empty one.
inline QByteArray testData(const QString &path)
{
    QFile file(testDataFolder() + QLatin1Char('/') + path);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", file.fileName().toLocal8Bit().constData());
    }
    return file.readAll();
}

/// The names of the files in @p folder of tests/data that match @p pattern; never none.
inline QStringList testDataNames(const QString &folder, const QString &pattern)
{
    const QDir directory(testDataFolder() + QLatin1Char('/') + folder);
    const QStringList names = directory.entryList({pattern}, QDir::Files);
    if (names.isEmpty()) {
        qFatal("no recordings in %s", directory.path().toLocal8Bit().constData());
    }
    return names;
}
