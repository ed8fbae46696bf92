// SPDX-License-Identifier: MIT
#include "desktop/rights/caller.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace desktop {

namespace {

constexpr int cannotBeRun = 127;
// The first programs of the system that bear the name, as the daemon's unit looks for them.
char path[] = "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";
char home[] = "HOME=/root";
char language[] = "LC_ALL=C.UTF-8";
char *cleanEnvironment[] = {path, home, language, nullptr};

/// The standard streams are there, input is empty, and nothing else is open.
bool putDescriptorsInOrder()
{
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (null < 0 || dup2(null, STDIN_FILENO) < 0) {
        return false;
    }
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0 && dup2(null, stream) < 0) {
            return false;
        }
    }
    closefrom(STDERR_FILENO + 1);
    return true;
}

void resetSignals()
{
    for (int number = 1; number < NSIG; ++number) {
        std::signal(number, SIG_DFL); // of those that cannot be set it only fails
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

} // namespace

std::optional<uid_t> callerFrom(const char *text)
{
    if (text == nullptr || *text < '1' || *text > '9') {
        return std::nullopt;
    }
    unsigned long long number = 0;
    for (const char *digit = text; *digit != '\0'; ++digit) {
        if (*digit < '0' || *digit > '9') {
            return std::nullopt;
        }
        number = number * 10 + static_cast<unsigned long long>(*digit - '0');
        if (number >= static_cast<uid_t>(-1)) {
            return std::nullopt;
        }
    }
    return static_cast<uid_t>(number);
}

bool isPlainUserName(const std::string &name)
{
    const auto isPlain = [](unsigned char letter) {
        return letter > ' ' && letter != 0x7F && letter != ':' && letter != ',' && letter != '/';
    };
    return !name.empty() && name.front() != '-' && std::all_of(name.begin(), name.end(), isPlain);
}

std::optional<uid_t> beginWithRights(const char *program)
{
    const std::optional<uid_t> caller = callerFrom(getenv("PKEXEC_UID"));
    environ = cleanEnvironment;
    if (geteuid() != 0 || getuid() != 0) {
        std::fprintf(stderr, "%s: only root may\n", program);
        return std::nullopt;
    }
    if (!caller) {
        std::fprintf(stderr, "%s: PKEXEC_UID does not say who asks\n", program);
        return std::nullopt;
    }
    resetSignals();
    umask(022);
    if (chdir("/") != 0 || !putDescriptorsInOrder()) {
        return std::nullopt;
    }
    return caller;
}

std::optional<int> runToEnd(const std::vector<const char *> &words)
{
    std::vector<char *> arguments;
    std::transform(words.begin(), words.end(), std::back_inserter(arguments),
        [](const char *word) { return const_cast<char *>(word); });
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        execvp(arguments.front(), arguments.data());
        _exit(cannotBeRun);
    }
    int status = 0;
    while (child > 0 && waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return std::nullopt;
        }
    }
    if (child < 0 || !WIFEXITED(status) || WEXITSTATUS(status) == cannotBeRun) {
        return std::nullopt;
    }
    return WEXITSTATUS(status);
}

} // namespace desktop
