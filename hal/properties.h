// SPDX-License-Identifier: MIT
// Values and properties of a HAL object.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace hal {

/// HAL's six types, in the order of its documents.
using Value = std::variant<std::int32_t, std::uint64_t, double, bool, std::string,
    std::vector<std::string>>;

/// The properties of one object, ordered by key. Keys are kept by reference: they must live as long
/// as the process, as the literals do that name them.
class Properties
{
public:
    using Entry = std::pair<std::string_view, Value>;

    /// The value of @p key, or nullptr.
    const Value *find(std::string_view key) const;

    /// Adds or replaces. Separate forms for text, because a literal would silently become a bool.
    void set(std::string_view key, Value value);
    void setText(std::string_view key, std::string_view text) { set(key, std::string(text)); }

    /// Takes @p key out; whether it was there.
    bool remove(std::string_view key);

    bool isEmpty() const { return m_entries.empty(); }
    std::vector<Entry>::const_iterator begin() const { return m_entries.begin(); }
    std::vector<Entry>::const_iterator end() const { return m_entries.end(); }

private:
    std::vector<Entry> m_entries;
};

/// The number by which GetPropertyType names the type of @p value: the D-Bus type code. A list of
/// strings has no single code; HAL's clients know it as 's' * 256 + 'l'.
int typeCode(const Value &value);

/// Whether the property @p key of @p properties is the text @p text.
bool hasText(const Properties &properties, std::string_view key, std::string_view text);

/// Whether @p capability is among the object's capabilities.
bool hasCapability(const Properties &properties, std::string_view capability);

/// What is known of the computer itself.
Properties computerProperties();

} // namespace hal
