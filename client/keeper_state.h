// SPDX-License-Identifier: MIT
// What the keeper tells on the bus, as values, and its words as sentences. Times are seconds since
// 1970, traffic is in bytes. What is missing, of a wrong type or impossible is left out: the other
// side may be older, newer or somebody else.
#pragma once

#include "client/remedy.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <optional>

struct KeeperState
{
    QString phase; ///< a word of KeeperPhase, or one of a newer keeper
    bool isWanted = false; ///< somebody wants the connection
    bool isKeeping = false; ///< the keeper does anything at all
    QString reason; ///< a word of KeeperReason; empty for none
    std::optional<qint64> since;
    std::optional<qint64> nextAttempt; ///< nothing when none is planned
    quint32 attempts = 0; ///< that have failed since the connection was lost
    QStringList foreignLinks; ///< interfaces
    QString history; ///< a word of KeeperHistory; empty when it was not told
    bool isLimitReached = false;
};

struct KeeperSession
{
    qint64 began = 0;
    std::optional<qint64> ended; ///< nothing while it runs
    qint64 seconds = 0; ///< how long it has lasted, whatever became of the clock
    QString reason; ///< why it ended; empty while it runs
    QString interface;
    QString address;
    quint64 received = 0;
    quint64 sent = 0;
};

/// Failed attempts in a row with the same reason.
struct KeeperAttempts
{
    qint64 first = 0;
    qint64 last = 0;
    quint32 count = 1;
    QString reason;
};

/// Traffic of a calendar day or of a billing month, both days included.
struct KeeperTraffic
{
    QDate begin;
    QDate end;
    quint64 received = 0;
    quint64 sent = 0;

    quint64 total() const { return received + sent; }
};

/// The line at a time, or on average over the span that begins then.
struct LineSample
{
    qint64 time = 0;
    qint64 span = 60; ///< seconds
    std::optional<double> carrier; ///< share of the time, 0 to 1
    std::optional<double> downRate; ///< kbit/s
    std::optional<double> upRate;
    std::optional<double> downMargin; ///< dB
    std::optional<double> upMargin;
    std::optional<double> downAttenuation; ///< dB
    std::optional<double> upAttenuation;
    std::optional<double> downErrors; ///< since the line came up, that could not be corrected
    std::optional<double> upErrors;
};

struct KeeperPlan
{
    quint64 limit = 0; ///< of a billing month; 0 for none
    int billingDay = 1; ///< 1 to 31
};

/// The value of a reply "a{sv}" or "aa{sv}" as Qt hands it over; nothing when it is something else.
std::optional<QVariantMap> busMap(const QVariant &value);
std::optional<QList<QVariantMap>> busRows(const QVariant &value);

/// The state by all properties; nothing when State, Wanted or Keep is missing: that is no keeper.
std::optional<KeeperState> keeperState(const QVariantMap &properties);
/// The state with the properties that have changed (the signal PropertiesChanged).
KeeperState withChanges(KeeperState state, const QVariantMap &changed);

// The answers of the methods, in their order. An entry without what makes it one is left out.
QList<KeeperSession> keeperSessions(const QList<QVariantMap> &rows);
QList<KeeperAttempts> keeperAttempts(const QList<QVariantMap> &rows);
QList<KeeperTraffic> keeperDays(const QList<QVariantMap> &rows);
QList<KeeperTraffic> keeperMonths(const QList<QVariantMap> &rows);
QList<LineSample> lineSamples(const QList<QVariantMap> &rows);
/// Nothing without a limit and a billing day.
std::optional<KeeperPlan> keeperPlan(const QVariantMap &map);

/// The property State in the user's language; an unknown word as it is.
QString keeperPhaseText(const QString &phase);

/// A reason as a sentence in the user's language, with what a person can do about it. Empty for an
/// empty word; an unknown one is told as it is.
Fact keeperReasonFact(const QString &reason);

/// What is the matter with the history, in the user's language; empty when it is fine.
QString keeperHistoryText(const QString &history);

/// Whether the session at @p place of @p sessions, newest first, was ended by the far end once
/// more after a day: some providers end every connection then, and nothing is wrong.
bool isDailyHangUp(const QList<KeeperSession> &sessions, int place);
