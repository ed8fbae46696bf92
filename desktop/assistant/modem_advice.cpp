// SPDX-License-Identifier: MIT
#include "desktop/assistant/modem_advice.h"

#include "client/doctor_checks.h"
#include "client/say.h"
#include "dbus/modem_families.h"

#include <algorithm>

namespace desktop {

namespace {

// The daemon waits five seconds after the last notice of a device, and a modem that gets its
// firmware comes twice.
constexpr qint64 settlingMs = 20000;

bool isSame(UsbId one, UsbId other)
{
    return one.vendor == other.vendor && one.product == other.product;
}

Finding findingOf(const Facts &facts, const char *check)
{
    for (const Finding &finding : examine(facts)) {
        if (finding.check == QLatin1String(check)) {
            return finding;
        }
    }
    return {};
}

QString sentence(const Finding &finding)
{
    return finding.facts.isEmpty() ? QString() : finding.facts.constFirst().text;
}

QString familyNames()
{
    QStringList names;
    for (const ModemFamily &family : modemFamilies()) {
        names += QString::fromLatin1(family.name);
    }
    return names.join(QStringLiteral(", "));
}

ModemStanding standingOf(const ModemFacts &facts, const std::optional<UsbModem> &modem)
{
    const bool isBefore = modem && isBeforeFirmware(modem->id);
    const bool isInUse = modem && isSame(modem->id, facts.system.configured);
    // A modem taken into use before its firmware would not be known again with it.
    if (!facts.announced.isEmpty() && !isBefore && !isInUse
        && facts.daemon == DaemonPresence::There) {
        return ModemStanding::Announced;
    }
    if (!modem) {
        return ModemStanding::NoModem;
    }
    if (facts.system.isCompiling) {
        return ModemStanding::DriverIsBuilt;
    }
    if (findingOf(facts.system, "driver").verdict == Verdict::Fault) {
        return ModemStanding::NoDriver;
    }
    const bool isSettling = facts.pluggedForMs && *facts.pluggedForMs < settlingMs;
    if (isBefore) {
        return isSettling ? ModemStanding::Settling : ModemStanding::BeforeFirmware;
    }
    switch (facts.daemon) {
    case DaemonPresence::Unknown:
        return ModemStanding::Looking;
    case DaemonPresence::NoBus:
    case DaemonPresence::Away:
        return ModemStanding::DaemonAway;
    case DaemonPresence::Silent:
        return ModemStanding::DaemonSilent;
    case DaemonPresence::There:
        break;
    }
    if (isInUse) {
        return !facts.isSeen ? ModemStanding::Looking
            : *facts.isSeen  ? ModemStanding::Ready
            : isSettling     ? ModemStanding::Settling
                             : ModemStanding::NotSeen;
    }
    return isSettling ? ModemStanding::Settling : ModemStanding::PlugAnew;
}

} // namespace

std::optional<UsbModem> modemThatCounts(const QList<UsbModem> &modems, UsbId inUse)
{
    auto best = std::find_if(modems.begin(), modems.end(),
        [inUse](const UsbModem &modem) { return isSame(modem.id, inUse); });
    if (best == modems.end()) {
        best = std::find_if(modems.begin(), modems.end(),
            [](const UsbModem &modem) { return !isBeforeFirmware(modem.id); });
    }
    if (best == modems.end()) {
        best = modems.begin();
    }
    return best == modems.end() ? std::nullopt : std::optional<UsbModem>(*best);
}

ModemAdvice modemAdviceOf(const ModemFacts &facts)
{
    const std::optional<UsbModem> modem
        = modemThatCounts(facts.system.modems, facts.system.configured);
    ModemAdvice advice;
    advice.modem = modem ? QString::fromLatin1(modem->family->name) : facts.announced;
    advice.standing = standingOf(facts, modem);
    switch (advice.standing) {
    case ModemStanding::Looking:
        advice.text = Say::tr("Looking for the modem…");
        break;
    case ModemStanding::NoModem:
        advice.text = Say::tr("No modem that is supported is plugged in. Plug it in, without a hub "
                              "if you can; it appears here. Supported are: %1.")
                          .arg(familyNames());
        break;
    case ModemStanding::NoDriver: {
        const Finding driver = findingOf(facts.system, "driver");
        advice.text = sentence(driver);
        advice.remedy = driver.remedy;
        break;
    }
    case ModemStanding::DriverIsBuilt:
        advice.text = Say::tr("%1 is plugged in. Its driver is being built for this kernel; this "
                              "may take some minutes.")
                          .arg(advice.modem);
        advice.remedy = {RemedyKind::WaitForDriver, {}};
        break;
    case ModemStanding::BeforeFirmware: {
        const Finding firmware = findingOf(facts.system, "firmware");
        advice.text = Say::tr("%1 is plugged in, but has not got its firmware.").arg(advice.modem);
        advice.remedy = firmware.remedy;
        break;
    }
    case ModemStanding::Settling:
        advice.text = Say::tr("%1 was just plugged in. It is looked at; this takes some seconds.")
                          .arg(advice.modem);
        break;
    case ModemStanding::Announced:
        advice.modem = facts.announced;
        advice.text = Say::tr("%1 was found. “Next” takes it into use.").arg(advice.modem);
        break;
    case ModemStanding::PlugAnew:
        advice.text
            = Say::tr("%1 is plugged in. Unplug it, wait a moment, and plug it in again: a new "
                      "modem is noticed only as it is plugged in, and this one was there before.")
                  .arg(advice.modem);
        break;
    case ModemStanding::NotSeen:
        advice.text = Say::tr("%1 is plugged in and in use, but the daemon does not find it. "
                              "Unplug it, wait a moment, and plug it in again.")
                          .arg(advice.modem);
        break;
    case ModemStanding::DaemonAway:
        advice.text = Say::tr("%1 is plugged in. The daemon, which takes it into use, is not "
                              "running.")
                          .arg(advice.modem);
        advice.remedy = {RemedyKind::StartDaemon, {}};
        break;
    case ModemStanding::DaemonSilent:
        advice.text = Say::tr("%1 is plugged in. The daemon, which takes it into use, does not "
                              "answer.")
                          .arg(advice.modem);
        advice.remedy = {RemedyKind::RestartDaemon, {}};
        break;
    case ModemStanding::Ready:
        advice.text = Say::tr("%1 is ready.").arg(advice.modem);
        break;
    }
    return advice;
}

} // namespace desktop
