// SPDX-License-Identifier: MIT
// Facts about link, processes, modem and resolver that the client reads from the system itself.
#pragma once

#include "client/line_log.h"
#include "client/modem_table.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

struct Totals
{
    quint64 received = 0; ///< bytes
    quint64 sent = 0;
};

/// The kernel's counters of an interface; nothing when it does not exist.
std::optional<Totals> interfaceTotals(const QString &interface);

/// How long the pppd of the connection has been running, in seconds; nothing when unknown.
std::optional<qint64> connectionSeconds(const QString &interface);

/// Seconds since its start of a process, from the text of /proc/PID/stat and /proc/uptime.
std::optional<qint64> processAge(
    const QByteArray &stat, const QByteArray &uptime, long ticksPerSecond);

struct Pppd
{
    int pid = 0;
    QString commandLine;
    bool isOurs = false; ///< was started by the daemon
};

/// Every running pppd that this user can see.
QList<Pppd> runningPppds();

/// Whether a command line (words separated by NUL) is that of a pppd the daemon started.
bool isOurCommandLine(const QByteArray &commandLine);

struct UsbModem
{
    UsbId id;
    const ModemFamily *family;
    QString port; ///< "1-1"
};

/// The known modems that are plugged in now.
QList<UsbModem> pluggedModems();

/// The line's state from the kernel log; nothing when this user may not read it.
std::optional<LineStatus> lineStatus();

/// The carrier that an ATM device of the kernel reports; nothing without such a device.
std::optional<bool> atmCarrier();

struct Resolver
{
    QString path;
    QString managedBy; ///< where a symbolic link leads to; empty for a plain file
    bool isReadable = false;
    QStringList servers;
};

Resolver resolver();

/// The addresses of the "nameserver" lines, in order.
QStringList nameservers(const QByteArray &text);

/// The content of a file of at most @p mostBytes; nothing when it can not be read.
std::optional<QByteArray> fileContent(const QString &path, qint64 mostBytes = 1 << 20);

/// The same of the file's end, beginning with a whole line.
std::optional<QByteArray> lastLinesOf(const QString &path, qint64 mostBytes = 1 << 20);
