// SPDX-License-Identifier: MIT
#include "client/pppd_explain.h"

#include "client/say.h"

#include <vector>

namespace {

struct Row
{
    const char *phrase;
    bool isGood;
    const char *meaning;
    RemedyKind remedy;
};

// The first row that any line matches decides: causes stand before their consequences.
const std::vector<Row> &rows()
{
    static const std::vector<Row> table = {
        {"Can't open options file", false,
            QT_TRANSLATE_NOOP("Say", "pppd did not find the peer file."), RemedyKind::CreatePeer},
        {"unrecognized option 'nic-", false,
            QT_TRANSLATE_NOOP("Say", "The bridge interface did not exist when pppd started."),
            RemedyKind::CheckLineAndBridge},
        {"unrecognized option", false,
            QT_TRANSLATE_NOOP("Say", "pppd does not know an option that it was given."),
            RemedyKind::CorrectOptions},
        {"Timeout waiting for PADO packets", false,
            QT_TRANSLATE_NOOP("Say", "No concentrator of the provider answered."),
            RemedyKind::CheckLine},
        {"Unable to complete PPPoE Discovery", false,
            QT_TRANSLATE_NOOP("Say", "No concentrator of the provider answered."),
            RemedyKind::CheckLine},
        {"No such device", false,
            QT_TRANSLATE_NOOP("Say",
                "There is no ATM device: the modem or its driver is "
                "missing."),
            RemedyKind::CheckModem},
        {"Failed to authenticate ourselves to peer", false,
            QT_TRANSLATE_NOOP("Say", "The provider refused login or password."),
            RemedyKind::SetAccountAgain},
        {"authentication failed", false,
            QT_TRANSLATE_NOOP("Say", "The provider refused login or password."),
            RemedyKind::SetAccountAgain},
        {"peer refused to authenticate: terminating link", false,
            QT_TRANSLATE_NOOP("Say", "pppd demanded that the provider authenticates itself."),
            RemedyKind::AddNoauth},
        {"LCP terminated by peer (peer refused to authenticate)", false,
            QT_TRANSLATE_NOOP("Say",
                "No password is stored for the login that the peer file "
                "names."),
            RemedyKind::SetAccount},
        {"LCP: timeout sending Config-Requests", false,
            QT_TRANSLATE_NOOP("Say", "The far end did not answer the PPP negotiation."),
            RemedyKind::CheckLine},
        {"No response to", false,
            QT_TRANSLATE_NOOP("Say", "The far end stopped answering: the line was lost."),
            RemedyKind::ConnectLater},
        {"LCP terminated by peer", false,
            QT_TRANSLATE_NOOP("Say", "The provider ended the connection."), RemedyKind::Connect},
        {"Modem hangup", false, QT_TRANSLATE_NOOP("Say", "The link was hung up."),
            RemedyKind::Connect},
        {"Terminating on signal", false, QT_TRANSLATE_NOOP("Say", "pppd was told to end."),
            RemedyKind::None},
        {"Connection terminated", false, QT_TRANSLATE_NOOP("Say", "The connection ended."),
            RemedyKind::Connect},
        {"local  IP address", true, QT_TRANSLATE_NOOP("Say", "The link came up."),
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
            verdict.isGood = row.isGood;
            verdict.line = line;
            verdict.meaning = Say::tr(row.meaning);
            verdict.remedy.kind = row.remedy;
            return verdict;
        }
    }
    return PppdVerdict();
}
