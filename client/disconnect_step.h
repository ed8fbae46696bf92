// SPDX-License-Identifier: MIT
// When a connection that is to end has really ended.
#pragma once

/// What is to be done next by whoever has asked the daemon to end the connection.
enum class DisconnectStep
{
    Done,
    Wait, ///< the attempt waits for the line; nothing of it can be ended yet
    EndAgain, ///< it has gone on and started pppd
};

/// @p state is the daemon's answer after the request (as on the bus), @p isPppdOurs says that a
/// pppd of the daemon runs, @p hasWaited that an attempt has been waited for.
DisconnectStep nextDisconnectStep(int state, bool isPppdOurs, bool hasWaited);
