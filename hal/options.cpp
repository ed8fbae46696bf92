// SPDX-License-Identifier: MIT
#include "hal/options.h"

namespace hal {

Options optionsFrom(const std::vector<std::string_view> &arguments)
{
    Options options;
    for (const std::string_view argument : arguments) {
        if (argument == "--help" || argument == "-h") {
            options.task = Options::Task::Help;
            return options;
        }
        if (argument == "--list") {
            options.task = Options::Task::List;
        } else if (argument == "--monitor=udev") {
            options.monitor = MonitorGroup::Udev;
        } else if (argument == "--monitor=kernel") {
            options.monitor = MonitorGroup::Kernel;
        } else if (argument == "--monitor=auto") {
            options.monitor.reset();
        } else {
            options.offender = argument;
            return options;
        }
    }
    return options;
}

std::string_view helpText()
{
    return "Usage: norvix-hald [--monitor=udev|kernel|auto] [--list]\n"
           "\n"
           "Offers the USB devices of this computer on the system bus under the name\n"
           "org.freedesktop.Hal, for programs that know devices through HAL.\n"
           "\n"
           "  --monitor=udev    listen to the events of udev\n"
           "  --monitor=kernel  listen to the events of the kernel itself\n"
           "  --monitor=auto    udev's where udev runs, else the kernel's (default)\n"
           "  --list            print the devices that are seen now, and end\n"
           "  --help            print this text, and end\n";
}

MonitorGroup defaultMonitor(bool udevRuns)
{
    return udevRuns ? MonitorGroup::Udev : MonitorGroup::Kernel;
}

const char *nameOf(MonitorGroup group)
{
    switch (group) {
    case MonitorGroup::Udev:
        return "udev";
    case MonitorGroup::Kernel:
        return "kernel";
    }
    return "";
}

} // namespace hal
