// SPDX-License-Identifier: MIT
// A program that this one starts.
#pragma once

#include "client/stop_signals.h"

#include <QProcess>

namespace desktop {

/// What is started inherits which signals are held back, and would never hear that it is to end.
class Child : public QProcess
{
public:
    using QProcess::QProcess;

protected:
    void setupChildProcess() override { StopSignals::release(); }
};

} // namespace desktop
