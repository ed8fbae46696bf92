// SPDX-License-Identifier: MIT
#include "client/pppd_explain.h"

#include "client/say.h"

#include <vector>

namespace {

struct Row
{
    const char *phrase;
    PppdCause cause;
    const char *meaning;
    const char *remedy; ///< nullptr for none
};

// The first row that any line matches decides: causes stand before their consequences.
const std::vector<Row> &rows()
{
    static const std::vector<Row> table = {
        {"Can't open options file", PppdCause::NoPeerFile,
            QT_TRANSLATE_NOOP("Say", "pppd did not find the peer file."),
            QT_TRANSLATE_NOOP(
                "Say", "Create the peer file (norvix-daemon(8) shows one that works).")},
        {"unrecognized option 'nic-", PppdCause::NoBridge,
            QT_TRANSLATE_NOOP("Say", "The bridge interface did not exist when pppd started."),
            QT_TRANSLATE_NOOP(
                "Say", "Check VPI and VCI (“norvixctl line show”) and the bridge program.")},
        {"unrecognized option", PppdCause::BadOption,
            QT_TRANSLATE_NOOP("Say", "pppd does not know an option that it was given."),
            QT_TRANSLATE_NOOP(
                "Say", "Correct the peer file or the key pppd_arguments of the settings.")},
        {"Timeout waiting for PADO packets", PppdCause::NoConcentrator,
            QT_TRANSLATE_NOOP("Say", "No concentrator of the provider answered."),
            QT_TRANSLATE_NOOP("Say",
                "Check VPI, VCI and protocol with the provider's letter: “norvixctl line set”.")},
        {"Unable to complete PPPoE Discovery", PppdCause::NoConcentrator,
            QT_TRANSLATE_NOOP("Say", "No concentrator of the provider answered."),
            QT_TRANSLATE_NOOP("Say",
                "Check VPI, VCI and protocol with the provider's letter: “norvixctl line set”.")},
        {"No such device", PppdCause::NoDevice,
            QT_TRANSLATE_NOOP("Say",
                "There is no ATM device: the modem or its driver is "
                "missing."),
            QT_TRANSLATE_NOOP("Say",
                "Plug the modem in; “norvixctl driver” shows the "
                "driver.")},
        {"Failed to authenticate ourselves to peer", PppdCause::Refused,
            QT_TRANSLATE_NOOP("Say", "The provider refused login or password."),
            QT_TRANSLATE_NOOP("Say", "Set them again: “norvixctl account set”.")},
        {"authentication failed", PppdCause::Refused,
            QT_TRANSLATE_NOOP("Say", "The provider refused login or password."),
            QT_TRANSLATE_NOOP("Say", "Set them again: “norvixctl account set”.")},
        {"peer refused to authenticate: terminating link", PppdCause::MustAuthenticate,
            QT_TRANSLATE_NOOP("Say", "pppd demanded that the provider authenticates itself."),
            QT_TRANSLATE_NOOP("Say", "Add the line “noauth” to the peer file.")},
        {"LCP terminated by peer (peer refused to authenticate)", PppdCause::NoPassword,
            QT_TRANSLATE_NOOP("Say",
                "No password is stored for the login that the peer file "
                "names."),
            QT_TRANSLATE_NOOP("Say", "Set the account: “norvixctl account set”.")},
        {"LCP: timeout sending Config-Requests", PppdCause::NoNegotiation,
            QT_TRANSLATE_NOOP("Say", "The far end did not answer the PPP negotiation."),
            QT_TRANSLATE_NOOP("Say",
                "Check VPI, VCI and protocol with the provider's letter: “norvixctl line set”.")},
        {"No response to", PppdCause::Silent,
            QT_TRANSLATE_NOOP("Say", "The far end stopped answering: the line was lost."),
            QT_TRANSLATE_NOOP("Say", "Wait for the line to come back, then connect again.")},
        {"LCP terminated by peer", PppdCause::PeerTerminated,
            QT_TRANSLATE_NOOP("Say", "The provider ended the connection."),
            QT_TRANSLATE_NOOP("Say", "Connect again: “norvixctl connect”.")},
        {"Modem hangup", PppdCause::HungUp, QT_TRANSLATE_NOOP("Say", "The link was hung up."),
            QT_TRANSLATE_NOOP("Say", "Connect again: “norvixctl connect”.")},
        {"Terminating on signal", PppdCause::Ended,
            QT_TRANSLATE_NOOP("Say", "pppd was told to end."), nullptr},
        {"Connection terminated", PppdCause::Ended,
            QT_TRANSLATE_NOOP("Say", "The connection ended."),
            QT_TRANSLATE_NOOP("Say", "Connect again: “norvixctl connect”.")},
        {"local  IP address", PppdCause::Up, QT_TRANSLATE_NOOP("Say", "The link came up."),
            nullptr},
    };
    return table;
}

bool beginsAttempt(const QByteArray &line)
{
    return line.startsWith("Plugin ") && line.contains(" loaded");
}

} // namespace

QStringList pppdLinesOfLog(const QByteArray &log)
{
    const QByteArray prefix = "Norvix_Daemon::debugConnecting(): ";
    QStringList lines;
    for (const QByteArray &line : log.split('\n')) {
        const int position = line.indexOf(prefix);
        if (position < 0) {
            continue;
        }
        const QByteArray words = line.mid(position + prefix.size()).trimmed();
        if (beginsAttempt(words)) {
            lines.clear();
        }
        lines.append(QString::fromUtf8(words));
    }
    return lines;
}

PppdVerdict explainPppd(const QStringList &lines)
{
    for (const Row &row : rows()) {
        for (const QString &line : lines) {
            if (!line.contains(QLatin1String(row.phrase))) {
                continue;
            }
            PppdVerdict verdict;
            verdict.cause = row.cause;
            verdict.isGood = row.cause == PppdCause::Up;
            verdict.line = line;
            verdict.meaning = Say::tr(row.meaning);
            verdict.remedy = row.remedy != nullptr ? Say::tr(row.remedy) : QString();
            return verdict;
        }
    }
    return PppdVerdict();
}
