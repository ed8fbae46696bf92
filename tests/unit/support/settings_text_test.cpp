// SPDX-License-Identifier: MIT
// The text of the settings file, beside what the library itself makes of it.
#include "support/files/settings_text.h"
#include "test_files.h"
#include "test_table.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const char *const pieces[] = {"a", "b=", "vpi=8\n", "\n", "\r\n", "\r", "[General]\n", "[x y]\n",
    "[%General]\n", "[a%20b\\c]\n", "%41", "%U00e9", "%zz", "\\", "\\n", "\\x41", "\\x", "\\101",
    "\\\n", "\\\r\n", "\"", "\"q, r\"", ", ", ",", ";", ";c\n", " ", "\t", "k = ", "@@",
    "@String(x)", "@ByteArray(y)", "@Invalid()", "\xe9", "\xc3\xa9", "0", "=", "[", "]"};

/// Whether the library reads @p content as we do, for what we read at all.
QString difference(const QString &path, const QByteArray &content)
{
    writeFile(path, content);
    const QMap<QString, QVariant> ours = settingsFrom(content).values;
    QMap<QString, QVariant> theirs;
    {
        const QSettings library(path, QSettings::IniFormat);
        for (const QString &key : library.allKeys()) {
            // Others it lists, but looks for under another name.
            const bool isNormal = !key.isEmpty() && !key.startsWith(QLatin1Char('/'))
                && !key.endsWith(QLatin1Char('/')) && !key.contains(QLatin1String("//"));
            if (isNormal) {
                theirs.insert(key, library.value(key));
            }
        }
    }
    for (auto value = theirs.begin(); value != theirs.end(); ++value) {
        const QVariant mine = ours.value(value.key());
        if (!mine.canConvert<UndecodedSetting>() && mine != value.value()) {
            return value.key();
        }
    }
    return QString();
}

QVariant anyValue(quint32 random)
{
    static const QString texts[]
        = {QString(), QStringLiteral("PPPoE"), QStringLiteral(" blank "), QStringLiteral("a, b"),
            QStringLiteral("a;b=c"), QStringLiteral("@x"), QStringLiteral("\t\n"),
            QStringLiteral(u"caf\u00e9"), QStringLiteral(u"\u20ac1f"), QStringLiteral("\"'\\?"),
            QStringLiteral(u"\u00e9a\u007f0g"), QString(QChar(QChar::Null)) + QLatin1Char('7')};
    const QString text = texts[random % 12];
    switch ((random >> 8) % 6) {
    case 0:
        return int(random);
    case 1:
        return (random & 0x10000) != 0;
    case 2:
        return QStringList{text, texts[(random >> 4) % 12]};
    case 3:
        return (random & 0x10000) != 0 ? QVariant(QStringList()) : QVariant(text.toUtf8());
    default:
        return text;
    }
}

} // namespace

class TestSettingsText : public QObject
{
    Q_OBJECT

private slots:
    void filesAreReadAsTheLibraryReadsThem();
    void blanksBeforeABackslashThatEndsTheFileStay();
    void valuesAreWrittenAsTheLibraryWritesThem();
    void whatIsNoPlainValueIsNeitherDecodedNorLost_data();
    void whatIsNoPlainValueIsNeitherDecodedNorLost();
    void whatTheEndOfTheFileCutsOffTakesNoOtherLineIn_data();
    void whatTheEndOfTheFileCutsOffTakesNoOtherLineIn();
    void aNulByteInAListIsReadAgain();
    void aKeyWithoutANameDeepInAGroupDoesNotSpoilTheFile();
    void linesThatMeanNothingAreTold_data();
    void linesThatMeanNothingAreTold();
    void manyKeysAreReadQuickly();
    void aLongSectionNameDoesNotStandBeforeThousandsOfKeys();
};

void TestSettingsText::filesAreReadAsTheLibraryReadsThem()
{
    const QTemporaryDir folder;
    quint32 random = 20261121;
    for (int round = 0; round < 4000; ++round) {
        QByteArray content;
        for (int i = 0; i < 14; ++i) {
            random = random * 1664525 + 1013904223;
            content += pieces[(random >> 16) % (sizeof pieces / sizeof pieces[0])];
        }
        // A path of its own each time: the library remembers files.
        const QString path = folder.filePath(QString::number(round));
        const QString wrong = difference(path, content);
        QVERIFY2(wrong.isEmpty(),
            (content.toPercentEncoding(" =[]\\\",;@()") + " differs in " + wrong.toUtf8())
                .constData());
        QFile::remove(path);
    }
}

void TestSettingsText::blanksBeforeABackslashThatEndsTheFileStay()
{
    const QTemporaryDir folder;
    const QByteArray content = "[General]\nvpi=8 \\";
    QCOMPARE(difference(folder.filePath(QStringLiteral("ini")), content), QString());
    QCOMPARE(
        settingsFrom(content).values.value(QStringLiteral("vpi")).toString(), QStringLiteral("8 "));
}

void TestSettingsText::valuesAreWrittenAsTheLibraryWritesThem()
{
    const QTemporaryDir folder;
    const QString keys[] = {QStringLiteral("vpi"), QStringLiteral("a b"), QStringLiteral("zz/b/c"),
        QStringLiteral(u"\u00e9"), QStringLiteral(u"\u20ac"), QStringLiteral("general/x"),
        QStringLiteral("_-.9")};
    quint32 random = 7;
    for (int round = 0; round < 300; ++round) {
        const QString path = folder.filePath(QString::number(round));
        QMap<QString, QVariant> values;
        for (const QString &key : keys) {
            random = random * 1664525 + 1013904223;
            values.insert(key, anyValue(random >> 8));
        }
        {
            QSettings library(path, QSettings::IniFormat);
            for (auto value = values.begin(); value != values.end(); ++value) {
                library.setValue(value.key(), value.value());
            }
        }
        const QByteArray written = contentOf(path);
        QCOMPARE(settingsText(values), written);
        QCOMPARE(settingsText(settingsFrom(written).values), written);
    }
}

void TestSettingsText::whatIsNoPlainValueIsNeitherDecodedNorLost_data()
{
    const auto row = table<QByteArray>("value");
    row("a list with a huge count", QByteArray("@Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)"));
    row("a time", QByteArray("@DateTime(\\0\\0\\0\\x10)"));
    row("a size", "@Size(1 2)");
    row("in a list", QByteArray("a, @Variant(\\0), b"));
}

void TestSettingsText::whatIsNoPlainValueIsNeitherDecodedNorLost()
{
    QFETCH(QByteArray, value);
    const QByteArray text = "[General]\nvpi=" + value + "\nzz=1\n";
    const ReadSettings read = settingsFrom(text);
    QCOMPARE(read.values.value(QStringLiteral("vpi")).toString(), QString());
    QCOMPARE(read.values.value(QStringLiteral("vpi")).toStringList(), QStringList());
    QCOMPARE(read.values.value(QStringLiteral("zz")).toInt(), 1);
    QCOMPARE(settingsText(read.values), text);
}

void TestSettingsText::whatTheEndOfTheFileCutsOffTakesNoOtherLineIn_data()
{
    const auto row = table<QByteArray>("cutOff");
    for (const char *text : {"@Variant(\\0), \\", "@Variant(\\0), \"x", "@Variant(x), \"a\\",
             "@Variant(x), a \\", "@Variant(x), a\\\r", "@Variant(x), a\\\r\\",
             "@Variant(x), a\\\r\\\r", "@Variant(\\\\), b", "@Variant(\"x\"), \"\\\""}) {
        row(text, QByteArray(text));
    }
}

void TestSettingsText::whatTheEndOfTheFileCutsOffTakesNoOtherLineIn()
{
    QFETCH(QByteArray, cutOff);
    QMap<QString, QVariant> values = settingsFrom("[General]\nmodem=" + cutOff).values;
    QVERIFY(values.value("modem").canConvert<UndecodedSetting>());
    values.insert("vpi", "8");
    const QByteArray written = settingsText(values);
    const ReadSettings again = settingsFrom(written);
    QCOMPARE(again.values.value("vpi").toString(), QString("8"));
    QCOMPARE(again.values.keys(), values.keys());
    QCOMPARE(settingsText(again.values), written);
}

void TestSettingsText::aNulByteInAListIsReadAgain()
{
    const QStringList list = {QString::fromLatin1("a\0b", 3), QStringLiteral("c")};
    const QByteArray written = settingsText({{QStringLiteral("key"), list}});
    QCOMPARE(settingsFrom(written).values.value(QStringLiteral("key")), QVariant(list));
}

void TestSettingsText::aKeyWithoutANameDeepInAGroupDoesNotSpoilTheFile()
{
    const ReadSettings read = settingsFrom("[a\\b]\n=value\nvpi=8\n[c]\n=d\n");
    const ReadSettings again = settingsFrom(settingsText(read.values));
    QVERIFY(read.isWellFormed && again.isWellFormed);
    QCOMPARE(again.values.value(QStringLiteral("a/b/vpi")).toInt(), 8);
    QCOMPARE(again.values.value(QStringLiteral("c/")).toString(), QStringLiteral("d"));
}

void TestSettingsText::linesThatMeanNothingAreTold_data()
{
    const auto row = table<QByteArray, bool>("text", "isWellFormed");
    row("empty", QByteArray(), true);
    row("comments", "; a\n[General]\n;b=c\n", true);
    row("no equals sign", "[General]\nvpi\n", false);
    row("no end of a section", "[General\nvpi=8\n", false);
}

void TestSettingsText::linesThatMeanNothingAreTold()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isWellFormed);
    QCOMPARE(settingsFrom(text).isWellFormed, isWellFormed);
}

void TestSettingsText::manyKeysAreReadQuickly()
{
    QByteArray text = "[General]\n";
    for (int i = 0; text.size() < mostSettingsBytes; ++i) {
        text += QByteArray::number(i, 36) + "=\n";
    }
    QBENCHMARK_ONCE
    {
        QVERIFY(settingsFrom(text).values.size() > 9000);
    }
}

void TestSettingsText::aLongSectionNameDoesNotStandBeforeThousandsOfKeys()
{
    QByteArray text = "[General]\nvpi=8\n[" + QByteArray(mostSettingsBytes / 2, '\xe9') + "]\n";
    for (int i = 0; text.size() < mostSettingsBytes; ++i) {
        text += QByteArray::number(i, 36) + "=\n";
    }
    const ReadSettings read = settingsFrom(text + "[General]\nvci=35\n");
    int characters = 0;
    for (auto value = read.values.begin(); value != read.values.end(); ++value) {
        characters += value.key().size();
    }
    QVERIFY(characters < 1000000);
    QVERIFY(!read.isWellFormed);
    QCOMPARE(read.values.value(QStringLiteral("vpi")).toString(), QStringLiteral("8"));
    QCOMPARE(read.values.value(QStringLiteral("vci")).toString(), QStringLiteral("35"));
    QCOMPARE(settingsFrom(settingsText(read.values)).values, read.values);
}

QTEST_APPLESS_MAIN(TestSettingsText)
#include "settings_text_test.moc"
