// Hexadecimal text, two characters an octet.
#pragma once
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

// The value of a character; 0 for one that is not hexadecimal.
inline constexpr auto kValues = [] {
    std::array<std::uint8_t, 256> values{};
    for (std::uint8_t i = 0; i < 10; ++i) values['0' + i] = i;
    for (std::uint8_t i = 0; i < 6; ++i) {
        values['A' + i] = static_cast<std::uint8_t>(10 + i);
        values['a' + i] = static_cast<std::uint8_t>(10 + i);
    }
    return values;
}();

constexpr std::uint8_t Value(char c) { return kValues[static_cast<unsigned char>(c)]; }
constexpr std::uint8_t Value(char16_t c) { return c < 256 ? kValues[c] : std::uint8_t{0}; }

inline void Append(std::string& text, std::uint8_t octet) { text.append(kPairs[octet].data(), 2); }

}  // namespace hex
