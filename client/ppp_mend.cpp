// SPDX-License-Identifier: MIT
#include "client/ppp_mend.h"

#include "client/doctor_facts.h"
#include "client/link_facts.h"
#include "client/ppp_files.h"
#include "client/say.h"
#include "support/safe_file.h"

#include <QFile>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t secretMode = 0600;
constexpr mode_t peerMode = 0640;
constexpr int mostBackups = 100;

/// Puts @p content in place and answers whether it is there: what is replaced holds passwords that
/// nobody may know by heart.
bool putInPlace(
    const QString &path, const QByteArray &content, mode_t mode = secretMode, gid_t group = 0)
{
    FileAttributes attributes;
    attributes.owner = geteuid();
    attributes.group = group;
    attributes.mode = mode;
    return replaceFile(path, content, attributes) && readFileBytes(path) == content;
}

/// A copy that takes no earlier one's place: the oldest is from before the installation.
bool backUp(const QString &path, const QByteArray &content)
{
    QString name = path + QLatin1String(".norvix-backup");
    for (int number = 1; QFile::exists(name) && number < mostBackups; ++number) {
        name = QStringLiteral("%1.norvix-backup.%2").arg(path).arg(number);
    }
    return putInPlace(name, content);
}

bool isPrivate(const QString &path)
{
    struct stat info = {};
    return stat(QFile::encodeName(path).constData(), &info) == 0 && info.st_uid == 0
        && (info.st_mode & 077) == 0;
}

bool give(const QString &path, gid_t group, mode_t mode)
{
    const QByteArray name = QFile::encodeName(path);
    return chown(name.constData(), 0, group) == 0 && chmod(name.constData(), mode) == 0;
}

MendResult mendSecrets(const QString &path)
{
    MendResult result;
    const std::optional<QByteArray> content = fileContent(path);
    if (!content && QFile::exists(path)) {
        result.failure = {FailureKind::FileUnreadable, path};
        return result;
    }
    if (!hasEntryAtStart(content.value_or(""))) {
        const bool isKept = !content || backUp(path, *content);
        if (!isKept || !putInPlace(path, mendedSecrets(content.value_or("")))) {
            result.failure = {FailureKind::FileUnwritable, path};
            return result;
        }
        result.done.append(Say::tr("%1 now begins with the account's entry.").arg(path));
    }
    if (!isPrivate(path)) {
        if (!give(path, 0, secretMode)) {
            result.failure = {FailureKind::ModeUnchangeable, path};
            return result;
        }
        result.done.append(Say::tr("%1 is now readable for root only.").arg(path));
    }
    return result;
}

QByteArray shippedPeer(const char *name)
{
    return fileContent(QStringLiteral("/opt/norvix/share/peers/") + QLatin1String(name))
        .value_or("");
}

/// The login that the connection uses: of the peer file, else of the account.
QByteArray knownLogin(const QByteArray &peer)
{
    QByteArray inPeer = peerLogin(peer).toLatin1();
    if (!inPeer.isEmpty() && inPeer != placeholderLogin()) {
        return inPeer;
    }
    const QList<SecretsEntry> entries
        = secretsEntries(fileContent(QStringLiteral("/etc/ppp/pap-secrets")).value_or(""));
    return entries.isEmpty() ? QByteArray() : entries.constFirst().login;
}

MendResult mendPeer(const Facts &facts)
{
    MendResult result;
    const QList<QByteArray> shipped
        = {shippedPeer("norvix"), shippedPeer("norvix-pppoa"), shippedPeer("norvix_unicorn")};
    const QString path = facts.peer.path;
    const std::optional<QByteArray> content = fileContent(path);
    const QByteArray &fitting = shipped.at(int(facts.peerKind()));
    const bool isOurs = content ? isShippedPeer(*content, shipped) : !QFile::exists(path);
    if (fitting.isEmpty() || !isOurs
        || (content && peerFaults(*content, facts.peerKind(), facts.circuit()).isEmpty())) {
        return result;
    }
    const QByteArray made
        = peerFromTemplate(fitting, knownLogin(content.value_or("")), facts.circuit());
    const group *dip = getgrnam("dip"); // who may dial
    if ((content && !backUp(path, *content))
        || !putInPlace(path, made, peerMode, dip != nullptr ? dip->gr_gid : 0)) {
        result.failure = {FailureKind::FileUnwritable, path};
        return result;
    }
    result.done.append(Say::tr("%1 is now the one for this modem and protocol.").arg(path));
    return result;
}

} // namespace

MendResult mendPppFiles(const Facts &facts)
{
    MendResult result;
    const auto add = [&](const MendResult &next) {
        result.done += next.done;
        result.failure = next.failure;
        return !next.failure;
    };
    static_cast<void>(add(mendSecrets(QStringLiteral("/etc/ppp/pap-secrets")))
        && add(mendSecrets(QStringLiteral("/etc/ppp/chap-secrets"))) && add(mendPeer(facts)));
    return result;
}
