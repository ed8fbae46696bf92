// SPDX-License-Identifier: MIT
// The daemon's own object and adaptor, emitting signals for measurement.
#include "bench/emission.h"
#include "daemon/norvix_daemon.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

int main(int argc, char **argv)
{
    qputenv("QT_NO_GLIB", "1"); // as the daemon does
    QCoreApplication application(argc, argv);
    FILE *const result = fdopen(dup(fileno(stdout)), "w");
    // What the start-up prints goes elsewhere.
    if (result == nullptr || argc != 2 || freopen("/dev/null", "w", stdout) == nullptr) {
        return 1;
    }
    Norvix_Daemon daemon;
    fprintf(result, "%lld\n", emissionTimeNs(daemon, atoi(argv[1])));
    fclose(result);
    _exit(0);
}
