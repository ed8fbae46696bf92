// SPDX-License-Identifier: MIT
#include "client/ppp_files.h"

#include "client/say.h"

#include <QRegularExpression>
#include <algorithm>
#include <optional>

namespace {

constexpr int mostCharacters = 50; // of a value that the daemon recognises, each up to four bytes

// Bytes are read as Latin-1 so that every byte of a login stays what it is.
const QRegularExpression &entryPattern()
{
    static const QRegularExpression pattern(QStringLiteral(
        "^\"([^\\n]{1,200}?)\"[ \\t]+\\*[ \\t]+\"([^\\n]{1,200}?)\"[ \\t]+\\*[ \\t]*$"));
    return pattern;
}

std::optional<SecretsEntry> entryOf(const QByteArray &line)
{
    const QRegularExpressionMatch match = entryPattern().match(QString::fromLatin1(line));
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    SecretsEntry entry = {match.captured(1).toLatin1(), match.captured(2).toLatin1()};
    const bool isRecognised = QString::fromUtf8(entry.login).size() <= mostCharacters
        && QString::fromUtf8(entry.password).size() <= mostCharacters;
    return isRecognised ? std::optional<SecretsEntry>(entry) : std::nullopt;
}

QByteArray entryLine(const SecretsEntry &entry)
{
    return '"' + entry.login + "\" * \"" + entry.password + "\" *";
}

/// The options of a peer file: first words and whole lines, without comments.
struct PeerOptions
{
    QStringList words;
    QStringList lines;

    bool has(const char *word) const { return words.contains(QLatin1String(word)); }
};

PeerOptions optionsOfPeer(const QByteArray &content)
{
    PeerOptions options;
    for (const QByteArray &raw : content.split('\n')) {
        const QString line = QString::fromLatin1(raw).section(QLatin1Char('#'), 0, 0).simplified();
        if (!line.isEmpty()) {
            options.lines.append(line);
            options.words.append(line.split(QLatin1Char(' ')));
        }
    }
    return options;
}

bool loadsPlugin(const PeerOptions &options, const char *plugin)
{
    for (const QString &line : options.lines) {
        if (line.startsWith(QLatin1String("plugin ")) && line.contains(QLatin1String(plugin))) {
            return true;
        }
    }
    return false;
}

QList<Fact> bridgeFaults(const PeerOptions &options)
{
    QList<Fact> faults;
    if (!loadsPlugin(options, "pppoe.so")) {
        faults.append({Say::tr("“plugin pppoe.so” is missing, which PPPoE needs."), {}});
    }
    if (!options.has("nic-nas0") && !options.has("nas0")) {
        faults.append({Say::tr("“nic-nas0” is missing, the interface that PPPoE uses."), {}});
    }
    return faults;
}

QList<Fact> atmFaults(const PeerOptions &options, const QString &circuit)
{
    QList<Fact> faults;
    if (!loadsPlugin(options, "pppoatm.so")) {
        faults.append({Say::tr("“plugin pppoatm.so” is missing, which PPPoA needs."), {}});
    }
    if (!circuit.isEmpty() && !options.has(qPrintable(circuit))) {
        faults.append({Say::tr("The circuit “%1” of the line settings does not stand in it; for "
                               "PPPoA the peer file decides.")
                           .arg(circuit),
            {}});
    }
    return faults;
}

QList<Fact> kindFaults(const PeerOptions &options, PeerKind kind, const QString &circuit)
{
    switch (kind) {
    case PeerKind::Bridge:
        return bridgeFaults(options);
    case PeerKind::Atm:
        return atmFaults(options, circuit);
    case PeerKind::OwnInterface:
        break;
    }
    return QList<Fact>();
}

} // namespace

QList<SecretsEntry> secretsEntries(const QByteArray &content)
{
    QList<SecretsEntry> entries;
    for (const QByteArray &line : content.split('\n')) {
        if (const auto entry = entryOf(line)) {
            entries.append(*entry);
        }
    }
    return entries;
}

bool hasEntryAtStart(const QByteArray &content)
{
    return entryOf(content.split('\n').constFirst()).has_value();
}

QByteArray guardLines()
{
    // As the package writes it, too, and as it stands on installed systems: not to be changed.
    return "# The line above is the account that norvix-daemon changes: it must stay the first of "
           "this "
           "file.\n"
           "# Set it with \"norvixctl account set\". These two lines belong to it and shield what "
           "follows.";
}

QByteArray placeholderLogin()
{
    return "login"; // as in the peer files that are shipped
}

QByteArray mendedSecrets(const QByteArray &content)
{
    const QList<SecretsEntry> entries = secretsEntries(content);
    const SecretsEntry newest
        = entries.isEmpty() ? SecretsEntry{placeholderLogin(), "password"} : entries.constLast();
    QList<QByteArray> lines = {entryLine(newest), guardLines()};
    for (const QByteArray &line :
        QByteArray(content).replace(guardLines() + '\n', "").split('\n')) {
        const auto entry = entryOf(line);
        if (!entry || (entry->login != newest.login && entry->login != placeholderLogin())) {
            lines.append(line);
        }
    }
    return lines.join('\n');
}

QList<Fact> peerFaults(const QByteArray &content, PeerKind kind, const QString &circuit)
{
    const PeerOptions options = optionsOfPeer(content);
    QList<Fact> faults = kindFaults(options, kind, circuit);
    if (!options.has("updetach") && !options.has("nodetach")) {
        faults.append({Say::tr("“updetach” is missing: without it pppd goes to the background at "
                               "once and the daemon never learns what becomes of the connection."),
            {}});
    }
    if (options.has("updetach") && !options.has("noipv6")) {
        faults.append({Say::tr("“noipv6” is missing: with “updetach” alone pppd may detach before "
                               "it has told the address."),
            {}});
    }
    if (options.has("logfile")) {
        faults.append({Say::tr("“logfile” takes pppd's lines away from the daemon."), {}});
    }
    if (!options.has("noauth")) {
        faults.append({Say::tr("“noauth” is missing: pppd would demand that the provider "
                               "authenticates itself."),
            {}});
    }
    if (peerLogin(content).isEmpty()) {
        faults.append({Say::tr("There is no “user” line."), {RemedyKind::SetAccount, QString()}});
    }
    return faults;
}

QString peerLogin(const QByteArray &content)
{
    static const QRegularExpression pattern(
        QStringLiteral("^[ \\t]*(?:user|name)[ \\t]+(?|\"([^\"\\n]+)\"|([^\"\\s]+))"),
        QRegularExpression::MultilineOption);
    return pattern.match(QString::fromLatin1(content)).captured(1);
}

QByteArray peerFromTemplate(
    const QByteArray &shipped, const QByteArray &login, const QString &circuit)
{
    QByteArray made = shipped;
    if (!login.isEmpty()) {
        made.replace("\nuser \"" + placeholderLogin() + "\"\n", "\nuser \"" + login + "\"\n");
    }
    if (!circuit.isEmpty()) {
        made.replace("\n8.35\n", '\n' + circuit.toLatin1() + '\n');
    }
    return made;
}

bool isShippedPeer(const QByteArray &content, const QList<QByteArray> &allShipped)
{
    static const QRegularExpression circuit(
        QStringLiteral("^[0-9]+\\.[0-9]+$"), QRegularExpression::MultilineOption);
    const QByteArray login = peerLogin(content).toLatin1();
    const QString found = circuit.match(QString::fromLatin1(content)).captured(0);
    return std::any_of(allShipped.begin(), allShipped.end(), [&](const QByteArray &shipped) {
        return content == peerFromTemplate(shipped, login, found);
    });
}
