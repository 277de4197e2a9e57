// Base64, RFC 4648 chapter 4.
#pragma once
#include <string>
#include <string_view>

namespace base64 {

// The text of the octets. With a line length (a multiple of 4, 0 = none), CR LF follows each full line and
// the last one.
std::string Encode(std::string_view octets, std::size_t lineLength = 0);

}  // namespace base64
