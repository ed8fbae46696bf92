// SPDX-License-Identifier: MIT
#include "client/settings_file.h"

#include "client/say.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The library replaces the file when it writes; the new one gets the owner and mode of the old.
void giveBack(const struct stat &before)
{
    const QByteArray path = QFile::encodeName(settingsPath());
    struct stat after = {};
    if (stat(path.constData(), &after) != 0 || after.st_ino == before.st_ino) {
        return;
    }
    if (chown(path.constData(), before.st_uid, before.st_gid) != 0) {
        return; // only root may; for everybody else the file is their own anyway
    }
    chmod(path.constData(), before.st_mode & 07777);
}

} // namespace

QString settingsPath()
{
    return QStringLiteral("/opt/norvix/.daemon_ng.ini");
}

bool canReadSettings()
{
    return QFileInfo(settingsPath()).isReadable();
}

QString settingText(const char *key, const QString &fallback)
{
    const QSettings settings(settingsPath(), QSettings::IniFormat);
    const QVariant value = settings.value(QLatin1String(key), fallback);
    return value.type() == QVariant::StringList ? value.toStringList().join(QStringLiteral(", "))
                                                : value.toString();
}

int settingNumber(const char *key)
{
    return settingText(key).toInt();
}

ExitCode writeSettings(const QMap<QString, QVariant> &values, QString &error)
{
    const QByteArray path = QFile::encodeName(settingsPath());
    struct stat before = {};
    const bool existed = stat(path.constData(), &before) == 0;

    QSettings settings(settingsPath(), QSettings::IniFormat);
    settings.setAtomicSyncRequired(false); // a group member may write the file, not its folder
    for (auto value = values.begin(); value != values.end(); ++value) {
        settings.setValue(value.key(), value.value());
    }
    settings.sync();
    if (existed) {
        giveBack(before);
    }
    switch (settings.status()) {
    case QSettings::NoError:
        return Ok;
    case QSettings::FormatError:
        error = Say::tr("%1 is not a valid settings file.").arg(settingsPath());
        return Failed;
    case QSettings::AccessError:
        break;
    }
    error = Say::tr("%1 can not be written by you. Repeat the command with “sudo”.")
                .arg(settingsPath());
    return NotPermitted;
}
