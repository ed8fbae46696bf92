// SPDX-License-Identifier: MIT
// Uses the resolver configuration manager on /etc/resolv.conf, for tests in the private machine:
//   check            whether the configuration is correct
//   set ADDRESS...   writes these servers
//   compare FILE     for every line of FILE, a configuration in hexadecimal: is it correct, and
//                    which servers does the system's own resolver take from it
//   kill RESET       repairs again and again, killed one system call later each time; the program
//                    RESET makes the configuration that each attempt starts from
#include "support/resolver/dns_manager.h"

#include <QByteArrayList>
#include <QFile>
#include <arpa/inet.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <netinet/in.h>
#include <resolv.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const char path[] = "/etc/resolv.conf";

void fail(const char *what)
{
    perror(what);
    exit(3);
}

bool isCorrect()
{
    DNS_Manager manager;
    return manager.isFileCorrect();
}

bool setServers(QStringList servers)
{
    DNS_Manager manager;
    return manager.setServers(servers);
}

/// The servers that the C library takes from the configuration as it is now.
QByteArrayList serversOfTheSystem()
{
    _res = {};
    _res.retrans = 7; // any value of ours makes it read the file again instead of its cached copy
    if (res_init() != 0) {
        fail("res_init");
    }
    QByteArrayList servers;
    for (int i = 0; i < _res.nscount; ++i) {
        char text[INET6_ADDRSTRLEN] = "";
        if (_res.nsaddr_list[i].sin_family == AF_INET) {
            inet_ntop(AF_INET, &_res.nsaddr_list[i].sin_addr, text, sizeof text);
        } else if (_res._u._ext.nsaddrs[i] != nullptr) {
            inet_ntop(AF_INET6, &_res._u._ext.nsaddrs[i]->sin6_addr, text, sizeof text);
        }
        servers.append(text);
    }
    res_nclose(&_res);
    return servers;
}

int compare(const char *cases)
{
    QFile file(QFile::decodeName(cases));
    if (!file.open(QIODevice::ReadOnly)) {
        fail(cases);
    }
    while (!file.atEnd()) {
        QFile configuration(QString::fromLatin1(path));
        if (!configuration.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            fail(path);
        }
        configuration.write(QByteArray::fromHex(file.readLine()));
        configuration.close();
        printf("%s %s\n", isCorrect() ? "correct" : "wrong",
            serversOfTheSystem().join(' ').constData());
    }
    return 0;
}

void printConfiguration(int moment)
{
    QFile file(QString::fromLatin1(path));
    const QByteArray content
        = file.open(QIODevice::ReadOnly) ? "=" + file.readAll().toHex() : QByteArray("missing");
    printf("%d %s\n", moment, content.constData());
    fflush(stdout);
}

/// Lets a repair run until it has entered and left @p moment system calls in all, then kills it.
/// False when the repair came to its end before.
bool repairUntil(int moment)
{
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        const bool written
            = setServers({QStringLiteral("208.67.222.222"), QStringLiteral("208.67.220.220")});
        _exit(written ? 0 : 1);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status)
        || ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL)
            != 0) {
        fail("tracing");
    }
    for (int seen = 0;; ++seen) {
        if (seen > moment) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return true;
        }
        if (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) != 0
            || waitpid(child, &status, 0) != child) {
            fail("stepping");
        }
        if (WIFEXITED(status)) {
            printf("ended with %d\n", WEXITSTATUS(status));
            return false;
        }
    }
}

int killEverywhere(const char *reset)
{
    bool killed = true;
    for (int moment = 0; killed; ++moment) {
        const pid_t child = fork();
        if (child == 0) {
            execl(reset, reset, nullptr);
            _exit(127);
        }
        int status = 0;
        if (waitpid(child, &status, 0) != child || status != 0) {
            fail(reset);
        }
        killed = repairUntil(moment);
        printConfiguration(moment);
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    const QByteArray command = argc > 1 ? argv[1] : "";
    if (command == "compare" && argc == 3) {
        return compare(argv[2]);
    }
    if (command == "kill" && argc == 3) {
        return killEverywhere(argv[2]);
    }
    bool answer = false;
    if (command == "check" && argc == 2) {
        answer = isCorrect();
    } else if (command == "set") {
        QStringList servers;
        for (int i = 2; i < argc; ++i) {
            servers.append(QString::fromLocal8Bit(argv[i]));
        }
        answer = setServers(servers);
    } else {
        return 2;
    }
    puts(answer ? "true" : "false");
    return 0;
}
