// SPDX-License-Identifier: MIT
// HAL's announcements that are still to be looked into.
#pragma once

#include <QList>
#include <QString>

/// One thing to ask HAL about.
struct Announcement
{
    enum class Kind
    {
        Addition, ///< a device was added; it is to be accepted or ignored
        Verification, ///< the device accepted last is to be examined, its delay being over
    };

    Kind kind;
    QString udi; ///< of an addition
};

/// Additions and verifications in the order in which they came.
class Announcements
{
public:
    bool isEmpty() const { return m_waiting.isEmpty(); }
    const Announcement &first() const { return m_waiting.constFirst(); }
    void removeFirst() { m_waiting.removeFirst(); }

    void add(const QString &udi);

    /// The same, but one that repeats the announcement right before it, which still waits, adds
    /// nothing.
    void addUnlessRepeated(const QString &udi);

    /// What is added next is no repetition: something was removed in between.
    void noteRemoval() { m_mayRepeat = false; }

    void addVerification();

    /// A newly accepted device takes the place of the one that was to be examined.
    void dropVerifications();

private:
    QList<Announcement> m_waiting;
    bool m_mayRepeat = false;
};
