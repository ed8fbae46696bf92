// SPDX-License-Identifier: MIT
#include "client/name_servers.h"

#include "support/files/file_descriptor.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <algorithm>
#include <array>
#include <memory>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <vector>

namespace {

constexpr size_t numberSize = 2;
using Question = std::array<char, 17>;

/// The question for the name servers of the root, with a number that the answer repeats.
Question questionFor(quint16 number)
{
    return {char(number >> 8), char(number & 0xff), // number
        1, 0, // recursion is wanted
        0, 1, 0, 0, 0, 0, 0, 0, // one question
        0, 0, 2, 0, 1}; // the root, NS, Internet
}

/// A socket over which the server was asked; closed when it could not be.
FileDescriptor asked(const QString &server, const Question &question)
{
    addrinfo hints = {};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(server.toLatin1().constData(), "53", &hints, &found) != 0) {
        return FileDescriptor();
    }
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> address(found, freeaddrinfo);
    FileDescriptor socket(
        ::socket(address->ai_family, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const bool isSent = socket.isOpen()
        && connect(socket.get(), address->ai_addr, address->ai_addrlen) == 0
        && send(socket.get(), question.data(), question.size(), MSG_NOSIGNAL) >= 0;
    return isSent ? std::move(socket) : FileDescriptor();
}

bool isAnswer(int socket, const Question &question)
{
    std::array<char, 512> answer = {};
    const ssize_t size = recv(socket, answer.data(), answer.size(), 0);
    return size > ssize_t(numberSize)
        && std::equal(question.begin(), question.begin() + numberSize, answer.begin());
}

} // namespace

std::optional<bool> doesNameServerAnswer(const QStringList &servers, int timeoutMs)
{
    if (servers.isEmpty()) {
        return std::nullopt;
    }
    const Question question = questionFor(quint16(QRandomGenerator::global()->generate()));
    std::vector<FileDescriptor> sockets;
    std::vector<pollfd> waits;
    for (const QString &server : servers) {
        FileDescriptor socket = asked(server, question);
        if (socket.isOpen()) {
            waits.push_back({socket.get(), POLLIN, 0});
            sockets.push_back(std::move(socket));
        }
    }
    QElapsedTimer waited;
    waited.start();
    while (!waits.empty() && waited.elapsed() < timeoutMs) {
        poll(waits.data(), waits.size(), timeoutMs - int(waited.elapsed()));
        for (pollfd &wait : waits) {
            if (wait.revents == 0) {
                continue;
            }
            if (isAnswer(wait.fd, question)) {
                return true;
            }
            wait.fd = -1; // refused: nobody listens there
        }
        waits.erase(std::remove_if(
                        waits.begin(), waits.end(), [](const pollfd &wait) { return wait.fd < 0; }),
            waits.end());
    }
    return false;
}
