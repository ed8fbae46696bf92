// SPDX-License-Identifier: MIT
#include "keeper/notices/link_watch.h"

#include <cerrno>
#include <cstring>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace keeper {

namespace {

constexpr int settlingMs = 250;
constexpr int datagramBytes = 65536;

struct Question
{
    nlmsghdr head;
    rtgenmsg body;
};

} // namespace

LinkWatch::LinkWatch(QObject *parent)
    : QObject(parent)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(settlingMs);
    connect(&m_settling, &QTimer::timeout, this, &LinkWatch::settled);
}

bool LinkWatch::start()
{
    if (!open()) {
        return false;
    }
    lookAnew();
    return true;
}

bool LinkWatch::open()
{
    m_socket = FileDescriptor(
        socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    sockaddr_nl own = {};
    own.nl_family = AF_NETLINK;
    own.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR;
    if (!m_socket.isOpen()
        || bind(m_socket.get(), reinterpret_cast<const sockaddr *>(&own), sizeof own) != 0) {
        return false;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &LinkWatch::receive);
    return true;
}

void LinkWatch::receive()
{
    QByteArray buffer(datagramBytes, Qt::Uninitialized);
    for (;;) {
        sockaddr_nl sender = {};
        iovec place = {buffer.data(), size_t(buffer.size())};
        msghdr message = {};
        message.msg_name = &sender;
        message.msg_namelen = sizeof sender;
        message.msg_iov = &place;
        message.msg_iovlen = 1;
        const ssize_t size = recvmsg(m_socket.get(), &message, 0);
        if (size < 0 && errno == ENOBUFS) { // notices were lost
            lookAnew();
            continue;
        }
        if (size <= 0) {
            return;
        }
        if (sender.nl_pid != 0) { // anybody can write to us; only the kernel is believed
            continue;
        }
        const InterfaceTable::News news = m_table.take(buffer.left(int(size)));
        if (news.isEndOfList && m_mustAskAddresses) {
            m_mustAskAddresses = !ask(RTM_GETADDR);
        }
        for (const Interface &interface : news.gone) {
            emit gone(interface);
        }
        if (news.isChange) {
            m_settling.start();
        }
    }
}

/// Everything is asked for again. The addresses follow the interfaces.
void LinkWatch::lookAnew()
{
    m_table.clear();
    m_mustAskAddresses = ask(RTM_GETLINK);
    m_settling.start();
}

bool LinkWatch::ask(int what)
{
    Question question = {};
    question.head.nlmsg_len = sizeof question;
    question.head.nlmsg_type = quint16(what);
    question.head.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    question.body.rtgen_family = what == RTM_GETADDR ? AF_INET : AF_UNSPEC;
    return send(m_socket.get(), &question, sizeof question, 0) == sizeof question;
}

} // namespace keeper
