// SPDX-License-Identifier: MIT
// Every command and option in one table: the parser, the help, the completion and the check of the
// manual page all read it.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

struct Invocation;
struct Terminal;

struct Option
{
    const char *name; ///< without its dashes
    char letter; ///< 0 for none
    const char *value; ///< the value's name, nullptr for a switch
    const char *choices; ///< the values that exist, separated by blanks; nullptr for any
    const char *summary;
};

struct Command
{
    const char *path; ///< "account set"
    const char *arguments; ///< "[on|off]"
    int mostArguments;
    const char *summary;
    bool isReading; ///< takes --json and --terse
    std::vector<Option> options;
    int (*run)(const Invocation &, const Terminal &);
};

/// All commands, in the order of the help.
const std::vector<Command> &commandTable();

/// The options that every command takes.
const std::vector<Option> &commonOptions();

/// The options of reading commands.
const std::vector<Option> &readingOptions();

/// All options that @p command takes, its own first.
std::vector<Option> optionsOf(const Command &command);

/// The words of a text such as "on|off" in brackets: what an argument may be. Empty for free text.
QStringList argumentChoices(const Command &command);
