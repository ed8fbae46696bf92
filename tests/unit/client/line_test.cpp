// SPDX-License-Identifier: MIT
// What the client reads from kernel log, processes, resolver file and the table of modems.
#include "client/disconnect_step.h"
#include "client/doctor_facts.h"
#include "client/line_log.h"
#include "client/line_status.h"
#include "client/link_facts.h"
#include "client/modem_table.h"
#include "daemon/modem_catalogue.h"
#include "test_data.h"
#include "test_table.h"

#include <QTest>

Q_DECLARE_METATYPE(std::optional<bool>)
Q_DECLARE_METATYPE(std::optional<LineSample>)

namespace {

LineSample sampleOf(double carrier, std::optional<double> downRate, std::optional<double> upRate)
{
    LineSample sample;
    sample.carrier = carrier;
    sample.downRate = downRate;
    sample.upRate = upRate;
    return sample;
}

} // namespace

class ClientLineTest : public QObject
{
    Q_OBJECT

private slots:
    void anAttemptThatWaitsForTheLineIsFollowedUntilItCanBeEnded_data()
    {
        const auto row = table<int, bool, bool, int>("state", "isPppdOurs", "hasWaited", "step");
        const int done = int(DisconnectStep::Done);
        const int wait = int(DisconnectStep::Wait);
        const int endAgain = int(DisconnectStep::EndAgain);
        row("down", 2, false, false, done);
        row("down after an attempt that gave up", 2, false, true, done);
        row("the line trains", 1, false, false, wait);
        row("pppd has been started", 1, true, true, endAgain);
        row("the link is up", 0, true, false, endAgain);
        row("the link is up, its pppd can not be seen", 0, false, true, endAgain);
        row("the interface goes after its pppd", 0, false, false, done);
    }
    void anAttemptThatWaitsForTheLineIsFollowedUntilItCanBeEnded()
    {
        QFETCH(int, state);
        QFETCH(bool, isPppdOurs);
        QFETCH(bool, hasWaited);
        QTEST(int(nextDisconnectStep(state, isPppdOurs, hasWaited)), "step");
    }

    void recordedKernelLogsAreUnderstood_data()
    {
        const auto row = table<QString>("word");
        const QMap<QString, QString> words = {
            {QStringLiteral("cxacru-attempting-to-activate"), QStringLiteral("synchronising")},
            {QStringLiteral("cxacru-channel-analysis"), QStringLiteral("synchronising")},
            {QStringLiteral("cxacru-exchange"), QStringLiteral("synchronising")},
            {QStringLiteral("cxacru-initializing"), QStringLiteral("booting")},
            {QStringLiteral("cxacru-line-lost"), QStringLiteral("down")},
            {QStringLiteral("cxacru-training"), QStringLiteral("synchronising")},
            {QStringLiteral("cxacru-unplugged"), QStringLiteral("synchronising")},
            {QStringLiteral("cxacru-up"), QStringLiteral("up")},
            {QStringLiteral("cxacru-waiting"), QStringLiteral("synchronising")},
            {QStringLiteral("eagle-booting"), QStringLiteral("booting")},
            {QStringLiteral("eagle-no-firmware"), QStringLiteral("firmware-failed")},
            {QStringLiteral("eagle-operational"), QStringLiteral("up")},
            {QStringLiteral("eagle-preboot"), QStringLiteral("booting")},
            {QStringLiteral("eagle-started"), QStringLiteral("synchronising")},
            {QStringLiteral("eagle-sync-failed"), QStringLiteral("booting")},
            {QStringLiteral("eagle-unplugged"), QStringLiteral("down")},
            {QStringLiteral("speedtch-down"), QStringLiteral("down")},
            {QStringLiteral("speedtch-no-firmware"), QStringLiteral("firmware-failed")},
            {QStringLiteral("speedtch-synchronising"), QStringLiteral("synchronising")},
            {QStringLiteral("speedtch-unplugged"), QStringLiteral("down")},
            {QStringLiteral("speedtch-up"), QStringLiteral("up")},
            {QStringLiteral("speedtch-upload-failed"), QStringLiteral("firmware-failed")},
        };
        for (const QString &file :
            testDataNames(QStringLiteral("kernel-log"), QStringLiteral("klog-*.txt"))) {
            row(qPrintable(file), words.value(file.mid(5).chopped(4)));
        }
    }
    void recordedKernelLogsAreUnderstood()
    {
        QFETCH(QString, word);
        const QByteArray log
            = testData(QStringLiteral("kernel-log/") + QLatin1String(QTest::currentDataTag()));
        QCOMPARE(lineWord(lineFromKernelLog(log).line), word);
    }

    void ratesAreTakenFromTheLineThatDecides()
    {
        const LineStatus status
            = lineFromKernelLog(testData(QStringLiteral("kernel-log/klog-cxacru-up.txt")));
        QCOMPARE(status.downKbit.value_or(0), 8128);
        QCOMPARE(status.upKbit.value_or(0), 832);
        QCOMPARE(lineText(status), QStringLiteral("synchronised, 8128 kbit/s down, 832 kbit/s up"));
    }

    void whatTheKernelLogTellsIsTheLine()
    {
        const LineStatus synchronised{Line::Up, 8128, 832, QString()};
        const auto status = lineStatusOf({synchronised, false, sampleOf(1, 6016, 640)});
        QCOMPARE(lineText(status), QStringLiteral("synchronised, 8128 kbit/s down, 832 kbit/s up"));
        const LineStatus training{Line::Synchronising, {}, {}, QString()};
        QCOMPARE(lineText(lineStatusOf({training, true, sampleOf(1, 6016, 640)})),
            QStringLiteral("synchronising"));
    }

    void whereTheKernelLogIsClosedOthersTellOfTheLine_data()
    {
        using Carrier = std::optional<bool>;
        using Sample = std::optional<LineSample>;
        const auto row = table<Carrier, Sample, QString>("carrier", "sample", "text");
        row("nobody tells", {}, {}, "unknown");
        row("there is a carrier", true, {}, "synchronised");
        row("there is none", false, {}, "no synchronisation");
        row("the keeper has looked", {}, sampleOf(1, 6016, 640),
            "synchronised, 6016 kbit/s down, 640 kbit/s up");
        row("both", true, sampleOf(1, 6016, 640), "synchronised, 6016 kbit/s down, 640 kbit/s up");
        row("lost at the last look", {}, sampleOf(0, 6016, 640), "no synchronisation");
        row("lost since", false, sampleOf(1, 6016, 640), "no synchronisation");
        row("back since", true, sampleOf(0, 6016, 640), "synchronised");
        row("one direction, rounded to cells", true, sampleOf(1, 8127.656, {}),
            "synchronised, 8128 kbit/s down");
        row("no rates yet", true, sampleOf(1, 0, 0), "synchronised");
        row("a look at nothing", {}, LineSample(), "unknown");
    }
    void whereTheKernelLogIsClosedOthersTellOfTheLine()
    {
        QFETCH(std::optional<bool>, carrier);
        QFETCH(std::optional<LineSample>, sample);
        QTEST(lineText(lineStatusOf({std::nullopt, carrier, sample})), "text");
        // The same where it is open and has no line of a modem any more.
        QTEST(lineText(lineStatusOf({LineStatus(), carrier, sample})), "text");
    }

    void theKeeperTellsTheRatesOfADriverThatLogsNone()
    {
        const LineStatus operational{Line::Up, {}, {}, QString()};
        QCOMPARE(lineText(lineStatusOf({operational, true, sampleOf(1, 6016, 640)})),
            QStringLiteral("synchronised, 6016 kbit/s down, 640 kbit/s up"));
    }

    void oddLogsTellNothing_data()
    {
        const auto row = table<QByteArray>("log");
        row("empty", QByteArray());
        row("no driver", "usb 1-1: new device\n");
        row("words without a driver", "say: ADSL line: up\n");
        row("NUL bytes", QByteArray(1000, '\0'));
        row("one endless line", QByteArray(1 << 20, 'x'));
    }
    void oddLogsTellNothing()
    {
        QFETCH(QByteArray, log);
        QCOMPARE(lineWord(lineFromKernelLog(log).line), QStringLiteral("unknown"));
    }

    void theLastTellingLineDecidesAlsoWithoutALineFeed()
    {
        QCOMPARE(
            lineWord(
                lineFromKernelLog("ATM dev 0: ADSL line: up\nATM dev 0: ADSL line: down").line),
            QStringLiteral("down"));
    }

    void aLineWithANulByteIsShownWhole()
    {
        const QByteArray line("\0[ueagle-atm] modem operational", 31);
        QCOMPARE(lineFromKernelLog(line).driverLine, QString::fromLatin1(line.data(), line.size()));
    }

    void theModemsAreThoseOfTheDaemonsCatalogue()
    {
        const QList<ModemInfo> catalogue = modemCatalogue();
        const std::vector<ModemFamily> &families = modemFamilies();
        QCOMPARE(int(families.size()), catalogue.size());
        for (int position = 0; position < catalogue.size(); ++position) {
            const ModemFamily &family = families.at(size_t(position));
            QCOMPARE(QString::fromLatin1(family.name), catalogue.at(position).name);
            QCOMPARE(QString::fromLatin1(family.driver), catalogue.at(position).driver);
            QCOMPARE(int(family.ids.size()), catalogue.at(position).ids.size());
            for (const UsbId &id : family.ids) {
                QVERIFY(catalogue.at(position).ids.contains(id.vendor, id.product));
                QCOMPARE(
                    QString::fromLatin1(driverOfVendor(id.vendor)), catalogue.at(position).driver);
                QCOMPARE(familyOf(id), &family);
            }
        }
        QVERIFY(familyOf({0x1110, 0x9000}) == nullptr);
    }

    void aModemWithoutFirmwareIsRecognised()
    {
        QVERIFY(isBeforeFirmware({0x1110, 0x9042}));
        QVERIFY(!isBeforeFirmware({0x1110, 0x9041}));
        QCOMPARE(idText({0x06B9, 0x4061}), QStringLiteral("06b9:4061"));
    }

    void theAgeOfAProcessComesFromItsStartTime_data()
    {
        // An age of -1: unknown.
        const auto row = table<QByteArray, int>("stat", "age");
        const QByteArray fields = " S 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 5000 20\n";
        row("usual", QByteArray("12 (pppd)" + fields), 50);
        row("brackets and blanks in the name", QByteArray("12 (p) S 1 (d)" + fields), 50);
        row("cut off", "12 (pppd) S 1", -1);
        row("empty", QByteArray(), -1);
    }
    void theAgeOfAProcessComesFromItsStartTime()
    {
        QFETCH(QByteArray, stat);
        QFETCH(int, age);
        QCOMPARE(int(processAge(stat, "100.00 1.0\n", 100).value_or(-1)), age);
    }

    void whatNoComputerHasBeenUpIsNoAge()
    {
        const QByteArray stat
            = "12 (pppd) S 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 5000 20\n";
        QVERIFY(processAge(stat, "1000000000.00 1.0\n", 100));
        QVERIFY(!processAge(stat, "1" + QByteArray(60, '3') + ".5 3\n", 100));
        QVERIFY(!processAge(stat, "nan 1.0\n", 100));
        QVERIFY(!processAge(stat, "inf 1.0\n", 100));
        QCOMPARE(processAge(stat, "-inf 1.0\n", 100).value_or(-1), 0);
    }

    void ourPppdIsKnownByItsLinkname()
    {
        const auto words = [](const char *text) { return QByteArray(text).replace(' ', '\0'); };
        QVERIFY(isOurCommandLine(words("pppd debug linkname norvix call norvix")));
        QVERIFY(isOurCommandLine(words("/usr/bin/python3 pppd debug linkname norvix")));
        QVERIFY(!isOurCommandLine(words("pppd call norvix")));
        QVERIFY(!isOurCommandLine(words("pppd linkname")));
        QVERIFY(!isOurCommandLine(words("pppd linkname norvix2")));
    }

    void resolverLinesAreRead()
    {
        QCOMPARE(
            nameservers("# nameserver 1.1.1.1\nnameserver 192.0.2.1\n\tnameserver\t2001:db8::1 "
                        "x\nnameserver\nsearch nameserver\n"),
            (QStringList{"192.0.2.1", "2001:db8::1"}));
    }

    void zerosInTheResolverFileAreNoServer()
    {
        const QByteArray zeros(8, '\0');
        QCOMPARE(nameservers("nameserver " + zeros + "\n" + zeros), QStringList());
        QCOMPARE(nameservers("nameserver 192.0.2.1" + zeros), QStringList{"192.0.2.1"});
    }

    void modulesAreFoundUnderBothSpellings()
    {
        const QByteArray list
            = "kernel/drivers/usb/atm/ueagle-atm.ko: kernel/a.ko\nk/ppp_generic.ko:\n";
        QCOMPARE(moduleState("ueagle-atm", false, list), Module::Available);
        QCOMPARE(moduleState("ueagle_atm", false, list), Module::Available);
        QCOMPARE(moduleState("ppp_generic", false, list), Module::Available);
        QCOMPARE(moduleState("eagle-atm", false, list), Module::Missing);
        // Needed by one that is there, and not there itself.
        QCOMPARE(moduleState("a", false, list), Module::Missing);
        QCOMPARE(moduleState("cxacru", true, list), Module::Loaded);
        QCOMPARE(moduleState("cxacru", false, std::nullopt), Module::Unknown);
    }
};

QTEST_GUILESS_MAIN(ClientLineTest)
#include "line_test.moc"
