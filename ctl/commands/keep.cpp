// SPDX-License-Identifier: MIT
// norvixctl keep
#include "client/daemon_bus.h"
#include "client/keeper_bus.h"
#include "client/say.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/keeper_report.h"
#include "ctl/screen/report.h"

namespace {

int show(const KeeperBus &keeper, const Terminal &terminal)
{
    const KeeperAnswer<KeeperState> state = keeper.state();
    if (!state.ok()) {
        return terminal.fail(state.failure);
    }
    Report report;
    addKeeper(report, state, QString());
    report.print(terminal);
    return Ok;
}

} // namespace

int runKeep(const Invocation &invocation, const Terminal &terminal)
{
    const DaemonBus bus;
    const KeeperBus keeper(bus);
    if (invocation.arguments.isEmpty()) {
        return show(keeper, terminal);
    }
    const QString word = invocation.arguments.constFirst();
    if (word != QLatin1String("on") && word != QLatin1String("off")) {
        return terminal.fail(BadUsage, Say::tr("Say “on” or “off”, not “%1”.").arg(word));
    }
    const bool on = word == QLatin1String("on");
    if (const Failure failure = keeper.setKeep(on)) {
        return terminal.fail(failure);
    }
    terminal.paragraph(on ? Say::tr("A connection that is wanted is kept from now on.")
                          : Say::tr("Nothing is kept from now on: a connection that is lost stays "
                                    "lost."));
    return Ok;
}
