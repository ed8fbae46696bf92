// SPDX-License-Identifier: MIT
// norvixctl disconnect
#include "client/command_line.h"
#include "client/commands.h"
#include "client/daemon_bus.h"
#include "client/link_facts.h"
#include "client/say.h"
#include "client/terminal.h"
#include "client/text_format.h"

#include <cstdio>
#include <unistd.h>

namespace {

/// Asks on the terminal; only the language's own "y" is a yes.
bool isAgreed(const Terminal &terminal)
{
    terminal.note(Say::tr("Disconnect all the same? [y/N]"));
    const int answer = getchar();
    const QString yes = Say::tr("y", "the letter that agrees to a question");
    return answer != EOF && yes.compare(QChar(QLatin1Char(char(answer))), Qt::CaseInsensitive) == 0;
}

} // namespace

int runDisconnect(const Invocation &invocation, const Terminal &terminal)
{
    bool hasOthers = false;
    for (const Pppd &pppd : runningPppds()) {
        if (!pppd.isOurs) {
            hasOthers = true;
            terminal.note(Say::tr("Warning: another pppd is running (process %1: %2).")
                              .arg(pppd.pid)
                              .arg(printable(pppd.commandLine)));
        }
    }
    if (hasOthers && !invocation.has("force")) {
        terminal.note(Say::tr("Disconnecting ends every pppd of this system."));
        if (isatty(STDIN_FILENO) != 1) {
            return terminal.fail(
                Failed, Say::tr("Nothing done. --force disconnects all the same."));
        }
        if (!isAgreed(terminal)) {
            return terminal.fail(Failed, Say::tr("Nothing done."));
        }
    }
    const DaemonBus bus;
    const BusReply reply = bus.call("terminateConnection");
    if (!reply.ok()) {
        return terminal.fail(reply.code, reply.error);
    }
    terminal.line(Say::tr("Disconnected."));
    return Ok;
}
