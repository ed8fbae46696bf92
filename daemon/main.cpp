// SPDX-License-Identifier: MIT
// Entry of norvix-daemon.
#include "daemon/logging.h"
#include "daemon/norvix_daemon.h"
#include "daemon/process_end.h"
#include "daemon/settings.h"
#include "dbus/contract.h"
#include "support/files/lock_file.h"
#include "support/files/safe_file.h"
#include "support/process/debug.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <array>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
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

/// Keeps one switch twice where a longer form of it might be expected: start scripts rely on what
/// is no switch being ignored.
bool wantsDebug(const QStringList &arguments)
{
    for (const char *option : {"--debug", "-debug", "-d", "--verbose", "-debug", "-v"}) {
        if (arguments.contains(QLatin1String(option))) {
            return true;
        }
    }
    return false;
}

enum class Name
{
    Ours,
    AnothersAlready,
    Unknown, ///< the bus cannot be asked or refuses the name; registering will fail and tell why
};

/// For a process without a lock: asks the bus for the daemon's name, so that of two that start at
/// the same time only one goes on.
Name takeName(const QDBusConnection &bus)
{
    QDBusConnectionInterface *names = bus.interface();
    if (names == nullptr) {
        return Name::Unknown;
    }
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply
        = names->registerService(QLatin1String(Bus::service));
    if (!reply.isValid()) {
        return Name::Unknown;
    }
    return reply.value() == QDBusConnectionInterface::ServiceRegistered ? Name::Ours
                                                                        : Name::AnothersAlready;
}

int refuseToStart()
{
    fputs("Norvix Daemon: It seems that the daemon is already running.\n", stderr);
    return alreadyRunningStatus;
}

int runDaemon(int argc, char **argv, bool isLocked)
{
    // A smaller event loop for this thread and the bus library's: nothing here needs the desktop's
    // one. Children do not see the choice.
    const bool isUnset = qEnvironmentVariableIsEmpty("QT_NO_GLIB");
    if (isUnset) {
        qputenv("QT_NO_GLIB", "1");
    }
    QCoreApplication application(argc, argv);
    endOnSignals(); // before the bus, which may keep us waiting
    if (wantsDebug(QCoreApplication::arguments())) {
        debug = true;
    }
    const QDBusConnection bus = QDBusConnection::systemBus(); // starts the bus library's thread
    if (isUnset) {
        qunsetenv("QT_NO_GLIB");
    }
    // Another instance's files, its log among them, are not to be touched.
    const Name name = isLocked ? Name::Ours : takeName(bus);
    if (name == Name::AnothersAlready) {
        return refuseToStart();
    }
    if (name == Name::Ours) {
        clearStaleSettingsFiles();
        clearUnfinished(QStringLiteral("/etc/resolv.conf"));
        clearUnfinishedIn("/etc/ppp"); // of a client that was killed while it mended them
        clearUnfinishedIn("/etc/ppp/peers");
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
    // By itself the library would keep what a client's megabytes took. Fixed at its default, the
    // limit sends every large block back to the system as soon as it is free.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    openMissingStandardStreams();
    // Our folders hand their group on, which may read there. Whatever mask we were started with,
    // nobody but root writes what we make.
    umask(umask(0) | S_IWGRP | S_IWOTH);
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
    const int lock = lockFile(QStringLiteral("/var/lock/norvixdaemon"));
    if (lock < 0) {
        return refuseToStart();
    }
    return runDaemon(argc, argv, lock > 0);
}
