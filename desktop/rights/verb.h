// SPDX-License-Identifier: MIT
// What the window can have done with an administrator's rights. The list is closed: who asks gives
// one of these words and nothing else, but that a look is told in which language. Knows no Qt.
#pragma once

#include <array>
#include <cstring>
#include <optional>

namespace desktop {

enum class Verb
{
    Look, ///< the check-up's findings as root sees them, on standard output
    MendFiles, ///< pppd's files, as far as nobody has edited them
    StartDaemon,
    RestartDaemon,
    RestartCompanion,
    StartKeeper,
    RestartKeeper,
    LoadModules, ///< those that a connection needs beside the modem's driver
    CreateGroup, ///< whose members may use the daemon
};

inline constexpr std::array<Verb, 9> allVerbs
    = {Verb::Look, Verb::MendFiles, Verb::StartDaemon, Verb::RestartDaemon, Verb::RestartCompanion,
        Verb::StartKeeper, Verb::RestartKeeper, Verb::LoadModules, Verb::CreateGroup};

/// The word on norvix-desktop-mend's command line.
constexpr const char *verbWord(Verb verb)
{
    switch (verb) {
    case Verb::Look:
        return "look";
    case Verb::MendFiles:
        return "mend-files";
    case Verb::StartDaemon:
        return "start-daemon";
    case Verb::RestartDaemon:
        return "restart-daemon";
    case Verb::RestartCompanion:
        return "restart-hald";
    case Verb::StartKeeper:
        return "start-keeper";
    case Verb::RestartKeeper:
        return "restart-keeper";
    case Verb::LoadModules:
        return "load-modules";
    case Verb::CreateGroup:
        break;
    }
    return "create-group";
}

/// The verb that the word names, letter by letter; nothing for any other word.
inline std::optional<Verb> verbNamed(const char *word)
{
    for (const Verb verb : allVerbs) {
        if (std::strcmp(verbWord(verb), word) == 0) {
            return verb;
        }
    }
    return std::nullopt;
}

/// What both programs that run with an administrator's rights exit with.
enum RightsStatus : int
{
    RightsDone = 0,
    RightsFailed = 1, ///< standard error says why
    RightsMisused = 2, ///< wrong words, not root, or nobody known asks
    RightsNoProgram = 3, ///< a program of the system is missing
    RightsNoGroup = 4, ///< the group norvix does not exist
};

} // namespace desktop
