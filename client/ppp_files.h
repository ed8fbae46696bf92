// SPDX-License-Identifier: MIT
// What stands in pppd's secrets and peer files, and what stops a connection there.
#pragma once

#include "client/remedy.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/// Both as they stand in the file.
struct SecretsEntry
{
    QByteArray login;
    QByteArray password;
};

/// The entries of the form that the daemon writes ("LOGIN" * "PASSWORD" *), in file order.
QList<SecretsEntry> secretsEntries(const QByteArray &content);

/// Whether such an entry stands at the very beginning of the file: only there the daemon replaces
/// it, elsewhere each change appends one more and the first keeps deciding.
bool hasEntryAtStart(const QByteArray &content);

/// The login of the entry that stands for "no account yet".
QByteArray placeholderLogin();

/// The comment that stands behind the account at the beginning: the daemon's pattern reaches over
/// line ends, and once a value of the account is empty would take from the entry that follows.
QByteArray guardLines();

/// @p content with its newest entry moved to the very beginning and older entries of the same login
/// left out. Without an entry a placeholder is put there. All other lines are kept.
QByteArray mendedSecrets(const QByteArray &content);

/// Which link a peer file is for.
enum class PeerKind
{
    Bridge, ///< PPP over Ethernet on the bridge's interface
    Atm, ///< PPP over ATM; the circuit stands in the file
    OwnInterface, ///< the modem brings an interface of its own
};

/// What is wrong with a peer file. @p circuit is "VPI.VCI", empty when unknown.
QList<Fact> peerFaults(const QByteArray &content, PeerKind kind, const QString &circuit);

/// The login in the "user" line as it stands there; empty when there is none.
QString peerLogin(const QByteArray &content);

/// A peer file as it is shipped, made fit for a login and a circuit ("VPI.VCI"); what is empty
/// stays as it was shipped.
QByteArray peerFromTemplate(
    const QByteArray &shipped, const QByteArray &login, const QString &circuit);

/// Whether a peer file is a shipped one in which nothing but login and circuit has been changed.
bool isShippedPeer(const QByteArray &content, const QList<QByteArray> &allShipped);
