// SPDX-License-Identifier: MIT
// Small readings of foreign text: numbers as the kernel prints them, bytes that should be UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hal {

/// @p text without white space at both ends.
std::string_view trimmed(std::string_view text);

/// The hexadecimal number of one to four digits that is the whole of @p text ("1110", "1").
/// Empty for everything else, a prefix "0x" and signs included.
std::optional<int> parseHex(std::string_view text);

/// The decimal number from 0 to 2^31-1 that is the whole of @p text; white space around it is
/// allowed, the kernel pads some of them.
std::optional<int> parseDecimal(std::string_view text);

/// A number such as "1.5" or "2.00" (digits, at most one point), white space around it allowed.
std::optional<double> parseDouble(std::string_view text);

/// @p text with every byte that is not part of valid UTF-8, and every NUL byte, replaced by '?':
/// the bus refuses messages with anything else, and a device may call itself what it likes.
std::string validUtf8(std::string_view text);

/// @p text as it may be shown on a terminal: valid UTF-8 in which controls, those of the upper half
/// too, and what changes the direction of text are replaced by '?'.
std::string visibleText(std::string_view text);

} // namespace hal
