// SPDX-License-Identifier: MIT
// What a person has chosen for this program, kept in the person's own settings.
#pragma once

#include "desktop/model/notice.h"

#include <QSettings>

namespace desktop {

class Preferences : public QObject
{
    Q_OBJECT

public:
    explicit Preferences(QObject *parent = nullptr);

    /// Everything is told unless it was switched off.
    bool isTold(NoticeKind kind) const;
    void setTold(NoticeKind kind, bool isTold);

    /// Whether the program begins with the session: a file in the person's autostart folder.
    bool isAutostarted() const;
    /// False when the file could not be written or removed.
    bool setAutostarted(bool isWanted);

    /// Whether something that is said only once was said.
    bool wasSaid(const QString &what) const;
    void setSaid(const QString &what);

private:
    QSettings m_settings;
};

} // namespace desktop
