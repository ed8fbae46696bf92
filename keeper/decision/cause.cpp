// SPDX-License-Identifier: MIT
#include "keeper/decision/cause.h"

namespace keeper {

namespace {

const char *wordOf(Cause cause)
{
    switch (cause) {
    case Cause::None:
        return "";
    case Cause::Unknown:
        return "unknown";
    case Cause::User:
        return "user";
    case Cause::Sleep:
        return "sleep";
    case Cause::HungUp:
        return "hung-up";
    case Cause::Silent:
        return "silent";
    case Cause::BridgeGone:
        return "bridge-gone";
    case Cause::LineLost:
        return "line-lost";
    case Cause::Unplugged:
        return "unplugged";
    case Cause::ModemRestart:
        return "modem-restart";
    case Cause::NoConcentrator:
        return "no-concentrator";
    case Cause::NoNegotiation:
        return "no-negotiation";
    case Cause::PeerTerminated:
        return "peer-terminated";
    case Cause::AccountRefused:
        return "account-refused";
    case Cause::LineNotSynchronised:
        return "line-not-synchronised";
    case Cause::BridgeMissing:
        return "bridge-missing";
    case Cause::DeviceMissing:
        return "device-missing";
    case Cause::PeerFileMissing:
        return "peer-file-missing";
    case Cause::BadOption:
        return "bad-option";
    case Cause::PasswordMissing:
        return "password-missing";
    case Cause::PeerMustAuthenticate:
        return "peer-must-authenticate";
    case Cause::CircuitMissing:
        return "circuit-missing";
    case Cause::ForeignLink:
        return "foreign-link";
    case Cause::RequestDropped:
        return "request-dropped";
    case Cause::RequestRefused:
        return "request-refused";
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
