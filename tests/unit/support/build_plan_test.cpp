// SPDX-License-Identifier: MIT
// The commands of a driver build.
#include "driver/compiler_thread.h"
#include "support/driver/build_plan.h"
#include "test_table.h"

#include <QTest>

namespace {

QStringList targetsOf(const BuildPlan &plan)
{
    QStringList targets;
    for (const MakeCommand &command : plan.build) {
        targets.append(command.arguments.join(QLatin1Char('|')));
    }
    return targets;
}

} // namespace

class BuildPlanTest : public QObject
{
    Q_OBJECT

private slots:
    void eachBuildTargetIsOneRunOfMakeInOrder()
    {
        const QList<Compiler::ModemDriver> drivers = modemDrivers();
        QCOMPARE(
            targetsOf(buildPlan(drivers.at(0), {}, QString())), QStringList{QStringLiteral("all")});
        const QStringList unicorn{QStringLiteral("clean"), QStringLiteral("modules")};
        QCOMPARE(targetsOf(buildPlan(drivers.at(1), {}, QString())), unicorn);
    }

    void theAssignmentsAreAddedToTheDaemonsEnvironment()
    {
        const QStringList base{QStringLiteral("PATH=/bin"), QStringLiteral("LC_ALL=de_DE.UTF-8"),
            QStringLiteral("PWD=/"), QStringLiteral("OLDPWD=/x")};
        const BuildPlan plan = buildPlan(modemDrivers().at(1), base, QStringLiteral("/staging"));
        const QStringList expected{QStringLiteral("PATH=/bin"), QStringLiteral("OLDPWD=/x"),
            QStringLiteral("PWD=/tmp/unicorn-neo"), QStringLiteral("LC_ALL=C")};
        QCOMPARE(plan.build.at(0).environment, expected);
        QCOMPARE(plan.build.at(1).environment, expected);
        QCOMPARE(plan.install.arguments, QStringList{QStringLiteral("modules_install")});
        QCOMPARE(plan.install.environment,
            expected + QStringList{QStringLiteral("INSTALL_MOD_PATH=/staging")});
    }

    void thePatchFileLiesBesideTheTarball()
    {
        const QList<Compiler::ModemDriver> drivers = modemDrivers();
        QCOMPARE(buildPlan(drivers.at(0), {}, QString()).patchFile,
            QStringLiteral("/opt/norvix/drivers/ueagle-atm-1.4.patch"));
        QCOMPARE(buildPlan(drivers.at(1), {}, QString()).patchFile,
            QStringLiteral("/opt/norvix/drivers/unicorn-neo.patch"));
    }

    void theModuleIsNamedWithoutItsSuffix()
    {
        const BuildPlan plan = buildPlan(modemDrivers().at(1), {}, QString());
        QCOMPARE(plan.moduleName, QStringLiteral("unicorn_usb_eth"));
        QCOMPARE(plan.topFolder, QStringLiteral("unicorn-neo"));
    }

    void anAssignmentTakesThePlaceOfTheVariableWhereverItStands_data()
    {
        const auto row = table<QStringList>("base");
        row("first", QStringList({"A=1", "B=2"}));
        row("last", QStringList({"B=2", "A=1"}));
        row("twice", QStringList({"A=1", "B=2", "A=2"}));
        row("nowhere", QStringList("B=2"));
    }

    void anAssignmentTakesThePlaceOfTheVariableWhereverItStands()
    {
        QFETCH(QStringList, base);
        QCOMPARE(withAssignments(base, {QStringLiteral("A=3")}), QStringList({"B=2", "A=3"}));
    }

    void aVariableWhoseNameOnlyBeginsTheSameIsAnother()
    {
        const QStringList base{QStringLiteral("AB=1"), QStringLiteral("A")};
        QCOMPARE(withAssignments(base, {QStringLiteral("A=3")}),
            QStringList({QStringLiteral("AB=1"), QStringLiteral("A"), QStringLiteral("A=3")}));
    }

    void anEntryThatAssignsNothingTakesNoVariableAway()
    {
        const QStringList base{QStringLiteral("A=1"), QStringLiteral("B=2")};
        QCOMPARE(withAssignments(base, {QStringLiteral("A")}), base + QStringList("A"));
    }

    void listsAreSplitAtCommas_data()
    {
        const auto row = table<QString, QStringList>("text", "entries");
        row("none", QString(), QStringList());
        row("one", "all", QStringList("all"));
        row("two", "clean, modules", QStringList({"clean", "modules"}));
        row("no blank", "clean,modules", QStringList({"clean", "modules"}));
        row("blank inside", "A=b c, D=e", QStringList({"A=b c", "D=e"}));
        row("empty entries", ", all, ,", QStringList("all"));
    }

    void listsAreSplitAtCommas()
    {
        QFETCH(QString, text);
        QTEST(splitList(text), "entries");
    }

    void theHeadersPackageIsNamedAfterTheKernel_data()
    {
        const auto row = table<QString, QString>("release", "packages");
        row("amd64", "6.1.0-56-amd64", "linux-headers-6.1.0-56-amd64 (or linux-headers-amd64)");
        row("32 bit", "6.1.0-56-686-pae",
            "linux-headers-6.1.0-56-686-pae (or linux-headers-686-pae)");
        row("rt", "6.1.0-9-rt-amd64", "linux-headers-6.1.0-9-rt-amd64 (or linux-headers-rt-amd64)");
        row("own kernel", "6.18.44", "linux-headers-6.18.44 (or linux-headers-amd64)");
    }

    void theHeadersPackageIsNamedAfterTheKernel()
    {
        QFETCH(QString, release);
        QTEST(headersPackages(release), "packages");
    }

    void theModulesToLoadAreReadInOrder_data()
    {
        const auto row = table<QString, QStringList>("output", "files");
        row("none", QString(), QStringList());
        row("built in", "builtin loop\n", QStringList());
        row("one", "insmod /lib/modules/6.1/extra/a.ko \n",
            QStringList("/lib/modules/6.1/extra/a.ko"));
        row("with needs and options",
            "insmod /lib/modules/6.1/b.ko.xz \ninsmod /lib/modules/6.1/a.ko x=1 y=2\n",
            QStringList({"/lib/modules/6.1/b.ko.xz", "/lib/modules/6.1/a.ko"}));
        row("cut off", "insmod ", QStringList(QString()));
        row("noise", "xinsmod /a\n insmod /b\n", QStringList());
    }

    void theModulesToLoadAreReadInOrder()
    {
        QFETCH(QString, output);
        QTEST(modulesToLoad(output), "files");
    }
};

QTEST_APPLESS_MAIN(BuildPlanTest)
#include "build_plan_test.moc"
