// SPDX-License-Identifier: MIT
#include "client/settings_file.h"

#include "support/safe_file.h"
#include "support/settings_text.h"

#include <QFileInfo>
#include <QLockFile>
#include <cerrno>

namespace {

constexpr int lockWaitMs = 30000;

std::optional<QByteArray> settingsBytes()
{
    return readFileBytes(settingsPath(), Links::Follow, mostSettingsBytes);
}

/// Where the file is replaced. A link is followed: it stays an administrator's choice.
QString placeOfSettings()
{
    const QFileInfo file(settingsPath());
    return file.isSymLink() && file.exists() ? file.canonicalFilePath() : file.filePath();
}

bool isForbidden()
{
    return errno == EACCES || errno == EPERM || errno == EROFS;
}

/// Who may write the file but not its folder rewrites it in place.
bool writeBytes(const QByteArray &before, const QByteArray &after)
{
    const QString path = placeOfSettings();
    return replaceFile(path, after)
        || (isForbidden() && rewriteFileInPlace(path, before, after) == Rewrite::Done);
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
    const QVariant value = settingsFrom(settingsBytes().value_or(QByteArray()))
                               .values.value(QLatin1String(key), fallback);
    if (value.canConvert<UndecodedSetting>()) {
        return fallback;
    }
    return value.type() == QVariant::StringList ? value.toStringList().join(QStringLiteral(", "))
                                                : value.toString();
}

int settingNumber(const char *key)
{
    return settingText(key).toInt();
}

Failure writeSettings(const QMap<QString, QVariant> &values)
{
    QLockFile lock(settingsPath() + QStringLiteral(".lock")); // as the daemon's library has it
    lock.tryLock(lockWaitMs); // not for who may write the file but not its folder
    const std::optional<QByteArray> before = settingsBytes();
    const bool isMissing = !before && errno == ENOENT;
    if (!before && !isMissing && !isForbidden()) {
        return {FailureKind::SettingsInvalid, settingsPath()};
    }
    if (before || isMissing) {
        ReadSettings all = settingsFrom(before.value_or(QByteArray()));
        if (!all.isWellFormed) {
            return {FailureKind::SettingsInvalid, settingsPath()};
        }
        for (auto value = values.begin(); value != values.end(); ++value) {
            all.values.insert(value.key(), value.value());
        }
        if (writeBytes(before.value_or(QByteArray()), settingsText(all.values))) {
            return {};
        }
        if (!isForbidden() && errno != ENOENT) {
            return {FailureKind::FileUnwritable, settingsPath()};
        }
    }
    return {FailureKind::FileForbidden, settingsPath()};
}
