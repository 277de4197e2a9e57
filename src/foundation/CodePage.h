// Text between UTF-16 and the system's ANSI code page.
#pragma once
#include <string>
#include <string_view>

// A character the code page lacks becomes "?" (or the system's best fit).
std::string ToAnsi(std::u16string_view text);
std::u16string FromAnsi(std::string_view text);

// The conversions of the platform, for text that is not plain ASCII.
namespace codepage {
std::string ToAnsi(std::u16string_view text);
std::u16string FromAnsi(std::string_view text);
}  // namespace codepage
