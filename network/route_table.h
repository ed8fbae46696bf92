// SPDX-License-Identifier: MIT
// Reading the kernel's IPv4 routing table.
#pragma once

#include <QString>

/// The interface of the last route in @p routeTable (the text of /proc/net/route) whose name holds
/// three or four lower-case letters followed by a digit, wherever that route leads. Empty when
/// there is none.
QString interfaceOfLastRoute(const QString &routeTable);
