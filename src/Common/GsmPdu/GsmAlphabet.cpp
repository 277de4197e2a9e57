#include "Common/GsmPdu/GsmAlphabet.h"

#include <array>

namespace {

// GSM code to Latin-1; codes without a Latin-1 character (Greek capitals and the escape) are "?".
constexpr std::array<std::uint8_t, 128> kToChar = {
    0x40, 0xA3, 0x24, 0xA5, 0xE8, 0xE9, 0xF9, 0xEC, 0xF2, 0xC7, 0x0A, 0xD8, 0xF8, 0x0D, 0xC5, 0xE5,  //
    0x3F, 0x5F, 0x3F, 0x3F, 0x3F, 0x3F, 0x3F, 0x3F, 0x3F, 0x3F, 0x3F, 0x3F, 0xC6, 0xE6, 0xDF, 0xC9,  //
    0x20, 0x21, 0x22, 0x23, 0xA4, 0x25, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x2B, 0x2C, 0x2D, 0x2E, 0x2F,  //
    0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x3B, 0x3C, 0x3D, 0x3E, 0x3F,  //
    0xA1, 0x41, 0x42, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x4B, 0x4C, 0x4D, 0x4E, 0x4F,  //
    0x50, 0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5A, 0xC4, 0xD6, 0xD1, 0xDC, 0xA7,  //
    0xBF, 0x61, 0x62, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6A, 0x6B, 0x6C, 0x6D, 0x6E, 0x6F,  //
    0x70, 0x71, 0x72, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7A, 0xE4, 0xF6, 0xF1, 0xFC, 0xE0,
};

constexpr auto kToGsm = [] {
    std::array<std::uint8_t, 256> table{};
    table.fill(CGsmAlphabet::kNoMapping);
    for (std::size_t code = kToChar.size(); code-- > 0;)
        table[kToChar[code]] = static_cast<std::uint8_t>(code);
    table['?'] = 0x3F;  // not 0x10, the first of the codes that read back as "?"
    return table;
}();

struct Pair {
    char16_t character;
    std::uint8_t code;
};

constexpr auto kEscaped = std::to_array<Pair>({
    {u'[', 0x3C},
    {u'\\', 0x2F},
    {u']', 0x3E},
    {u'^', 0x14},
    {u'{', 0x28},
    {u'|', 0x40},
    {u'}', 0x29},
    {u'~', 0x3D},
    {u'\u20AC', 0x65},
});

constexpr auto kGreek = std::to_array<Pair>({
    {u'\u0394', 0x10},
    {u'\u03A6', 0x12},
    {u'\u0393', 0x13},
    {u'\u039B', 0x14},
    {u'\u03A9', 0x15},
    {u'\u03A0', 0x16},
    {u'\u03A8', 0x17},
    {u'\u03A3', 0x18},
    {u'\u0398', 0x19},
    {u'\u039E', 0x1A},
});

constexpr char16_t kLineFeed = 0x0A;
constexpr std::uint8_t kEuroOctet = 0x80;  // the euro sign in the Windows Western code page
constexpr char16_t kSmallPi = 0x03C0;      // folded onto the capital
constexpr std::uint8_t kCapitalPi = 0x16;

// For each character up to 0xFF: the code, or kEscapedFlag and the code that follows an escape, or kDropped.
constexpr std::uint16_t kEscapedFlag = 0x100;
constexpr std::uint16_t kDropped = 0x200;
constexpr auto kEncode = [] {
    std::array<std::uint16_t, 256> table{};
    for (std::size_t c = 0; c < table.size(); ++c) {
        table[c] = kToGsm[c] == CGsmAlphabet::kNoMapping ? kDropped : kToGsm[c];
    }
    for (const Pair& pair : kEscaped) {
        if (pair.character < table.size()) table[pair.character] = kEscapedFlag | pair.code;
    }
    table[kEuroOctet] = kEscapedFlag | 0x65;
    return table;
}();

constexpr auto kDecode = [] {
    std::array<char16_t, 128> table{};
    for (std::size_t code = 0; code < table.size(); ++code) table[code] = kToChar[code];
    for (const Pair& pair : kGreek) table[pair.code] = pair.character;
    return table;
}();

// 0 for a code that is dropped together with its escape.
constexpr auto kDecodeEscaped = [] {
    std::array<char16_t, 128> table{};
    for (const Pair& pair : kEscaped) table[pair.code] = pair.character;
    table[0x0A] = kLineFeed;
    return table;
}();

std::uint16_t EncodeWide(char16_t c) {
    for (const Pair& pair : kGreek) {
        if (pair.character == c) return pair.code;
    }
    if (c == kSmallPi) return kCapitalPi;
    return c == kEscaped.back().character ? kEscapedFlag | kEscaped.back().code : kDropped;
}

}  // namespace

std::size_t CGsmAlphabet::Encode(std::u16string_view text, std::uint8_t* codes) {
    std::uint8_t* out = codes;
    for (const char16_t c : text) {
        const std::uint16_t entry = c < kEncode.size() ? kEncode[c] : EncodeWide(c);
        if (entry < kEscapedFlag) {
            *out++ = static_cast<std::uint8_t>(entry);
        } else if (entry < kDropped) {
            *out++ = kEscape;
            *out++ = static_cast<std::uint8_t>(entry);
        }
    }
    return static_cast<std::size_t>(out - codes);
}

std::size_t CGsmAlphabet::Decode(std::span<const std::uint8_t> codes, char16_t* text) {
    char16_t* out = text;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        std::uint8_t code = codes[i] & 0x7F;
        if (code != kEscape) {
            *out++ = kDecode[code];
            continue;
        }
        while (code == kEscape && ++i < codes.size()) code = codes[i] & 0x7F;
        if (kDecodeEscaped[code] != 0) *out++ = kDecodeEscaped[code];
    }
    return static_cast<std::size_t>(out - text);
}

std::uint8_t CGsmAlphabet::GsmToChar(std::uint8_t code) { return kToChar[code & 0x7F]; }
std::uint8_t CGsmAlphabet::CharToGsm(std::uint8_t character) { return kToGsm[character]; }
