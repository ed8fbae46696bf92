// SPDX-License-Identifier: MIT
// The check and the repair of the system's resolver configuration.
#pragma once

#include <QRegExp>
#include <QStringList>
#include <QtGlobal>

/// Checks and rewrites /etc/resolv.conf. Main thread only.
class DNS_Manager
{
public:
    /// Touches no file.
    DNS_Manager();
    virtual ~DNS_Manager() = default;

    /// Whether the configuration can be read and names at least one server that can answer. A
    /// symbolic link is judged by what it leads to.
    bool isFileCorrect();

    /// Makes the configuration name exactly @p servers, in their order, and keeps all its other
    /// lines. A symbolic link is replaced by a plain file, never written through: what it leads to
    /// belongs to another service. Killed at any moment, it leaves the old file or the new one.
    /// False, with nothing changed, when the list is empty, an address is invalid, or the file
    /// cannot be written.
    bool setServers(QStringList &servers);

private:
    Q_DISABLE_COPY(DNS_Manager)

    const char *m_path;
    const char *m_writerComment; ///< the first line of what we write
    QRegExp m_nameserverLine;
    QRegExp m_writerLine;
};
