// SPDX-License-Identifier: MIT
#include "client/keeper_state.h"

#include "client/say.h"
#include "client/text_format.h"
#include "dbus/contract.h"

#include <QDBusArgument>
#include <cmath>
#include <limits>
#include <vector>

namespace {

// The last second of the year 9999: what is later is no time.
constexpr qint64 latestTime = 253402300799;
constexpr qint64 daySeconds = 86400;

// How far from a whole day apart two hang-ups may be to be the daily one.
constexpr qint64 dailySlack = 900;

std::optional<quint64> wholeNumber(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return value.toULongLong();
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::LongLong:
        return value.toLongLong() < 0 ? std::nullopt : std::optional<quint64>(value.toULongLong());
    default:
        return std::nullopt;
    }
}

std::optional<quint64> wholeNumberUpTo(const QVariant &value, quint64 most)
{
    const std::optional<quint64> number = wholeNumber(value);
    return number && *number <= most ? number : std::nullopt;
}

/// Two of them can be added.
std::optional<quint64> bytesOf(const QVariant &value)
{
    return wholeNumberUpTo(value, std::numeric_limits<qint64>::max());
}

std::optional<qint64> timeOf(const QVariant &value)
{
    const std::optional<quint64> number = wholeNumberUpTo(value, latestTime);
    return number && *number > 0 ? std::optional<qint64>(qint64(*number)) : std::nullopt;
}

std::optional<double> figure(const QVariant &value)
{
    if (value.userType() == QMetaType::Double) {
        const double number = value.toDouble();
        return std::isfinite(number) ? std::optional<double>(number) : std::nullopt;
    }
    const std::optional<quint64> number = wholeNumber(value);
    return number ? std::optional<double>(double(*number)) : std::nullopt;
}

std::optional<double> figureBetween(const QVariant &value, double least, double most)
{
    const std::optional<double> number = figure(value);
    return number && *number >= least && *number <= most ? number : std::nullopt;
}

QString textOf(const QVariant &value)
{
    return value.userType() == QMetaType::QString ? value.toString() : QString();
}

QDate dayOf(const QVariant &value)
{
    const QString text = textOf(value);
    const QDate day = QDate::fromString(text, Qt::ISODate);
    return day.toString(Qt::ISODate) == text ? day : QDate();
}

/// One row's values by their keys.
class Row
{
public:
    explicit Row(const QVariantMap &map)
        : m_map(map)
    {
    }

    QVariant at(const char *key) const { return m_map.value(QLatin1String(key)); }
    QString text(const char *key) const { return textOf(at(key)); }
    std::optional<qint64> time(const char *key) const { return timeOf(at(key)); }

private:
    const QVariantMap &m_map;
};

std::optional<KeeperSession> sessionOf(const Row &row)
{
    const std::optional<qint64> began = row.time("began");
    const auto seconds = wholeNumberUpTo(row.at("seconds"), latestTime);
    const std::optional<quint64> received = bytesOf(row.at("received"));
    const std::optional<quint64> sent = bytesOf(row.at("sent"));
    if (!began || !seconds || !received || !sent) {
        return std::nullopt;
    }
    return KeeperSession{*began, row.time("ended"), qint64(*seconds), row.text("reason"),
        row.text("interface"), row.text("address"), *received, *sent};
}

std::optional<KeeperAttempts> attemptsOf(const Row &row)
{
    const std::optional<qint64> first = row.time("first");
    const std::optional<qint64> last = row.time("last");
    const auto count = wholeNumberUpTo(row.at("count"), std::numeric_limits<quint32>::max());
    if (!first || !last || !count || *count == 0) {
        return std::nullopt;
    }
    return KeeperAttempts{*first, *last, quint32(*count), row.text("reason")};
}

std::optional<KeeperTraffic> trafficOf(const Row &row, const char *beginKey, const char *endKey)
{
    const QDate begin = dayOf(row.at(beginKey));
    const QDate end = dayOf(row.at(endKey));
    const std::optional<quint64> received = bytesOf(row.at("received"));
    const std::optional<quint64> sent = bytesOf(row.at("sent"));
    if (!begin.isValid() || !end.isValid() || !received || !sent) {
        return std::nullopt;
    }
    return KeeperTraffic{begin, end, *received, *sent};
}

std::optional<LineSample> sampleOf(const Row &row)
{
    constexpr double mostRate = 1e9;
    constexpr double mostDecibels = 1000;
    constexpr double mostErrors = 1e18;
    const std::optional<qint64> time = row.time("time");
    const auto span = wholeNumberUpTo(row.at("span"), latestTime);
    if (!time || !span || *span == 0) {
        return std::nullopt;
    }
    const auto between = [&row](const char *key, double least, double most) {
        return figureBetween(row.at(key), least, most);
    };
    LineSample sample;
    sample.time = *time;
    sample.span = qint64(*span);
    sample.carrier = between("carrier", 0, 1);
    sample.downRate = between("down_rate", 0, mostRate);
    sample.upRate = between("up_rate", 0, mostRate);
    sample.downMargin = between("down_margin", -mostDecibels, mostDecibels);
    sample.upMargin = between("up_margin", -mostDecibels, mostDecibels);
    sample.downAttenuation = between("down_attenuation", -mostDecibels, mostDecibels);
    sample.upAttenuation = between("up_attenuation", -mostDecibels, mostDecibels);
    sample.downErrors = between("down_errors", 0, mostErrors);
    sample.upErrors = between("up_errors", 0, mostErrors);
    return sample;
}

/// The values of the rows that are what they should be.
template <typename Value, typename Read>
QList<Value> valuesOf(const QList<QVariantMap> &rows, Read read)
{
    QList<Value> values;
    for (const QVariantMap &row : rows) {
        if (const std::optional<Value> value = read(Row(row))) {
            values.append(*value);
        }
    }
    return values;
}

struct WordRow
{
    const char *word;
    const char *text;
};

struct ReasonRow
{
    const char *word;
    const char *text;
    RemedyKind remedy;
};

const std::vector<WordRow> &phaseTable()
{
    static const std::vector<WordRow> table = {
        {KeeperPhase::connected, QT_TRANSLATE_NOOP("Say", "connected")},
        {KeeperPhase::idle, QT_TRANSLATE_NOOP("Say", "nobody wants the connection")},
        {KeeperPhase::off, QT_TRANSLATE_NOOP("Say", "switched off")},
        {KeeperPhase::connecting, QT_TRANSLATE_NOOP("Say", "connecting")},
        {KeeperPhase::waiting, QT_TRANSLATE_NOOP("Say", "waiting for the next attempt")},
        {KeeperPhase::waitingForLine, QT_TRANSLATE_NOOP("Say", "waiting for the line")},
        {KeeperPhase::waitingForModem, QT_TRANSLATE_NOOP("Say", "waiting for the modem")},
        {KeeperPhase::waitingForDriver,
            QT_TRANSLATE_NOOP("Say", "waiting for the modem's driver, which is being built")},
        {KeeperPhase::waitingForRestart,
            QT_TRANSLATE_NOOP("Say", "waiting for the modem, which is being restarted")},
        {KeeperPhase::waitingForDaemon, QT_TRANSLATE_NOOP("Say", "waiting for the daemon")},
        {KeeperPhase::waitingForSettings,
            QT_TRANSLATE_NOOP("Say", "waiting until the settings are corrected")},
        {KeeperPhase::asleep, QT_TRANSLATE_NOOP("Say", "asleep, like the computer")},
    };
    return table;
}

const std::vector<ReasonRow> &reasonTable()
{
    static const std::vector<ReasonRow> table = {
        {KeeperReason::hungUp, QT_TRANSLATE_NOOP("Say", "The provider hung up."), RemedyKind::None},
        {KeeperReason::silent,
            QT_TRANSLATE_NOOP("Say", "The provider fell silent: nothing came over the line."),
            RemedyKind::None},
        {KeeperReason::lineLost, QT_TRANSLATE_NOOP("Say", "The line lost its synchronisation."),
            RemedyKind::WaitForLine},
        {KeeperReason::bridgeGone,
            QT_TRANSLATE_NOOP("Say", "The bridge interface to the line was gone."),
            RemedyKind::None},
        {KeeperReason::unplugged, QT_TRANSLATE_NOOP("Say", "The modem was unplugged."),
            RemedyKind::PlugModem},
        {KeeperReason::modemRestart, QT_TRANSLATE_NOOP("Say", "The modem's driver was reloaded."),
            RemedyKind::None},
        {KeeperReason::user, QT_TRANSLATE_NOOP("Say", "Somebody ended the connection."),
            RemedyKind::None},
        {KeeperReason::sleep, QT_TRANSLATE_NOOP("Say", "The computer went to sleep."),
            RemedyKind::None},
        {KeeperReason::noConcentrator,
            QT_TRANSLATE_NOOP("Say", "No concentrator of the provider answered."),
            RemedyKind::CheckLine},
        {KeeperReason::noNegotiation,
            QT_TRANSLATE_NOOP("Say", "The far end did not answer the PPP negotiation."),
            RemedyKind::CheckLine},
        {KeeperReason::peerTerminated,
            QT_TRANSLATE_NOOP("Say", "The provider hung up before the link was up."),
            RemedyKind::None},
        {KeeperReason::accountRefused,
            QT_TRANSLATE_NOOP("Say", "The provider refused login or password."),
            RemedyKind::SetAccountAgain},
        {KeeperReason::lineNotSynchronised,
            QT_TRANSLATE_NOOP("Say", "The line did not synchronise."), RemedyKind::WaitForLine},
        {KeeperReason::bridgeMissing,
            QT_TRANSLATE_NOOP("Say", "The bridge interface did not exist when pppd started."),
            RemedyKind::CheckLineAndBridge},
        {KeeperReason::deviceMissing,
            QT_TRANSLATE_NOOP("Say",
                "There is no ATM device: the modem or its driver is "
                "missing."),
            RemedyKind::CheckModem},
        {KeeperReason::peerFileMissing,
            QT_TRANSLATE_NOOP("Say", "pppd did not find the peer file."), RemedyKind::CreatePeer},
        {KeeperReason::badOption,
            QT_TRANSLATE_NOOP("Say", "pppd does not know an option that it was given."),
            RemedyKind::CorrectOptions},
        {KeeperReason::passwordMissing,
            QT_TRANSLATE_NOOP("Say",
                "No password is stored for the login that the peer file "
                "names."),
            RemedyKind::SetAccount},
        {KeeperReason::peerMustAuthenticate,
            QT_TRANSLATE_NOOP("Say", "pppd demanded that the provider authenticates itself."),
            RemedyKind::AddNoauth},
        {KeeperReason::circuitMissing, QT_TRANSLATE_NOOP("Say", "VPI and VCI are not set."),
            RemedyKind::SetLine},
        {KeeperReason::requestDropped,
            QT_TRANSLATE_NOOP("Say", "The daemon was still busy with an earlier attempt."),
            RemedyKind::None},
        {KeeperReason::requestRefused,
            QT_TRANSLATE_NOOP("Say", "The daemon did not take the request."), RemedyKind::None},
        {KeeperReason::foreignLink,
            QT_TRANSLATE_NOOP("Say", "The link of another program stands in the way."),
            RemedyKind::EndOtherConnection},
        {KeeperReason::unknown, QT_TRANSLATE_NOOP("Say", "The reason is not known."),
            RemedyKind::None},
    };
    return table;
}

const std::vector<WordRow> &historyTable()
{
    static const std::vector<WordRow> table = {
        {KeeperHistory::ok, ""},
        {KeeperHistory::setAside,
            QT_TRANSLATE_NOOP("Say", "The history was damaged; a new one was begun.")},
        {KeeperHistory::newer,
            QT_TRANSLATE_NOOP("Say",
                "The history is of a newer version of the keeper; nothing is written into it.")},
        {KeeperHistory::unwritable, QT_TRANSLATE_NOOP("Say", "The history can not be written.")},
    };
    return table;
}

template <typename Found>
const Found *findWord(const std::vector<Found> &table, const QString &word)
{
    for (const Found &row : table) {
        if (word == QLatin1String(row.word)) {
            return &row;
        }
    }
    return nullptr;
}

QString wordText(const std::vector<WordRow> &table, const QString &word)
{
    const WordRow *row = findWord(table, word);
    if (row == nullptr) {
        return printable(word);
    }
    return *row->text == '\0' ? QString() : Say::tr(row->text);
}

template <typename Value> std::optional<Value> fromBus(const QVariant &value, const char *signature)
{
    if (value.userType() == qMetaTypeId<QDBusArgument>()) {
        const auto argument = value.value<QDBusArgument>();
        return argument.currentSignature() == QLatin1String(signature)
            ? std::optional<Value>(qdbus_cast<Value>(argument))
            : std::nullopt;
    }
    return value.userType() == qMetaTypeId<Value>() ? std::optional<Value>(value.value<Value>())
                                                    : std::nullopt;
}

bool isHangUp(const KeeperSession &session)
{
    return session.ended && session.reason == QLatin1String(KeeperReason::hungUp);
}

bool isAboutADay(qint64 seconds)
{
    return std::abs(seconds - daySeconds) <= dailySlack;
}

/// When the far end hung up next to the session at @p place; @p step: 1 for before it.
std::optional<qint64> hangUpBeside(const QList<KeeperSession> &sessions, int place, int step)
{
    for (place += step; place >= 0 && place < sessions.size(); place += step) {
        if (isHangUp(sessions.at(place))) {
            return sessions.at(place).ended;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<QVariantMap> busMap(const QVariant &value)
{
    return fromBus<QVariantMap>(value, "a{sv}");
}

std::optional<QList<QVariantMap>> busRows(const QVariant &value)
{
    return fromBus<QList<QVariantMap>>(value, "aa{sv}");
}

KeeperState withChanges(KeeperState state, const QVariantMap &changed)
{
    const Row row(changed);
    const auto take = [](auto &member, const QVariant &value, int type) {
        if (value.userType() == type) {
            member = value.value<std::decay_t<decltype(member)>>();
        }
    };
    const auto takeTime = [](std::optional<qint64> &member, const QVariant &value) {
        if (wholeNumber(value)) {
            member = timeOf(value);
        }
    };
    take(state.phase, row.at(KeeperProperty::State), QMetaType::QString);
    take(state.isWanted, row.at(KeeperProperty::Wanted), QMetaType::Bool);
    take(state.isKeeping, row.at(KeeperProperty::Keep), QMetaType::Bool);
    take(state.reason, row.at(KeeperProperty::Reason), QMetaType::QString);
    takeTime(state.since, row.at(KeeperProperty::Since));
    takeTime(state.nextAttempt, row.at(KeeperProperty::NextAttempt));
    if (const auto count
        = wholeNumberUpTo(row.at(KeeperProperty::Attempts), std::numeric_limits<quint32>::max())) {
        state.attempts = quint32(*count);
    }
    take(state.foreignLinks, row.at(KeeperProperty::ForeignLinks), QMetaType::QStringList);
    take(state.history, row.at(KeeperProperty::History), QMetaType::QString);
    take(state.isLimitReached, row.at(KeeperProperty::LimitReached), QMetaType::Bool);
    return state;
}

std::optional<KeeperState> keeperState(const QVariantMap &properties)
{
    const Row row(properties);
    const bool isKeeper = !row.text(KeeperProperty::State).isEmpty()
        && row.at(KeeperProperty::Wanted).userType() == QMetaType::Bool
        && row.at(KeeperProperty::Keep).userType() == QMetaType::Bool;
    return isKeeper ? std::optional<KeeperState>(withChanges(KeeperState(), properties))
                    : std::nullopt;
}

QList<KeeperSession> keeperSessions(const QList<QVariantMap> &rows)
{
    return valuesOf<KeeperSession>(rows, sessionOf);
}

QList<KeeperAttempts> keeperAttempts(const QList<QVariantMap> &rows)
{
    return valuesOf<KeeperAttempts>(rows, attemptsOf);
}

QList<KeeperTraffic> keeperDays(const QList<QVariantMap> &rows)
{
    return valuesOf<KeeperTraffic>(
        rows, [](const Row &row) { return trafficOf(row, "day", "day"); });
}

QList<KeeperTraffic> keeperMonths(const QList<QVariantMap> &rows)
{
    return valuesOf<KeeperTraffic>(
        rows, [](const Row &row) { return trafficOf(row, "begin", "end"); });
}

QList<LineSample> lineSamples(const QList<QVariantMap> &rows)
{
    return valuesOf<LineSample>(rows, sampleOf);
}

std::optional<KeeperPlan> keeperPlan(const QVariantMap &map)
{
    const Row row(map);
    const std::optional<quint64> limit = bytesOf(row.at("limit"));
    const auto day = wholeNumberUpTo(row.at("billing_day"), 31);
    return limit && day && *day > 0 ? std::optional<KeeperPlan>({*limit, int(*day)}) : std::nullopt;
}

QString keeperPhaseText(const QString &phase)
{
    return wordText(phaseTable(), phase);
}

Fact keeperReasonFact(const QString &reason)
{
    const ReasonRow *row = findWord(reasonTable(), reason);
    return row == nullptr ? Fact{printable(reason), {}}
                          : Fact{Say::tr(row->text), {row->remedy, QString()}};
}

QString keeperHistoryText(const QString &history)
{
    return wordText(historyTable(), history);
}

bool isDailyHangUp(const QList<KeeperSession> &sessions, int place)
{
    const KeeperSession session = sessions.value(place);
    if (!isHangUp(session)) {
        return false;
    }
    const std::optional<qint64> before = hangUpBeside(sessions, place, 1);
    const std::optional<qint64> after = hangUpBeside(sessions, place, -1);
    return isAboutADay(session.seconds) || (before && isAboutADay(*session.ended - *before))
        || (after && isAboutADay(*after - *session.ended));
}
