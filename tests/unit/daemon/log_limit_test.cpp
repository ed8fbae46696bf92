// SPDX-License-Identifier: MIT
// What a log keeps of a long attempt to connect.
#include "daemon/log_limit.h"

#include <QTest>

namespace {

constexpr int megabyte = 1048576;

/// Lines of 64 bytes with their numbers, from @p first on, about @p size bytes of them.
QByteArray lines(int first, int size)
{
    QByteArray text;
    for (int number = first; text.size() < size; ++number) {
        text += "line " + QByteArray::number(number).rightJustified(8, '0') + QByteArray(50, '.')
            + '\n';
    }
    return text;
}

} // namespace

class LogLimitTest : public QObject
{
    Q_OBJECT

private slots:
    void anAttemptOfTwoMegabytesStaysWhole()
    {
        LogLimit limit;
        limit.begin(500000);
        QVERIFY(!limit.isExceeded(500000));
        QVERIFY(!limit.isExceeded(500000 + 2 * megabyte));
        QVERIFY(limit.isExceeded(500000 + 4 * megabyte));
    }

    void theFirstAndTheLastMegabyteStayAndWhatWentBefore()
    {
        const QByteArray before = "of an older attempt\n";
        const QByteArray attempt = lines(0, 4 * megabyte);
        LogLimit limit;
        limit.begin(before.size());
        const QByteArray log = limit.thinned(before + attempt, "now ");
        QVERIFY(log.startsWith(before + attempt.left(megabyte - 64)));
        QVERIFY(log.endsWith(attempt.right(megabyte - 64)));
        QVERIFY(log.size() < before.size() + 2 * megabyte + 200);
        for (const QByteArray &line : log.split('\n')) {
            const bool isWhole = line.startsWith("line ") && line.size() == 63;
            const bool isNote = line.startsWith("now Norvix_Daemon::writeLog(): ")
                && line.endsWith(" bytes of this attempt are left out here.");
            QVERIFY2(
                isWhole || isNote || line.isEmpty() || line + '\n' == before, line.constData());
        }
    }

    void howeverOftenItIsThinnedOneLineTellsHowMuchIsMissing()
    {
        LogLimit limit;
        limit.begin(0);
        QByteArray log;
        qint64 written = 0;
        for (int i = 0; i < 20; ++i) {
            const QByteArray more = lines(i * 100000, megabyte);
            written += more.size();
            log += more;
            if (limit.isExceeded(log.size())) {
                log = limit.thinned(log, "now ");
            }
            QVERIFY(log.size() < 5 * megabyte);
        }
        QCOMPARE(log.count("left out"), 1);
        QVERIFY(log.startsWith(lines(0, megabyte - 64)));
        QVERIFY(log.endsWith(lines(1900000, megabyte).right(megabyte - 64)));
        const int begin = log.indexOf("now ");
        const QByteArray note = log.mid(begin, log.indexOf('\n', begin) + 1 - begin);
        const qint64 missing = note.split(' ').at(2).toLongLong();
        // The notes that were taken out again count as well.
        QVERIFY(missing >= written - (log.size() - note.size()));
        QVERIFY(missing < written - (log.size() - note.size()) + 20 * 200);
    }

    void aLineWithoutAnEndIsCutAnywhere()
    {
        LogLimit limit;
        limit.begin(0);
        const QByteArray log = limit.thinned(QByteArray(4 * megabyte, '#'), "now ");
        QCOMPARE(log.count('#'), 2 * megabyte);
    }

    void aLogThatCannotBeReplacedIsNotTriedAtEveryLine()
    {
        LogLimit limit;
        limit.begin(0);
        QVERIFY(limit.isExceeded(4 * megabyte));
        limit.postpone(4 * megabyte);
        QVERIFY(!limit.isExceeded(4 * megabyte + 100));
        QVERIFY(limit.isExceeded(6 * megabyte));
        limit.begin(0);
        QVERIFY(limit.isExceeded(4 * megabyte));
    }
};

QTEST_APPLESS_MAIN(LogLimitTest)
#include "log_limit_test.moc"
