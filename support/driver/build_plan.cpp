// SPDX-License-Identifier: MIT
#include "support/driver/build_plan.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace {

/// "NAME" of "NAME=value", with the equals sign; empty where nothing is assigned.
QString variableOf(const QString &entry)
{
    return entry.left(entry.indexOf(QLatin1Char('=')) + 1);
}

} // namespace

BuildPlan buildPlan(
    const Compiler::ModemDriver &driver, const QStringList &base, const QString &stagingFolder)
{
    const QStringList environment = withAssignments(base, splitList(driver.environment));
    BuildPlan plan;
    plan.topFolder = QFileInfo(driver.sourceDir).fileName();
    plan.patchFile = QFileInfo(driver.tarball).path() + QLatin1Char('/') + driver.name
        + QLatin1Char('-') + driver.version + QStringLiteral(".patch");
    for (const QString &target : splitList(driver.buildTargets)) {
        plan.build.append({{target}, environment});
    }
    plan.install = {{driver.installTarget},
        withAssignments(environment, {QStringLiteral("INSTALL_MOD_PATH=") + stagingFolder})};
    plan.moduleName = driver.moduleFile;
    plan.moduleName.remove(QRegularExpression(QStringLiteral("\\.ko$")));
    return plan;
}

QStringList splitList(const QString &text)
{
    QStringList entries;
    for (const QString &entry : text.split(QLatin1Char(','))) {
        if (!entry.trimmed().isEmpty()) {
            entries.append(entry.trimmed());
        }
    }
    return entries;
}

QStringList withAssignments(const QStringList &base, const QStringList &assignments)
{
    QStringList result = base;
    for (const QString &assignment : assignments) {
        const QString variable = variableOf(assignment);
        for (int i = result.size() - 1; i >= 0; --i) {
            if (!variable.isEmpty() && result.at(i).startsWith(variable)) {
                result.removeAt(i);
            }
        }
        result.append(assignment);
    }
    return result;
}

QString headersPackages(const QString &release)
{
    const QRegularExpression debianRelease(QStringLiteral(
        "^\\d+\\.\\d+\\.\\d+-[^-]+-((?:rt-|cloud-)?(?:amd64|686-pae|686|arm64|armmp))$"));
    const QString flavour = debianRelease.match(release).captured(1);
    return QStringLiteral("linux-headers-%1 (or linux-headers-%2)")
        .arg(release, flavour.isEmpty() ? QStringLiteral("amd64") : flavour);
}

QStringList modulesToLoad(const QString &showDepends)
{
    QStringList files;
    const QString prefix = QStringLiteral("insmod ");
    for (const QString &line : showDepends.split(QLatin1Char('\n'))) {
        if (line.startsWith(prefix)) {
            files.append(line.mid(prefix.size()).section(QLatin1Char(' '), 0, 0));
        }
    }
    return files;
}
