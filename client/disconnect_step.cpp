// SPDX-License-Identifier: MIT
#include "client/disconnect_step.h"

#include "dbus/contract.h"

DisconnectStep nextDisconnectStep(int state, bool isPppdOurs, bool hasWaited)
{
    switch (ConnectionState(state)) {
    case ConnectionUp:
        // Its pppd may be hidden from this user.
        return isPppdOurs || hasWaited ? DisconnectStep::EndAgain : DisconnectStep::Done;
    case ConnectionConnecting:
        return isPppdOurs ? DisconnectStep::EndAgain : DisconnectStep::Wait;
    case ConnectionDown:
        break;
    }
    return DisconnectStep::Done;
}
