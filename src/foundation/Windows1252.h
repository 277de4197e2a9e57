// The Western code page of Windows.
#pragma once
#include <string>
#include <string_view>

namespace windows1252 {

// A character that the code page lacks becomes "?". Unassigned octets stand for the control code of the same
// number.
std::string Encode(std::u16string_view text);
std::u16string Decode(std::string_view octets);

}  // namespace windows1252
