// Text between UTF-16 and the system's ANSI code page.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// A character the code page lacks becomes "?" (or the system's best fit).
std::string ToAnsi(std::u16string_view text);
std::u16string FromAnsi(std::string_view text);

// Text of a code page by its number: 65001 (UTF-8), 1252, 28592 to 28596 (ISO 8859-2 to -6). Octets that it
// lacks become U+FFFD, or what the system has for them.
std::u16string FromCodePage(std::string_view text, std::uint32_t number);

// Copies text to where it has room; false when it is not ASCII throughout, which alone is the same in every
// code page.
template <class To, class Text>
bool CopyAscii(const Text& text, To* __restrict out) {
    const auto* __restrict in = text.data();
    std::uint16_t all = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        all = static_cast<std::uint16_t>(all | in[i]);
        out[i] = static_cast<To>(in[i]);
    }
    return all < 0x80;
}

// The conversions of the platform, for text that is not plain ASCII.
namespace codepage {
std::string ToAnsi(std::u16string_view text);
std::u16string FromAnsi(std::string_view text);
std::u16string From(std::string_view text, std::uint32_t number);
}  // namespace codepage
