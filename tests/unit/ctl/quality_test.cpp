// SPDX-License-Identifier: MIT
// The line's quality as text.
#include "ctl/screen/quality_view.h"

#include <QLocale>
#include <QTest>

namespace {

constexpr qint64 noon = 1763812800;

LineSample sampleAt(qint64 time, double margin, qint64 span = 60)
{
    LineSample sample;
    sample.time = time;
    sample.span = span;
    sample.carrier = 1;
    sample.downMargin = margin;
    sample.downErrors = margin;
    return sample;
}

QStringList known(const Curve &curve)
{
    QStringList texts;
    for (const std::optional<double> &value : curve) {
        texts.append(value ? QString::number(*value) : QStringLiteral("-"));
    }
    return texts;
}

} // namespace

class CtlQualityTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void aStepIsTheMeanOfWhatFallsIntoIt()
    {
        const Curve curve
            = curveOf({sampleAt(noon, 10), sampleAt(noon + 60, 20), sampleAt(noon + 180, 30)},
                &LineSample::downMargin, noon, noon + 360, 3);
        QCOMPARE(known(curve), (QStringList{"15", "30", "-"}));
    }

    void aSampleThatStandsForLongReachesOverItsSteps()
    {
        const Curve curve
            = curveOf({sampleAt(noon - 600, 8, 900)}, &LineSample::downMargin, noon, noon + 600, 6);
        QCOMPARE(known(curve), (QStringList{"8", "8", "8", "-", "-", "-"}));
    }

    void eachSampleWeighsByItsPartOfTheStep()
    {
        const Curve curve = curveOf({sampleAt(noon, 10, 900), sampleAt(noon + 900, 20, 100)},
            &LineSample::downMargin, noon, noon + 1000, 1);
        QCOMPARE(known(curve), QStringList{"11"});
    }

    void whatLiesOutsideOrTellsNothingIsNotSeen()
    {
        LineSample silent = sampleAt(noon + 60, 0);
        silent.downMargin.reset();
        const Curve curve = curveOf({sampleAt(noon - 60, 1), silent, sampleAt(noon + 120, 2)},
            &LineSample::downMargin, noon, noon + 120, 2);
        QCOMPARE(known(curve), (QStringList{"-", "-"}));
        QCOMPARE(known(curveOf({}, &LineSample::downMargin, noon, noon, 1)), QStringList{"-"});
    }

    void aCounterIsShownByItsGrowthAndBeginsAnewWhenTheLineDoes()
    {
        const QList<LineSample> samples = {sampleAt(noon, 100), sampleAt(noon + 60, 107),
            sampleAt(noon + 120, 3), sampleAt(noon + 180, 3)};
        QCOMPARE(known(growthOf(samples, &LineSample::downErrors, noon, noon + 300, 5)),
            (QStringList{"0", "7", "3", "0", "-"}));
    }

    void barsRiseWithTheFigureAndWhatIsKnownIsDrawn()
    {
        QCOMPARE(bars({0.0, 4.0, 8.0, std::nullopt}, 8, 1, true), QStringList{"▁▄█ "});
        QCOMPARE(bars({0.0, 4.0, 8.0, std::nullopt}, 8, 1, false), QStringList{".=@ "});
        QCOMPARE(bars({8.0, 4.0, 1.0}, 8, 2, true), (QStringList{"█  ", "██▂"}));
        QCOMPARE(bars({0.0, std::nullopt}, 0, 1, true), QStringList{"▁ "});
        QCOMPARE(bars({-5.0, 50.0}, 8, 1, true), QStringList{"▁█"});
    }

    void theViewHasOneGraphForEachFigureAndFitsTheWidth()
    {
        const QStringList lines = qualityView(
            {sampleAt(noon, 10), sampleAt(noon + 1800, 14)}, noon, noon + 3600, 80, true);
        const QString all = lines.join(QLatin1Char('\n'));
        QVERIFY(all.contains(QStringLiteral("Synchronised: last 100 %, lowest 100 %")));
        QVERIFY(all.contains(
            QStringLiteral("Margin down: last 14.0 dB, lowest 10.0 dB, highest 14.0 dB")));
        QVERIFY(!all.contains(QStringLiteral("Margin up")));
        QVERIFY(!all.contains(QStringLiteral("Rate")));
        QVERIFY(all.contains(QStringLiteral("Errors down: 4 in all")));
        for (const QString &line : lines) {
            QVERIFY2(line.size() <= 80, qPrintable(line));
        }
    }

    void theViewIsAsciiWhereItHasToBe()
    {
        for (const QString &line :
            qualityView({sampleAt(noon, 10)}, noon, noon + 3600, 80, false)) {
            for (const QChar character : line) {
                QVERIFY(character.unicode() < 0x7f);
            }
        }
    }

    void withoutAnythingKnownThereIsNoView()
    {
        QVERIFY(qualityView({}, noon, noon + 3600, 80, true).isEmpty());
        LineSample silent;
        silent.time = noon;
        QVERIFY(qualityView({silent}, noon, noon + 3600, 80, true).isEmpty());
        QVERIFY(qualityView({sampleAt(noon, 10)}, noon + 7200, noon + 9000, 80, true).isEmpty());
    }

    void aNarrowTerminalIsNoHarm()
    {
        QVERIFY(!qualityView({sampleAt(noon, 10)}, noon, noon + 3600, 5, true).isEmpty());
    }
};

QTEST_GUILESS_MAIN(CtlQualityTest)
#include "quality_test.moc"
