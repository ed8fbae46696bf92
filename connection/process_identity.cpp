// SPDX-License-Identifier: MIT
#include "connection/process_identity.h"

#include <QFile>

namespace {

// Counted behind the name, which may itself hold blanks and parentheses.
constexpr int startField = 22;
constexpr int firstFieldBehindName = 3;

} // namespace

std::optional<quint64> startTicksIn(const QByteArray &stat)
{
    const QByteArrayList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    bool isNumber = false;
    const quint64 ticks = fields.value(startField - firstFieldBehindName).toULongLong(&isNumber);
    return isNumber ? std::optional<quint64>(ticks) : std::nullopt;
}

std::optional<ProcessIdentity> identityOf(pid_t pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const std::optional<quint64> ticks = startTicksIn(file.readAll());
    return ticks ? std::optional<ProcessIdentity>({pid, *ticks}) : std::nullopt;
}

bool isTakenOver(pid_t pid, const std::optional<ProcessIdentity> &known)
{
    if (!known || known->pid != pid) {
        return false;
    }
    const std::optional<ProcessIdentity> now = identityOf(pid);
    return now && now->startTicks != known->startTicks;
}
