// SPDX-License-Identifier: MIT
#include "connection/pppd_command.h"

QStringList extraArgumentsFrom(const QStringList &stored)
{
    const bool isKeyWithoutValue = stored.size() == 1 && stored.constFirst().isEmpty();
    return isKeyWithoutValue ? QStringList() : stored;
}

QStringList pppdArguments(const QString &peer, const QStringList &stored)
{
    const QStringList arguments = {QStringLiteral("debug"), QStringLiteral("linkname"),
        QStringLiteral("norvix"), QStringLiteral("call"), peer};
    return arguments + extraArgumentsFrom(stored);
}

QStringList childEnvironment(const QStringList &environment, bool is32bit)
{
    const QString libraryFolder
        = is32bit ? QStringLiteral("/opt/norvix/lib") : QStringLiteral("/opt/norvix/lib64");
    const QString programFolder = QStringLiteral("/opt/norvix/bin");

    QStringList result = environment;
    bool hasLibraryPath = false;
    bool hasPath = false;
    for (QString &entry : result) {
        if (entry.startsWith(QLatin1String("LD_LIBRARY_PATH="))) {
            entry += QLatin1Char(':') + libraryFolder;
            hasLibraryPath = true;
        } else if (entry.startsWith(QLatin1String("PATH="))) {
            entry += QLatin1Char(':') + programFolder;
            hasPath = true;
        }
    }
    if (!hasLibraryPath) {
        result.append(libraryFolder);
    }
    if (!hasPath) {
        result.append(programFolder);
    }
    return result;
}
