// SPDX-License-Identifier: MIT
// HAL's announcements that wait.
#include "daemon/announcements.h"

#include <QStringList>
#include <QTest>

namespace {

const QString modem = QStringLiteral("/modem");
const QString stick = QStringLiteral("/stick");

/// What waits, in order; a verification is "?".
QStringList waiting(Announcements announcements)
{
    QStringList all;
    while (!announcements.isEmpty()) {
        const Announcement next = announcements.first();
        announcements.removeFirst();
        all.append(next.kind == Announcement::Kind::Addition ? next.udi : QStringLiteral("?"));
    }
    return all;
}

} // namespace

class AnnouncementsTest : public QObject
{
    Q_OBJECT

private slots:
    void theyWaitInTheirOrder()
    {
        Announcements announcements;
        QVERIFY(announcements.isEmpty());
        announcements.add(modem);
        announcements.add(modem);
        announcements.addVerification();
        announcements.add(stick);
        QCOMPARE(waiting(announcements), (QStringList{modem, modem, QStringLiteral("?"), stick}));
    }

    void onlyAnEqualOneRightBeforeMakesARepetition()
    {
        Announcements announcements;
        for (const QString &udi : {modem, modem, modem, stick, modem}) {
            announcements.addUnlessRepeated(udi);
        }
        QCOMPARE(waiting(announcements), (QStringList{modem, stick, modem}));
    }

    void afterARemovalOrAVerificationNothingIsARepetition()
    {
        Announcements announcements;
        announcements.addUnlessRepeated(modem);
        announcements.noteRemoval();
        announcements.addUnlessRepeated(modem);
        announcements.addVerification();
        announcements.addUnlessRepeated(modem);
        QCOMPARE(waiting(announcements), (QStringList{modem, modem, QStringLiteral("?"), modem}));
    }

    void whatNoLongerWaitsMakesNoRepetition()
    {
        Announcements announcements;
        announcements.addUnlessRepeated(modem);
        announcements.removeFirst();
        announcements.addUnlessRepeated(modem);
        QCOMPARE(waiting(announcements), QStringList{modem});
    }

    void aVerificationIsDroppedWithoutTouchingTheRest()
    {
        Announcements announcements;
        announcements.add(modem);
        announcements.addVerification();
        announcements.add(stick);
        announcements.dropVerifications();
        QCOMPARE(waiting(announcements), (QStringList{modem, stick}));
    }
};

QTEST_APPLESS_MAIN(AnnouncementsTest)
#include "announcements_test.moc"
