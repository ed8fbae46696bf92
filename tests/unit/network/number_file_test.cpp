// SPDX-License-Identifier: MIT
// Counter files: what counts as a number, and that a failure leaves the output alone.
#include "network/number_file.h"
#include "test_files.h"
#include "test_table.h"

#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr unsigned untouched = 77;

} // namespace

class NumberFileTest : public QObject
{
    Q_OBJECT

private slots:
    void theNumberAtTheBeginningIsRead_data();
    void theNumberAtTheBeginningIsRead();
    void aLongNumberIsReadWhole();
    void whatCannotBeOpenedLeavesTheOutputAlone();
    void theKernelsOwnCountersAreRead();
    void thePathIsLatin1();
    void noDescriptorIsLeftOpen();

private:
    QString fileWith(const QByteArray &content);

    QTemporaryDir m_folder;
};

QString NumberFileTest::fileWith(const QByteArray &content)
{
    QString path = m_folder.filePath(QStringLiteral("rx_bytes"));
    writeFile(path, content);
    return path;
}

void NumberFileTest::theNumberAtTheBeginningIsRead_data()
{
    const auto row = table<QByteArray, bool, uint>("content", "isNumber", "number");
    row("as the kernel writes it", "5000\n", true, 5000);
    row("zero", "0\n", true, 0);
    row("without a line feed", "12", true, 12);
    row("the largest of 32 bits", "4294967295\n", true, 4294967295U);
    row("blanks before", " \t\n 12\n", true, 12);
    row("a megabyte of blanks before", QByteArray(1024 * 1024, ' ') + "12\n", true, 12);
    row("text behind", "12abc\n", true, 12);
    row("the first of two", "12 34\n", true, 12);
    row("leading zeros", "0012\n", true, 12); // decimal, not octal
    row("empty", "", false, untouched);
    row("only a line feed", "\n", false, untouched);
    row("text", "abc\n", false, untouched);
    row("NUL",
        QByteArray("\0"
                   "12\n",
            4),
        false, untouched);
    row("no encoding",
        "\xff"
        "12\n",
        false, untouched);
    row("only a sign", "-\n", false, untouched);
}

void NumberFileTest::theNumberAtTheBeginningIsRead()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isNumber);
    QFETCH(uint, number);
    const QString path = fileWith(content);

    unsigned int small = untouched;
    QCOMPARE(readUnsigned(path, small), isNumber);
    QCOMPARE(small, number);

    unsigned long large = untouched;
    QCOMPARE(readUnsignedLong(path, large), isNumber);
    QCOMPARE(large, static_cast<unsigned long>(number));
}

void NumberFileTest::aLongNumberIsReadWhole()
{
    unsigned long large = untouched;
    QVERIFY(readUnsignedLong(fileWith("18446744073709551615\n"), large));
    QCOMPARE(large, 18446744073709551615UL);
}

void NumberFileTest::whatCannotBeOpenedLeavesTheOutputAlone()
{
    for (const QString &path :
        {QString(), m_folder.path(), m_folder.filePath(QStringLiteral("missing"))}) {
        unsigned int small = untouched;
        QVERIFY(!readUnsigned(path, small));
        QCOMPARE(small, untouched);
        unsigned long large = untouched;
        QVERIFY(!readUnsignedLong(path, large));
        QCOMPARE(large, static_cast<unsigned long>(untouched));
    }
}

void NumberFileTest::theKernelsOwnCountersAreRead()
{
    for (const char *counter : {"rx_bytes", "tx_bytes", "rx_errors", "tx_errors"}) {
        unsigned long value = 0;
        QVERIFY(readUnsignedLong(
            QStringLiteral("/sys/class/net/lo/statistics/%1").arg(QLatin1String(counter)), value));
    }
}

void NumberFileTest::thePathIsLatin1()
{
    const QByteArray name = m_folder.path().toLatin1() + "/\xe9";
    const int fd = open(name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    QVERIFY(fd >= 0);
    QCOMPARE(write(fd, "12\n", 3), ssize_t(3));
    close(fd);
    unsigned int number = untouched;
    QVERIFY(readUnsigned(QString::fromLatin1(name), number));
    QCOMPARE(number, 12U);
}

void NumberFileTest::noDescriptorIsLeftOpen()
{
    const QString good = fileWith("12\n");
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    const auto count
        = [&] { return descriptors.entryList(QDir::AllEntries | QDir::System).size(); };
    const int before = count();
    for (int i = 0; i < 20; ++i) {
        unsigned int number = 0;
        readUnsigned(good, number);
        readUnsigned(m_folder.path(), number);
    }
    QCOMPARE(count(), before);
}

QTEST_APPLESS_MAIN(NumberFileTest)
#include "number_file_test.moc"
