// SPDX-License-Identifier: MIT
// Ending on a signal, in a child process: see main().
#include "daemon/process_end.h"
#include "test_table.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTest>
#include <csignal>
#include <pthread.h>
#include <unistd.h>

namespace {

/// A static object whose destructor hangs, as the bus connection's may.
struct HangsInDestructor
{
    bool armed = false;

    ~HangsInDestructor()
    {
        if (armed) {
            pause();
        }
    }
};

HangsInDestructor hanging;

void *waitForSignals(void *)
{
    for (;;) {
        pause();
    }
    return nullptr;
}

/// Prints "ready" and waits for its end by a signal.
int liveUntilSignal(const QByteArray &where)
{
    setvbuf(stdout, nullptr, _IOLBF, 0); // as the daemon does
    hanging.armed = true;
    endOnSignals();
    if (where == "worker") {
        pthread_t thread;
        pthread_create(&thread, nullptr, waitForSignals, nullptr);
        printf("ready\n");
        pthread_kill(thread, SIGTERM);
        waitForSignals(nullptr);
    }
    printf("ready\n");
    waitForSignals(nullptr);
    return 0;
}

} // namespace

class ProcessEndTest : public QObject
{
    Q_OBJECT

private slots:
    void aSignalPrintsItsLineAndEndsWith255_data();
    void aSignalPrintsItsLineAndEndsWith255();
    void anUnhandledSignalIsLeftAlone();
};

void ProcessEndTest::aSignalPrintsItsLineAndEndsWith255_data()
{
    const auto row = table<QString, int>("where", "number");
    row("hang-up", "main", 1);
    row("interrupt", "main", 2);
    row("terminate", "main", 15);
    row("on another thread", "worker", 15);
}

void ProcessEndTest::aSignalPrintsItsLineAndEndsWith255()
{
    QFETCH(QString, where);
    QFETCH(int, number);
    QProcess process;
    process.start(QStringLiteral("/proc/self/exe"), {QStringLiteral("--live"), where});
    QVERIFY(process.waitForReadyRead(60000));
    if (where == QLatin1String("main")) {
        QCOMPARE(::kill(pid_t(process.processId()), number), 0);
        ::kill(pid_t(process.processId()), number); // impatient users
    }
    QVERIFY(process.waitForFinished(60000)); // static destructors do not run
    // The signal came right after the first line; that one is not repeated.
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 255);
    QCOMPARE(process.readAllStandardOutput(),
        "ready\nNorvix Daemon: Signal " + QByteArray::number(number) + " handled\n");
}

void ProcessEndTest::anUnhandledSignalIsLeftAlone()
{
    QProcess process;
    process.start(
        QStringLiteral("/proc/self/exe"), {QStringLiteral("--live"), QStringLiteral("main")});
    QVERIFY(process.waitForReadyRead(60000));
    QCOMPARE(::kill(pid_t(process.processId()), SIGUSR1), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.readAllStandardOutput(), QByteArray("ready\n"));
}

int main(int argc, char **argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--live") == 0) {
        return liveUntilSignal(argv[2]);
    }
    QCoreApplication application(argc, argv);
    ProcessEndTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "process_end_test.moc"
