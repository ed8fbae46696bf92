// SPDX-License-Identifier: MIT
// The architecture's name.
#include "support/process/system_info.h"
#include "test_table.h"

#include <QSysInfo>
#include <QTest>

using Norvix::SystemInfo;

class SystemInfoTest : public QObject
{
    Q_OBJECT

private slots:
    void every32BitX86MachineIsCalledI386_data();
    void every32BitX86MachineIsCalledI386();
    void theRunningSystemHasAName();
};

void SystemInfoTest::every32BitX86MachineIsCalledI386_data()
{
    const auto row = table<QString>("architecture");
    for (const char *machine : {"i386", "i486", "i586", "i686", "x86"}) {
        row(machine, "i386");
    }
    for (const char *machine : {"x86_64", "amd64", "ia64", "aarch64", "armv7l", "ppc64le", "i86",
             "ix86", "i6866", "I686"}) {
        row(machine, QString::fromLatin1(machine));
    }
    row("", QString());
    row("i\xff"
        "86",
        QString::fromLatin1("i\xff"
                            "86"));
}

void SystemInfoTest::every32BitX86MachineIsCalledI386()
{
    QFETCH(QString, architecture);
    QCOMPARE(SystemInfo::architectureOf(QTest::currentDataTag()), architecture);
}

void SystemInfoTest::theRunningSystemHasAName()
{
    const QString built = QSysInfo::buildCpuArchitecture();
    QCOMPARE(
        SystemInfo::getArchitecture() == QLatin1String("i386"), built == QLatin1String("i386"));
    QVERIFY(!SystemInfo::getArchitecture().isEmpty());
}

QTEST_APPLESS_MAIN(SystemInfoTest)
#include "system_info_test.moc"
