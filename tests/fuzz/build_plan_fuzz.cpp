// SPDX-License-Identifier: MIT
// A build's environment holds what was assigned, once, and loses nothing else.
#include "fuzz_input.h"
#include "support/driver/build_plan.h"

namespace {

/// "NAME=" of "NAME=value"; empty where nothing is assigned.
QString variableOf(const QString &entry)
{
    return entry.left(entry.indexOf(QLatin1Char('=')) + 1);
}

void checkAssignments(const QStringList &base, const QStringList &assignments)
{
    const QStringList result = withAssignments(base, assignments);
    QStringList assigned;
    for (const QString &assignment : assignments) {
        assigned.append(variableOf(assignment));
    }
    QStringList kept;
    for (const QString &entry : base) {
        if (variableOf(entry).isEmpty() || !assigned.contains(variableOf(entry))) {
            kept.append(entry);
        }
    }
    require(result.mid(0, kept.size()) == kept);
    require(assignments.isEmpty() || result.constLast() == assignments.constLast());
    for (const QString &variable : assigned) {
        int count = 0;
        for (const QString &entry : result) {
            count += !variable.isEmpty() && entry.startsWith(variable) ? 1 : 0;
        }
        require(variable.isEmpty() || count == 1);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    Compiler::ModemDriver driver;
    for (QString *field : {&driver.name, &driver.version, &driver.sourceDir, &driver.moduleFile,
             &driver.tarball, &driver.buildTargets, &driver.installTarget, &driver.environment}) {
        *field = input.textLine();
    }
    const QStringList base = input.textLines();

    const QStringList assignments = splitList(driver.environment);
    for (const QString &entry : assignments) {
        require(!entry.contains(QLatin1Char(',')) && entry == entry.trimmed() && !entry.isEmpty());
    }
    checkAssignments(base, assignments);

    const BuildPlan plan = buildPlan(driver, base, QStringLiteral("/staging"));
    require(plan.build.size() == splitList(driver.buildTargets).size());
    require(plan.install.environment.constLast() == QLatin1String("INSTALL_MOD_PATH=/staging"));
    require(!plan.topFolder.contains(QLatin1Char('/')));
    require(plan.patchFile.endsWith(QLatin1String(".patch")));

    const QString text = base.join(QLatin1Char('\n'));
    for (const QString &file : modulesToLoad(text)) {
        require(text.contains(file) && !file.contains(QLatin1Char(' ')));
    }
    require(headersPackages(driver.version)
                .startsWith(QLatin1String("linux-headers-") + driver.version));
    return 0;
}
