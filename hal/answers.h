// SPDX-License-Identifier: MIT
// What a method call on the bus is answered, apart from how messages are read and written.
#pragma once

#include "hal/device_table.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace hal {

inline constexpr std::string_view managerInterface = "org.freedesktop.Hal.Manager";
inline constexpr std::string_view deviceInterface = "org.freedesktop.Hal.Device";

/// A method call. All views are borrowed from the message.
struct Call
{
    std::string_view path;
    std::string_view interface; ///< empty when the caller named none
    std::string_view member;
    std::vector<std::string_view> texts; ///< the leading string arguments; more is never looked at
};

struct Failure
{
    std::string name; ///< the D-Bus error name
    std::string text;
};

/// The UDIs of some objects, in the table's order.
using ObjectList = std::vector<const HalObject *>;

/// Somebody else's to answer: interfaces that the bus library itself offers.
struct NotOurs
{
};

/// The answer: a truth, number or text; the value of a property; a list of objects; all properties
/// of one object; or an error. Pointers are valid until the table changes.
using Answer = std::variant<bool, std::int32_t, std::string, const Value *, ObjectList,
    const Properties *, Failure, NotOurs>;

/// Answers @p call. Missing or wrongly typed arguments and everything that is not offered give an
/// error, never silence.
Answer answer(const DeviceTable &devices, const Call &call);

} // namespace hal
