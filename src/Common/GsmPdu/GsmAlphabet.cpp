#include "Common/GsmPdu/GsmAlphabet.h"

#include <array>
#include <cstring>

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

constexpr char16_t kEuro = 0x20AC;
constexpr std::uint8_t kEuroCode = 0x65;  // behind an escape

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
    {kEuro, kEuroCode},
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

// What is written for a character: the low octets hold the codes, an escape first, and the third their
// number.
using Written = std::uint32_t;
constexpr Written One(std::uint8_t code) { return 0x10000U | code; }
constexpr Written Escaped(std::uint8_t code) {
    return 0x20000U | static_cast<Written>(code) << 8 | CGsmAlphabet::kEscape;
}
constexpr std::size_t CountOf(Written written) { return written >> 16; }

// All characters that have codes but the euro sign lie below.
constexpr char16_t kEncodeEnd = 0x0400;
constexpr auto kEncode = [] {
    std::array<Written, kEncodeEnd> table{};
    for (std::size_t c = 0; c < kToGsm.size(); ++c) {
        if (kToGsm[c] != CGsmAlphabet::kNoMapping) table[c] = One(kToGsm[c]);
    }
    for (const Pair& pair : kGreek) table[pair.character] = One(pair.code);
    table[kSmallPi] = One(kCapitalPi);
    for (const Pair& pair : kEscaped) {
        if (pair.character < table.size()) table[pair.character] = Escaped(pair.code);
    }
    table[kEuroOctet] = Escaped(kEuroCode);
    return table;
}();

// The code of a character that takes one; otherwise an octet that is no code.
constexpr auto kEncodeOne = [] {
    std::array<std::uint8_t, kEncodeEnd> table{};
    for (std::size_t c = 0; c < table.size(); ++c) {
        table[c] =
            CountOf(kEncode[c]) == 1 ? static_cast<std::uint8_t>(kEncode[c]) : CGsmAlphabet::kNoMapping;
    }
    return table;
}();

constexpr Written WrittenFor(char16_t c) {
    if (c < kEncodeEnd) return kEncode[c];
    return c == kEuro ? Escaped(kEuroCode) : 0;
}

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

constexpr std::size_t kAtOnce = 8;

// Writes the codes of eight characters; false when one of them has not exactly one code.
bool EncodeEight(const char16_t* text, std::uint8_t* codes) {
    std::array<std::uint64_t, 2> characters;
    std::memcpy(characters.data(), text, sizeof characters);
    constexpr std::uint64_t kBeyond = 0x0001000100010001U * (0x10000 - kEncodeEnd);
    if (((characters[0] | characters[1]) & kBeyond) != 0) return false;
    std::uint64_t eight = 0;
    for (std::size_t i = kAtOnce; i-- > 0;) eight = eight << 8 | kEncodeOne[text[i]];
    std::memcpy(codes, &eight, sizeof eight);
    return (eight & 0x8080808080808080U) == 0;
}

// Every character writes two octets and moves on by as many as it has, so that nothing is decided on the way.
std::uint8_t* EncodeEach(std::u16string_view text, std::uint8_t* codes) {
    for (const char16_t c : text) {
        const Written written = WrittenFor(c);
        codes[0] = static_cast<std::uint8_t>(written);
        codes[1] = static_cast<std::uint8_t>(written >> 8);
        codes += CountOf(written);
    }
    return codes;
}

// Whether one of eight codes is an escape: the octet that becomes zero borrows its highest bit.
constexpr bool HasEscape(std::uint64_t codes) {
    const std::uint64_t zeros = codes ^ 0x0101010101010101U * CGsmAlphabet::kEscape;
    return ((zeros - 0x0101010101010101U) & ~zeros & 0x8080808080808080U) != 0;
}

}  // namespace

std::size_t CGsmAlphabet::Encode(std::u16string_view text, std::uint8_t* codes) {
    std::uint8_t* out = codes;
    for (; text.size() >= kAtOnce; text.remove_prefix(kAtOnce)) {
        out = EncodeEight(text.data(), out) ? out + kAtOnce : EncodeEach(text.substr(0, kAtOnce), out);
    }
    return static_cast<std::size_t>(EncodeEach(text, out) - codes);
}

std::size_t CGsmAlphabet::Decode(std::span<const std::uint8_t> codes, char16_t* text) {
    char16_t* out = text;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        while (i + kAtOnce <= codes.size()) {
            std::uint64_t eight = 0;
            std::memcpy(&eight, &codes[i], sizeof eight);
            eight &= 0x7F7F7F7F7F7F7F7FU;
            if (HasEscape(eight)) break;
            for (std::size_t k = 0; k < kAtOnce; ++k) out[k] = kDecode[eight >> 8 * k & 0x7F];
            out += kAtOnce;
            i += kAtOnce;
        }
        if (i == codes.size()) break;
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
