// SPDX-License-Identifier: MIT
// The address of a network interface.
#pragma once

#include <QString>
#include <optional>

/// The text of the first address of the network interface @p name, its own one on a point-to-point
/// link, an IPv4 before an IPv6 address, whatever their labels; an empty text when it has none. No
/// value when there is no such interface. Any thread.
///
/// Asks the kernel. The network library of the toolkit gives the same answer, but brings an
/// authentication library and more along: 160 kB of memory for this one question.
std::optional<QString> firstAddressOf(const QString &name);
