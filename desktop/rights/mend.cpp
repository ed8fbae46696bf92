// SPDX-License-Identifier: MIT
// norvix-desktop-mend VERB: does for the window what needs an administrator's rights.
// norvix-desktop-mend look LANGUAGE: what it tells is in this language, by its two letters.
#include "client/daemon_bus.h"
#include "client/ppp_mend.h"
#include "client/translation.h"
#include "desktop/rights/caller.h"
#include "desktop/rights/findings_text.h"
#include "desktop/rights/verb.h"

#include <QCoreApplication>
#include <cstdio>

namespace {

using desktop::runToEnd;
using desktop::Verb;

constexpr char program[] = "norvix-desktop-mend";

int look()
{
    const QByteArray text = desktop::findingsText(examine(gatherFacts(DaemonBus())));
    return std::fwrite(text.constData(), 1, size_t(text.size()), stdout) == size_t(text.size())
            && std::fflush(stdout) == 0
        ? desktop::RightsDone
        : desktop::RightsFailed;
}

int mendFiles()
{
    const MendResult result = mendPppFiles(gatherFacts(DaemonBus()));
    if (result.failure) {
        std::fprintf(stderr, "%s: %s\n", program, qPrintable(result.failure.detail));
        return desktop::RightsFailed;
    }
    return desktop::RightsDone;
}

int run(const std::vector<const char *> &words)
{
    const std::optional<int> status = runToEnd(words);
    if (!status) {
        std::fprintf(stderr, "%s: %s can not be run\n", program, words.front());
        return desktop::RightsNoProgram;
    }
    return *status == 0 ? desktop::RightsDone : desktop::RightsFailed;
}

int loadModules()
{
    // A kernel has only some of these built apart; the first is what nothing works without.
    for (const char *module : {"pppoe", "pppoatm", "br2684"}) {
        runToEnd({"modprobe", "-q", module});
    }
    return run({"modprobe", "ppp_generic"});
}

int createGroup()
{
    const int status = run({"groupadd", "--system", "--force", "norvix"});
    if (status == desktop::RightsDone) {
        // The bus has skipped the rules of a group that it did not know.
        runToEnd({"dbus-send", "--system", "--type=method_call", "--print-reply",
            "--reply-timeout=5000", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
            "org.freedesktop.DBus.ReloadConfig"});
    }
    return status;
}

int perform(Verb verb)
{
    switch (verb) {
    case Verb::Look:
        return look();
    case Verb::MendFiles:
        return mendFiles();
    case Verb::StartDaemon:
        return run({"systemctl", "start", "norvix-daemon.service"});
    case Verb::RestartDaemon:
        return run({"systemctl", "restart", "norvix-daemon.service"});
    case Verb::RestartCompanion:
        return run({"systemctl", "restart", "norvix-hald.service"});
    case Verb::StartKeeper:
        return run({"systemctl", "start", "norvix-keeper.service"});
    case Verb::RestartKeeper:
        return run({"systemctl", "restart", "norvix-keeper.service"});
    case Verb::LoadModules:
        return loadModules();
    case Verb::CreateGroup:
        break;
    }
    return createGroup();
}

} // namespace

int main(int argc, char *argv[])
{
    if (!desktop::beginWithRights(program)) {
        return desktop::RightsMisused;
    }
    const std::optional<Verb> verb = argc >= 2 ? desktop::verbNamed(argv[1]) : std::nullopt;
    const QString language = argc == 3 ? QString::fromLatin1(argv[2]) : QString();
    const bool isLanguageRight = argc == 2 || (verb == Verb::Look && isSpoken(language));
    if (!verb || argc > 3 || !isLanguageRight) {
        std::fprintf(stderr, "%s: takes one of its own words and nothing else\n", program);
        return desktop::RightsMisused;
    }
    // The words were looked at; Qt would read options of its own from what follows them.
    int one = 1;
    const QCoreApplication application(one, argv);
    if (!language.isEmpty()) {
        speak(language);
    }
    return perform(*verb);
}
