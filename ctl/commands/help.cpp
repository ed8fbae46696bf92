// SPDX-License-Identifier: MIT
// norvixctl help, completion
#include "client/say.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/help_text.h"
#include "ctl/screen/report.h"

int runHelp(const Invocation &invocation, const Terminal &terminal)
{
    if (terminal.form == Form::Json) {
        printJson(terminal, commandTableObject());
        return Ok;
    }
    const QString path = invocation.arguments.join(QLatin1Char(' '));
    if (terminal.form == Form::Terse) {
        for (const Command &command : commandTable()) {
            terminal.line(QLatin1String(command.path));
        }
        return Ok;
    }
    for (const Command &command : commandTable()) {
        if (path == QLatin1String(command.path)) {
            terminal.line(commandHelp(command, terminal.width()).join(QLatin1Char('\n')));
            return Ok;
        }
    }
    if (!path.isEmpty() && !isGroup(path)) {
        return terminal.fail(BadUsage,
            Say::tr("There is no command “%1”. “norvixctl --help” lists them.").arg(path));
    }
    terminal.line(overviewHelp(terminal.width(), path).join(QLatin1Char('\n')));
    return Ok;
}

int runCompletion(const Invocation &invocation, const Terminal &terminal)
{
    const QString shell = invocation.arguments.value(0);
    if (shell == QLatin1String("bash")) {
        terminal.line(bashCompletion());
        return Ok;
    }
    if (shell == QLatin1String("zsh")) {
        terminal.line(zshCompletion());
        return Ok;
    }
    return terminal.fail(BadUsage, Say::tr("Say “bash” or “zsh”."));
}
