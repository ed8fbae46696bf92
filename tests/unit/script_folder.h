// SPDX-License-Identifier: MIT
// A temporary folder of small executable scripts.
#pragma once

#include <QFile>
#include <QTemporaryDir>

class ScriptFolder
{
public:
    QString path() const { return m_folder.path(); }

    /// Makes the shell script @p name with the commands @p body; its path.
    QString add(const QString &name, const QByteArray &body)
    {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            qFatal("cannot write %s", qPrintable(path));
        }
        file.write("#!/bin/sh\n" + body + "\n");
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

private:
    QTemporaryDir m_folder;
};
