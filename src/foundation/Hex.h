// Hexadecimal text, two characters an octet.
#pragma once
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace hex {

inline constexpr std::string_view kDigits = "0123456789ABCDEF";

// Both upper-case characters of every octet value.
inline constexpr auto kPairs = [] {
    std::array<std::array<char, 2>, 256> pairs{};
    for (std::size_t i = 0; i < 256; ++i) pairs[i] = {kDigits[i >> 4], kDigits[i & 15]};
    return pairs;
}();

// The value of a character; 0 for one that is not hexadecimal. Without branches, so that loops over it run
// wide.
constexpr std::uint8_t Value(char c) {
    const auto digit = static_cast<std::uint8_t>(c - '0');
    const auto letter = static_cast<std::uint8_t>((c | 0x20) - 'a');
    return static_cast<std::uint8_t>((digit < 10 ? digit : 0) | (letter < 6 ? letter + 10 : 0));
}
constexpr std::uint8_t Value(char16_t c) { return c < 256 ? Value(static_cast<char>(c)) : std::uint8_t{0}; }

// Whether a text is hexadecimal throughout, two characters an octet.
template <class Character>
bool IsText(std::basic_string_view<Character> text) {
    const auto isDigit = [](Character c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
    };
    return text.size() % 2 == 0 && std::ranges::all_of(text, isDigit);
}

inline void Append(std::string& text, std::uint8_t octet) { text.append(kPairs[octet].data(), 2); }

// Eight digits.
inline void AppendNumber(std::string& text, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) Append(text, static_cast<std::uint8_t>(number >> shift));
}

inline std::string Of(std::string_view octets) {
    std::string text(2 * octets.size(), '\0');
    for (std::size_t i = 0; i < octets.size(); ++i) {
        const auto& pair = kPairs[static_cast<std::uint8_t>(octets[i])];
        text[2 * i] = pair[0];
        text[2 * i + 1] = pair[1];
    }
    return text;
}

// The octets that hexadecimal text stands for, written to `octets`, which has room for half its length; an
// odd last character is left out. Returns their number.
template <class Character>
std::size_t Read(std::basic_string_view<Character> text, std::uint8_t* __restrict octets) {
    const std::size_t count = text.size() / 2;
    const Character* __restrict in = text.data();
    for (std::size_t i = 0; i < count; ++i) {
        octets[i] = static_cast<std::uint8_t>(Value(in[2 * i]) << 4 | Value(in[2 * i + 1]));
    }
    return count;
}

template <class Character>
std::string OctetsOf(std::basic_string_view<Character> text) {
    std::string octets(text.size() / 2, '\0');
    Read(text, reinterpret_cast<std::uint8_t*>(octets.data()));
    return octets;
}

}  // namespace hex
