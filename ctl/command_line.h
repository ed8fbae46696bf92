// SPDX-License-Identifier: MIT
// From the words on the command line to a command with its options.
#pragma once

#include "ctl/command_table.h"
#include "ctl/screen/exit_code.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

struct Invocation
{
    const Command *command = nullptr;
    QMap<QString, QString> options; ///< by name; a switch has an empty value
    QStringList arguments;

    bool has(const char *option) const { return options.contains(QLatin1String(option)); }
    QString value(const char *option) const { return options.value(QLatin1String(option)); }
};

struct ParsedLine
{
    Invocation invocation;
    QString error; ///< empty when the words are understood; in the user's language
    ExitCode code = BadUsage; ///< the class of the error
    bool isWholeGroup = false; ///< the group stands alone, for the command that shows it
    QString group; ///< the first word when it is a group such as "account" without a command
};

/// Understands @p words (without the program's name). "--" ends the options, also before the
/// command. "--help" and
/// "--version" are understood without a command, too.
ParsedLine parseCommandLine(const QStringList &words);

/// Whether some command begins with the word and goes on ("account" of "account set").
bool isGroup(const QString &word);

/// A whole number of at least @p least and at most @p most, in decimal digits only.
std::optional<int> wholeNumber(const QString &text, int least, int most);

/// The number after --lines, 0 to @p most; @p usual without the option, nothing for other words.
std::optional<int> linesWanted(const Invocation &invocation, int usual, int most);
