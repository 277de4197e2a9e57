#include "foundation/CharacterSets.h"

#include "foundation/Text.h"
#include "foundation/Windows1252.h"

#include <algorithm>
#include <array>

namespace {

// Sets whose octets are the first characters of Unicode.
template <char16_t End>
std::string EncodeBelow(std::u16string_view text) {
    std::string octets(text.size(), '?');
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] < End) octets[i] = static_cast<char>(text[i]);
    }
    return octets;
}

constexpr bool IsHigh(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLow(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUtf8(std::string& octets, char32_t c) {
    const auto more = [&](int shift) { octets += static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80) {
        octets += static_cast<char>(c);
    } else if (c < 0x800) {
        octets += static_cast<char>(0xC0 | c >> 6);
        more(0);
    } else if (c < 0x10000) {
        octets += static_cast<char>(0xE0 | c >> 12);
        more(6);
        more(0);
    } else {
        octets += static_cast<char>(0xF0 | c >> 18);
        more(12);
        more(6);
        more(0);
    }
}

// Half a surrogate pair is no character.
std::string EncodeUtf8(std::u16string_view text) {
    std::string octets;
    octets.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (IsHigh(c) && i + 1 < text.size() && IsLow(text[i + 1])) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00U);
        } else if (IsHigh(c) || IsLow(c)) {
            c = U'?';
        }
        AppendUtf8(octets, c);
    }
    return octets;
}

constexpr auto kSets = std::to_array<CharacterSet>({
    {"utf-8", EncodeUtf8},
    {"iso-8859-1", EncodeBelow<0x100>},
    {"windows-1252", windows1252::Encode},
    {"us-ascii", EncodeBelow<0x80>},
});

}  // namespace

const CharacterSet* FindCharacterSet(std::string_view name) {
    const auto* const set =
        std::ranges::find_if(kSets, [&](const CharacterSet& s) { return Upper(s.name) == Upper(name); });
    return set != kSets.end() ? set : nullptr;
}
