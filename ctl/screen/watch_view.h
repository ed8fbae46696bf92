// SPDX-License-Identifier: MIT
// The live view as a value: signals go in, lines of text come out.
#pragma once

#include "client/signal_text.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <optional>

struct WatchState
{
    bool isDaemonThere = false;
    int connection = connectionUnknown; ///< as on the bus
    QString interface;
    QString address;
    QString route;
    QString event; ///< the newest signal that is no figure, in words
    std::optional<qint64> seconds; ///< connected for so long
    std::optional<double> receiveRate; ///< bytes per second
    std::optional<double> sendRate;
    std::optional<double> received; ///< bytes
    std::optional<double> sent;
    double receiveErrors = 0;
    double sendErrors = 0;
    QList<double> receiveHistory; ///< bytes per second, oldest first
    QList<double> sendHistory;
};

/// Takes a signal of the daemon into the state. True when the signal closes a second's figures
/// (the totals), which is when a plain view prints its next line.
bool takeSignal(WatchState &state, const QString &signal, const QVariantList &arguments);

/// Forgets what belongs to a connection that is no more.
void forgetConnection(WatchState &state);

/// A graph of the newest @p width values, @p rows lines high, the largest value filling it. Without
/// @p hasGlyphs it is drawn in ASCII.
QStringList rateGraph(const QList<double> &values, int width, int rows, bool hasGlyphs);

/// The whole screen, at most @p width columns and @p height rows.
QStringList watchScreen(const WatchState &state, int width, int height, bool hasGlyphs);

/// The state as one line, for files and pipes.
QString watchLine(const WatchState &state);

/// The state for machines.
QJsonObject watchObject(const WatchState &state);
