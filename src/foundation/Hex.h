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

template <class Character>
constexpr bool IsDigit(Character c) {
    return Value(c) != 0 || c == '0';
}

// Whether the text is hexadecimal through and through, two characters an octet.
template <class Character>
bool IsHex(std::basic_string_view<Character> text) {
    return text.size() % 2 == 0 && std::ranges::all_of(text, IsDigit<Character>);
}

inline void Append(std::string& text, std::uint8_t octet) { text.append(kPairs[octet].data(), 2); }

// Eight digits.
inline void AppendNumber(std::string& text, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) Append(text, static_cast<std::uint8_t>(number >> shift));
}

// The upper-case character of a value below 16. Without a table, so that loops over it run wide.
constexpr char Digit(std::uint8_t value) {
    return static_cast<char>(value + '0' + (value > 9 ? 'A' - '0' - 10 : 0));
}

// Calls `convert(from, size)` for pieces of the octets 0 to `count`. The pieces are whole blocks as loops run
// wide over them, the last one overlapping the one before it; only fewer octets than a block are a piece of
// their own.
template <class Convert>
void InPieces(std::size_t count, Convert convert) {
    constexpr std::size_t kBlock = 16;
    std::size_t from = 0;
    std::size_t size = count < kBlock ? count : count - count % kBlock;
    for (;;) {  // one call, so that it becomes one loop
        convert(from, size);
        if (from + size == count) return;
        from = count - kBlock;
        size = kBlock;
    }
}

// Writes both characters of each octet to `text`, which has room for them. Of characters wider than an octet
// the low one counts.
template <class Character>
void WriteLow(std::basic_string_view<Character> octets, char* text) {
    InPieces(octets.size(), [&](std::size_t from, std::size_t size) {
        const Character* __restrict in = octets.data() + from;
        char* __restrict out = text + 2 * from;
        for (std::size_t i = 0; i < size; ++i) {
            const auto octet = static_cast<std::uint8_t>(in[i]);
            out[2 * i] = Digit(octet >> 4);
            out[2 * i + 1] = Digit(octet & 15);
        }
    });
}
inline void Write(std::string_view octets, char* text) { WriteLow(octets, text); }

inline std::string Of(std::string_view octets) {
    std::string text(2 * octets.size(), '\0');
    Write(octets, text.data());
    return text;
}

// The octets that hexadecimal text stands for, written to `octets`, which has room for half its length; an
// odd last character is left out. Returns their number.
template <class Character>
std::size_t Read(std::basic_string_view<Character> text, std::uint8_t* octets) {
    InPieces(text.size() / 2, [&](std::size_t from, std::size_t size) {
        const Character* __restrict in = text.data() + 2 * from;
        std::uint8_t* __restrict out = octets + from;
        for (std::size_t i = 0; i < size; ++i) {
            out[i] = static_cast<std::uint8_t>(Value(in[2 * i]) << 4 | Value(in[2 * i + 1]));
        }
    });
    return text.size() / 2;
}

template <class Character>
std::string OctetsOf(std::basic_string_view<Character> text) {
    std::string octets(text.size() / 2, '\0');
    Read(text, reinterpret_cast<std::uint8_t*>(octets.data()));
    return octets;
}

}  // namespace hex
