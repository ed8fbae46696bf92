// SPDX-License-Identifier: MIT
// norvix-keeper: keeps the connection that somebody asked for, and its history.
#include "dbus/contract.h"
#include "keeper/bus_face.h"
#include "keeper/keeper.h"
#include "keeper/settings.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QFile>
#include <QSocketNotifier>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/signalfd.h>

namespace {

constexpr int badUsage = 2; // the exit status for words that are not understood
constexpr char settingsPath[] = "/etc/norvix-keeper.conf";

keeper::Pauses readSettings()
{
    QFile file(QString::fromLatin1(settingsPath));
    const bool isThere = file.open(QIODevice::ReadOnly);
    const keeper::Settings settings
        = keeper::settingsFrom(isThere ? file.read(1 << 16) : QByteArray());
    for (const QString &problem : settings.problems) {
        std::fprintf(stderr, "norvix-keeper: %s, %s.\n", settingsPath, qPrintable(problem));
    }
    return settings.pauses;
}

/// systemd names the folder; without it, it is the one that the package makes.
QString stateFolder()
{
    const QString given = qEnvironmentVariable("STATE_DIRECTORY").section(QLatin1Char(':'), 0, 0);
    return given.isEmpty() ? QStringLiteral("/var/lib/norvix-keeper") : given;
}

/// SIGTERM and SIGINT as events: what is counted is written down before the end.
int endingSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    return signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
}

int failed(const char *what, const QString &why)
{
    std::fprintf(stderr, "norvix-keeper: %s: %s\n", what, qPrintable(why));
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1) {
        const bool isHelp = std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0;
        std::fprintf(isHelp ? stdout : stderr,
            "Usage: norvix-keeper\n\nKeeps the connection of norvix-daemon that somebody asked "
            "for, "
            "and its history.\n");
        return isHelp ? EXIT_SUCCESS : badUsage;
    }
    const int endings = endingSignals();
    const QCoreApplication application(argc, argv);
    const QSocketNotifier ending(endings, QSocketNotifier::Read);
    QObject::connect(&ending, &QSocketNotifier::activated, &application, &QCoreApplication::quit);

    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected()) {
        return failed("cannot reach the system bus", bus.lastError().message());
    }
    keeper::Keeper keeper(bus, stateFolder(), readSettings());
    new keeper::BusFace(&keeper, bus);
    // It listens before anybody sees that it is there.
    if (!keeper.start()) {
        return failed("the kernel tells of no interfaces", QString::fromLocal8Bit(strerror(errno)));
    }
    if (!bus.registerObject(QLatin1String(Bus::keeperPath), &keeper)
        || !bus.registerService(QLatin1String(Bus::keeperService))) {
        return failed("the bus refuses the name com.norvix.Keeper", bus.lastError().message());
    }
    // Without the bus there is nothing to do; the service manager starts us again with it.
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), &keeper,
        SLOT(busLost()));
    const int status = QCoreApplication::exec();
    keeper.finish();
    return status;
}
