// SPDX-License-Identifier: MIT
// Which logins and passwords can be stored without harm.
#pragma once

#include "client/failure.h"

#include <QString>

/// Why the login can not be stored; none when it can. A login is not repeated in it.
Failure loginObjection(const QString &login);

/// The same for a password.
Failure passwordObjection(const QString &password);

/// Why login and password, each of which could be stored, can not be stored together.
Failure accountObjection(const QString &login, const QString &password);

/// What is to be said while somebody types: of a field that is still empty, nothing.
struct TypedAccount
{
    QString loginObjection;
    QString passwordObjection; ///< or of both together
    bool canBeStored = false;
};

TypedAccount typedAccount(const QString &login, const QString &password);
