// SPDX-License-Identifier: MIT
// Tests for hal/text: numbers and bytes from the kernel.
#include "hal/text.h"

#include "hal_test.h"
#include "test_table.h"

class HalTextTest : public QObject
{
    Q_OBJECT

private slots:
    void hexadecimal_numbers_have_one_to_four_digits_and_nothing_else_data()
    {
        // -1: not a number.
        const auto row = table<QByteArray, int>("input", "expected");
        row("padded", "046d", 0x46d);
        row("not padded", "1", 1);
        row("upper case", "CAFE", 0xcafe);
        row("largest", "ffff", 0xffff);
        row("five digits", "10000", -1);
        row("five digits with zero", "00001", -1);
        row("empty", QByteArray(), -1);
        row("prefix", "0x11", -1);
        row("minus", "-1", -1);
        row("plus", "+1", -1);
        row("blank", " 11", -1);
        row("letters", "11g", -1);
        row("NUL", QByteArray("11\0", 3), -1);
    }
    void hexadecimal_numbers_have_one_to_four_digits_and_nothing_else()
    {
        QFETCH(QByteArray, input);
        QTEST(hal::parseHex(input.toStdString()).value_or(-1), "expected");
    }

    void decimal_numbers_may_be_padded_and_must_fit_an_int_data()
    {
        const auto row = table<QByteArray, int>("input", "expected");
        row("padded with a blank", " 3", 3);
        row("padded with zeros", "008", 8);
        row("line feed", "12\n", 12);
        row("largest", "2147483647", 2147483647);
        row("too large", "2147483648", -1);
        row("far too large", "99999999999999999999", -1);
        row("empty", QByteArray(), -1);
        row("blanks", "  ", -1);
        row("minus", "-1", -1);
        row("unit", "500mA", -1);
    }
    void decimal_numbers_may_be_padded_and_must_fit_an_int()
    {
        QFETCH(QByteArray, input);
        QTEST(hal::parseDecimal(input.toStdString()).value_or(-1), "expected");
    }

    void doubles_are_digits_with_at_most_one_point_data()
    {
        const auto row = table<QByteArray, double>("input", "expected");
        row("low speed", "1.5", 1.5);
        row("full speed", "12", 12.0);
        row("version", " 2.00", 2.0);
        row("empty", QByteArray(), -1.0);
        row("unknown", "unknown", -1.0);
        row("infinite", "inf", -1.0);
        row("no number", "nan", -1.0);
        row("minus", "-2", -1.0);
        row("exponent", "1e9", -1.0);
        row("two points", "1.2.3", -1.0);
    }
    void doubles_are_digits_with_at_most_one_point()
    {
        QFETCH(QByteArray, input);
        QTEST(hal::parseDouble(input.toStdString()).value_or(-1.0), "expected");
    }

    void what_is_no_utf8_becomes_question_marks_data()
    {
        const auto row = table<QByteArray, QByteArray>("input", "expected");
        row("plain", "ADSL modem", "ADSL modem");
        row("accents", "Zażółć", "Zażółć");
        row("outside the first plane", "\xf0\x9f\x98\x80", "\xf0\x9f\x98\x80");
        row("Latin-1", "caf\xe9", "caf?");
        row("lone continuation", "a\x80z", "a?z");
        row("cut off", "\xe2\x82", "??");
        row("overlong", "\xc0\xaf", "??");
        row("overlong of three", "\xe0\x80\xaf", "???");
        row("overlong of four", "\xf0\x80\x80\xaf", "????");
        row("surrogate", "\xed\xa0\x80", "???");
        row("too large", "\xf4\x90\x80\x80", "????");
        row("NUL", QByteArray("a\0b", 3), "a?b");
    }
    void what_is_no_utf8_becomes_question_marks()
    {
        QFETCH(QByteArray, input);
        QTEST(QByteArray::fromStdString(hal::validUtf8(input.toStdString())), "expected");
    }

    void what_steers_a_terminal_is_shown_as_question_marks_data()
    {
        const auto row = table<QByteArray, QByteArray>("input", "expected");
        row("plain", "Zażółć 5%", "Zażółć 5%");
        row("escape", "a\x1b[2J", "a?[2J");
        row("line feed and tabulator", "a\nb\tc", "a?b?c");
        row("delete", "a\x7f", "a?");
        row("upper half", "\xc2\x9b\xc2\xa0", "?\xc2\xa0");
        row("bidirectional",
            "\xe2\x80\xae\xe2\x81\xa6\xd8\x9c"
            "\xe2\x80\x8f\xe2\x80\xa8",
            "?????");
        row("no UTF-8", "\x9b", "?");
    }
    void what_steers_a_terminal_is_shown_as_question_marks()
    {
        QFETCH(QByteArray, input);
        QTEST(QByteArray::fromStdString(hal::visibleText(input.toStdString())), "expected");
    }
};

QTEST_APPLESS_MAIN(HalTextTest)
#include "hal_text_test.moc"
