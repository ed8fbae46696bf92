// SPDX-License-Identifier: MIT
// Whatever the system's files hold, each check has a verdict, and a fault has a remedy.
#include "client/doctor_checks.h"
#include "fuzz_input.h"

namespace {

/// The bits of the first byte and the like say what is there, the lines what it holds.
Facts factsFrom(FuzzInput input)
{
    const int flags = input.number();
    const auto flag = [flags](int bit) { return (flags >> bit & 1) != 0; };
    const int choices = input.number();
    const auto module = [choices](int place) { return Module(choices >> 2 * place & 3); };
    Facts facts;
    facts.isBusThere = flag(0);
    facts.isDaemonRunning = flag(1);
    facts.doesDaemonAnswer = flag(2);
    facts.hasGroup = flag(3);
    facts.isMember = flag(4);
    facts.hasPolicy = flag(5);
    facts.areSettingsReadable = flag(6);
    facts.hasDriverSource = flag(7);
    facts.isCompiling = flag(8);
    facts.hasFirmware = flag(9);
    facts.hasPppd = flag(10);
    facts.hasPppDevice = flag(11);
    facts.hasBridgeTool = flag(12);
    facts.hasShippedPeers = flag(13);
    facts.isUserAllowed = Answer(flags >> 14 & 1);
    facts.isHalAnswering = Answer(flags >> 15 & 1);
    facts.carrier = flag(16) ? std::optional<bool>(flag(17)) : std::nullopt;
    facts.driverModule = module(0);
    facts.atmModule = module(1);
    facts.usbatmModule = module(2);
    facts.pppModule = module(3);
    facts.protocolModule = module(4);
    facts.bridgeModule = module(5);
    facts.configured = {flag(18) ? unicornVendorId : 0x1110, 0x9041};
    if (flag(19)) {
        facts.modems = {{facts.configured, familyOf({0x1110, 0x9041}), input.textLine()}};
    }
    facts.driver = input.textLine();
    facts.firmware = input.textLine();
    facts.protocol = input.textLine();
    facts.vpi = input.textLine();
    facts.vci = input.textLine();
    const auto keeper = keeperState({{"State", input.textLine()}, {"Wanted", flag(23)},
        {"Keep", flag(24)}, {"Reason", input.textLine()}, {"History", input.textLine()}});
    facts.keeper.value = keeper.value_or(KeeperState());
    facts.keeper.failure.kind = keeper ? FailureKind::None : FailureKind::KeeperNotUnderstood;
    const QByteArray content = input.rest();
    if (flag(20)) {
        facts.line = lineFromKernelLog(content);
    }
    facts.resolver.servers = nameservers(content);
    facts.resolver.isReadable = flag(21);
    facts.pppds = {{2, QString::fromUtf8(content), isOurCommandLine(content)}};
    for (SeenFile *file : {&facts.peer, &facts.papSecrets, &facts.chapSecrets, &facts.log}) {
        file->exists = flag(22);
        file->mode = unsigned(choices >> 12) & 0777;
        file->content = content;
    }
    return facts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const FuzzInput input(data, size);
    QStringList checks;
    for (const Finding &finding : examine(factsFrom(input))) {
        require(!checks.contains(finding.check) && !checkTitle(finding.check).isEmpty());
        checks.append(finding.check);
        require(!finding.facts.isEmpty() && !verdictWord(finding.verdict).isEmpty());
        bool hasRemedy = finding.remedy.kind != RemedyKind::None;
        for (const Fact &fact : finding.facts) {
            require(!fact.text.isEmpty());
            hasRemedy = hasRemedy || fact.remedy.kind != RemedyKind::None;
        }
        require(finding.verdict != Verdict::Fault || hasRemedy);
    }
    const QByteArrayList lines = input.lines();
    moduleState(lines.constFirst(), false, input.rest());
    const auto age = processAge(lines.constFirst(), lines.constLast(), 100);
    require(!age || *age >= 0);
    return 0;
}
