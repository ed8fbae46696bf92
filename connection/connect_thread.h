// SPDX-License-Identifier: MIT
// The worker thread that brings the link up.
#pragma once

#include "support/files/file_descriptor.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QThread>
#include <mutex>

class MyProcess;
class QSettings;

/// Waits for the line, prepares interface and bridge, runs pppd. One object for the life of the
/// process, living on the main thread; launched once per connection.
///
/// The thread may wait for the main thread, and does so every few hundred lines of pppd; therefore
/// the main thread never waits for this one.
class ConnectThread : public QThread
{
    Q_OBJECT

public:
    /// @p getModemState tells the line's state, a LineState as integer; called on this thread.
    ConnectThread(QSettings *settings, int (*getModemState)());

    /// Starts the thread. Main thread, only while it is not running.
    void launch();

    /// Kills the pppd that this thread started, if it still runs. Main thread.
    void killPppd();

    /// The process that runs pppd, for its signals. Main thread.
    const MyProcess *pppd() const { return m_process; }

    /// Has the next pppd wait until @p killall is readable, at most ten seconds: a killall that
    /// still runs would kill it. Nothing to wait for when it is not open. Main thread.
    void waitBeforePppd(FileDescriptor killall);

    /// What came of it.
    enum Result
    {
        NotSynchronized = 0,
        TimedOut
        = 2, ///< no thread ends with it any more, pppd's line tells; kept for one that will
        Ended = 3,
    };

    /// The outcome once the thread has finished, a Result.
    int result() const { return m_result; }

signals:
    void threadMessage(const QString &message); ///< a line for the log
    void debugMsg(QByteArray line); ///< a line of pppd's output
    void synchronizing(); ///< the line is not up yet; once per connection attempt

public slots:
    void run() override;

    /// Polls the line every five seconds. True once it is up, false after 35 seconds without. This
    /// thread only.
    bool waitForSynchronization();

private:
    void keepPaceWithReader();
    void waitForKillall();
    void prepareDSL0();
    void prepareNAS0();
    void prepareInterface(const char *operation, const char *interface);
    void prepareBridging();
    void say(const char *operation, const QString &text);

    MyProcess *m_process;
    int (*m_getModemState)();
    QStringList m_arguments;
    QStringList m_environment;
    bool m_is32bit;
    QSettings *m_settings;
    int m_result = Ended;
    int m_linesSent = 0;
    std::mutex m_killallMutex;
    FileDescriptor m_killall;
};
