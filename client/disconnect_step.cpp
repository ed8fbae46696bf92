// SPDX-License-Identifier: MIT
#include "client/disconnect_step.h"

DisconnectStep nextDisconnectStep(int state, bool isPppdOurs, bool hasWaited)
{
    switch (state) {
    case 0:
        // Its pppd may be hidden from this user.
        return isPppdOurs || hasWaited ? DisconnectStep::EndAgain : DisconnectStep::Done;
    case 1:
        return isPppdOurs ? DisconnectStep::EndAgain : DisconnectStep::Wait;
    default:
        return DisconnectStep::Done;
    }
}
