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
};

/// Understands the arguments (without the program's name). Empty when one is not understood; then
/// @p offender names it.
std::optional<Options> optionsFrom(
    const std::vector<std::string_view> &arguments, std::string *offender);

/// The text of --help.
std::string_view helpText();

/// The group to listen to when none was asked for.
MonitorGroup defaultMonitor(bool udevRuns);

/// "udev" or "kernel".
const char *nameOf(MonitorGroup group);

} // namespace hal
