// SPDX-License-Identifier: MIT
// Interrupt and terminate as an event, so that running views end tidily.
#pragma once

#include <QObject>

class StopSignals : public QObject
{
    Q_OBJECT

public:
    /// Holds SIGINT, SIGTERM and SIGHUP back until there is an object. For programs that have
    /// threads before they can make one: threads inherit which signals are blocked.
    static void hold();

    /// Lets them through again: for a program that this one starts, or becomes. May be called
    /// between fork and exec.
    static void release();

    /// From now on these signals only emit stopped(). Make it after the application and before the
    /// connection to the bus, which has a thread.
    explicit StopSignals(QObject *parent = nullptr);
    ~StopSignals() override;

signals:
    void stopped();

private:
    int m_fd;
};
