#include "foundation/Utf8.h"

#include <cstdint>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHigh(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLow(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

struct Sequence {
    std::size_t length = 0;  // 0 for what is no sequence
    char32_t character = 0;
};

// The sequence at the start of octets that are not empty.
Sequence First(std::string_view octets) {
    const auto lead = static_cast<std::uint8_t>(octets[0]);
    if (lead < 0x80) return {1, lead};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || octets.size() < length) return {};
    char32_t character = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto octet = static_cast<std::uint8_t>(octets[i]);
        if ((octet & 0xC0U) != 0x80) return {};
        character = character << 6 | (octet & 0x3FU);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = character >= 0xD800 && character < 0xE000;
    if (character < kSmallest[length] || character > 0x10FFFF || surrogate) return {};
    return {length, character};
}

}  // namespace

void AppendUtf8(std::string& out, char32_t character) {
    const auto octet = [&out](char32_t value) { out.push_back(static_cast<char>(value)); };
    if (character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) character = kReplacement;
    if (character < 0x80) return octet(character);
    const int more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    octet((0xFFU << (7 - more) & 0xFFU) | character >> (6 * more));
    for (int shift = 6 * (more - 1); shift >= 0; shift -= 6) octet(0x80U | (character >> shift & 0x3FU));
}

std::string ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (IsHigh(unit) && i + 1 < text.size() && IsLow(text[i + 1])) {
            AppendUtf8(out, 0x10000U + ((unit & 0x3FFU) << 10 | (text[++i] & 0x3FFU)));
        } else {
            AppendUtf8(out, unit);
        }
    }
    return out;
}

std::u16string FromUtf8(std::string_view octets) {
    std::u16string out;
    out.reserve(octets.size());
    while (!octets.empty()) {
        const Sequence next = First(octets);
        const char32_t character = next.length == 0 ? kReplacement : next.character;
        if (character < 0x10000) {
            out.push_back(static_cast<char16_t>(character));
        } else {
            out.push_back(static_cast<char16_t>(0xD7C0 + (character >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 | (character & 0x3FF)));
        }
        octets.remove_prefix(next.length == 0 ? 1 : next.length);
    }
    return out;
}

bool IsUtf8(std::string_view octets) {
    while (!octets.empty()) {
        const std::size_t length = First(octets).length;
        if (length == 0) return false;
        octets.remove_prefix(length);
    }
    return true;
}
