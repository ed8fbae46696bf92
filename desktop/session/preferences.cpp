// SPDX-License-Identifier: MIT
#include "desktop/session/preferences.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>

namespace desktop {

namespace {

QString keyOf(NoticeKind kind)
{
    switch (kind) {
    case NoticeKind::AttemptFailed:
        return QStringLiteral("notices/attempt_failed");
    case NoticeKind::LinkLost:
        return QStringLiteral("notices/link_lost");
    case NoticeKind::NewModem:
        return QStringLiteral("notices/new_modem");
    case NoticeKind::LimitReached:
        return QStringLiteral("notices/limit_reached");
    }
    return {};
}

QString autostartFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/autostart/com.norvix.Desktop.desktop");
}

// packaging/desktop has the same one for administrators.
const char autostartText[] = "[Desktop Entry]\n"
                             "Type=Application\n"
                             "Name=Norvix\n"
                             "Exec=/opt/norvix/bin/norvix-desktop --background\n"
                             "Icon=norvix-desktop\n"
                             "Terminal=false\n"
                             "NoDisplay=true\n";

} // namespace

Preferences::Preferences(QObject *parent)
    : QObject(parent)
    , m_settings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("norvix"),
          QStringLiteral("desktop"))
{
}

bool Preferences::isTold(NoticeKind kind) const
{
    return m_settings.value(keyOf(kind), true).toBool();
}

void Preferences::setTold(NoticeKind kind, bool isTold)
{
    m_settings.setValue(keyOf(kind), isTold);
}

bool Preferences::isAutostarted() const
{
    return QFile::exists(autostartFile());
}

bool Preferences::setAutostarted(bool isWanted)
{
    if (!isWanted) {
        return QFile::remove(autostartFile()) || !isAutostarted();
    }
    QDir().mkpath(QFileInfo(autostartFile()).path());
    QSaveFile file(autostartFile());
    return file.open(QIODevice::WriteOnly) && file.write(autostartText) > 0 && file.flush()
        && file.commit(); // which does not see the error of what is still buffered
}

bool Preferences::wasSaid(const QString &what) const
{
    return m_settings.value(QStringLiteral("said/") + what).toBool();
}

void Preferences::setSaid(const QString &what)
{
    m_settings.setValue(QStringLiteral("said/") + what, true);
}

} // namespace desktop
