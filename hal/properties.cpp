// SPDX-License-Identifier: MIT
#include "hal/properties.h"

#include "hal/udi.h"

#include <algorithm>
#include <sys/utsname.h>

namespace hal {

namespace {

template <typename Entries> auto position(Entries &entries, std::string_view key)
{
    return std::lower_bound(entries.begin(), entries.end(), key,
        [](const Properties::Entry &entry, std::string_view wanted) {
            return entry.first < wanted;
        });
}

} // namespace

const Value *Properties::find(std::string_view key) const
{
    const auto place = position(m_entries, key);
    return place != m_entries.end() && place->first == key ? &place->second : nullptr;
}

void Properties::set(std::string_view key, Value value)
{
    const auto place = position(m_entries, key);
    if (place != m_entries.end() && place->first == key) {
        place->second = std::move(value);
    } else {
        m_entries.emplace(place, key, std::move(value));
    }
}

bool Properties::remove(std::string_view key)
{
    const auto place = position(m_entries, key);
    if (place == m_entries.end() || place->first != key) {
        return false;
    }
    m_entries.erase(place);
    return true;
}

int typeCode(const Value &value)
{
    struct Codes
    {
        int operator()(std::int32_t) const { return 'i'; }
        int operator()(std::uint64_t) const { return 't'; }
        int operator()(double) const { return 'd'; }
        int operator()(bool) const { return 'b'; }
        int operator()(const std::string &) const { return 's'; }
        int operator()(const std::vector<std::string> &) const { return 's' * 256 + 'l'; }
    };
    return std::visit(Codes(), value);
}

bool hasText(const Properties &properties, std::string_view key, std::string_view text)
{
    const Value *const value = properties.find(key);
    const auto *const found = value ? std::get_if<std::string>(value) : nullptr;
    return found && *found == text;
}

bool hasCapability(const Properties &properties, std::string_view capability)
{
    const Value *const value = properties.find("info.capabilities");
    const auto *const list = value ? std::get_if<std::vector<std::string>>(value) : nullptr;
    return list && std::find(list->begin(), list->end(), capability) != list->end();
}

Properties computerProperties()
{
    Properties properties;
    properties.setText("info.udi", computerUdi);
    properties.setText("info.subsystem", "unknown");
    properties.setText("info.product", "Computer");
    properties.setText("linux.subsystem", "unknown");
    properties.set("linux.hotplug_type", 0);
    struct utsname system = {};
    if (uname(&system) == 0) {
        properties.setText("system.kernel.name", system.sysname);
        properties.setText("system.kernel.version", system.release);
        properties.setText("system.kernel.machine", system.machine);
    }
    return properties;
}

} // namespace hal
