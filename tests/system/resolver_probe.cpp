// SPDX-License-Identifier: MIT
// Uses the resolver configuration manager on /etc/resolv.conf, for tests in the private machine:
//   check            whether the configuration is correct
//   set ADDRESS...   writes these servers
//   compare FILE     for every line of FILE, a configuration in hexadecimal: is it correct, and
//                    which servers does the system's own resolver take from it
#include "support/resolver/dns_manager.h"

#include <QByteArrayList>
#include <QFile>
#include <arpa/inet.h>
#include <cstdio>
#include <cstdlib>
#include <netinet/in.h>
#include <resolv.h>

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

} // namespace

int main(int argc, char *argv[])
{
    const QByteArray command = argc > 1 ? argv[1] : "";
    if (command == "compare" && argc == 3) {
        return compare(argv[2]);
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
