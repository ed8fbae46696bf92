// SPDX-License-Identifier: MIT
// The plot as a widget: read by keyboard, by pointer and by accessible technology, in all palettes.
#include "desktop/plot/colours.h"
#include "desktop/plot/plot.h"
#include "test_table.h"

#include <QAccessible>
#include <QApplication>
#include <QMouseEvent>
#include <QTest>

using namespace desktop;

namespace {

PlotContent threePoints()
{
    PlotContent content;
    content.title = QStringLiteral("Speed");
    content.span = QStringLiteral("last five minutes");
    content.unit = QStringLiteral("kbit/s");
    content.whenEmpty = QStringLiteral("Nothing yet.");
    content.first = {QStringLiteral("Down"), QStringLiteral("3 kbit/s")};
    content.second = {QStringLiteral("Up"), QStringLiteral("1 kbit/s")};
    content.begin = 0;
    content.end = 4;
    for (int at = 1; at <= 3; ++at) {
        content.points.append({double(at), QStringLiteral("t%1").arg(at), double(at), 1.0});
    }
    return content;
}

QPalette darkPalette()
{
    QPalette palette(QColor(0x20, 0x22, 0x24));
    palette.setColor(QPalette::Base, QColor(0x1b, 0x1c, 0x1e));
    palette.setColor(QPalette::WindowText, Qt::white);
    return palette;
}

void movePointer(Plot &plot, const QPoint &place)
{
    QMouseEvent event(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&plot, &event);
}

} // namespace

class PlotTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { makePlotsAccessible(); }

    void isReadByKeyboard_data()
    {
        const auto row = table<QVector<int>, int>("keys", "place");
        row("not yet", {}, -1);
        row("the newest first", {Qt::Key_Left}, 2);
        row("the newest first, whichever key", {Qt::Key_Right}, 2);
        row("back", {Qt::Key_Left, Qt::Key_Left}, 1);
        row("and forth", {Qt::Key_Left, Qt::Key_Left, Qt::Key_Right}, 2);
        row("not beyond", {Qt::Key_End, Qt::Key_Right}, 2);
        row("first", {Qt::Key_Home}, 0);
        row("not before", {Qt::Key_Home, Qt::Key_Left}, 0);
        row("far back", {Qt::Key_End, Qt::Key_PageUp}, 0);
        row("no more", {Qt::Key_Home, Qt::Key_Escape}, -1);
    }
    void isReadByKeyboard()
    {
        QFETCH(QVector<int>, keys);
        QFETCH(int, place);
        Plot plot;
        plot.setContent(threePoints());
        for (const int key : keys) {
            QTest::keyClick(&plot, Qt::Key(key));
        }
        QCOMPARE(plot.readPlace(), place);
    }

    void arrowsPointTheWayTimeRuns()
    {
        Plot plot;
        plot.setLayoutDirection(Qt::RightToLeft);
        plot.setContent(threePoints());
        QTest::keyClick(&plot, Qt::Key_Home);
        QTest::keyClick(&plot, Qt::Key_Left);
        QCOMPARE(plot.readPlace(), 1);
    }

    void keysDoNothingWhereNothingIsKnown()
    {
        Plot plot;
        plot.setContent(PlotContent());
        for (const int key : {Qt::Key_Left, Qt::Key_Home, Qt::Key_End, Qt::Key_PageDown}) {
            QTest::keyClick(&plot, Qt::Key(key));
        }
        QCOMPARE(plot.readPlace(), -1);
    }

    void theReadPointStaysWhenTimeGoesOn()
    {
        Plot plot;
        plot.setContent(threePoints());
        QTest::keyClick(&plot, Qt::Key_Home);
        PlotContent later = threePoints();
        later.points.append({4, QStringLiteral("t4"), 4.0, 1.0});
        plot.setContent(later);
        QCOMPARE(plot.valueText(), QStringLiteral("t1: Down 1.0 kbit/s, Up 1.0 kbit/s"));
    }

    void isReadUnderThePointer()
    {
        Plot plot;
        plot.resize(600, 300);
        plot.setContent(threePoints());
        movePointer(plot, QPoint(plot.width() / 2, plot.height() / 2));
        QCOMPARE(plot.readPlace(), 1);
        movePointer(plot, QPoint(plot.width() / 2, 1)); // on the legend
        QCOMPARE(plot.readPlace(), -1);
    }

    void tellsAccessibleTechnologyWhatOneSees()
    {
        Plot plot;
        plot.setContent(threePoints());
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&plot);
        QCOMPARE(accessible->role(), QAccessible::Chart);
        QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Speed, last five minutes"));
        const QString whole = QStringLiteral("Down 3 kbit/s. Up 1 kbit/s. Down at most 3.0 kbit/s "
                                             "(t3). Up at most 1.0 kbit/s (t1).");
        QCOMPARE(accessible->text(QAccessible::Value), whole);
        QCOMPARE(accessible->text(QAccessible::Description), whole);
        QCOMPARE(accessible->valueInterface()->currentValue().toDouble(), 3.0);
        QTest::keyClick(&plot, Qt::Key_Home);
        QCOMPARE(accessible->text(QAccessible::Value),
            QStringLiteral("t1: Down 1.0 kbit/s, Up 1.0 kbit/s"));
        QCOMPARE(accessible->valueInterface()->currentValue().toDouble(), 1.0);
        QVERIFY(accessible->state().focusable);
    }

    void anEmptyPlotSaysWhy()
    {
        Plot plot;
        PlotContent content = threePoints();
        content.points.clear();
        plot.setContent(content);
        QCOMPARE(plot.valueText(), QStringLiteral("Nothing yet."));
    }

    void isDrawnInEverySize()
    {
        for (const PlotShape shape : {PlotShape::Lines, PlotShape::Bars}) {
            for (const QSize size : {QSize(1, 1), QSize(40, 30), QSize(800, 400)}) {
                Plot plot;
                PlotContent content = threePoints();
                content.shape = shape;
                plot.setContent(content);
                plot.resize(size);
                QVERIFY(!plot.grab().isNull());
                plot.setContent(PlotContent());
                QVERIFY(!plot.grab().isNull());
            }
        }
    }

    void coloursStandOutOfEveryGround_data()
    {
        const auto row = table<QPalette>("palette");
        row("light", QPalette(QColor(0xef, 0xef, 0xef)));
        row("dark", darkPalette());
        QPalette grey = darkPalette();
        grey.setColor(QPalette::Highlight, Qt::gray);
        row("grey highlight", grey);
        QPalette pale(QColor(0xef, 0xef, 0xef));
        pale.setColor(QPalette::Highlight, QColor(0xff, 0xff, 0xcc));
        row("pale highlight", pale);
        QPalette black(Qt::black);
        black.setColor(QPalette::Base, Qt::black);
        black.setColor(QPalette::WindowText, Qt::yellow);
        row("high contrast", black);
    }
    void coloursStandOutOfEveryGround()
    {
        QFETCH(QPalette, palette);
        const PlotColours colours = plotColours(palette);
        QVERIFY(contrast(colours.first, colours.ground) >= 3);
        QVERIFY(contrast(colours.second, colours.ground) >= 3);
        QVERIFY(contrast(colours.mutedText, palette.color(QPalette::Window)) >= 4.5);
        QVERIFY(colours.first != colours.second);
    }

    void blackOnWhiteIsTheMostContrastThereIs()
    {
        QCOMPARE(contrast(Qt::black, Qt::white), 21.0);
        QCOMPARE(contrast(Qt::white, Qt::white), 1.0);
        QCOMPARE(withContrast(Qt::blue, Qt::white, 3), QColor(Qt::blue));
    }
};

QTEST_MAIN(PlotTest)
#include "plot_test.moc"
