// SPDX-License-Identifier: MIT
// The kernel's notices about interfaces and addresses, as they come.
#pragma once

#include "keeper/notices/interface_table.h"
#include "support/files/file_descriptor.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>

namespace keeper {

/// Main thread only.
class LinkWatch : public QObject
{
    Q_OBJECT

public:
    explicit LinkWatch(QObject *parent = nullptr);

    /// Asks the kernel for everything and listens. False, with errno set, when it does not let us.
    bool start();

    const InterfaceTable &table() const { return m_table; }

signals:
    /// Something has changed, and nothing more for 250 ms: a link that comes up has an address,
    /// loses it and has it again within 4 ms.
    void settled();
    /// An interface has gone, with its last counters. Comes at once.
    void gone(const keeper::Interface &interface);

private:
    bool open();
    void receive();
    void lookAnew();
    bool ask(int what);

    InterfaceTable m_table;
    FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_settling;
    bool m_mustAskAddresses = false;
};

} // namespace keeper
