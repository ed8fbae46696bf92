// SPDX-License-Identifier: MIT
// What every client makes of numbers, foreign text and the daemon's signals.
#include "client/providers.h"
#include "client/signal_text.h"
#include "client/text_format.h"
#include "client/translation.h"
#include "dbus/contract.h"
#include "test_table.h"

#include <QDir>
#include <QTest>
#include <QTranslator>

class ClientTextTest : public QObject
{
    Q_OBJECT

private slots:
    void everyTranslationIsOneOfTheSpokenLanguages()
    {
        speakUsersLanguage(QStringLiteral("none"), true);
        const QStringList files = QDir(QStringLiteral(":/translations")).entryList();
        QVERIFY(!files.isEmpty());
        for (const QString &file : files) {
            const QString language
                = file.section(QLatin1Char('_'), 1).section(QLatin1Char('.'), 0, 0);
            QVERIFY2(isSpoken(language), qPrintable(file));
        }
        QVERIFY(isSpoken(QStringLiteral("en")));
        for (const char *other : {"", "fr", "de_DE", "DE", "../de"}) {
            QVERIFY2(!isSpoken(QString::fromLatin1(other)), other);
        }
    }

    void everyProvidersCountryHasAName()
    {
        for (const Provider &provider : commonProviders()) {
            const QString code = QLatin1String(provider.country);
            QVERIFY2(countryName(code) != code, provider.country);
        }
        QCOMPARE(providersByName().size(), commonProviders().size());
        QCOMPARE(countryName(QStringLiteral("XX")), QStringLiteral("XX"));
    }

    void countriesStandInTheOrderOfTheLanguage()
    {
        const QString germany = QStringLiteral("DE");
        const QString austria = QStringLiteral("AT");
        const QStringList english = countriesByName();
        QVERIFY(english.indexOf(austria) < english.indexOf(germany));
        speak(QStringLiteral("de"));
        const QStringList german = countriesByName();
        qDeleteAll(QCoreApplication::instance()->findChildren<QTranslator *>());
        QLocale::setDefault(QLocale::c());
        QVERIFY(german.indexOf(germany) < german.indexOf(austria));
        QVERIFY(german.indexOf(austria) < german.indexOf(QStringLiteral("PL")));
        QCOMPARE(german.size(), english.size());
    }

    void bytesHaveTheUnitThatFits_data()
    {
        const auto row = table<double, QString>("bytes", "text");
        row("none", 0.0, "0 B");
        row("just below a unit", 999.0, "999 B");
        row("a unit", 1000.0, "1.0 kB");
        row("rounding never shows a thousand", 999950.0, "1.0 MB");
        row("all that 32 bits hold", 4294967295.0, "4.3 GB");
    }
    void bytesHaveTheUnitThatFits()
    {
        QFETCH(double, bytes);
        QFETCH(QString, text);
        QCOMPARE(bytesText(bytes), text);
        QCOMPARE(rateText(bytes), text + QLatin1String("/s"));
    }

    void timeGoesBeyondADay()
    {
        QCOMPARE(clockText(0), QStringLiteral("00:00:00"));
        QCOMPARE(clockText(3723), QStringLiteral("01:02:03"));
        QCOMPARE(clockText(100 * 3600), QStringLiteral("100:00:00"));
    }

    void aSizeIsReadWithItsUnit_data()
    {
        // 0 bytes: refused.
        const auto row = table<QString, qulonglong>("text", "bytes");
        row("gigabytes", "50GB", 50'000'000'000ULL);
        row("a blank", "50 GB", 50'000'000'000ULL);
        row("a fraction", "1.5TB", 1'500'000'000'000ULL);
        row("a comma", "1,5 MB", 1'500'000ULL);
        row("small k", "700kB", 700'000ULL);
        row("large k", "700KB", 700'000ULL);
        row("bytes", "1B", 1ULL);
        for (const char *wrong : {"", "50", "GB", "-1GB", "50 gb", "0GB", "0.4B", "1.2.3GB",
                 "50GiB", "50  GB", " 50GB", "999999999999999TB", "1e9B", "50GB\n"}) {
            row(wrong, QString::fromUtf8(wrong), 0ULL);
        }
    }
    void aSizeIsReadWithItsUnit()
    {
        QFETCH(QString, text);
        QFETCH(qulonglong, bytes);
        QCOMPARE(bytesFromText(text).value_or(0), bytes);
    }

    void momentsAreLocalTimeAndTellTheirDistanceFromUtc()
    {
        qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        QCOMPARE(momentText(1763800000), QStringLiteral("2025-11-22 09:26:40"));
        QCOMPARE(momentIso(1763800000), QStringLiteral("2025-11-22T09:26:40+01:00"));
        QCOMPARE(momentIso(1750000000), QStringLiteral("2025-06-15T17:06:40+02:00"));
        qputenv("TZ", "UTC");
        QCOMPARE(momentIso(1763800000), QStringLiteral("2025-11-22T08:26:40Z"));
    }

    void foreignTextCanNotSteerTheTerminal()
    {
        QCOMPARE(printable(QStringLiteral("a\x1b[2Jb\r")), QStringLiteral("a\uFFFD[2Jb\uFFFD"));
        for (const ushort sign : {0x0, 0x1b, 0x7f, 0x85, 0x9b, 0x61c, 0x200e, 0x200f, 0x2028,
                 0x202a, 0x202e, 0x2066, 0x2069}) {
            QCOMPARE(printable(QChar(sign)), QStringLiteral("\uFFFD"));
        }
        const QString harmless = QStringLiteral("é “€” \u200d\u2027\u202f\u2065");
        QCOMPARE(printable(harmless), harmless);
    }

    void everySignalHasASentence_data()
    {
        const auto row = table<QString, QVariantList, QString>("signal", "arguments", "text");
        row("speed", "transmissionSpeed", QVariantList{1500u, 20u},
            "speed: 1.5 kB/s down, 20 B/s up");
        row("totals", "transmissionBytes", QVariantList{2e6, 1.0},
            "totals: 2.0 MB received, 1 B sent");
        row("time", "connectionTime", QVariantList{1, 2, 3}, "connected for 01:02:03");
        row("time of the wrong type", "connectionTime", QVariantList{1e18, "a", false},
            "connected for 00:00:00");
        row("fewer than it has", "IP", QVariantList{}, "address: ");
        row("more than it has", "IP", QVariantList{"10.0.0.1", "ppp0"}, "address: 10.0.0.1");
        row("something where there is nothing", "modemUnplugged", QVariantList{"oops"},
            "modem unplugged");
        row("state", "connectionState", QVariantList{2}, "connection state: not connected");
        row("a percent sign in a value", "modemPlugged", QVariantList{"%1 %2"},
            "modem plugged: %1 %2");
        row("an escape sequence in a value", "modemPlugged", QVariantList{"\x1b[2J"},
            "modem plugged: \uFFFD[2J");
        row("success", "settingOpenDNS", QVariantList{true},
            "writing the OpenDNS resolvers: success");
        row("one that is not known", "somethingNew", QVariantList{7, "x"}, "somethingNew 7 x");
    }
    void everySignalHasASentence()
    {
        QFETCH(QString, signal);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, text);
        QCOMPARE(signalText(signal, arguments), text);
    }

    void everySignalOfTheInterfaceHasOneOfItsOwn()
    {
        for (const BusSignal &signal : daemonSignals) {
            const QString name = QLatin1String(signal.name);
            const QString text = signalText(name, {1, 2, 3});
            QVERIFY2(!text.startsWith(name + QLatin1Char(' ')), signal.name);
        }
    }

    void argumentsAreNamedAsInTheInterfaceDescription()
    {
        const QJsonObject expected = {{QStringLiteral("rx"), 1}, {QStringLiteral("tx"), 2}};
        QCOMPARE(signalArguments(QStringLiteral("transmissionErrors"), {1u, 2u}), expected);
    }
};

QTEST_GUILESS_MAIN(ClientTextTest)
#include "text_test.moc"
