// SPDX-License-Identifier: MIT
// Texts that a person may show to others.
#pragma once

#include <QString>
#include <QStringList>

/// @p text without what logs and settings say of the account, and without each of @p secrets where
/// it stands as a word of its own.
QString withoutAccount(QString text, const QStringList &secrets);
