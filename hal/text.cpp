// SPDX-License-Identifier: MIT
#include "hal/text.h"

#include <charconv>
#include <limits>

namespace hal {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n\v\f";

bool isContinuation(unsigned char byte)
{
    return (byte & 0xc0) == 0x80;
}

/// How many bytes of @p text form its first character; 0 when they form none.
size_t characterLength(std::string_view text)
{
    const auto byte = [&text](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) {
        return lead == 0 ? 0 : 1;
    }
    const size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || text.size() < length) {
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        if (!isContinuation(byte(i))) {
            return 0;
        }
    }
    const bool overlong = (lead == 0xe0 && byte(1) < 0xa0) || (lead == 0xf0 && byte(1) < 0x90);
    const bool surrogate = lead == 0xed && byte(1) >= 0xa0;
    const bool tooLarge = lead == 0xf4 && byte(1) >= 0x90;
    return overlong || surrogate || tooLarge ? 0 : length;
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

std::optional<int> parseHex(std::string_view text)
{
    unsigned number = 0; // unsigned: a sign is then no number
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, 16);
    if (error != std::errc() || stop != end || text.size() > 4) {
        return std::nullopt;
    }
    return static_cast<int>(number);
}

std::optional<int> parseDecimal(std::string_view text)
{
    text = trimmed(text);
    unsigned number = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, 10);
    if (error != std::errc() || stop != end || number > unsigned(std::numeric_limits<int>::max())) {
        return std::nullopt;
    }
    return static_cast<int>(number);
}

std::optional<double> parseDouble(std::string_view text)
{
    text = trimmed(text);
    double number = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    const bool onlyDigits = text.find_first_not_of("0123456789.") == std::string_view::npos;
    if (error != std::errc() || stop != end || !onlyDigits) {
        return std::nullopt;
    }
    return number;
}

namespace {

/// @p text with '?' for every byte that is part of no character and for every character that
/// @p isHidden says.
template <typename Predicate> std::string replaced(std::string_view text, Predicate isHidden)
{
    std::string valid;
    valid.reserve(text.size());
    while (!text.empty()) {
        const size_t length = characterLength(text);
        const bool isShown = length != 0 && !isHidden(text.substr(0, length));
        valid.append(isShown ? text.substr(0, length) : std::string_view("?"));
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return valid;
}

bool isSteering(std::string_view character)
{
    if (character.size() == 1) {
        return static_cast<unsigned char>(character[0]) < 0x20 || character[0] == 0x7f;
    }
    const auto isFromTo = [character](const char *first, const char *last) {
        return character >= first && character <= last;
    };
    return isFromTo("\xc2\x80", "\xc2\x9f") // controls of the upper half
        || character == "\xd8\x9c" // marks of a direction
        || isFromTo("\xe2\x80\x8e", "\xe2\x80\x8f")
        || isFromTo("\xe2\x80\xa8", "\xe2\x80\xae") // separators, embeddings, overrides
        || isFromTo("\xe2\x81\xa6", "\xe2\x81\xa9"); // isolates
}

} // namespace

std::string validUtf8(std::string_view text)
{
    return replaced(text, [](std::string_view) { return false; });
}

std::string visibleText(std::string_view text)
{
    return replaced(text, isSteering);
}

} // namespace hal
