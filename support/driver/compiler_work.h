// SPDX-License-Identifier: MIT
// One driver build under way: its places, its log, and the tools it runs.
#pragma once

#include "support/driver/build_log.h"
#include "support/driver/build_plan.h"
#include "support/driver/compiler.h"
#include "support/driver/module_backup.h"
#include "support/driver/module_tree.h"
#include "support/files/trusted_file.h"
#include "support/process/tool_runner.h"

/// The inside of Compiler. Same thread, same order of calls.
class Compiler::Work
{
public:
    explicit Work(Compiler::ModemDriver modemDriver);

    /// Makes the backup folder, waits until no other build is under way, empties the log. Gives the
    /// reason why not, or an empty text.
    QString begin();

    /// Progress, for the build log; on the console too when `debug` is set.
    void note(const char *step, const QString &text);

    /// A failure, for both logs.
    void complain(const char *step, const QString &text);

    /// Opens @p path for the tools to read; complains when it is not to be trusted.
    FileDescriptor openTrusted(const char *step, const QString &path);

    /// Runs @p program with a short, fixed environment. With @p maxOutput its output is kept.
    ToolResult run(const char *step, const QString &program, const QStringList &arguments,
        int input = -1, int maxOutput = 0);

    /// Runs make in the build folder. Gives 0, its exit code, or a Failure.
    int make(const char *step, const MakeCommand &command);

    /// Writes the index of modules anew. Gives 0, an exit code, or a Failure.
    int depmod(const char *step);

    /// Adapts the makefiles and sources in the build folder; false when one cannot be rewritten.
    bool adaptSources(const char *step);

    // From here on: support/driver/compiler_install.cpp

    /// Makes the folder that the install target fills, with the module folder's own folders in it.
    bool makeStaging();

    /// Moves what the install target has put into the staging folder into the module folder. Gives
    /// 0 or a Failure.
    int publish(const char *step);

    /// Sees to it that modprobe finds the module, and finds the new one: an older copy that it
    /// would prefer is taken away. Gives 0 or a Failure.
    int checkModule(const char *step);

    // The data of the build: support/driver/compiler_work.cpp

    const Compiler::ModemDriver driver;
    const BuildPlan plan;
    ModuleTree tree;
    const QString staging; ///< what the install target fills instead of the running system
    ModuleBackup backup;
    bool backedUp = false;
    int obstacle = Compiler::SourcesRefused; ///< why compileDriver() cannot begin; 0: it can

private:
    bool takeLock();
    QString moduleThatModprobeFinds(const char *step);

    BuildLog m_log;
    FileDescriptor m_lock;
    QStringList m_published; ///< relative to the module folder
};
