// SPDX-License-Identifier: MIT
// Interrupt and terminate as an event, so that running views end tidily.
#pragma once

#include <QObject>

class StopSignals : public QObject
{
    Q_OBJECT

public:
    /// From now on SIGINT, SIGTERM and SIGHUP only emit stopped(). Make it before the connection to
    /// the bus: that one's thread inherits which signals are blocked.
    explicit StopSignals(QObject *parent = nullptr);
    ~StopSignals() override;

signals:
    void stopped();

private:
    int m_fd;
};
