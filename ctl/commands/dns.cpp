// SPDX-License-Identifier: MIT
// norvixctl dns
#include "client/link_facts.h"
#include "client/say.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/report.h"

int runDns(const Invocation &, const Terminal &terminal)
{
    const Resolver found = resolver();
    const QString servers = found.servers.join(QStringLiteral(", "));
    Report report;
    report.add(QStringLiteral("file"), found.path, Say::tr("File"), found.path);
    report.add(QStringLiteral("managedBy"),
        found.managedBy.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(found.managedBy),
        found.managedBy.isEmpty() ? QString() : Say::tr("Leads to"), found.managedBy);
    report.add(QStringLiteral("servers"), QJsonArray::fromStringList(found.servers),
        Say::tr("Servers"), servers.isEmpty() ? Say::tr("none") : servers);
    if (servers.isEmpty()) {
        report.note(Say::tr("Without a server the daemon writes one at the next connection."));
    }
    report.print(terminal);
    return Ok;
}
