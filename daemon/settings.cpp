// SPDX-License-Identifier: MIT
#include "daemon/settings.h"

#include "daemon/settings_store.h"
#include "support/files/safe_file.h"
#include "support/files/settings_text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>
#include <QStringList>
#include <utility>

namespace {

std::function<void()> settingsTouched; // under the one store's mutex

void tellListener()
{
    const QMutexLocker lock(&settingsStore()->mutex());
    if (settingsTouched) {
        settingsTouched();
    }
}

QRecursiveMutex *mutexOf(QSettings *settings)
{
    auto *own = dynamic_cast<SettingsStore *>(settings);
    return own != nullptr ? &own->mutex() : nullptr;
}

} // namespace

QSettings *settings()
{
    return settingsStore();
}

QVariant readSetting(QSettings *store, const char *key, const QVariant &fallback)
{
    const QMutexLocker lock(mutexOf(store));
    const QVariant value = store->value(QLatin1String(key), fallback);
    return value.canConvert<UndecodedSetting>() ? fallback : value;
}

QString readSettingText(QSettings *store, const char *key, const QVariant &fallback)
{
    return settingAsText(readSetting(store, key, fallback));
}

// Keeps whatever a client sets: clients have always checked their own values, and read back what
// they wrote.
void writeSetting(QSettings *store, const char *key, const QVariant &value)
{
    {
        const QMutexLocker lock(mutexOf(store));
        if (value.isValid()) {
            store->setValue(QLatin1String(key), value);
        } else {
            store->remove(QLatin1String(key));
        }
        if (auto *own = dynamic_cast<SettingsStore *>(store)) {
            own->setPending(QLatin1String(key));
        }
    }
    tellListener();
}

void onSettingsTouched(std::function<void()> listener)
{
    const QMutexLocker lock(&settingsStore()->mutex());
    settingsTouched = std::move(listener);
}

bool syncSettings(QSettings *store)
{
    if (auto *own = dynamic_cast<SettingsStore *>(store)) {
        const bool isWritten = own->syncNow();
        tellListener();
        return isWritten;
    }
    if (store != nullptr) {
        store->sync();
    }
    return store != nullptr && store->status() == QSettings::NoError;
}

void clearStaleSettingsFiles()
{
    const QFileInfo file(settingsStore()->fileName());
    QFile::remove(file.filePath() + QStringLiteral(".lock"));
    QFile::remove(file.filePath() + QStringLiteral(".lock.rmlock"));
    // The library's names for a file that it has not yet put in place.
    const QRegExp unfinished(QRegExp::escape(file.fileName()) + QStringLiteral("\\.[A-Za-z]{6}"));
    QDir folder(file.path());
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        if (unfinished.exactMatch(name)) {
            folder.remove(name);
        }
    }
    clearUnfinished(file.filePath());
}

void logSettingsTrouble()
{
    if (!foundAtStart().isEmpty()) {
        qWarning("%s", foundAtStart().toLocal8Bit().constData());
    }
}
