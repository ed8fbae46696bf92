// SPDX-License-Identifier: MIT
#include "ctl/screen/keeper_report.h"

#include "client/say.h"
#include "client/text_format.h"
#include "ctl/screen/remedy_text.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

namespace {

QJsonValue timeOrNull(const std::optional<qint64> &time)
{
    return time ? QJsonValue(momentIso(*time)) : QJsonValue(QJsonValue::Null);
}

QString reasonText(const QString &reason)
{
    const Fact fact = keeperReasonFact(reason);
    const QString remedy = remedyText(fact.remedy);
    return remedy.isEmpty() ? fact.text : fact.text + QLatin1Char(' ') + remedy;
}

QString absenceText(const Failure &failure)
{
    return failure.kind == FailureKind::KeeperMissing ? Say::tr("not installed")
        : failure.kind == FailureKind::KeeperStopped  ? Say::tr("not running")
                                                      : Say::tr("unknown");
}

/// Keys stay the same whether or not the keeper has answered.
void addUnknown(Report &report, const Failure &failure, const QString &prefix)
{
    const QJsonValue null(QJsonValue::Null);
    report.add(prefix + QLatin1String("state"), null, Say::tr("Keeper"), absenceText(failure),
        Tone::Doubtful);
    for (const char *key : {"keep", "wanted", "reason", "since", "nextAttempt", "attempts"}) {
        report.add(prefix + QLatin1String(key), null);
    }
    report.add(prefix + QLatin1String("foreignLinks"), QJsonArray());
    report.add(prefix + QLatin1String("history"), null);
    report.add(prefix + QLatin1String("limitReached"), null);
}

} // namespace

void addKeeper(Report &report, const KeeperAnswer<KeeperState> &keeper, const QString &prefix)
{
    if (!keeper.ok()) {
        addUnknown(report, keeper.failure, prefix);
        return;
    }
    const KeeperState &state = keeper.value;
    const bool isFine = state.phase == QLatin1String(KeeperPhase::connected)
        || state.phase == QLatin1String(KeeperPhase::idle);
    const auto yesNo = [](bool yes) { return yes ? Say::tr("yes") : Say::tr("no"); };
    const auto add = [&](const char *key, const QJsonValue &value, const QString &label = QString(),
                         const QString &text = QString(), Tone tone = Tone::Plain) {
        report.add(prefix + QLatin1String(key), value, label, text, tone);
    };
    add("state", state.phase, Say::tr("Keeper"), keeperPhaseText(state.phase),
        isFine ? Tone::Good : Tone::Doubtful);
    add("keep", state.isKeeping, Say::tr("Keeps"), yesNo(state.isKeeping));
    add("wanted", state.isWanted, Say::tr("Wanted"), yesNo(state.isWanted));
    const bool hasReason = !state.reason.isEmpty();
    add("reason", hasReason ? QJsonValue(state.reason) : QJsonValue(QJsonValue::Null),
        hasReason ? Say::tr("Reason") : QString(), reasonText(state.reason));
    add("since", timeOrNull(state.since));
    add("nextAttempt", timeOrNull(state.nextAttempt),
        state.nextAttempt ? Say::tr("Next attempt") : QString(),
        state.nextAttempt ? momentText(*state.nextAttempt) : QString());
    add("attempts", qint64(state.attempts),
        state.attempts > 0 ? Say::tr("Failed attempts") : QString(),
        QString::number(state.attempts));
    const QString foreign = state.foreignLinks.join(QStringLiteral(", "));
    add("foreignLinks", QJsonArray::fromStringList(state.foreignLinks),
        foreign.isEmpty() ? QString() : Say::tr("Other links"), foreign);
    add("history",
        state.history.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(state.history));
    add("limitReached", state.isLimitReached);
    if (const QString text = keeperHistoryText(state.history); !text.isEmpty()) {
        report.note(text);
    }
    if (state.isLimitReached) {
        report.note(Say::tr("The traffic of the billing month has reached the limit."));
    }
}
