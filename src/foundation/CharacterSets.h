// The character sets in which texts go out, by their names.
#pragma once
#include <string>
#include <string_view>

struct CharacterSet {
    std::string_view name;  // in lower case, as headers have it
    // A character that the set lacks becomes "?"; half of a pair becomes U+FFFD in UTF-8.
    std::string (*encode)(std::u16string_view text);
};

// "utf-8", "iso-8859-1", "windows-1252" or "us-ascii", in any case; null for every other name.
const CharacterSet* FindCharacterSet(std::string_view name);
