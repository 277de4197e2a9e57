#include "foundation/CharacterSets.h"

#include "foundation/Text.h"
#include "foundation/Utf8.h"
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

constexpr auto kSets = std::to_array<CharacterSet>({
    {"utf-8", ToUtf8},
    {"iso-8859-1", EncodeBelow<0x100>},
    {"windows-1252", windows1252::Encode},
    {"us-ascii", EncodeBelow<0x80>},
});

}  // namespace

const CharacterSet* FindCharacterSet(std::string_view name) {
    const auto* const set =
        std::ranges::find_if(kSets, [&](const CharacterSet& s) { return EqualNoCase(s.name, name); });
    return set != kSets.end() ? set : nullptr;
}
