// SPDX-License-Identifier: MIT
// norvixctl idle
#include "client/daemon_bus.h"
#include "client/say.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

#include <limits>

int runIdle(const Invocation &invocation, const Terminal &terminal)
{
    const DaemonBus bus;
    if (!invocation.arguments.isEmpty()) {
        const int most = std::numeric_limits<int>::max();
        const auto number = wholeNumber(invocation.arguments.constFirst(), 0, most);
        if (!number) {
            return terminal.fail(
                ValueRefused, Say::tr("The idle time is a whole number from 0 to %1.").arg(most));
        }
        const BusReply reply
            = bus.call(DaemonMethod::setIdlenessTime, {*number}, DaemonBus::Start::IfNeeded);
        if (!reply.ok()) {
            return terminal.fail(reply.failure);
        }
        terminal.paragraph(
            Say::tr("Stored. The daemon itself does not act on it; desktop clients may."));
        return Ok;
    }
    const BusReply reply = bus.call(DaemonMethod::getIdlenessTime);
    if (!reply.ok()) {
        return terminal.fail(reply.failure);
    }
    const int idle = reply.value.toInt();
    Report report;
    report.add(QStringLiteral("idle"), idle, Say::tr("Idle time"),
        idle == 0 ? Say::tr("not set") : QString::number(idle));
    report.print(terminal);
    return Ok;
}
