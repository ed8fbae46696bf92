// SPDX-License-Identifier: MIT
// The text of the settings file: pure, knows no file.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QMetaType>
#include <QString>
#include <QVariant>

/// A larger file is no settings file of ours: real ones have a few hundred bytes.
constexpr int mostSettingsBytes = 64 * 1024;

/// What all keys may take together, in characters, their sections' names before each of them: a
/// small file with one long name would take hundreds of megabytes. Keys beyond are left out.
constexpr int mostKeyCharacters = 4 * mostSettingsBytes;

/// A value that is no plain one (a serialised object, say). It counts for nothing, is never
/// decoded, and is written as it was read: it may be another program's.
struct UndecodedSetting
{
    QByteArray text;
};
Q_DECLARE_METATYPE(UndecodedSetting)

/// What a settings file says.
struct ReadSettings
{
    QMap<QString, QVariant> values; ///< a text, a list of texts or bytes each
    bool isWellFormed = true; ///< whether no line had to be left out
};

/// Reads @p text as QSettings reads its INI files, but for values that are no plain ones, which
/// become an UndecodedSetting, and but for keys beyond mostKeyCharacters. Keys of a group are
/// "group/key".
ReadSettings settingsFrom(const QByteArray &text);

/// The text that QSettings writes for the same values, byte for byte; groups in alphabetical order.
/// Keys without a name deep in a group ("a/b/") are left out: such a line could not be read again.
QByteArray settingsText(const QMap<QString, QVariant> &values);

/// A value as text: a list that an unquoted comma made of a hand-written text is joined again.
QString settingAsText(const QVariant &value);
