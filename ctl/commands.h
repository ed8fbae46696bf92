// SPDX-License-Identifier: MIT
// The commands; each is implemented in the file of its name below commands/.
#pragma once

struct Invocation;
struct Terminal;

int runStatus(const Invocation &, const Terminal &);
int runConnect(const Invocation &, const Terminal &);
int runDisconnect(const Invocation &, const Terminal &);
int runMonitor(const Invocation &, const Terminal &);
int runWatch(const Invocation &, const Terminal &);
int runAccountShow(const Invocation &, const Terminal &);
int runAccountSet(const Invocation &, const Terminal &);
int runModemShow(const Invocation &, const Terminal &);
int runModemKnown(const Invocation &, const Terminal &);
int runModemPlugged(const Invocation &, const Terminal &);
int runModemAdopt(const Invocation &, const Terminal &);
int runLineShow(const Invocation &, const Terminal &);
int runLineSet(const Invocation &, const Terminal &);
int runLineProviders(const Invocation &, const Terminal &);
int runLineQuality(const Invocation &, const Terminal &);
int runKeep(const Invocation &, const Terminal &);
int runHistory(const Invocation &, const Terminal &);
int runUsage(const Invocation &, const Terminal &);
int runAutoconnect(const Invocation &, const Terminal &);
int runIdle(const Invocation &, const Terminal &);
int runDriverShow(const Invocation &, const Terminal &);
int runDriverRestart(const Invocation &, const Terminal &);
int runDns(const Invocation &, const Terminal &);
int runLog(const Invocation &, const Terminal &);
int runDoctor(const Invocation &, const Terminal &);
int runHelp(const Invocation &, const Terminal &);
int runCompletion(const Invocation &, const Terminal &);
