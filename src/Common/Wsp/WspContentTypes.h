// The assigned numbers of media types (WAP-230 table 40).
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

namespace wsp {

// The number, without the high bit that marks it on the wire; nothing for a text that has none. Upper and
// lower case differ.
std::optional<std::uint8_t> ContentTypeNumber(std::string_view text);

// Empty for a number that is not assigned.
std::string_view ContentTypeText(std::uint64_t number);

// A multipart type whose body is the entries of a WSP multipart (WAP-230 section 8.5).
bool IsMultipart(std::string_view type);

inline constexpr std::uint8_t kMultipartRelated = 0xB3;  // on the wire

}  // namespace wsp
