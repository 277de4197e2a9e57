// Base64, RFC 4648 chapter 4.
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace base64 {

// How many characters the text of so many octets has, line ends included.
std::size_t EncodedSize(std::size_t octets, std::size_t lineLength = 0);

// The text of the octets. With a line length (a multiple of 4, 0 = none), CR LF follows each full line and
// the last one.
std::string Encode(std::string_view octets, std::size_t lineLength = 0);

// As Encode, behind what `text` holds.
void Append(std::string& text, std::string_view octets, std::size_t lineLength = 0);

// The octets of a text in one line, blanks at its ends left out; the padding may be missing. Nothing for what
// is no base64.
std::optional<std::string> Decode(std::string_view text);

}  // namespace base64
