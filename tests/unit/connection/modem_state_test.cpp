// SPDX-License-Identifier: MIT
// Reading the kernel log, which is a text here, again and again.
#include "connection/line_state.h"
#include "daemon/norvix_daemon.h"
#include "private_root.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>
#include <cstring>
#include <sys/klog.h>
#include <unistd.h>

namespace {

QByteArray kernelLog;
int lastAction = -1;

/// The memory that the process has taken, in bytes.
qint64 takenMemory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly)
        ? file.readAll().split(' ').constFirst().toLongLong() * sysconf(_SC_PAGESIZE)
        : -1;
}

} // namespace

/// Stands before the C library's.
extern "C" int klogctl(int action, char *buffer, int size) noexcept
{
    lastAction = action;
    const int count = qMin(size, kernelLog.size());
    memcpy(buffer, kernelLog.constData(), size_t(count));
    return count;
}

class ModemStateTest : public QObject
{
    Q_OBJECT

private slots:
    void theLogIsReadAndNotConsumed();
    void alsoAFullLogIsReadToItsEnd();
    void anEmptyLogTellsNothing();
    void manyQuestionsTakeNoMoreMemoryThanOne();
};

void ModemStateTest::theLogIsReadAndNotConsumed()
{
    constexpr int readAll = 3;
    kernelLog = "<6>ATM dev 0: ADSL line: up\n";
    QCOMPARE(Norvix_Daemon::getModemState(), int(LineSynchronized));
    QCOMPARE(lastAction, readAll);
}

void ModemStateTest::alsoAFullLogIsReadToItsEnd()
{
    const QByteArray line = "ATM dev 0: ADSL line: up";
    kernelLog = QByteArray(100000 - line.size(), '\n') + line;
    QCOMPARE(Norvix_Daemon::getModemState(), int(LineSynchronized));
}

void ModemStateTest::anEmptyLogTellsNothing()
{
    kernelLog.clear();
    QCOMPARE(Norvix_Daemon::getModemState(), int(LineUnknown));
    QFile log(QStringLiteral("/opt/norvix/daemon.log"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QVERIFY(log.readAll().endsWith(" Norvix_Daemon::getModemState(): klogctl() <= 0!\n"));
}

void ModemStateTest::manyQuestionsTakeNoMoreMemoryThanOne()
{
    kernelLog = "<6>ATM dev 0: ADSL line: up\n";
    Norvix_Daemon::getModemState();
    const qint64 before = takenMemory();
    for (int i = 0; i < 500; ++i) {
        Norvix_Daemon::getModemState();
    }
    QVERIFY(takenMemory() - before < 10 * 100000);
}

int main(int argc, char **argv)
{
    enterPrivateRoot(argv);
    QCoreApplication application(argc, argv);
    ModemStateTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "modem_state_test.moc"
