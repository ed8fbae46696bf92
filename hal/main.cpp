// SPDX-License-Identifier: MIT
// norvix-hald: USB devices on the system bus as HAL showed them.
#include "hal/options.h"
#include "hal/service.h"
#include "hal/text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int badUsage = 2; // the exit status for words that are not understood

/// systemd names the folder; without it, it is the one that the package makes.
std::string knownDevicesPath()
{
    const char *const given = std::getenv("RUNTIME_DIRECTORY");
    std::string folder = given && *given == '/' ? given : "/run/norvix-hal";
    return folder.substr(0, folder.find(':')).append("/devices");
}

} // namespace

int main(int argc, char **argv)
{
    const hal::Options options
        = hal::optionsFrom(std::vector<std::string_view>(argv + 1, argv + argc));
    if (options.offender) {
        std::fprintf(stderr, "norvix-hald: what is \"%s\"? Try --help.\n",
            hal::visibleText(*options.offender).c_str());
        return badUsage;
    }
    if (options.task == hal::Options::Task::Help) {
        const std::string_view text = hal::helpText();
        return std::fwrite(text.data(), text.size(), 1, stdout) == 1 ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    const hal::MonitorGroup group
        = options.monitor ? *options.monitor : hal::defaultMonitor(hal::udevRuns());
    std::unique_ptr<hal::UdevSource> source = hal::UdevSource::open(group);
    if (!source) {
        std::fprintf(
            stderr, "norvix-hald: no events from %s: %s\n", hal::nameOf(group), strerror(errno));
        return EXIT_FAILURE;
    }
    hal::Service service(std::move(source), group, knownDevicesPath());
    return options.task == hal::Options::Task::List ? service.list() : service.run();
}
