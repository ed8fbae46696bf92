// SPDX-License-Identifier: MIT
// The settings object of the process, and how it reads and replaces its file.
#pragma once

#include <QByteArray>
#include <QMutex>
#include <QSettings>
#include <QString>
#include <functional>
#include <optional>

/// One INI file for all threads. Other programs may write it too, and some in place: what such a
/// write has left half done is believed, but never merged into what this process writes.
class SettingsStore : public QSettings
{
public:
    explicit SettingsStore(const QString &path);

    /// Reads what others wrote, and writes what is pending. False when something could not be
    /// written: the old file stays, and the next call tries again. Any thread.
    bool syncNow();

    /// @p key is to reach the disk. Under mutex().
    void setPending(const QString &key);

    QRecursiveMutex &mutex() { return m_mutex; }

protected:
    /// The library's deferred write arrives here.
    bool event(QEvent *event) override;

private:
    bool write(const std::function<void()> &sync);
    SettingsMap known() const;
    bool isWhole();
    SettingsMap withChanges(SettingsMap values) const;
    void take(const SettingsMap &changes);
    void takeMissing(const SettingsMap &values);
    QString mountedFile() const;
    bool exchangeInPlace(const QString &place);
    bool isOnDisk() const;

    QRecursiveMutex m_mutex;
    bool m_isPending = false;
    SettingsMap m_changes; ///< what is not on the disk; no value for what is to go from it
    SettingsMap m_whole; ///< what the file held when nobody was just writing it
    std::optional<QByteArray> m_torn; ///< content that was waited for in vain
    bool m_hasFailed = false; ///< which has been told
};

/// The one store. It exists before main() and is never deleted.
SettingsStore *settingsStore();

/// The line to log about a file that was set aside when the store was opened, or an empty text.
QString foundAtStart();
