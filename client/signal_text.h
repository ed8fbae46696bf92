// SPDX-License-Identifier: MIT
// Each signal of the daemon as one sentence, and as an object.
#pragma once

#include <QJsonObject>
#include <QString>
#include <QVariantList>

/// One readable line for a signal; an unknown one is shown with its name and values.
QString signalText(const QString &signal, const QVariantList &arguments);

/// The arguments by the names of the interface description ({"rx": 1, "tx": 2}).
QJsonObject signalArguments(const QString &signal, const QVariantList &arguments);

/// Stands for a connection state that nobody has told; never on the bus.
constexpr int connectionUnknown = -1;

/// A connection state of the bus as its word in machine-readable output.
QString connectionWord(int state);

/// A connection state of the bus in the user's language.
QString connectionText(int state);
