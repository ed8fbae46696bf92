// SPDX-License-Identifier: MIT
// The line cutter, fed in pieces of every size.
#include "support/process/line_cutter.h"
#include "test_data.h"
#include "test_table.h"

#include <QTest>

namespace {

/// The lines and the rest, as the whole text at once tells them.
QByteArrayList model(const QByteArray &text)
{
    QByteArrayList parts = text.split('\n');
    for (QByteArray &part : parts) {
        part.truncate(LineCutter::maxLineLength);
    }
    return parts;
}

/// The same from the cutter, which is given the text in @p pieces.
QByteArrayList cut(const QByteArrayList &pieces)
{
    LineCutter cutter;
    QByteArrayList parts;
    for (const QByteArray &piece : pieces) {
        parts += cutter.feed(piece);
    }
    parts.append(cutter.takeRest());
    return parts;
}

} // namespace

class LineCutterTest : public QObject
{
    Q_OBJECT

private slots:
    void linesComeWithoutTheirLineFeed_data();
    void linesComeWithoutTheirLineFeed();
    void recordedTextIsCutTheSameWhereverItIsSplit_data();
    void recordedTextIsCutTheSameWhereverItIsSplit();
    void aLineIsGivenAsSoonAsItsLineFeedArrives();
    void anOverlongLineComesOnceShortened();
    void anEndlessLineDoesNotGrowInMemory();
    void theRestIsForgottenOnceTaken();
};

void LineCutterTest::linesComeWithoutTheirLineFeed_data()
{
    const auto row = table<QByteArray, QByteArrayList>("text", "parts");
    row("nothing", QByteArray(), QByteArrayList{""});
    row("one line", "a\n", QByteArrayList{"a", ""});
    row("no line feed", "a", QByteArrayList{"a"});
    row("empty lines", "\n\n", QByteArrayList{"", "", ""});
    row("unfinished last line", "a\nbc", QByteArrayList{"a", "bc"});
    row("carriage return stays", "a\r\nb\r", QByteArrayList{"a\r", "b\r"});
    row("NUL bytes stay", QByteArray("a\0b\n\0\n", 6),
        QByteArrayList{QByteArray("a\0b", 3), QByteArray("\0", 1), ""});
    row("no valid UTF-8", "\xff\xc3\n\x80", QByteArrayList{"\xff\xc3", "\x80"});
}

void LineCutterTest::linesComeWithoutTheirLineFeed()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArrayList, parts);
    QCOMPARE(cut({text}), parts);

    QByteArrayList bytes;
    for (const char byte : text) {
        bytes.append(QByteArray(1, byte));
    }
    QCOMPARE(cut(bytes), parts);
}

void LineCutterTest::recordedTextIsCutTheSameWhereverItIsSplit_data()
{
    const auto row = table<QByteArray>("text");
    const QStringList names = testDataNames(QStringLiteral("pppd"), QStringLiteral("*.txt"));
    for (const QString &name : names) {
        row(qPrintable(name), testData(QStringLiteral("pppd/") + name));
    }
}

void LineCutterTest::recordedTextIsCutTheSameWhereverItIsSplit()
{
    QFETCH(QByteArray, text);
    const QByteArrayList parts = model(text);
    QCOMPARE(cut({text}), parts);
    for (int i = 0; i <= text.size(); ++i) {
        QCOMPARE(cut({text.left(i), text.mid(i)}), parts);
    }
    QByteArrayList bytes;
    for (const char byte : qAsConst(text)) {
        bytes.append(QByteArray(1, byte));
    }
    QCOMPARE(cut(bytes), parts);
}

void LineCutterTest::aLineIsGivenAsSoonAsItsLineFeedArrives()
{
    LineCutter cutter;
    QCOMPARE(cutter.feed("local  IP"), QByteArrayList());
    QCOMPARE(cutter.feed(QByteArray()), QByteArrayList());
    QCOMPARE(cutter.feed(" address\nremote"), QByteArrayList{"local  IP address"});
    QCOMPARE(cutter.feed("\n"), QByteArrayList{"remote"});
}

void LineCutterTest::anOverlongLineComesOnceShortened()
{
    const int limit = 64 * 1024;
    for (const int size : {limit - 1, limit, limit + 1, 1024 * 1024}) {
        const QByteArray text = QByteArray(size, 'x') + "\nnext\n";
        const QByteArrayList parts = {QByteArray(qMin(size, limit), 'x'), "next", ""};
        QCOMPARE(cut({text}), parts);
        QCOMPARE(cut({text.left(1000), text.mid(1000)}), parts);
        QCOMPARE(cut({text.left(size), text.mid(size)}), parts);
    }
}

void LineCutterTest::anEndlessLineDoesNotGrowInMemory()
{
    LineCutter cutter;
    const QByteArray piece(4096, 'x');
    for (int i = 0; i < 256; ++i) {
        QCOMPARE(cutter.feed(piece), QByteArrayList());
    }
    const QByteArray rest = cutter.takeRest();
    QCOMPARE(rest.size(), int(LineCutter::maxLineLength));
    QVERIFY(rest.capacity() <= 2 * LineCutter::maxLineLength);
}

void LineCutterTest::theRestIsForgottenOnceTaken()
{
    LineCutter cutter;
    cutter.feed("half");
    QCOMPARE(cutter.takeRest(), QByteArray("half"));
    QCOMPARE(cutter.takeRest(), QByteArray());
    QCOMPARE(cutter.feed("whole\n"), QByteArrayList{"whole"});
}

QTEST_APPLESS_MAIN(LineCutterTest)
#include "line_cutter_test.moc"
