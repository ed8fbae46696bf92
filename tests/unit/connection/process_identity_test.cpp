// SPDX-License-Identifier: MIT
// Telling processes apart by when they started.
#include "connection/process_identity.h"
#include "test_table.h"

#include <QProcess>
#include <QTest>
#include <unistd.h>

class ProcessIdentityTest : public QObject
{
    Q_OBJECT

private slots:
    void theStartIsTheTwentySecondField_data();
    void theStartIsTheTwentySecondField();
    void aProcessKeepsItsIdentity();
    void anIdIsTakenOverWhenItsProcessStartedAtAnotherTime();
};

void ProcessIdentityTest::theStartIsTheTwentySecondField_data()
{
    // A start of -1: none.
    const auto row = table<QByteArray, qint64>("stat", "start");
    const QByteArray fields = "S 1 42 42 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 1 0 360047 5459968 512 "
                              "18446744073709551615\n";
    row("pppd", "42 (pppd) " + fields, qint64(360047));
    row("a name with blanks", "42 (a b c) " + fields, qint64(360047));
    row("a name that looks like fields", "42 (x) S 1 2 3) " + fields, qint64(360047));
    row("empty", QByteArray(), qint64(-1));
    row("cut off", "42 (pppd) S 1 42 42 0", qint64(-1));
    row("no name", "42", qint64(-1));
}

void ProcessIdentityTest::theStartIsTheTwentySecondField()
{
    QFETCH(QByteArray, stat);
    QFETCH(qint64, start);
    const std::optional<quint64> ticks = startTicksIn(stat);
    QCOMPARE(ticks ? qint64(*ticks) : qint64(-1), start);
}

void ProcessIdentityTest::aProcessKeepsItsIdentity()
{
    const std::optional<ProcessIdentity> own = identityOf(getpid());
    QVERIFY(own.has_value());
    QCOMPARE(own->pid, getpid());
    QTest::qWait(20);
    QCOMPARE(identityOf(getpid())->startTicks, own->startTicks);
    QVERIFY(!isTakenOver(getpid(), own));

    QProcess later;
    later.start(QStringLiteral("sleep"), {QStringLiteral("600")});
    const std::optional<ProcessIdentity> child = identityOf(pid_t(later.processId()));
    QVERIFY(child && child->startTicks > own->startTicks);
    later.kill();
    QVERIFY(later.waitForFinished());
    QVERIFY(!identityOf(child->pid));
}

void ProcessIdentityTest::anIdIsTakenOverWhenItsProcessStartedAtAnotherTime()
{
    const ProcessIdentity own = *identityOf(getpid());
    QVERIFY(isTakenOver(getpid(), ProcessIdentity{own.pid, own.startTicks - 1}));
    QVERIFY(isTakenOver(getpid(), ProcessIdentity{own.pid, own.startTicks + 1}));
    QVERIFY(!isTakenOver(getpid(), std::nullopt)); // unknown
    QVERIFY(!isTakenOver(getpid(), ProcessIdentity{getppid(), own.startTicks - 1})); // another id
}

QTEST_GUILESS_MAIN(ProcessIdentityTest)
#include "process_identity_test.moc"
