// SPDX-License-Identifier: MIT
#include "support/process/tool_runner.h"

#include "support/process/programs.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QVector>
#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <vector>

namespace {

/// The exit status of a child whose program cannot be started, as a shell has it.
constexpr int notFound = 127;

/// Everything that the child needs, made before the fork: between fork and exec of a process with
/// threads only plain system calls are safe.
struct Launch
{
    QByteArray path;
    QByteArray folder;
    QList<QByteArray> texts;
    QVector<char *> arguments;
    QVector<char *> environment;
    int input;
    int output;
    int errors;
    int lock;
};

QVector<char *> pointersTo(const QStringList &entries, QList<QByteArray> &texts)
{
    QVector<char *> pointers;
    for (const QString &entry : entries) {
        texts.append(entry.toLocal8Bit());
        pointers.append(texts.last().data());
    }
    pointers.append(nullptr);
    return pointers;
}

[[noreturn]] void becomeTool(const Launch &launch)
{
    setpgid(0, 0);
    umask(022);
    signal(SIGPIPE, SIG_DFL);
    // All descriptors here are 10 or above, so none is overwritten before it is used.
    dup2(launch.input, 0);
    dup2(launch.output, 1);
    dup2(launch.errors, 2);
    const unsigned firstClosed = launch.lock >= 0 ? 4 : 3;
    if (launch.lock >= 0) {
        dup2(launch.lock, 3);
    }
    syscall(SYS_close_range, firstClosed, ~0U, 0U);
    if (chdir(launch.folder.constData()) == 0) {
        execve(launch.path.constData(), launch.arguments.data(), launch.environment.data());
    }
    _exit(notFound);
}

/// Waits for the child; false when the time is over.
bool waitFor(pid_t child, int timeoutMs, int *status)
{
    const QDeadlineTimer deadline(timeoutMs, Qt::PreciseTimer);
    // A kernel without such descriptors is asked every 10 ms instead.
    const FileDescriptor ended(int(syscall(SYS_pidfd_open, child, 0)));
    for (;;) {
        const pid_t got = waitpid(child, status, WNOHANG);
        if (got != 0) {
            if (got < 0) {
                *status = SIGKILL;
            }
            return true;
        }
        if (deadline.hasExpired()) {
            return false;
        }
        pollfd waiting = {ended.get(), POLLIN, 0};
        const int remaining = int(deadline.remainingTime());
        poll(&waiting, 1, ended.isOpen() ? remaining : qMin(remaining, 10));
    }
}

constexpr int killedWithinMs = 1000;

std::mutex leftMutex;
std::vector<pid_t> leftBehind;

/// Ends the tool and its children. What even SIGKILL does not end waits in the kernel, perhaps for
/// ever: it is left behind, and reaped when a later tool runs.
void endOrLeave(pid_t child)
{
    int status = 0;
    kill(-child, SIGKILL);
    if (!waitFor(child, killedWithinMs, &status)) {
        const std::lock_guard<std::mutex> lock(leftMutex);
        leftBehind.push_back(child);
    }
}

void reapLeftBehind()
{
    const std::lock_guard<std::mutex> lock(leftMutex);
    const auto isGone = [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; };
    leftBehind.erase(
        std::remove_if(leftBehind.begin(), leftBehind.end(), isGone), leftBehind.end());
}

/// A copy whose number is out of the way of the standard streams.
FileDescriptor highCopy(int descriptor)
{
    return FileDescriptor(fcntl(descriptor, F_DUPFD_CLOEXEC, 10));
}

QByteArray contentsOf(int memory, int limit)
{
    struct stat facts = {};
    fstat(memory, &facts);
    QByteArray bytes(int(qMin<qint64>(facts.st_size, limit)), '\0');
    const ssize_t got = pread(memory, bytes.data(), size_t(bytes.size()), 0);
    bytes.truncate(int(qMax<ssize_t>(got, 0)));
    return bytes;
}

} // namespace

QString findTool(const QString &program, const QStringList &environment)
{
    const QStringList system(
        QStringLiteral("PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"));
    for (const QStringList &entries : {environment, system}) {
        const QFileInfo found(findProgram(program, entries));
        if (found.isAbsolute() && found.isFile() && found.isExecutable()) {
            return found.filePath();
        }
    }
    return QString();
}

ToolResult runTool(const ToolCall &call, int log, int lock)
{
    reapLeftBehind();
    ToolResult result;
    const QString path = findTool(call.program, call.environment);
    const FileDescriptor null(open("/dev/null", O_RDWR | O_CLOEXEC));
    const FileDescriptor kept(
        call.maxOutput > 0 ? memfd_create("norvix-tool-output", MFD_CLOEXEC) : -1);
    const FileDescriptor input = highCopy(call.input >= 0 ? call.input : null.get());
    const FileDescriptor output = highCopy(kept.isOpen() ? kept.get() : log);
    const FileDescriptor errors = highCopy(log);
    const FileDescriptor lockCopy = highCopy(lock);
    if (path.isEmpty() || !input.isOpen() || !output.isOpen() || !errors.isOpen()) {
        return result;
    }

    Launch launch{QFile::encodeName(path),
        call.folder.isEmpty() ? QByteArray("/") : QFile::encodeName(call.folder), {}, {}, {},
        input.get(), output.get(), errors.get(), lockCopy.get()};
    launch.arguments = pointersTo(QStringList(call.program) + call.arguments, launch.texts);
    launch.environment = pointersTo(call.environment, launch.texts);

    const pid_t child = fork();
    if (child == 0) {
        becomeTool(launch);
    }
    if (child < 0) {
        return result;
    }
    setpgid(child, child); // here too, so that it is done before anyone can want to kill the group
    int status = 0;
    if (!waitFor(child, call.timeoutMs, &status)) {
        endOrLeave(child);
        result.end = ToolResult::TimedOut;
    } else if (WIFEXITED(status)) {
        result.end = ToolResult::Exited;
        result.exitCode = WEXITSTATUS(status);
    } else {
        result.end = ToolResult::Crashed;
    }
    if (kept.isOpen()) {
        result.output = contentsOf(kept.get(), call.maxOutput);
    }
    return result;
}
