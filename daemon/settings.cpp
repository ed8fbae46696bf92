// SPDX-License-Identifier: MIT
#include "daemon/settings.h"

#include <QEvent>
#include <QFile>
#include <QMutexLocker>
#include <QStringList>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// One INI file for all threads. The library replaces the file when it writes; owner and group are
/// given back, so that a client that owned it can still write it.
class SettingsStore : public QSettings
{
public:
    explicit SettingsStore(const QString &path)
        : QSettings(path, QSettings::IniFormat)
    {
    }

    void syncNow()
    {
        const QMutexLocker lock(&m_mutex);
        keepOwner([this] { sync(); });
    }

    QRecursiveMutex &mutex() { return m_mutex; }

protected:
    /// The library's deferred write arrives here.
    bool event(QEvent *event) override
    {
        const QMutexLocker lock(&m_mutex);
        bool handled = false;
        keepOwner([&] { handled = QSettings::event(event); });
        return handled;
    }

private:
    template <typename Write> void keepOwner(Write write)
    {
        const QByteArray path = QFile::encodeName(fileName());
        struct stat before = {};
        const bool existed = stat(path.constData(), &before) == 0;
        write();
        struct stat after = {};
        if (!existed || stat(path.constData(), &after) != 0 || after.st_ino == before.st_ino) {
            return;
        }
        if (after.st_uid != before.st_uid || after.st_gid != before.st_gid) {
            if (chown(path.constData(), before.st_uid, before.st_gid) != 0) {
                return; // the file stays root's, which still works for the daemon
            }
        }
    }

    QRecursiveMutex m_mutex;
};

// Created before main() and never deleted: worker threads may still read while the process ends.
SettingsStore *const store = new SettingsStore(QStringLiteral("/opt/norvix/.daemon_ng.ini"));

QRecursiveMutex *mutexOf(QSettings *settings)
{
    auto *own = dynamic_cast<SettingsStore *>(settings);
    return own != nullptr ? &own->mutex() : nullptr;
}

} // namespace

QSettings *settings()
{
    return store;
}

QVariant readSetting(QSettings *store, const char *key, const QVariant &fallback)
{
    const QMutexLocker lock(mutexOf(store));
    return store->value(QLatin1String(key), fallback);
}

QString settingText(const QVariant &value)
{
    return value.type() == QVariant::StringList ? value.toStringList().join(QStringLiteral(", "))
                                                : value.toString();
}

QString readSettingText(QSettings *store, const char *key, const QVariant &fallback)
{
    return settingText(readSetting(store, key, fallback));
}

void writeSetting(QSettings *store, const char *key, const QVariant &value)
{
    const QMutexLocker lock(mutexOf(store));
    store->setValue(QLatin1String(key), value);
}

void syncSettings(QSettings *store)
{
    if (auto *own = dynamic_cast<SettingsStore *>(store)) {
        own->syncNow();
    } else if (store != nullptr) {
        store->sync();
    }
}

void removeStaleSettingsLocks()
{
    const QString path = store->fileName();
    QFile::remove(path + QStringLiteral(".lock"));
    QFile::remove(path + QStringLiteral(".lock.rmlock"));
}
