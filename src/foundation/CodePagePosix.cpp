// The native build's ANSI code page is the Western one.
#include "foundation/CodePage.h"
#include "foundation/Windows1252.h"

#include <iconv.h>
#include <string>

std::string codepage::ToAnsi(std::u16string_view text) { return windows1252::Encode(text); }
std::u16string codepage::FromAnsi(std::string_view text) { return windows1252::Decode(text); }

std::u16string codepage::From(std::string_view text, std::uint32_t number) {
    constexpr std::uint32_t kIso8859 = 28590;
    const std::string name = "ISO-8859-" + std::to_string(number - kIso8859);
    iconv_t converter = number > kIso8859 && number < kIso8859 + 10 ? ::iconv_open("UTF-16LE", name.c_str())
                                                                    : reinterpret_cast<iconv_t>(-1);
    if (converter == reinterpret_cast<iconv_t>(-1)) return FromAnsi(text);
    std::u16string out(text.size(), u'\uFFFD');
    for (std::size_t i = 0; i < text.size(); ++i) {  // octet by octet, since some have no character
        auto* in = const_cast<char*>(&text[i]);
        auto* character = reinterpret_cast<char*>(&out[i]);
        std::size_t inLeft = 1;
        std::size_t outLeft = sizeof(char16_t);
        (void)::iconv(converter, &in, &inLeft, &character, &outLeft);
    }
    ::iconv_close(converter);
    return out;
}
