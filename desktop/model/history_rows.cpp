// SPDX-License-Identifier: MIT
#include "desktop/model/history_rows.h"

#include "client/say.h"
#include "client/text_format.h"
#include "desktop/model/connection_facts.h"
#include "desktop/model/headline.h"

#include <QLocale>
#include <algorithm>
#include <tuple>

namespace desktop {

namespace {

HistoryRow sessionRow(const QList<KeeperSession> &sessions, int place, qint64 now)
{
    const KeeperSession &session = sessions.at(place);
    HistoryRow row;
    row.at = session.began;
    row.began = momentText(session.began, now);
    row.lasted = durationText(session.seconds);
    row.traffic = bytesText(double(session.received) + double(session.sent));
    if (!session.ended) {
        row.reason = Say::tr("Still connected.");
    } else if (isDailyHangUp(sessions, place)) {
        row.reason = Say::tr("The provider hung up, as it does every day.");
    } else {
        row.reason = keeperReasonFact(session.reason).text;
    }
    return row;
}

HistoryRow attemptRow(const KeeperAttempts &attempts, qint64 now)
{
    HistoryRow row;
    row.at = attempts.first;
    row.began = momentText(attempts.first, now);
    const QString reason = keeperReasonFact(attempts.reason).text;
    row.reason = attempts.count == 1
        ? Say::tr("An attempt failed. %1").arg(reason)
        : Say::tr("%1 attempts failed until %2. %3")
              .arg(QLocale().toString(attempts.count), momentText(attempts.last, now), reason);
    return row;
}

} // namespace

bool operator==(const HistoryRow &first, const HistoryRow &second)
{
    const auto all = [](const HistoryRow &row) {
        return std::tie(row.at, row.began, row.lasted, row.reason, row.traffic);
    };
    return all(first) == all(second);
}

QVector<HistoryRow> historyRows(
    const QList<KeeperSession> &sessions, const QList<KeeperAttempts> &attempts, qint64 now)
{
    QVector<HistoryRow> rows;
    for (int place = 0; place < sessions.size(); ++place) {
        rows.append(sessionRow(sessions, place, now));
    }
    for (const KeeperAttempts &failed : attempts) {
        rows.append(attemptRow(failed, now));
    }
    std::stable_sort(rows.begin(), rows.end(),
        [](const HistoryRow &first, const HistoryRow &second) { return first.at > second.at; });
    return rows;
}

} // namespace desktop
