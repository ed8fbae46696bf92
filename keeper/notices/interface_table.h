// SPDX-License-Identifier: MIT
// The network interfaces as the kernel's messages tell of them.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>
#include <QVector>
#include <optional>

namespace keeper {

struct Interface
{
    int index = 0;
    QString name;
    bool isPpp = false; ///< by its type, or by its name
    bool isUp = false;
    QSet<QByteArray> addresses; ///< IPv4, four bytes each
    quint64 received = 0; ///< bytes
    quint64 sent = 0;
};

/// Fed with the datagrams of a route netlink socket. Knows no socket.
class InterfaceTable
{
public:
    /// What one datagram has told.
    struct News
    {
        bool isChange = false; ///< anything about interfaces or addresses
        bool isEndOfList = false; ///< of all that was asked for
        QVector<Interface> gone; ///< as they were last, with their last counters
    };

    /// Understands as much of @p datagram as is whole; ignores what is not.
    News take(const QByteArray &datagram);

    /// Forgets everything: the list comes anew.
    void clear() { m_interfaces.clear(); }

    /// All interfaces, by index.
    const QMap<int, Interface> &interfaces() const { return m_interfaces; }

    std::optional<Interface> named(const QString &name) const;

private:
    QMap<int, Interface> m_interfaces;
};

/// The first address of an interface as text; empty without one.
QString addressText(const Interface &interface);

} // namespace keeper
