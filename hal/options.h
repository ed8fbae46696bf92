// SPDX-License-Identifier: MIT
// The command line of norvix-hald.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hal {

/// Whose events are listened to: udev's, which come when its rules have been worked through, or the
/// kernel's own, for systems where no udev runs.
enum class MonitorGroup
{
    Udev,
    Kernel
};

struct Options
{
    enum class Task
    {
        Serve,
        List,
        Help
    };

    Task task = Task::Serve;
    std::optional<MonitorGroup> monitor; ///< empty: chosen by what the system has
    std::optional<std::string> offender; ///< the word that is not understood
};

/// Understands the arguments (without the program's name), up to one that it does not.
Options optionsFrom(const std::vector<std::string_view> &arguments);

/// The text of --help.
std::string_view helpText();

/// The group to listen to when none was asked for.
MonitorGroup defaultMonitor(bool udevRuns);

/// "udev" or "kernel".
const char *nameOf(MonitorGroup group);

} // namespace hal
