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
    RemedyKind remedy;
};

// The first row that any line matches decides: causes stand before their consequences.
const std::vector<Row> &rows()
{
    static const std::vector<Row> table = {
        {"Can't open options file", PppdCause::NoPeerFile,
            QT_TRANSLATE_NOOP("Say", "pppd did not find the peer file."), RemedyKind::CreatePeer},
        {"unrecognized option 'nic-", PppdCause::NoBridge,
            QT_TRANSLATE_NOOP("Say", "The bridge interface did not exist when pppd started."),
            RemedyKind::CheckLineAndBridge},
        {"unrecognized option", PppdCause::BadOption,
            QT_TRANSLATE_NOOP("Say", "pppd does not know an option that it was given."),
            RemedyKind::CorrectOptions},
        {"Timeout waiting for PADO packets", PppdCause::NoConcentrator,
            QT_TRANSLATE_NOOP("Say", "No concentrator of the provider answered."),
            RemedyKind::CheckLine},
        {"Unable to complete PPPoE Discovery", PppdCause::NoConcentrator,
            QT_TRANSLATE_NOOP("Say", "No concentrator of the provider answered."),
            RemedyKind::CheckLine},
        {"No such device", PppdCause::NoDevice,
            QT_TRANSLATE_NOOP("Say",
                "There is no ATM device: the modem or its driver is "
                "missing."),
            RemedyKind::CheckModem},
        {"Failed to authenticate ourselves to peer", PppdCause::Refused,
            QT_TRANSLATE_NOOP("Say", "The provider refused login or password."),
            RemedyKind::SetAccountAgain},
        {"authentication failed", PppdCause::Refused,
            QT_TRANSLATE_NOOP("Say", "The provider refused login or password."),
            RemedyKind::SetAccountAgain},
        {"peer refused to authenticate: terminating link", PppdCause::MustAuthenticate,
            QT_TRANSLATE_NOOP("Say", "pppd demanded that the provider authenticates itself."),
            RemedyKind::AddNoauth},
        {"LCP terminated by peer (peer refused to authenticate)", PppdCause::NoPassword,
            QT_TRANSLATE_NOOP("Say",
                "No password is stored for the login that the peer file "
                "names."),
            RemedyKind::SetAccount},
        {"LCP: timeout sending Config-Requests", PppdCause::NoNegotiation,
            QT_TRANSLATE_NOOP("Say", "The far end did not answer the PPP negotiation."),
            RemedyKind::CheckLine},
        {"No response to", PppdCause::Silent,
            QT_TRANSLATE_NOOP("Say", "The far end stopped answering: the line was lost."),
            RemedyKind::ConnectLater},
        {"LCP terminated by peer", PppdCause::PeerTerminated,
            QT_TRANSLATE_NOOP("Say", "The provider ended the connection."), RemedyKind::Connect},
        {"Modem hangup", PppdCause::HungUp, QT_TRANSLATE_NOOP("Say", "The link was hung up."),
            RemedyKind::Connect},
        {"Terminating on signal", PppdCause::Ended,
            QT_TRANSLATE_NOOP("Say", "pppd was told to end."), RemedyKind::None},
        {"Connection terminated", PppdCause::Ended,
            QT_TRANSLATE_NOOP("Say", "The connection ended."), RemedyKind::Connect},
        {"local  IP address", PppdCause::Up, QT_TRANSLATE_NOOP("Say", "The link came up."),
            RemedyKind::None},
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
            verdict.remedy.kind = row.remedy;
            return verdict;
        }
    }
    return PppdVerdict();
}
