// SPDX-License-Identifier: MIT
// Other programs that look after networks and name servers, and whether what is shipped for them is
// in force.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

class DaemonBus;

enum class Answer
{
    Yes,
    No,
    Unknown,
};

struct Neighbour
{
    bool isPresent = false;
    QString file; ///< what tells it about our link
    bool isFileOurs = true; ///< this system ships it
    bool hasFile = false;
    QString hiddenBy; ///< a file of the same name that is read instead; empty for none
    Answer isInForce = Answer::Unknown; ///< for the interfaces that are there now
};

struct Neighbours
{
    Neighbour networkManager;
    Neighbour networkd;
    Neighbour resolved;
    Neighbour resolvconf;
};

/// Looks at all of them; takes up to the time-outs of the bus calls. @p link: the interface of our
/// link, empty when it is not up.
Neighbours gatherNeighbours(const DaemonBus &bus, const QString &link);

/// Whether an interface is left alone, by systemd-networkd's own file about it.
Answer isLeftByNetworkd(const QByteArray &linkFile);

/// The names of @p interfaces that are ours: the link, and what bridges are called.
QStringList ourInterfaces(const QStringList &interfaces, const QString &link);
