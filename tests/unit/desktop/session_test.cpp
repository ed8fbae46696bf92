// SPDX-License-Identifier: MIT
// The command line, the colours, the log, and what is left out of reports.
#include "client/redaction.h"
#include "desktop/model/tray_facts.h"
#include "desktop/plot/colours.h"
#include "desktop/session/options.h"
#include "desktop/session/preferences.h"
#include "desktop/session/theme.h"
#include "desktop/window/log_page.h"
#include "test_table.h"

#include <QImage>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>
#include <QtTest>
#include <csignal>
#include <sys/resource.h>

using namespace desktop;

class SessionTest : public QObject
{
    Q_OBJECT

private slots:
    void wordsAreUnderstoodOrNamed()
    {
        QVERIFY(optionsOf({QStringLiteral("--background")}).isBackground);
        QVERIFY(optionsOf({QStringLiteral("--help")}).isHelpWanted);
        QVERIFY(optionsOf({QStringLiteral("--version")}).isVersionWanted);
        QVERIFY(optionsOf({}).error.isEmpty());
        QVERIFY(
            optionsOf({QStringLiteral("--frobnicate")}).error.contains(QLatin1String("--frob")));
        QVERIFY(optionsOf({QStringLiteral("file")}).error.contains(QLatin1String("file")));
    }

    void bothPalettesCanBeRead_data()
    {
        const auto row = table<QPalette>("palette");
        row("dark", darkPalette());
        row("light", lightPalette());
    }
    void bothPalettesCanBeRead()
    {
        QFETCH(QPalette, palette);
        const std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[]
            = {{QPalette::WindowText, QPalette::Window}, {QPalette::Text, QPalette::Base},
                {QPalette::Text, QPalette::AlternateBase}, {QPalette::ButtonText, QPalette::Button},
                {QPalette::ToolTipText, QPalette::ToolTipBase},
                {QPalette::PlaceholderText, QPalette::Base},
                {QPalette::HighlightedText, QPalette::Highlight}, {QPalette::Link, QPalette::Base},
                {QPalette::Link, QPalette::Window}};
        for (const auto &[text, ground] : pairs) {
            for (const QPalette::ColorGroup group :
                {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
                QVERIFY2(contrast(palette.color(group, text), palette.color(group, ground)) >= 4.5,
                    qPrintable(QStringLiteral("%1 on %2").arg(text).arg(ground)));
            }
        }
    }

    void anEmptyCheckBoxIsSeenInTheDark()
    {
        const OwnStyle style(QStyleFactory::create(QStringLiteral("Fusion")));
        const QPalette palette = darkPalette();
        QImage image(20, 20, QImage::Format_RGB32);
        image.fill(palette.color(QPalette::Window));
        QPainter painter(&image);
        QStyleOptionButton box;
        box.palette = palette;
        box.rect = QRect(2, 2, 16, 16);
        box.state = QStyle::State_Enabled | QStyle::State_Off;
        style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, &painter);
        const QColor edge = image.pixelColor(2, 10);
        QVERIFY(contrast(edge, image.pixelColor(0, 10)) >= shapeContrast);
        QVERIFY(contrast(edge, image.pixelColor(10, 10)) >= shapeContrast);
    }

    void whoWantsNoMovementSeesNoneUntilHeWantsItAgain()
    {
        OwnStyle style(QStyleFactory::create(QStringLiteral("Fusion")));
        const auto duration = [&style] {
            return style.styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, nullptr, nullptr);
        };
        QVERIFY(duration() > 0);
        style.setCalm(true);
        QCOMPARE(duration(), 0);
        style.setCalm(false);
        QVERIFY(duration() > 0);
    }

    void aReportLeavesTheAccountOut()
    {
        const QString text = QStringLiteral(
            "sent [PAP AuthReq id=0x1 user=\"me@isp\" password=<hidden>]\n"
            "sent [CHAP Response id=0x42 <33ce>, name = \"me@isp\"]\n"
            "Login of me@isp with s3cret (worked); me@isp.example is another word\n");
        const QString told
            = withoutAccount(text, {QStringLiteral("me@isp"), QStringLiteral("s3cret"), QString()});
        QVERIFY(!told.contains(QLatin1String("s3cret")));
        QVERIFY(!told.contains(QLatin1String("\"me@isp\"")));
        QVERIFY(!told.contains(QLatin1String("of me@isp ")));
        QVERIFY(told.contains(QLatin1String("AuthReq id=0x1")));
    }

    void theFilterKeepsLinesWithAllWords()
    {
        const QString text = QStringLiteral("one pppd\ntwo PPPD fails\nthree");
        QCOMPARE(matchingLines(text, QString()), text);
        QCOMPARE(matchingLines(text, QStringLiteral("pppd")),
            QStringLiteral("one pppd\ntwo PPPD fails"));
        QCOMPARE(
            matchingLines(text, QStringLiteral("fail pppd")), QStringLiteral("two PPPD fails"));
    }

    void aLogIsReadOnlyWhenItHasChanged()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("daemon.log"));
        QCOMPARE(int(readLog(path, {}).outcome), int(LogText::Outcome::Missing));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("line\n");
        file.flush();
        const LogText first = readLog(path, {});
        QCOMPARE(first.text, QStringLiteral("line\n"));
        QVERIFY(!first.isCut);
        QCOMPARE(int(readLog(path, first.stamp).outcome), int(LogText::Outcome::Same));
        file.write(QByteArray(1 << 19, 'x').replace(99, 1, "\n"));
        file.flush();
        const LogText second = readLog(path, first.stamp);
        QCOMPARE(int(second.outcome), int(LogText::Outcome::Read));
        QVERIFY(second.isCut && second.text.size() < (1 << 19));
    }

    void whatIsChosenIsRemembered()
    {
        QTemporaryDir home;
        qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, home.path());
        {
            Preferences preferences;
            QVERIFY(preferences.isTold(NoticeKind::LinkLost));
            preferences.setTold(NoticeKind::LinkLost, false);
            preferences.setSaid(QStringLiteral("once"));
            QVERIFY(!preferences.isAutostarted());
            QVERIFY(preferences.setAutostarted(true));
        }
        Preferences later;
        QVERIFY(!later.isTold(NoticeKind::LinkLost) && later.isTold(NoticeKind::NewModem));
        QVERIFY(later.wasSaid(QStringLiteral("once")) && later.isAutostarted());
        QVERIFY(later.setAutostarted(false) && !later.isAutostarted());
    }

    void onAFullDiskNothingBeginsWithTheSession()
    {
        const QTemporaryDir home;
        qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
        Preferences preferences;
        signal(SIGXFSZ, SIG_IGN);
        rlimit before = {};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit full = {10, before.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &full), 0);
        const bool isSet = preferences.setAutostarted(true);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
        QVERIFY(!isSet && !preferences.isAutostarted());
    }

    void quittingSaysThatTheConnectionStays()
    {
        ConnectionModel model;
        const QString alone = quitText(model);
        event::DaemonAnswered answer;
        answer.state = 0;
        model.apply(answer, 1);
        QVERIFY(quitText(model) != alone);
        QVERIFY(quitText(model).contains(QLatin1String("connection stays")));
    }
};

QTEST_MAIN(SessionTest)
#include "session_test.moc"
