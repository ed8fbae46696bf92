// SPDX-License-Identifier: MIT
// Tests for hal/text: numbers and bytes from the kernel.
#include "hal/text.h"

#include "hal_test.h"

class HalTextTest : public QObject
{
    Q_OBJECT

private slots:
    void hexadecimal_numbers_have_one_to_four_digits_and_nothing_else_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<int>("expected"); // -1: not a number
        QTest::newRow("padded") << QByteArray("046d") << 0x46d;
        QTest::newRow("not padded") << QByteArray("1") << 1;
        QTest::newRow("upper case") << QByteArray("CAFE") << 0xcafe;
        QTest::newRow("largest") << QByteArray("ffff") << 0xffff;
        QTest::newRow("five digits") << QByteArray("10000") << -1;
        QTest::newRow("five digits with zero") << QByteArray("00001") << -1;
        QTest::newRow("empty") << QByteArray() << -1;
        QTest::newRow("prefix") << QByteArray("0x11") << -1;
        QTest::newRow("minus") << QByteArray("-1") << -1;
        QTest::newRow("plus") << QByteArray("+1") << -1;
        QTest::newRow("blank") << QByteArray(" 11") << -1;
        QTest::newRow("letters") << QByteArray("11g") << -1;
        QTest::newRow("NUL") << QByteArray("11\0", 3) << -1;
    }
    void hexadecimal_numbers_have_one_to_four_digits_and_nothing_else()
    {
        QFETCH(QByteArray, input);
        QTEST(hal::parseHex(input.toStdString()).value_or(-1), "expected");
    }

    void decimal_numbers_may_be_padded_and_must_fit_an_int_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<int>("expected");
        QTest::newRow("padded with a blank") << QByteArray(" 3") << 3;
        QTest::newRow("padded with zeros") << QByteArray("008") << 8;
        QTest::newRow("line feed") << QByteArray("12\n") << 12;
        QTest::newRow("largest") << QByteArray("2147483647") << 2147483647;
        QTest::newRow("too large") << QByteArray("2147483648") << -1;
        QTest::newRow("far too large") << QByteArray("99999999999999999999") << -1;
        QTest::newRow("empty") << QByteArray() << -1;
        QTest::newRow("blanks") << QByteArray("  ") << -1;
        QTest::newRow("minus") << QByteArray("-1") << -1;
        QTest::newRow("unit") << QByteArray("500mA") << -1;
    }
    void decimal_numbers_may_be_padded_and_must_fit_an_int()
    {
        QFETCH(QByteArray, input);
        QTEST(hal::parseDecimal(input.toStdString()).value_or(-1), "expected");
    }

    void doubles_are_digits_with_at_most_one_point_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<double>("expected");
        QTest::newRow("low speed") << QByteArray("1.5") << 1.5;
        QTest::newRow("full speed") << QByteArray("12") << 12.0;
        QTest::newRow("version") << QByteArray(" 2.00") << 2.0;
        QTest::newRow("empty") << QByteArray() << -1.0;
        QTest::newRow("unknown") << QByteArray("unknown") << -1.0;
        QTest::newRow("infinite") << QByteArray("inf") << -1.0;
        QTest::newRow("no number") << QByteArray("nan") << -1.0;
        QTest::newRow("minus") << QByteArray("-2") << -1.0;
        QTest::newRow("exponent") << QByteArray("1e9") << -1.0;
        QTest::newRow("two points") << QByteArray("1.2.3") << -1.0;
    }
    void doubles_are_digits_with_at_most_one_point()
    {
        QFETCH(QByteArray, input);
        QTEST(hal::parseDouble(input.toStdString()).value_or(-1.0), "expected");
    }

    void what_is_no_utf8_becomes_question_marks_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("plain") << QByteArray("ADSL modem") << QByteArray("ADSL modem");
        QTest::newRow("accents") << QByteArray("Zażółć") << QByteArray("Zażółć");
        QTest::newRow("outside the first plane")
            << QByteArray("\xf0\x9f\x98\x80") << QByteArray("\xf0\x9f\x98\x80");
        QTest::newRow("Latin-1") << QByteArray("caf\xe9") << QByteArray("caf?");
        QTest::newRow("lone continuation") << QByteArray("a\x80z") << QByteArray("a?z");
        QTest::newRow("cut off") << QByteArray("\xe2\x82") << QByteArray("??");
        QTest::newRow("overlong") << QByteArray("\xc0\xaf") << QByteArray("??");
        QTest::newRow("overlong of three") << QByteArray("\xe0\x80\xaf") << QByteArray("???");
        QTest::newRow("overlong of four") << QByteArray("\xf0\x80\x80\xaf") << QByteArray("????");
        QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80") << QByteArray("???");
        QTest::newRow("too large") << QByteArray("\xf4\x90\x80\x80") << QByteArray("????");
        QTest::newRow("NUL") << QByteArray("a\0b", 3) << QByteArray("a?b");
    }
    void what_is_no_utf8_becomes_question_marks()
    {
        QFETCH(QByteArray, input);
        QTEST(QByteArray::fromStdString(hal::validUtf8(input.toStdString())), "expected");
    }

    void what_steers_a_terminal_is_shown_as_question_marks_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("plain") << QByteArray("Zażółć 5%") << QByteArray("Zażółć 5%");
        QTest::newRow("escape") << QByteArray("a\x1b[2J") << QByteArray("a?[2J");
        QTest::newRow("line feed and tabulator") << QByteArray("a\nb\tc") << QByteArray("a?b?c");
        QTest::newRow("delete") << QByteArray("a\x7f") << QByteArray("a?");
        QTest::newRow("upper half") << QByteArray("\xc2\x9b\xc2\xa0") << QByteArray("?\xc2\xa0");
        QTest::newRow("bidirectional") << QByteArray("\xe2\x80\xae\xe2\x81\xa6\xd8\x9c"
                                                     "\xe2\x80\x8f\xe2\x80\xa8")
                                       << QByteArray("?????");
        QTest::newRow("no UTF-8") << QByteArray("\x9b") << QByteArray("?");
    }
    void what_steers_a_terminal_is_shown_as_question_marks()
    {
        QFETCH(QByteArray, input);
        QTEST(QByteArray::fromStdString(hal::visibleText(input.toStdString())), "expected");
    }
};

QTEST_APPLESS_MAIN(HalTextTest)
#include "hal_text_test.moc"
