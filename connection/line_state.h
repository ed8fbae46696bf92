// SPDX-License-Identifier: MIT
// The ADSL line's state as the modem's driver reports it in the kernel log.
#pragma once

#include <QByteArray>

/// State of the line; plain integers towards the bus and the connection thread.
enum LineState
{
    LineSynchronized = 0, ///< showtime
    LineSynchronizing = 1, ///< training
    LineSyncFailed = 2, ///< no driver family reports it
    LineBooting = 3,
    LineError = 4, ///< the firmware could not be loaded
    LineUnknown = 5, ///< nothing from the driver, or nothing known
};

/// What the kernel log says of the line.
struct LineReport
{
    LineState state = LineUnknown;
    bool driverLineFound = false;
};

/// The state that the last line of the driver in @p kernelLog tells, for a modem with the USB
/// vendor id @p vendorId (0x1110 ueagle-atm, 0x0483 unicorn, 0x06b9 speedtch, any other the generic
/// ATM lines). The log counts up to its first NUL byte. Any thread.
LineReport lineStateFromLog(const QByteArray &kernelLog, int vendorId);
