// SPDX-License-Identifier: MIT
// Waiting for the line, with a made-up line. What the thread starts afterwards needs a whole
// machine and is tested there.
#include "captured_stdout.h"
#include "connection/connect_thread.h"
#include "connection/line_state.h"
#include "support/process/debug.h"
#include "test_files.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <vector>

namespace {

std::vector<int> statesToCome; // the last one stays
int polls = 0;

int madeUpState()
{
    ++polls;
    const int state = statesToCome.front();
    if (statesToCome.size() > 1) {
        statesToCome.erase(statesToCome.begin());
    }
    return state;
}

} // namespace

class ConnectThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void aLineThatIsUpIsNotWaitedFor();
    void aLineThatComesUpIsAnnouncedOnceAsSynchronizing();
    void aLineThatNeverComesUpIsGivenUpAfterEightPolls();

private:
    QTemporaryDir m_folder;
    QString m_verboseLog = m_folder.filePath(QStringLiteral("verbose.log"));
    // One for the life of the process, like the daemon's.
    ConnectThread *m_thread = new ConnectThread(nullptr, madeUpState);
};

void ConnectThreadTest::initTestCase()
{
    debug = true;
}

void ConnectThreadTest::init()
{
    polls = 0;
    QFile::remove(m_verboseLog);
    setDebug(true, m_verboseLog);
}

void ConnectThreadTest::cleanupTestCase()
{
    setDebug(false, QString());
}

void ConnectThreadTest::aLineThatIsUpIsNotWaitedFor()
{
    statesToCome = {LineSynchronized};
    QSignalSpy synchronizing(m_thread, &ConnectThread::synchronizing);
    CapturedStdout capture;
    const bool isUp = m_thread->waitForSynchronization();
    QCOMPARE(capture.text(), QByteArray("wFS(): counter == 0\ngetModemState called\n"));
    QVERIFY(isUp);
    QCOMPARE(polls, 1);
    QCOMPARE(synchronizing.size(), 0);
    QCOMPARE(m_thread->result(), 3);
    QCOMPARE(contentOf(m_verboseLog),
        QByteArray("ConnectThread::waitForSynchronization(): modem synchronized.\n"));
}

void ConnectThreadTest::aLineThatComesUpIsAnnouncedOnceAsSynchronizing()
{
    statesToCome = {LineUnknown, LineSynchronizing, LineSynchronized};
    QSignalSpy synchronizing(m_thread, &ConnectThread::synchronizing);
    QElapsedTimer clock;
    clock.start();
    CapturedStdout capture;
    const bool isUp = m_thread->waitForSynchronization();
    QCOMPARE(capture.text(),
        QByteArray("wFS(): counter == 0\nwFS(): counter == 1\nwFS(): counter == 2\n"
                   "getModemState called\n"));
    QVERIFY(isUp);
    QVERIFY(clock.elapsed() >= 9990);
    QCOMPARE(polls, 3);
    QCOMPARE(synchronizing.size(), 1);
    QCOMPARE(contentOf(m_verboseLog),
        QByteArray("ConnectThread::waitForSynchronization(): counter == 0, emitting the "
                   "synchronizing signal.\n"
                   "ConnectThread::waitForSynchronization(): modem synchronized.\n"));
}

void ConnectThreadTest::aLineThatNeverComesUpIsGivenUpAfterEightPolls()
{
    statesToCome = {LineBooting};
    QSignalSpy synchronizing(m_thread, &ConnectThread::synchronizing);
    QElapsedTimer clock;
    clock.start();
    CapturedStdout capture;
    const bool isUp = m_thread->waitForSynchronization();
    const QByteArray text = capture.text();
    QVERIFY(text.startsWith("wFS(): counter == 0\n"));
    QVERIFY(text.endsWith("wFS(): counter == 7\n"));
    QVERIFY(!isUp);
    QVERIFY(clock.elapsed() >= 34990);
    QCOMPARE(polls, 8);
    QCOMPARE(synchronizing.size(), 1);
    QCOMPARE(m_thread->result(), 0);
    QVERIFY(contentOf(m_verboseLog)
                .endsWith("ConnectThread::waitForSynchronization(): counter > 6, resetting and "
                          "returning.\n"));

    // The next attempt counts from the beginning.
    statesToCome = {LineSynchronized};
    CapturedStdout next;
    QVERIFY(m_thread->waitForSynchronization());
    QCOMPARE(next.text(), QByteArray("wFS(): counter == 0\ngetModemState called\n"));
}

QTEST_GUILESS_MAIN(ConnectThreadTest)
#include "connect_thread_test.moc"
