// SPDX-License-Identifier: MIT
// The facts below the headline: what is true now, each in a few words.
#pragma once

#include "desktop/model/connection_model.h"

#include <QVector>

namespace desktop {

/// What system and keeper tell besides the model; what nobody has told is missing.
struct Surroundings
{
    std::optional<QString> routeInterface; ///< of the default route; empty for none
    QStringList nameServers;
    std::optional<bool> isNameAnswered; ///< one of them answers
    QString login; ///< of the account; empty when it is not known
    std::optional<KeeperTraffic> today;
    std::optional<KeeperTraffic> month;
    KeeperPlan plan;
    std::optional<KeeperSession> lastSession;
};

struct ShownFact
{
    QString label;
    QString value;
};

/// In the order in which they are read; @p now is milliseconds since 1970.
QVector<ShownFact> connectionFacts(
    const ConnectionModel &model, const Surroundings &surroundings, qint64 now);

/// A noise margin in a word: below 6 dB a line drops, from 10 dB on it has some to spare.
QString marginWord(double decibels);

/// Traffic against a limit: "31.4 GB of 60.0 GB", or the traffic alone without one.
QString trafficText(quint64 bytes, quint64 limit);

/// A past time as people say it: "today, 17:48", "yesterday, 9:05", "19 Nov, 21:40".
QString momentText(qint64 seconds, qint64 now);

} // namespace desktop
