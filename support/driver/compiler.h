// SPDX-License-Identifier: MIT
// Turns a driver's source tarball into an installed kernel module.
#pragma once

#include <QString>
#include <memory>

class QThread;

/// Builds and installs one driver. One thread makes it, calls the steps in the order in which they
/// stand here (restoreDriver() only after compileDriver() or installDriver() has failed) and
/// deletes it. No step throws. What a step without a result could not do makes compileDriver()
/// fail.
///
/// Each failure is one message of Qt's; everything the tools print, and every step, goes to
/// /opt/norvix/driver_build.log, which each build begins anew. The steps block for as long as their
/// tools run; each tool has a time limit.
class Compiler
{
public:
    /// One driver package. Lists in one text are separated by a comma and a blank.
    struct ModemDriver
    {
        QString name; ///< package name
        QString version; ///< package version
        QString sourceDir; ///< build folder: extractDir, a slash, the tarball's top folder
        QString moduleFile; ///< file name of the kernel module
        QString extractDir; ///< where the build folder is made
        QString tarball; ///< source tarball
        QString buildTargets; ///< list of make targets
        QString installTarget; ///< make target that installs
        QString environment; ///< list of NAME=value for make
        bool flag = false; ///< whether the sources need adapting to today's kernel build
    };

    /// Results besides the exit codes of make, which are below 256.
    enum Failure
    {
        BackupFailed = 1001, ///< the installed module could not be kept, so it is not replaced
        SourcesRefused = 1002, ///< the tarball is missing, damaged, or not to be trusted
        PatchFailed = 1003,
        MakeMissing = 1004,
        HeadersMissing = 1005,
        ToolTimedOut = 1006,
        ToolCrashed = 1007,
        ModuleNotFound = 1008, ///< modprobe would still not find the module
        InstallIncomplete = 1009, ///< files could not be put into the module folder
    };

    /// @p thread is not used: all work is done on the calling thread.
    Compiler(Compiler::ModemDriver driver, QThread *thread);
    virtual ~Compiler();
    Compiler(const Compiler &) = delete;
    Compiler &operator=(const Compiler &) = delete;

    /// Keeps the running kernel's installed module (plain or compressed, wherever it stands) under
    /// /opt/norvix/driver_backup, which only root can enter. When an earlier build was killed while
    /// it installed, first puts back what that one had kept. Waits for tools that such a build left
    /// running.
    virtual void backupDriver();

    /// Unpacks the tarball into the build folder, which is made anew for root alone; whatever stood
    /// there is removed, links unfollowed. Refused unless the tarball and every folder above it are
    /// root's and writable by nobody else, and all members stay inside.
    virtual void extractDriver();

    /// Applies the patch file NAME-VERSION.patch beside the tarball when there is one (held to the
    /// same rules), then, with the record's flag, adapts makefiles and sources.
    virtual void patchDriver();

    /// Runs make for each build target. Returns 0, the first failing exit code, or a Failure.
    virtual int compileDriver();

    /// Runs make for the install target into a folder of its own, moves the result into the running
    /// kernel's module folder file by file, each complete or not at all, and runs depmod. A
    /// makefile that writes to the module folder itself is let do so. Removes the build folder
    /// after success. Returns 0, an exit code, or a Failure.
    virtual int installDriver();

    /// Puts back what backupDriver() kept, byte for byte, with mode and owner, removes the module
    /// where there was none, and runs depmod.
    virtual void restoreDriver();

private:
    class Work;
    std::unique_ptr<Work> m_work;
};
