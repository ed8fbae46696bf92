// SPDX-License-Identifier: MIT
// Mended secrets begin with the newest account and lose no other line; a peer file that was made
// from a shipped one is known again.
#include "client/ppp_files.h"
#include "fuzz_input.h"
#include "network/account_files.h"

#include <QRegularExpression>

namespace {

const QByteArray shipped = "plugin pppoe.so\nnic-nas0\nuser \"login\"\nnoauth\nupdetach\nnoipv6\n"
                           "# the circuit\n8.35\n";

void mendSecrets(const QByteArray &content)
{
    const QList<SecretsEntry> entries = secretsEntries(content);
    const QByteArray mended = mendedSecrets(content);
    require(hasEntryAtStart(mended));
    const QList<SecretsEntry> after = secretsEntries(mended);
    const SecretsEntry &first = after.constFirst();
    require(first.login == (entries.isEmpty() ? placeholderLogin() : entries.constLast().login));
    require(entries.isEmpty() || first.password == entries.constLast().password);
    const QByteArrayList lines = mended.split('\n');
    for (const QByteArray &line :
        QByteArray(content).replace(guardLines() + '\n', "").split('\n')) {
        require(!secretsEntries(line).isEmpty() || lines.contains(line));
    }
    for (int i = 1; i < after.size(); ++i) {
        require(after.at(i).login != first.login);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const QByteArray login = input.line();
    const QString circuit = QString::fromLatin1(input.line());
    const QByteArray content = input.rest();

    mendSecrets(content);
    for (const PeerKind kind : {PeerKind::Bridge, PeerKind::Atm, PeerKind::OwnInterface}) {
        require(peerFaults(content, kind, circuit).size() <= 7);
    }
    const QString found = peerLogin(content);
    require(!found.contains(QLatin1Char('"')) && !found.contains(QLatin1Char('\n')));
    require(content.contains(found.toLatin1()));

    static const QRegularExpression plainCircuit(QStringLiteral("\\A[0-9]+\\.[0-9]+\\z"));
    const bool isPlain = !login.contains('"') && !login.contains('\0') && !login.isEmpty()
        && plainCircuit.match(circuit).hasMatch();
    const QByteArray made = peerFromTemplate(shipped, login, circuit);
    require(!isPlain || isShippedPeer(made, {shipped}));
    require(!isShippedPeer(content, {shipped}) || content.startsWith("plugin pppoe.so\n"));
    return 0;
}
