// SPDX-License-Identifier: MIT
// Which logins and passwords can be stored without harm.
#pragma once

#include <QString>

/// Why @p value can not be stored, in the user's language, beginning with @p name ("The login");
/// empty when it can. The value itself is not repeated: it may be a password.
QString accountObjection(const QString &name, const QString &value);
