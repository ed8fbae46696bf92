// SPDX-License-Identifier: MIT
// Which settings clients may see and set, and which values are good. Pure.
#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

/// The values to store, as the settings file holds them, or the reason why none may be stored.
struct CheckedSettings
{
    QVariantMap values;
    QString refusal; ///< in words, with the key; empty when the values are good
};

/// Checks the settings @p asked, as they come over the bus. Unknown keys, keys that belong to the
/// daemon (the modem's identity) or to root, wrong types and values out of range are refused; one
/// bad value refuses all.
CheckedSettings checkedSettings(const QVariantMap &asked);

/// The settings as clients see them: each known key of @p stored with the type that it has on the
/// bus; what is missing or unreadable in @p stored is left out.
QVariantMap settingsForClients(const QVariantMap &stored);

/// The keys that settingsForClients() knows.
QStringList settingsKeys();

/// Why @p arguments must not become arguments of pppd; empty when they may. Each must be one word
/// or text without control characters.
QString refusalOfArguments(const QStringList &arguments);
