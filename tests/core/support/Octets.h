// Octets as the rows of tests write and show them: hexadecimal with blanks between, texts in single quotes.
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

using Octets = std::vector<std::uint8_t>;

inline std::string HexOf(std::span<const std::uint8_t> octets) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t octet : octets) {
        text += kDigits[octet >> 4];
        text += kDigits[octet & 15];
    }
    return text;
}
inline std::string HexOf(std::string_view octets) {
    return HexOf(std::span(reinterpret_cast<const std::uint8_t*>(octets.data()), octets.size()));
}

inline std::string OctetText(std::string_view pattern) {
    std::string octets;
    bool quoted = false;
    int high = -1;
    for (const char c : pattern) {
        if (c == '\'') {
            quoted = !quoted;
        } else if (quoted) {
            octets += c;
        } else if (c != ' ') {
            const int digit = c <= '9' ? c - '0' : (c & 0x5F) - 'A' + 10;
            if (high >= 0) octets += static_cast<char>(high << 4 | digit);
            high = high >= 0 ? -1 : digit;
        }
    }
    return octets;
}
inline Octets FromHex(std::string_view pattern) {
    const std::string octets = OctetText(pattern);
    return {octets.begin(), octets.end()};
}
