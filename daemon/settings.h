// SPDX-License-Identifier: MIT
// The settings file /opt/norvix/.daemon_ng.ini.
#pragma once

#include <QSettings>
#include <QVariant>
#include <functional>

/// The process's one settings object. It exists before main() and is never deleted.
QSettings *settings();

/// Reads @p key of @p store under the store's lock, @p fallback when it is missing or its value is
/// no plain one. Any thread.
QVariant readSetting(QSettings *store, const char *key, const QVariant &fallback = QVariant());

/// The same as readSetting(), as settingAsText().
QString readSettingText(QSettings *store, const char *key, const QVariant &fallback = QVariant());

/// Stores @p value under @p key; an invalid value takes the key away. It reaches the disk when the
/// main loop runs next. Main thread.
void writeSetting(QSettings *store, const char *key, const QVariant &value);

/// From now on @p listener is called after each setting that is stored and each look at the file,
/// on the thread that did so. An empty one ends that.
void onSettingsTouched(std::function<void()> listener);

/// Reads changes that others made to the file, and writes pending ones. Whether the file then holds
/// what the store holds: a write that failed leaves the old file, and is tried again at the next
/// sync. Any thread.
bool syncSettings(QSettings *store);

/// Removes what a killed process left beside the settings file: locks, each of which would block
/// the next write for half a minute, and unfinished files. Only while no other instance
/// can run.
void clearStaleSettingsFiles();

/// Logs that the file was set aside because it could not be a settings file. Once the log is begun.
void logSettingsTrouble();
