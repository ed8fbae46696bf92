// SPDX-License-Identifier: MIT
#include "daemon/announcements.h"

#include <algorithm>

void Announcements::add(const QString &udi)
{
    m_waiting.append({Announcement::Kind::Addition, udi});
    m_mayRepeat = true;
}

void Announcements::addUnlessRepeated(const QString &udi)
{
    const bool isRepeated = m_mayRepeat && !m_waiting.isEmpty()
        && m_waiting.constLast().kind == Announcement::Kind::Addition
        && m_waiting.constLast().udi == udi;
    if (!isRepeated) {
        add(udi);
    }
}

void Announcements::addVerification()
{
    m_waiting.append({Announcement::Kind::Verification, QString()});
}

void Announcements::dropVerifications()
{
    m_waiting.erase(std::remove_if(m_waiting.begin(), m_waiting.end(),
                        [](const Announcement &announcement) {
                            return announcement.kind == Announcement::Kind::Verification;
                        }),
        m_waiting.end());
}
