// SPDX-License-Identifier: MIT
// The exit statuses by class, for scripts. The manual page lists them; a test compares.
#pragma once

enum ExitCode
{
    Ok = 0,
    Failed = 1, ///< anything without a class of its own
    BadUsage = 2,
    NoDaemon = 3, ///< the daemon, the keeper or the system bus is not there
    NotPermitted = 4, ///< the bus or the file system refuses this user
    ValueRefused = 5, ///< a value that must not be stored; nothing was changed
    FaultsFound = 6, ///< doctor found at least one fault
    NoSynchronization = 10,
    NoAnswer = 11, ///< the provider's concentrator did not answer
    AccountRefused = 12,
    NotConnected = 13, ///< the attempt or the connection ended for another reason
    WaitedTooLong = 14, ///< the time given with --timeout or to an attempt that is to end
};
