// SPDX-License-Identifier: MIT
// The facts below the headline, and the list of sessions.
#include "dbus/contract.h"
#include "desktop/model/connection_facts.h"
#include "desktop/model/history_rows.h"
#include "test_table.h"

#include <QTest>

using namespace desktop;

namespace {

constexpr qint64 noon = 1763809200000; // 21 November 2025, 11:00 UTC
constexpr qint64 noonSeconds = noon / 1000;
constexpr qint64 day = 86400;

ConnectionModel connectedModel()
{
    ConnectionModel model;
    model.daemon = DaemonPresence::There;
    model.state = ConnectionUp;
    model.address = QStringLiteral("192.0.2.7");
    model.interface = QStringLiteral("ppp0");
    model.isModemPlugged = true;
    return model;
}

QString factOf(const QVector<ShownFact> &facts, const QString &label)
{
    for (const ShownFact &fact : facts) {
        if (fact.label == label) {
            return fact.value;
        }
    }
    return QStringLiteral("-");
}

KeeperSession sessionOf(qint64 began, qint64 seconds, const char *reason)
{
    KeeperSession session;
    session.began = began;
    session.seconds = seconds;
    session.reason = QLatin1String(reason);
    if (*reason != '\0') {
        session.ended = began + seconds;
    }
    session.received = 1000000;
    session.sent = 200000;
    return session;
}

QStringList reasonsOf(const QVector<HistoryRow> &rows)
{
    QStringList reasons;
    for (const HistoryRow &row : rows) {
        reasons.append(row.reason);
    }
    return reasons;
}

} // namespace

class FactsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "UTC");
        tzset();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    }

    void trafficIsSaidAgainstTheLimit()
    {
        QCOMPARE(trafficText(31400000000, 60000000000), QStringLiteral("31.4 GB of 60.0 GB"));
        QCOMPARE(trafficText(31400000000, 0), QStringLiteral("31.4 GB"));
    }

    void whileConnectedTheConnectionIsDescribed()
    {
        ConnectionModel model = connectedModel();
        model.line = event::LineSeen{{Line::Up, 8128, 832, {}}, 11.5, 14.0};
        Surroundings around;
        around.routeInterface.emplace(QStringLiteral("ppp0"));
        around.nameServers.append(QStringLiteral("192.0.2.53"));
        around.isNameAnswered = true;
        around.today = KeeperTraffic{QDate(), QDate(), 1800000000, 0};
        around.month = KeeperTraffic{QDate(), QDate(), 31000000000, 400000000};
        around.plan.limit = 60000000000;
        const auto facts = connectionFacts(model, around, noon);
        QCOMPARE(factOf(facts, "Address"), QStringLiteral("192.0.2.7"));
        QCOMPARE(factOf(facts, "Internet goes through"), QStringLiteral("this line (ppp0)"));
        QCOMPARE(factOf(facts, "Name servers"), QStringLiteral("answer (192.0.2.53)"));
        QCOMPARE(factOf(facts, "Modem"), QStringLiteral("ready"));
        QCOMPARE(factOf(facts, "Line"), QStringLiteral("8,128 down, 832 up, kbit/s"));
        QCOMPARE(factOf(facts, "Noise margin"), QStringLiteral("good (11.5 down, 14.0 up, dB)"));
        QCOMPARE(factOf(facts, "Today, this month"), QStringLiteral("1.8 GB, 31.4 GB of 60.0 GB"));
        QCOMPARE(factOf(facts, "Account"), QStringLiteral("-"));
    }

    void whileOfflineWhatIsStillTrueIsTold()
    {
        ConnectionModel model = connectedModel();
        model.state = ConnectionDown;
        model.modemName = QStringLiteral("M1");
        Surroundings around;
        around.login = QStringLiteral("user@isp");
        around.lastSession = sessionOf(noonSeconds - 3 * 3600, 6 * 60, "hung-up");
        const auto facts = connectionFacts(model, around, noon);
        QCOMPARE(factOf(facts, "Address"), QStringLiteral("-"));
        QCOMPARE(factOf(facts, "Modem"), QStringLiteral("M1, ready"));
        QCOMPARE(factOf(facts, "Account"), QStringLiteral("user@isp"));
        QCOMPARE(factOf(facts, "Last connected"), QStringLiteral("today, 08:00, for 6 min"));
    }

    void whatThePackagesPutThereIsNobodysAccount()
    {
        ConnectionModel model = connectedModel();
        model.state = ConnectionDown;
        Surroundings around;
        around.login = QStringLiteral("login");
        QCOMPARE(factOf(connectionFacts(model, around, noon), "Account"),
            QStringLiteral("not entered yet"));
    }

    void theWayIntoTheInternetIsNamed_data()
    {
        const auto row = table<QString, QString>("route", "text");
        row("ours", "ppp0", "this line (ppp0)");
        row("another", "wlan0", "another connection (wlan0)");
        row("none", "", "nothing: there is no default route");
    }
    void theWayIntoTheInternetIsNamed()
    {
        QFETCH(QString, route);
        Surroundings around;
        around.routeInterface = route;
        QTEST(factOf(connectionFacts(connectedModel(), around, noon), "Internet goes through"),
            "text");
    }

    void beforeTheTableIsReadTheDaemonTellsTheRoute()
    {
        ConnectionModel model = connectedModel();
        const QString label = QStringLiteral("Internet goes through");
        QCOMPARE(factOf(connectionFacts(model, {}, noon), label), QStringLiteral("not known"));
        model.route = QStringLiteral("ppp0");
        QCOMPARE(
            factOf(connectionFacts(model, {}, noon), label), QStringLiteral("this line (ppp0)"));
    }

    void aMarginHasAWord()
    {
        QCOMPARE(marginWord(11.5), QStringLiteral("good"));
        QCOMPARE(marginWord(10), QStringLiteral("good"));
        QCOMPARE(marginWord(9.9), QStringLiteral("fair"));
        QCOMPARE(marginWord(6), QStringLiteral("fair"));
        QCOMPARE(marginWord(5.9), QStringLiteral("poor"));
    }

    void theWorseMarginCounts()
    {
        ConnectionModel model = connectedModel();
        model.line = event::LineSeen{{}, 14.0, 4.0};
        QCOMPARE(factOf(connectionFacts(model, {}, noon), "Noise margin"),
            QStringLiteral("poor (14.0 down, 4.0 up, dB)"));
        model.line = event::LineSeen{{}, 14.0, {}};
        QCOMPARE(factOf(connectionFacts(model, {}, noon), "Noise margin"),
            QStringLiteral("good (14.0 dB down)"));
    }

    void aDaemonThatIsAwayLeavesOnlyWhatOthersTell()
    {
        ConnectionModel model;
        model.daemon = DaemonPresence::Away;
        const auto facts = connectionFacts(model, {}, noon);
        QCOMPARE(facts.size(), 1);
        QCOMPARE(factOf(facts, "Modem"), QStringLiteral("not known"));
    }

    /// It may be plugged in all the same, and not set up yet.
    void aModemThatIsNotFoundIsNotSaidToBeUnplugged()
    {
        ConnectionModel model;
        model.daemon = DaemonPresence::There;
        model.isModemPlugged = false;
        QCOMPARE(factOf(connectionFacts(model, {}, noon), "Modem"), QStringLiteral("none in use"));
    }

    void timesAreSaidAsPeopleDo()
    {
        QCOMPARE(momentText(noonSeconds, noon), QStringLiteral("today, 11:00"));
        QCOMPARE(momentText(noonSeconds - day, noon), QStringLiteral("yesterday, 11:00"));
        QCOMPARE(momentText(noonSeconds - 2 * day, noon), QStringLiteral("20/11/2025, 11:00"));
    }

    void sessionsAndAttemptsAreOneListNewestFirst()
    {
        const auto rows = historyRows({sessionOf(noonSeconds - 600, 600, ""),
                                          sessionOf(noonSeconds - 9000, 3600, "line-lost")},
            {{noonSeconds - 4000, noonSeconds - 1000, 17, QStringLiteral("no-concentrator")},
                {noonSeconds - 20000, noonSeconds - 20000, 1, QStringLiteral("account-refused")}},
            noon);
        QCOMPARE(reasonsOf(rows),
            (QStringList{"Still connected.",
                "17 attempts failed until today, 10:43. No concentrator of the provider "
                "answered.",
                "The line lost its synchronisation.",
                "An attempt failed. The provider refused login or password."}));
        QCOMPARE(rows.first().lasted, QStringLiteral("10 min"));
        QCOMPARE(rows.first().traffic, QStringLiteral("1.2 MB"));
        QVERIFY(rows.at(1).traffic.isEmpty());
    }

    void theDailyHangUpIsCalledWhatItIs()
    {
        const auto rows = historyRows({sessionOf(noonSeconds - day, day - 5, "hung-up"),
                                          sessionOf(noonSeconds - 3 * day, 3600, "hung-up")},
            {}, noon);
        QCOMPARE(reasonsOf(rows),
            (QStringList{"The provider hung up, as it does every day.", "The provider hung up."}));
    }
};

QTEST_APPLESS_MAIN(FactsTest)
#include "facts_test.moc"
