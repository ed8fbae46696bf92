// SPDX-License-Identifier: MIT
// The line-reading process with children of every kind.
#include "script_folder.h"
#include "support/process/my_process.h"
#include "test_table.h"
#include "worker.h"

#include <QCoreApplication>
#include <QTest>
#include <memory>
#include <sys/stat.h>

namespace {

constexpr int enough = 60000; // ms that no child here needs

/// A process, and the lines that came from it.
struct Reader
{
    MyProcess process{nullptr};
    QByteArrayList lines;

    Reader()
    {
        QObject::connect(&process, &MyProcess::lineAvailable,
            [this](const QByteArray &line) { lines.append(line); });
    }
    ~Reader()
    {
        process.kill();
        process.waitForFinished();
    }

    QByteArrayList run(const QString &program, const QStringList &arguments = QStringList())
    {
        lines.clear();
        process.start(program, arguments);
        process.waitForFinished(enough);
        return lines;
    }
};

} // namespace

class MyProcessTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void outputComesLineByLine_data();
    void outputComesLineByLine();
    void aLineComesWhileTheChildStillRuns();
    void everyOneOfAHundredThousandLinesComes();
    void aLineOfAMegabyteComesOnceShortened();
    void aKilledChildsUnfinishedLineIsNotCarriedOver();
    void theArgumentsArriveAsTheyAre();
    void aChildsFilesHaveTheUsualModeWhateverTheDaemonsMask();
    void aChildThatCannotBeStartedGivesNoLines_data();
    void aChildThatCannotBeStartedGivesNoLines();
    void aStartWhileAChildRunsIsRefused();
    void theProgramComesFromThePathOfTheEnvironment();
    void aProgramThatIsNotOnThatPathIsNotStarted();
    void linesOfAWorkersChildReachTheMainThreadInOrder();
    void theMainThreadKillsAWorkersChild();
    void theLinesGoOnAfterTheWorkerHasEnded();

private:
    ScriptFolder m_scripts;
};

void MyProcessTest::cleanup()
{
    // A signal handler waits for it: it must never stay up.
    QCOMPARE(childStarts.loadRelaxed(), 0);
}

void MyProcessTest::outputComesLineByLine_data()
{
    const auto row = table<QByteArray, QByteArrayList>("script", "lines");
    row("nothing", "exit 0", {});
    row("two lines", "echo one; echo two", {"one", "two"});
    row("leading blanks stay", "echo '  one '", {"  one "});
    row("empty lines", "echo; echo; echo x", {"", "", "x"});
    row("the last without its end", "echo one; printf two", {"one", "two"});
    row("standard error as well", "echo one; echo two >&2; echo three", {"one", "two", "three"});
    row("only standard error", "echo 'unrecognized option' >&2; exit 2", {"unrecognized option"});
    row("a line in pieces", "printf 'local  '; sleep 0.1; printf 'IP'; sleep 0.1; echo ' address'",
        {"local  IP address"});
    row("NUL bytes", "printf 'a\\0b\\n\\0\\n'", {QByteArray("a\0b", 3), QByteArray("\0", 1)});
    row("no valid UTF-8", "printf '\\377\\303\\n'", {"\xff\xc3"});
    row("carriage returns", "printf 'a\\r\\n'", {"a\r"});
    row("after a crash", "echo one; printf two; kill -9 $$", {"one", "two"});
}

void MyProcessTest::outputComesLineByLine()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArrayList, lines);
    const QString program = m_scripts.add(QStringLiteral("child"), script);
    Reader reader;
    QCOMPARE(reader.run(program), lines);
    QCOMPARE(reader.run(program), lines); // the same object again

    // The same without waiting, through the event loop.
    reader.lines.clear();
    reader.process.start(program, {});
    QTRY_COMPARE_WITH_TIMEOUT(reader.process.state(), QProcess::NotRunning, enough);
    QCOMPARE(reader.lines, lines);
}

void MyProcessTest::aLineComesWhileTheChildStillRuns()
{
    Reader reader;
    reader.process.start(
        m_scripts.add(QStringLiteral("child"), "echo one; printf tw; read x; echo o"), {});
    QTRY_COMPARE_WITH_TIMEOUT(reader.lines, QByteArrayList{"one"}, enough);
    QCOMPARE(reader.process.state(), QProcess::Running);
    reader.process.write("\n");
    QVERIFY(reader.process.waitForFinished(enough));
    QCOMPARE(reader.lines, (QByteArrayList{"one", "two"}));
}

void MyProcessTest::everyOneOfAHundredThousandLinesComes()
{
    Reader reader;
    reader.run(QStringLiteral("/usr/bin/seq"), {QStringLiteral("100000")});
    QCOMPARE(reader.lines.size(), 100000);
    for (int i = 0; i < reader.lines.size(); ++i) {
        QCOMPARE(reader.lines.at(i), QByteArray::number(i + 1));
    }
}

void MyProcessTest::aLineOfAMegabyteComesOnceShortened()
{
    Reader reader;
    const QString program = m_scripts.add(QStringLiteral("child"),
        "head -c 1048576 /dev/zero | tr '\\0' x; echo; echo next; "
        "head -c 1048576 /dev/zero | tr '\\0' y");
    const QByteArrayList lines = {QByteArray(LineCutter::maxLineLength, 'x'), "next",
        QByteArray(LineCutter::maxLineLength, 'y')};
    QVERIFY(reader.run(program) == lines); // not shown when it fails: too long
}

void MyProcessTest::aKilledChildsUnfinishedLineIsNotCarriedOver()
{
    Reader reader;
    reader.process.start(
        m_scripts.add(QStringLiteral("partly"), "echo one; printf half; read x"), {});
    QTRY_COMPARE_WITH_TIMEOUT(reader.lines.size(), 1, enough);
    reader.process.kill();
    QVERIFY(reader.process.waitForFinished(enough));
    const QByteArrayList lines
        = reader.run(m_scripts.add(QStringLiteral("child"), "echo 'Connect: ppp0'"));
    QCOMPARE(lines, QByteArrayList{"Connect: ppp0"});
}

void MyProcessTest::theArgumentsArriveAsTheyAre()
{
    Reader reader;
    const QString program = m_scripts.add(QStringLiteral("child"), "printf '<%s>\\n' \"$@\"");
    QCOMPARE(reader.run(program, {QStringLiteral("two words"), QString(), QStringLiteral("$HOME")}),
        (QByteArrayList{"<two words>", "<>", "<$HOME>"}));
}

void MyProcessTest::aChildsFilesHaveTheUsualModeWhateverTheDaemonsMask()
{
    const mode_t before = umask(0077);
    Reader reader;
    const QByteArrayList lines = reader.run(m_scripts.add(QStringLiteral("child"), "umask"));
    umask(before);
    QCOMPARE(lines, QByteArrayList({"0022"}));
}

void MyProcessTest::aChildThatCannotBeStartedGivesNoLines_data()
{
    const auto row = table<QString>("program");
    const QString plain = m_scripts.add(QStringLiteral("plain"), "echo never");
    QVERIFY(QFile::setPermissions(plain, QFile::ReadOwner | QFile::WriteOwner));
    row("missing", "no-such-program-here");
    row("missing path", "/nowhere/program");
    row("not executable", plain);
    row("a folder", m_scripts.path());
}

void MyProcessTest::aChildThatCannotBeStartedGivesNoLines()
{
    QFETCH(QString, program);
    Reader reader;
    int errors = 0;
    connect(&reader.process, &QProcess::errorOccurred, this, [&] { ++errors; });
    reader.process.start(program, {});
    QCOMPARE(childStarts.loadRelaxed(), 0);
    QVERIFY(!reader.process.waitForFinished(enough));
    QCOMPARE(reader.process.state(), QProcess::NotRunning);
    QCOMPARE(reader.process.error(), QProcess::FailedToStart);
    QCOMPARE(errors, 1);
    QCOMPARE(reader.lines, QByteArrayList());
    QCOMPARE(reader.run(m_scripts.add(QStringLiteral("child"), "echo one")), QByteArrayList{"one"});
}

void MyProcessTest::aStartWhileAChildRunsIsRefused()
{
    Reader reader;
    const QString program
        = m_scripts.add(QStringLiteral("child"), "echo one; printf half; read x; echo ' whole'");
    reader.process.start(program, {});
    QTRY_COMPARE_WITH_TIMEOUT(reader.lines, QByteArrayList{"one"}, enough);
    const qint64 processId = reader.process.processId();

    QTest::ignoreMessage(QtWarningMsg, "QProcess::start: Process is already running");
    reader.process.start(program, {});
    QCOMPARE(reader.process.processId(), processId);
    reader.process.write("\n");
    QVERIFY(reader.process.waitForFinished(enough));
    QCOMPARE(reader.lines, (QByteArrayList{"one", "half whole"})); // what it had begun is not lost
}

void MyProcessTest::theProgramComesFromThePathOfTheEnvironment()
{
    m_scripts.add(QStringLiteral("seq"), "echo \"from $PATH\""); // not the system's
    Reader reader;
    QCOMPARE(reader.run(QStringLiteral("seq"), {QStringLiteral("1")}), QByteArrayList{"1"});
    const QString path = QStringLiteral("/nowhere:") + m_scripts.path();
    reader.process.setEnvironment(
        {QStringLiteral("/opt/norvix/lib64"), QStringLiteral("PATH=") + path});
    QCOMPARE(reader.run(QStringLiteral("seq"), {QStringLiteral("1")}),
        QByteArrayList{"from " + path.toLocal8Bit()});
}

void MyProcessTest::aProgramThatIsNotOnThatPathIsNotStarted()
{
    Reader reader;
    reader.process.setEnvironment({QStringLiteral("PATH=/nowhere")});
    QCOMPARE(reader.run(QStringLiteral("seq"), {QStringLiteral("1")}), QByteArrayList());
    QCOMPARE(reader.process.error(), QProcess::FailedToStart);
}

void MyProcessTest::linesOfAWorkersChildReachTheMainThreadInOrder()
{
    const auto process = std::make_unique<MyProcess>(nullptr);
    QByteArrayList lines;
    QThread *receivedIn = nullptr;
    QObject receiver;
    connect(process.get(), &MyProcess::lineAvailable, &receiver, [&](const QByteArray &line) {
        lines.append(line);
        receivedIn = QThread::currentThread();
    });
    int linesAtTheEnd = -1;
    Worker worker([&] {
        process->start(QStringLiteral("/usr/bin/seq"), {QStringLiteral("5000")});
        process->waitForFinished(enough);
    });
    connect(worker.thread(), &QThread::finished, &receiver, [&] { linesAtTheEnd = lines.size(); });
    process->moveToThread(worker.thread());
    worker.start();
    QTRY_VERIFY_WITH_TIMEOUT(linesAtTheEnd >= 0, enough);
    QVERIFY(worker.wait(enough));
    QCOMPARE(linesAtTheEnd, 5000);
    QCOMPARE(lines.size(), 5000);
    QCOMPARE(lines.first(), QByteArray("1"));
    QCOMPARE(lines.last(), QByteArray("5000"));
    QCOMPARE(receivedIn, QThread::currentThread());
}

void MyProcessTest::theMainThreadKillsAWorkersChild()
{
    const auto process = std::make_unique<MyProcess>(nullptr);
    const QString program = m_scripts.add(QStringLiteral("child"), "echo ready; exec sleep 600");
    Worker worker([&] {
        process->start(program, {});
        process->waitForFinished(-1);
    });
    process->moveToThread(worker.thread());
    bool isReady = false;
    QObject receiver;
    connect(process.get(), &MyProcess::lineAvailable, &receiver, [&] { isReady = true; });
    worker.start();
    QTRY_VERIFY_WITH_TIMEOUT(isReady, enough);
    process->kill();
    QVERIFY(worker.wait(enough));
}

void MyProcessTest::theLinesGoOnAfterTheWorkerHasEnded()
{
    Reader reader;
    Worker worker([&] {
        reader.process.start(m_scripts.add(QStringLiteral("child"),
                                 "echo one; printf tw; read x; echo o; seq 100000"),
            {});
        while (reader.lines.isEmpty()) {
            reader.process.waitForReadyRead(enough);
        }
        reader.process.moveToThread(QCoreApplication::instance()->thread());
    });
    reader.process.moveToThread(worker.thread());
    worker.start();
    QVERIFY(worker.wait(enough));
    reader.process.write("\n");
    QTRY_COMPARE_WITH_TIMEOUT(reader.process.state(), QProcess::NotRunning, enough);
    QCOMPARE(reader.lines.size(), 100002);
    QCOMPARE(reader.lines.at(1), QByteArray("two"));
    QCOMPARE(reader.lines.last(), QByteArray("100000"));
}

QTEST_GUILESS_MAIN(MyProcessTest)
#include "my_process_test.moc"
