// SPDX-License-Identifier: MIT
// Entry of norvix-daemon.
#include "daemon/logging.h"
#include "daemon/norvix_daemon.h"
#include "daemon/process_end.h"
#include "daemon/settings.h"
#include "support/debug.h"
#include "support/lock_file.h"
#include "support/safe_file.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <array>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int forkFailedStatus = -1;
constexpr int alreadyRunningStatus = -2;

/// Makes sure that descriptors 0 to 2 exist. Started without them, the bus connection would become
/// standard output, and what is printed would be written into it.
void openMissingStandardStreams()
{
    int fd = -1;
    do {
        fd = open("/dev/null", O_RDWR);
    } while (fd >= 0 && fd <= STDERR_FILENO);
    if (fd > STDERR_FILENO) {
        close(fd);
    }
}

bool wantsDebug(const QStringList &arguments)
{
    for (const char *option : {"--debug", "-debug", "-d", "--verbose", "-debug", "-v"}) {
        if (arguments.contains(QLatin1String(option))) {
            return true;
        }
    }
    return false;
}

int runDaemon(int argc, char **argv)
{
    // A smaller event loop for this thread and the bus library's: nothing here needs the desktop's
    // one. Children do not see the choice.
    const bool isUnset = qEnvironmentVariableIsEmpty("QT_NO_GLIB");
    if (isUnset) {
        qputenv("QT_NO_GLIB", "1");
    }
    QCoreApplication application(argc, argv);
    QDBusConnection::systemBus(); // starts the bus library's thread
    if (isUnset) {
        qunsetenv("QT_NO_GLIB");
    }
    endOnSignals();
    if (wantsDebug(QCoreApplication::arguments())) {
        debug = true;
    }
    Norvix_Daemon daemon;
    if (debug) {
        fputs("Norvix Daemon: started.\n", stdout);
    }
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    openMissingStandardStreams();
    signal(SIGPIPE, SIG_IGN); // whoever read our output may go; the connection must not
    // What is printed is to be seen at once, through a pipe too, and only once despite the fork.
    // The buffer is our own: the library would allocate one at the first text, which may be the
    // signal handler's, in the middle of an allocation.
    static std::array<char, BUFSIZ> outputBuffer;
    setvbuf(stdout, outputBuffer.data(), _IOLBF, outputBuffer.size());
    installDebugHandler();
    setDebug(true, QStringLiteral("/opt/norvix/daemon_verbose.log"));

    const pid_t child = fork();
    if (child > 0) {
        return 0;
    }
    if (child < 0) {
        fprintf(stderr, "Norvix Daemon: Failed to fork (%i)!\n", int(child));
        return forkFailedStatus;
    }
    if (lockFile(QStringLiteral("/var/lock/norvixdaemon")) < 0) {
        fputs("Norvix Daemon: It seems that the daemon is already running.\n", stderr);
        return alreadyRunningStatus;
    }
    clearStaleSettingsFiles();
    clearUnfinished(QStringLiteral("/etc/resolv.conf"));
    return runDaemon(argc, argv);
}
