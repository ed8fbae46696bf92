// SPDX-License-Identifier: MIT
// Which logins and passwords can be stored without harm.
#pragma once

#include <QString>

/// Why the login can not be stored, in the user's language; empty when it can. A login is not
/// repeated in it.
QString loginObjection(const QString &login);

/// The same for a password.
QString passwordObjection(const QString &password);

/// Why login and password, each of which could be stored, can not be stored together.
QString accountObjection(const QString &login, const QString &password);
