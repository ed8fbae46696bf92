// SPDX-License-Identifier: MIT
// The administrative state of a network interface.
#pragma once

#include <optional>

/// Whether the interface @p name is administratively up; empty when there is no such interface. The
/// network library tells the operational state instead, which is down for an interface that has no
/// carrier yet, as a bridge on a line before its first cell.
std::optional<bool> isInterfaceUp(const char *name);
