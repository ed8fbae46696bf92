// SPDX-License-Identifier: MIT
// The settings file /opt/norvix/.daemon_ng.ini.
#pragma once

#include <QSettings>
#include <QVariant>

/// The process's one settings object. It exists before main() and is never deleted.
QSettings *settings();

/// Reads @p key of @p store under the store's lock, @p fallback when it is missing. Any thread.
QVariant readSetting(QSettings *store, const char *key, const QVariant &fallback = QVariant());

/// A value as text: a list that an unquoted comma made of a hand-written text is joined again.
QString settingText(const QVariant &value);

/// The same as readSetting(), as settingText().
QString readSettingText(QSettings *store, const char *key, const QVariant &fallback = QVariant());

/// Stores @p value under @p key. It reaches the disk when the main loop runs next. Main thread.
void writeSetting(QSettings *store, const char *key, const QVariant &value);

/// Reads changes that others made to the file, and writes pending ones. Any thread.
void syncSettings(QSettings *store);

/// Removes lock files that a killed process left beside the settings file: each would block the
/// next write for half a minute. Only while no other instance can run.
void removeStaleSettingsLocks();
