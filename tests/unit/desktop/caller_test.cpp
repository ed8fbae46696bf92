// SPDX-License-Identifier: MIT
// Whom the programs with an administrator's rights take for their caller.
#include "desktop/rights/caller.h"

#include <QTest>

class CallerTest : public QObject
{
    Q_OBJECT

private slots:
    void aPlainNumberOfAUserIsTaken()
    {
        QVERIFY(desktop::callerFrom("1000") == uid_t(1000));
        QVERIFY(desktop::callerFrom("1") == uid_t(1));
        QVERIFY(desktop::callerFrom("4294967294") == uid_t(4294967294U));
    }

    void everythingElseIsNobody()
    {
        QVERIFY(!desktop::callerFrom(nullptr));
        for (const char *text : {"", "0", "00", "01", "+1", "-1", " 1", "1 ", "1\n", "0x1", "1e3",
                 "root", "4294967295", "4294967296", "18446744073709551617",
                 "99999999999999999999999999999999999999", "\xd9\xa1"}) {
            QVERIFY2(!desktop::callerFrom(text), text);
        }
    }

    void aNameThatCouldMeanSomethingElseIsNone()
    {
        QVERIFY(desktop::isPlainUserName("jo.doe_7-x"));
        for (const char *name :
            {"", "-jo", "jo,root", "a:b", "a/b", "a b", "a\nb", "a\tb", "a\x7f"}) {
            QVERIFY2(!desktop::isPlainUserName(name), name);
        }
    }
};

QTEST_APPLESS_MAIN(CallerTest)
#include "caller_test.moc"
