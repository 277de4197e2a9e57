// Character sets by their assigned numbers (IANA MIBenum).
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wsp {

inline constexpr std::uint64_t kUtf8 = 106;  // MIBenum

// Whether each character has two octets, so that no zero octet ends a text.
constexpr bool IsTwoOctets(std::uint64_t charset) { return charset == 1000 || charset == 1015; }

// The code page of a character set, and back, for those whose number stands with contents; UTF-8 is none of
// them.
std::optional<std::uint32_t> CodePageOf(std::uint64_t charset);
std::optional<std::uint8_t> CharsetOf(std::uint32_t codePage);

// The number of a character set by its name, in any case; 0 for one that is not known.
std::uint64_t CharsetNamed(std::string_view name);

// Text in a character set; 0 and what is not known count as UTF-8 when they can be that, else as ANSI.
std::u16string WideText(std::string_view text, std::uint64_t charset);

}  // namespace wsp
