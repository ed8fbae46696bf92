// SPDX-License-Identifier: MIT
#include "daemon/settings_store.h"

#include "support/files/safe_file.h"
#include "support/files/settings_text.h"

#include <QDeadlineTimer>
#include <QEvent>
#include <QFile>
#include <QFileDevice>
#include <QFileInfo>
#include <QMutexLocker>
#include <QStringList>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Somebody who writes the file in place needs no millisecond.
constexpr int tornForMs = 100;
constexpr int tornPollMs = 10;
constexpr int mostAttempts = 3;

// All under the one store's mutex.
QByteArray lastWritten; ///< null when the library had nothing to write
std::optional<QByteArray> lastJudged; ///< what stood in the file when it was looked at
QByteArray lastMerged; ///< the same with our changes
bool isOvertaken = false; ///< something else stood in the file when it was about to be replaced
bool isLeftOut = false; ///< what stands in the file is not to be merged with anything

bool readValues(QIODevice &device, QSettings::SettingsMap &values)
{
    if (!isLeftOut) {
        values = settingsFrom(device.read(mostSettingsBytes)).values;
    }
    return true;
}

std::optional<QByteArray> contentOf(const QString &path)
{
    return readFileBytes(path, Links::Follow, mostSettingsBytes);
}

/// As it stands in a file.
QByteArray valueText(const QVariant &value)
{
    return settingsText({{QStringLiteral("value"), value}});
}

/// Whether @p text is what a writer has left that was kept from coming to its end: the end of a
/// line is missing, and something of what was @p known as well. What a person has typed may lack
/// the former.
bool isTorn(const QByteArray &text, const QSettings::SettingsMap &known)
{
    if (text.endsWith('\n')) {
        return false;
    }
    const QSettings::SettingsMap values = settingsFrom(text).values;
    const auto isMissing = [&](const QString &key) {
        const QString before = settingAsText(known.value(key));
        const QString now = settingAsText(values.value(key));
        return !values.contains(key) || (now != before && before.startsWith(now));
    };
    return std::any_of(known.keyBegin(), known.keyEnd(), isMissing);
}

/// Gives the file that the library is about to put in the place of @p path the owner, group and
/// mode of that: whoever could write the settings still can.
void takeOver(const QString &path, int replacement)
{
    struct stat before = {};
    struct stat made = {};
    if (stat(QFile::encodeName(path).constData(), &before) != 0 || fstat(replacement, &made) != 0) {
        return;
    }
    if ((made.st_uid != before.st_uid || made.st_gid != before.st_gid)
        && fchown(replacement, before.st_uid, before.st_gid) != 0) {
        return; // the file becomes ours, which still works for us
    }
    fchmod(replacement, before.st_mode & 07777);
}

/// @p device is a new file beside the old one. Flushed and checked here: the library does not see
/// the error of a write that it has buffered, and would put an empty file in place. What it has
/// merged does not count: it may have read half of what somebody was writing.
bool writeValues(QIODevice &device, const QSettings::SettingsMap & /*values*/)
{
    auto *file = qobject_cast<QFileDevice *>(&device);
    isOvertaken = file != nullptr && contentOf(file->fileName()) != lastJudged;
    if (isOvertaken || file == nullptr || file->write(lastMerged) != lastMerged.size()
        || !file->flush()) {
        return false;
    }
    takeOver(file->fileName(), file->handle());
    lastWritten = lastMerged;
    return fsync(file->handle()) == 0;
}

/// INI files as the library has them, of plain values.
QSettings::Format settingsFormat()
{
    static const QSettings::Format format
        = QSettings::registerFormat(QStringLiteral("ini"), readValues, writeValues);
    return format;
}

/// Moves what cannot be the settings file (too large, a pipe, a device) out of the way, so that it
/// is neither read nor lost. Gives the line to log, or an empty text. A folder stays: the settings
/// are then kept in memory only.
QString setAside(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat info = {};
    if (stat(name.constData(), &info) != 0 || S_ISDIR(info.st_mode)
        || (S_ISREG(info.st_mode) && info.st_size <= mostSettingsBytes)) {
        return QString();
    }
    const QString aside = path + QStringLiteral(".set-aside");
    if (rename(name.constData(), QFile::encodeName(aside).constData()) != 0) {
        return QStringLiteral("Settings: %1 is no settings file, and cannot be set aside: %2")
            .arg(path, QString::fromLocal8Bit(strerror(errno)));
    }
    return QStringLiteral("Settings: %1 is no settings file, and has been set aside as %2")
        .arg(path, aside);
}

void tell(const QString &text)
{
    if (!text.isEmpty()) {
        qWarning("%s", text.toLocal8Bit().constData());
    }
}

QString setAsideAtStart; // logged once there is a log

SettingsStore *openStore()
{
    const QString path = QStringLiteral("/opt/norvix/.daemon_ng.ini");
    setAsideAtStart = setAside(path);
    return new SettingsStore(path);
}

// Created before main() and never deleted: worker threads may still read while the process ends.
// Behind everything of this file that the library's calls back use.
SettingsStore *const store = openStore();

} // namespace

SettingsStore::SettingsStore(const QString &path)
    : QSettings(path, settingsFormat())
    , m_whole(settingsFrom(contentOf(path).value_or(QByteArray())).values)
{
}

bool SettingsStore::syncNow()
{
    const QMutexLocker lock(&m_mutex);
    return write([this] { sync(); });
}

void SettingsStore::setPending(const QString &key)
{
    m_isPending = true;
    m_changes.insert(key, contains(key) ? value(key) : QVariant());
}

bool SettingsStore::event(QEvent *event)
{
    const QMutexLocker lock(&m_mutex);
    bool handled = false;
    write([&] { handled = QSettings::event(event); });
    return handled;
}

/// Lets the library read and write, and answers whether nothing is left to be written.
bool SettingsStore::write(const std::function<void()> &sync)
{
    tell(setAside(fileName()));
    const QString mounted = mountedFile();
    int attempts = 0;
    do {
        const bool mayBeMerged = isWhole();
        isLeftOut = !mayBeMerged && m_isPending;
        if (mayBeMerged) {
            m_whole = settingsFrom(lastJudged.value_or(QByteArray())).values;
        } else if (!m_isPending) {
            sync(); // what stands in the file counts; m_whole waits for the next write
            return true;
        }
        const SettingsMap merged = withChanges(m_whole);
        lastMerged = settingsText(merged);
        take(m_changes);
        if (!mounted.isEmpty()) {
            m_isPending = !exchangeInPlace(mounted) && m_isPending;
        }
        lastWritten = QByteArray();
        isOvertaken = false;
        sync();
        takeMissing(merged);
    } while (isOvertaken && mounted.isEmpty() && ++attempts < mostAttempts);
    if (!mounted.isEmpty()) {
        // What the library could not rename is in the file already.
    } else if (!lastWritten.isNull()) {
        m_isPending = readFileBytes(fileName()) != lastWritten;
        // A new name in the folder is to outlive a power failure, as the file itself does.
        syncFolder(QFile::encodeName(QFileInfo(fileName()).path()).toStdString());
    } else if (m_isPending) {
        m_isPending = !isOnDisk(); // taken back before it could be written
    }
    if (m_isPending && !m_hasFailed) {
        tell(QStringLiteral("Settings: %1 could not be written").arg(fileName()));
    }
    m_hasFailed = m_isPending;
    if (!m_isPending) {
        m_whole = withChanges(m_whole);
        m_changes.clear();
    }
    return !m_isPending;
}

/// What the file held when it was last whole, but for keys that are to be written.
QSettings::SettingsMap SettingsStore::known() const
{
    SettingsMap values = m_whole;
    for (auto change = m_changes.begin(); change != m_changes.end(); ++change) {
        values.remove(change.key());
    }
    return values;
}

/// Whether the file may be merged with. One that somebody is writing in place is given a
/// moment, once.
bool SettingsStore::isWhole()
{
    const SettingsMap values = known();
    const QDeadlineTimer deadline(tornForMs);
    for (;;) {
        lastJudged = contentOf(fileName());
        const bool isMissing = !lastJudged && errno == ENOENT;
        if (isMissing || (lastJudged && !isTorn(*lastJudged, values))) {
            m_torn.reset();
            return true;
        }
        if (lastJudged == m_torn || deadline.hasExpired()) {
            m_torn = lastJudged;
            return false;
        }
        poll(nullptr, 0, tornPollMs);
    }
}

QSettings::SettingsMap SettingsStore::withChanges(SettingsMap values) const
{
    for (auto change = m_changes.begin(); change != m_changes.end(); ++change) {
        if (change->isValid()) {
            values.insert(change.key(), *change);
        } else {
            values.remove(change.key());
        }
    }
    return values;
}

/// Has the library know @p changes, and write.
void SettingsStore::take(const SettingsMap &changes)
{
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        if (change->isValid()) {
            setValue(change.key(), *change);
        } else {
            remove(change.key());
        }
    }
}

/// Has the library know those of @p values that it has not read.
void SettingsStore::takeMissing(const SettingsMap &values)
{
    for (auto setting = values.begin(); setting != values.end(); ++setting) {
        if (valueText(value(setting.key())) != valueText(*setting)) {
            setValue(setting.key(), *setting);
        }
    }
}

/// Where the file is when something is mounted on it, as container managers do with single
/// files; else empty.
QString SettingsStore::mountedFile() const
{
    const QString place = QFileInfo(fileName()).canonicalFilePath();
    return !place.isEmpty() && isMountPoint(place) ? place : QString();
}

/// Writes what was set over a file that no rename reaches, and takes over what else it holds:
/// the library, which never gets rid of its changes there, would put them over everybody
/// else's.
bool SettingsStore::exchangeInPlace(const QString &place)
{
    const std::optional<QByteArray> before = readFileBytes(place, Links::Refuse, mostSettingsBytes);
    if (!before) {
        return false;
    }
    const SettingsMap others = isLeftOut ? m_whole : settingsFrom(*before).values;
    const SettingsMap values = withChanges(others);
    if (!m_changes.isEmpty()
        && rewriteFileInPlace(place, *before, settingsText(values), Links::Refuse)
            != Rewrite::Done) {
        return false;
    }
    for (const QString &key : allKeys()) {
        if (!values.contains(key)) {
            remove(key);
        }
    }
    for (auto other = others.begin(); other != others.end(); ++other) {
        const bool isKnown = m_changes.contains(other.key())
            || settingsText({{other.key(), value(other.key())}})
                == settingsText({{other.key(), other.value()}});
        if (!isKnown) {
            setValue(other.key(), other.value());
        }
    }
    return true;
}

/// Whether the file holds what the store holds.
bool SettingsStore::isOnDisk() const
{
    const QByteArray text
        = readFileBytes(fileName(), Links::Follow, mostSettingsBytes).value_or(QByteArray());
    const QSettings::SettingsMap values = settingsFrom(text).values;
    const QStringList keys = allKeys();
    return keys.size() == values.size()
        && std::all_of(keys.begin(), keys.end(), [&](const QString &key) {
               return settingAsText(values.value(key)) == settingAsText(value(key));
           });
}

SettingsStore *settingsStore()
{
    return store;
}

QString foundAtStart()
{
    return setAsideAtStart;
}
