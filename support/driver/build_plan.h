// SPDX-License-Identifier: MIT
// What a driver build runs: commands, environment and names, worked out from the driver's record.
#pragma once

#include "support/driver/compiler.h"

#include <QList>
#include <QString>
#include <QStringList>

/// One run of make, to be started in the build folder.
struct MakeCommand
{
    QStringList arguments;
    QStringList environment; ///< "NAME=value", complete
};

/// The whole build of one driver.
struct BuildPlan
{
    QString topFolder; ///< the folder that every member of the tarball lies in
    QString patchFile; ///< beside the tarball; applied when it exists
    QList<MakeCommand> build; ///< in order; the first failure ends the build
    MakeCommand install;
    QString moduleName; ///< what modprobe is asked for
};

/// The commands that build @p driver in the daemon's environment @p base. The install command puts
/// the module below @p stagingFolder instead of into the running system.
BuildPlan buildPlan(
    const Compiler::ModemDriver &driver, const QStringList &base, const QString &stagingFolder);

/// The entries of a list kept in one text: "clean, modules" are two.
QStringList splitList(const QString &text);

/// @p base with the "NAME=value" entries of @p assignments added; an assignment replaces the
/// variable of that name.
QStringList withAssignments(const QStringList &base, const QStringList &assignments);

/// The Debian packages with the headers of kernel @p release, as words for a message.
QString headersPackages(const QString &release);

/// The module files that modprobe would load, in order, from what "modprobe --show-depends" prints.
QStringList modulesToLoad(const QString &showDepends);
