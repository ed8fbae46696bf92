// SPDX-License-Identifier: MIT
// The debug switch and the verbose log.
#include "support/process/debug.h"
#include "test_files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>

class DebugTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void openingTheVerboseLogLeavesTheSwitchAlone();
    void theVerboseLogIsAppendedTo();
    void childrenDoNotInheritTheVerboseLog();
    void aLogThatCannotBeOpenedIsNoError();
    void aPipeWithoutAReaderHoldsNobodyUp();
    void nothingIsWrittenWithoutTheSwitch();

private:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("verbose.log"));
};

void DebugTest::init()
{
    debug = false;
    QFile::remove(m_path);
}

void DebugTest::cleanup()
{
    setDebug(false, QString());
    debug = false;
}

void DebugTest::openingTheVerboseLogLeavesTheSwitchAlone()
{
    QVERIFY(pFile == nullptr);
    setDebug(true, m_path);
    QVERIFY(!debug);
    QVERIFY(pFile != nullptr);
    debug = true;
    setDebug(false, m_path);
    QVERIFY(debug);
    QVERIFY(pFile == nullptr);
}

void DebugTest::theVerboseLogIsAppendedTo()
{
    debug = true;
    for (const char *text : {"one\n", "two\n"}) {
        setDebug(true, m_path);
        writeVerbose(text);
    }
    QCOMPARE(contentOf(m_path), QByteArray("one\ntwo\n")); // there before the stream is closed
}

void DebugTest::childrenDoNotInheritTheVerboseLog()
{
    setDebug(true, m_path);
    QVERIFY((fcntl(fileno(pFile), F_GETFD) & FD_CLOEXEC) != 0);
}

void DebugTest::aLogThatCannotBeOpenedIsNoError()
{
    debug = true;
    for (const QString &path :
        {m_folder.path(), m_folder.filePath(QStringLiteral("no/folder")), QString()}) {
        setDebug(true, path);
        QVERIFY(pFile == nullptr);
        writeVerbose("lost\n");
    }
}

void DebugTest::aPipeWithoutAReaderHoldsNobodyUp()
{
    debug = true;
    QCOMPARE(mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
    setDebug(true, m_path);
    QVERIFY(pFile == nullptr);
    writeVerbose("lost\n");
}

void DebugTest::nothingIsWrittenWithoutTheSwitch()
{
    setDebug(true, m_path);
    writeVerbose("one\n");
    QCOMPARE(contentOf(m_path), QByteArray());
    debug = true;
    writeVerbose("two\n");
    QCOMPARE(contentOf(m_path), QByteArray("two\n"));
}

QTEST_APPLESS_MAIN(DebugTest)
#include "debug_test.moc"
