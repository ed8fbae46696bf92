// SPDX-License-Identifier: MIT
#include "keeper/decision/cause.h"

#include "dbus/contract.h"

namespace keeper {

namespace {

const char *wordOf(Cause cause)
{
    switch (cause) {
    case Cause::None:
        return "";
    case Cause::Unknown:
        return KeeperReason::unknown;
    case Cause::User:
        return KeeperReason::user;
    case Cause::Sleep:
        return KeeperReason::sleep;
    case Cause::HungUp:
        return KeeperReason::hungUp;
    case Cause::Silent:
        return KeeperReason::silent;
    case Cause::BridgeGone:
        return KeeperReason::bridgeGone;
    case Cause::LineLost:
        return KeeperReason::lineLost;
    case Cause::Unplugged:
        return KeeperReason::unplugged;
    case Cause::ModemRestart:
        return KeeperReason::modemRestart;
    case Cause::NoConcentrator:
        return KeeperReason::noConcentrator;
    case Cause::NoNegotiation:
        return KeeperReason::noNegotiation;
    case Cause::PeerTerminated:
        return KeeperReason::peerTerminated;
    case Cause::AccountRefused:
        return KeeperReason::accountRefused;
    case Cause::LineNotSynchronised:
        return KeeperReason::lineNotSynchronised;
    case Cause::BridgeMissing:
        return KeeperReason::bridgeMissing;
    case Cause::DeviceMissing:
        return KeeperReason::deviceMissing;
    case Cause::PeerFileMissing:
        return KeeperReason::peerFileMissing;
    case Cause::BadOption:
        return KeeperReason::badOption;
    case Cause::PasswordMissing:
        return KeeperReason::passwordMissing;
    case Cause::PeerMustAuthenticate:
        return KeeperReason::peerMustAuthenticate;
    case Cause::CircuitMissing:
        return KeeperReason::circuitMissing;
    case Cause::ForeignLink:
        return KeeperReason::foreignLink;
    case Cause::RequestDropped:
        return KeeperReason::requestDropped;
    case Cause::RequestRefused:
        return KeeperReason::requestRefused;
    }
    return "";
}

} // namespace

QString codeOf(Cause cause)
{
    return QString::fromLatin1(wordOf(cause));
}

Failure failureOf(Cause cause)
{
    switch (cause) {
    case Cause::AccountRefused:
        return Failure::Refused;
    case Cause::PeerFileMissing:
    case Cause::BadOption:
    case Cause::PasswordMissing:
    case Cause::PeerMustAuthenticate:
    case Cause::CircuitMissing:
        return Failure::Settings;
    case Cause::None:
    case Cause::Unknown:
    case Cause::User:
    case Cause::Sleep:
    case Cause::HungUp:
    case Cause::Silent:
    case Cause::BridgeGone:
    case Cause::LineLost:
    case Cause::Unplugged:
    case Cause::ModemRestart:
    case Cause::NoConcentrator:
    case Cause::NoNegotiation:
    case Cause::PeerTerminated:
    case Cause::LineNotSynchronised:
    case Cause::BridgeMissing:
    case Cause::DeviceMissing:
    case Cause::ForeignLink:
    case Cause::RequestDropped:
    case Cause::RequestRefused:
        break;
    }
    return Failure::Unanswered;
}

bool isIntended(Cause cause)
{
    return cause == Cause::User || cause == Cause::Sleep;
}

bool isProvidersDoing(Cause cause)
{
    return !isIntended(cause) && cause != Cause::Unplugged && cause != Cause::ModemRestart;
}

} // namespace keeper
