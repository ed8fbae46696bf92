// SPDX-License-Identifier: MIT
// What the window's buttons do about findings, in which order findings stand, and what is sent on.
#include "client/stop_signals.h"
#include "desktop/administrator.h"
#include "desktop/model/checkup_list.h"
#include "desktop/model/deed.h"
#include "desktop/rights/findings_text.h"
#include "script_folder.h"
#include "test_table.h"

#include <QTest>

using namespace desktop;

namespace {

Finding finding(const char *check, Verdict verdict, RemedyKind remedy = RemedyKind::None,
    const char *text = "text")
{
    return {QString::fromLatin1(check), verdict, {{QString::fromUtf8(text), {}}}, {remedy, {}}};
}

QStringList names(const QList<Finding> &findings)
{
    QStringList result;
    for (const Finding &one : findings) {
        result.append(one.check);
    }
    return result;
}

constexpr int remedyCount = int(RemedyKind::ConnectLater) + 1;

} // namespace

Q_DECLARE_METATYPE(RemedyKind)
Q_DECLARE_METATYPE(DeedKind)
Q_DECLARE_METATYPE(RightsOutcome)

class DeedTest : public QObject
{
    Q_OBJECT

private slots:
    void everyRemedyHasAButtonAndAnExplanation()
    {
        for (int kind = int(RemedyKind::None) + 1; kind < remedyCount; ++kind) {
            const Remedy remedy{RemedyKind(kind), QStringLiteral("detail")};
            const Deed deed = deedOf(remedy);
            QVERIFY2(deed.kind != DeedKind::None, qPrintable(QString::number(kind)));
            QVERIFY2(!deed.button.isEmpty(), qPrintable(QString::number(kind)));
            QVERIFY2(!deed.how.isEmpty(), qPrintable(QString::number(kind)));
            QCOMPARE(deed.kind == DeedKind::OpenPage, deed.page != Action::None);
        }
        QVERIFY(deedOf({}).kind == DeedKind::None);
    }

    void whatWasDoneInVainIsOnlyExplained()
    {
        for (int kind = int(RemedyKind::None) + 1; kind < remedyCount; ++kind) {
            const Deed deed = explanationOf({RemedyKind(kind), {}});
            QVERIFY(deed.kind == DeedKind::ShowHow);
            QVERIFY(!deed.how.isEmpty());
        }
    }

    void aRemedyLeadsToItsDeed_data()
    {
        const auto row = table<RemedyKind, DeedKind, QString>("remedy", "deed", "word");
        row("a missing peer file", RemedyKind::PlacePeer, DeedKind::Rights, "mend-files");
        row("secrets in disorder", RemedyKind::MendSecrets, DeedKind::Rights, "mend-files");
        row("a daemon that hangs", RemedyKind::RestartDaemon, DeedKind::Rights, "restart-daemon");
        row("no companion", RemedyKind::StartCompanion, DeedKind::Rights, "restart-hald");
        row("a keeper that is stopped", RemedyKind::StartKeeper, DeedKind::Rights, "start-keeper");
        row("a keeper that hangs", RemedyKind::RestartKeeper, DeedKind::Rights, "restart-keeper");
        row("no PPP in the kernel", RemedyKind::LoadPppModule, DeedKind::Rights, "load-modules");
        row("hidden from this user", RemedyKind::LookAsRoot, DeedKind::Rights, "look");
        row("no group", RemedyKind::CreateGroup, DeedKind::Rights, "create-group");
        row("no member", RemedyKind::JoinGroup, DeedKind::Join, "");
        row("a member since now", RemedyKind::LogInAgain, DeedKind::UseGroupNow, "");
        row("no daemon", RemedyKind::StartDaemon, DeedKind::StartDaemon, "");
        row("a new modem", RemedyKind::ReplugAndAdoptModem, DeedKind::OpenAssistant, "modem");
        row("no account", RemedyKind::SetAccount, DeedKind::OpenPage, "");
        row("no values", RemedyKind::SetLine, DeedKind::OpenPage, "");
        row("ready", RemedyKind::Connect, DeedKind::Connect, "");
        row("two connections", RemedyKind::EndOtherConnection, DeedKind::ShowHow, "");
    }

    void aRemedyLeadsToItsDeed()
    {
        QFETCH(RemedyKind, remedy);
        QFETCH(DeedKind, deed);
        QFETCH(QString, word);
        const Deed found = deedOf({remedy, {}});
        QVERIFY(found.kind == deed);
        if (deed == DeedKind::Rights) {
            QCOMPARE(QString::fromLatin1(verbWord(found.verb)), word);
        }
        if (deed == DeedKind::OpenAssistant) {
            QCOMPARE(stepWord(found.step), word);
        }
    }

    void headersComeWithWhatPacksModules()
    {
        QCOMPARE(deedOf({RemedyKind::InstallHeadersAndPacker, QStringLiteral("6.1.0 xz-utils")})
                     .commands.constFirst(),
            QStringLiteral("sudo apt install linux-headers-6.1.0 xz-utils"));
    }

    void aVerbIsTakenByItsWholeWordOnly()
    {
        for (const Verb verb : allVerbs) {
            QVERIFY(verbNamed(verbWord(verb)) == verb);
        }
        for (const char *word : {"", "LOOK", "look ", " look", "loo", "lookk", "mend"}) {
            QVERIFY(!verbNamed(word));
        }
    }

    void whatPkexecEndsWithIsUnderstood_data()
    {
        const auto row = table<int, QByteArray, RightsOutcome>("status", "errors", "outcome");
        const QByteArray head = "Error executing command as another user: ";
        row("done", 0, QByteArray(), RightsOutcome::Done);
        row("closed", 126, head + "Request dismissed\n", RightsOutcome::Cancelled);
        row("wrong password", 127, head + "Not authorized\n\nThis incident has been reported.\n",
            RightsOutcome::Refused);
        row("nobody to ask", 127, head + "No authentication agent found.\n",
            RightsOutcome::NoAgent);
        row("nobody to decide", 127, "Error getting authority: Error initializing authority: …\n",
            RightsOutcome::NoPolkit);
        row("nothing to run", 127,
            "Error executing /opt/norvix/libexec/x: No such file or directory\n",
            RightsOutcome::NoProgram);
        row("no group", 4, "…", RightsOutcome::NoGroup);
        row("a lacking tool", 3, "…", RightsOutcome::NoProgram);
        row("in vain", 1, "…", RightsOutcome::Failed);
    }

    void whatPkexecEndsWithIsUnderstood()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, errors);
        QFETCH(RightsOutcome, outcome);
        QVERIFY(rightsOutcomeOf(status, errors) == outcome);
        QCOMPARE(rightsOutcomeText(outcome).isEmpty(), outcome == RightsOutcome::Done);
    }

    void faultsStandFirstAndWhatIsWellIsApart()
    {
        const CheckupList list = checkupListOf({finding("a", Verdict::Good),
            finding("b", Verdict::Doubtful), finding("c", Verdict::Fault),
            finding("d", Verdict::NotChecked), finding("e", Verdict::Fault),
            finding("f", Verdict::NotChecked, RemedyKind::LookAsRoot)});
        QCOMPARE(names(list.bad).join(QLatin1Char(' ')), QStringLiteral("c e b"));
        QCOMPARE(names(list.hidden).join(QLatin1Char(' ')), QStringLiteral("f"));
        QCOMPARE(names(list.fine).join(QLatin1Char(' ')), QStringLiteral("a"));
        QCOMPARE(names(list.unknown).join(QLatin1Char(' ')), QStringLiteral("d"));
    }

    void theTitleCountsWhatStopsAConnection()
    {
        QCOMPARE(checkupTitle({finding("a", Verdict::Good)}),
            QStringLiteral("Nothing stops a connection"));
        QCOMPARE(checkupTitle({finding("a", Verdict::Fault), finding("b", Verdict::Doubtful)}),
            QStringLiteral("One thing stops a connection"));
        QVERIFY(checkupTitle({finding("a", Verdict::Fault), finding("b", Verdict::Fault)})
                    .startsWith(QLatin1Char('2')));
    }

    void whatRootHasSeenTakesThePlaceOfWhatWasHiddenOnly()
    {
        const QList<Finding> merged
            = withSeenByRoot({finding("permission", Verdict::Fault),
                                 finding("secrets", Verdict::NotChecked, RemedyKind::LookAsRoot)},
                {finding("permission", Verdict::Good), finding("secrets", Verdict::Good)});
        QVERIFY(merged.at(0).verdict == Verdict::Fault);
        QVERIFY(merged.at(1).verdict == Verdict::Good);
    }

    void findingsComeOverAsTheyWere()
    {
        Finding peer = finding("peer", Verdict::Fault, RemedyKind::ReplacePeer, "ä “x”");
        peer.facts.append({QStringLiteral("y"), {RemedyKind::SetAccount, QStringLiteral("z")}});
        const QByteArray text = findingsText({peer, finding("line", Verdict::NotChecked)});
        const auto found = findingsFrom(text);
        QVERIFY(found);
        QCOMPARE(found->size(), 2);
        QCOMPARE(findingsText(*found), text);
        QVERIFY(found->constFirst().facts.at(1).remedy.kind == RemedyKind::SetAccount);
    }

    void foreignFindingsAreNoFindings()
    {
        for (const char *text : {"", "x", "{}", "[1]", "[{}]", R"([{"verdict":9,"remedy":0}])",
                 R"([{"verdict":0,"remedy":999}])", R"([{"verdict":0,"remedy":-1}])",
                 R"([{"verdict":0,"remedy":0,"facts":[{"remedy":1000}]}])"}) {
            QVERIFY2(!findingsFrom(text), text);
        }
    }

    void aReportHoldsNeitherLoginNorPassword()
    {
        const QString report
            = checkupReport({finding("last-attempt", Verdict::Doubtful, RemedyKind::None,
                                "It said: sent [PAP AuthReq user=\"jo@isp\" password=\"pw\"], name "
                                "\"jo\", jo@isp")},
                {QStringLiteral("jo@isp")});
        QVERIFY(report.contains(QStringLiteral("It said")));
        for (const char *word : {"jo@isp", "\"pw\"", "\"jo\""}) {
            QVERIFY2(!report.contains(QString::fromLatin1(word)), qPrintable(report));
        }
    }

    void whatAsksForAPasswordCanBeEndedThoughThisProgramHoldsSignalsBack_data()
    {
        const auto row = tableOfTexts<QByteArray>("signal");
        for (const char *signal : {"TERM", "INT", "HUP"}) {
            row(signal);
        }
    }
    void whatAsksForAPasswordCanBeEndedThoughThisProgramHoldsSignalsBack()
    {
        QFETCH(QByteArray, signal);
        ScriptFolder programs;
        programs.add(QStringLiteral("pkexec"), "kill -" + signal + " $$\nexit 0");
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(programs.path()) + ':' + path);
        StopSignals::hold();
        Administrator administrator;
        std::optional<RightsOutcome> outcome;
        administrator.perform(
            Verb::Look, [&outcome](const RightsAnswer &answer) { outcome = answer.outcome; });
        QTRY_VERIFY_WITH_TIMEOUT(outcome.has_value(), 30000);
        qputenv("PATH", path);
        QVERIFY(outcome == RightsOutcome::Failed); // it did not live to say that all is well
    }
};

QTEST_GUILESS_MAIN(DeedTest)
#include "deed_test.moc"
