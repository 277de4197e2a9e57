// Windows-1252, the Western code page, as the native build's ANSI code page.
#include "foundation/CodePage.h"

#include <algorithm>
#include <array>
#include <iconv.h>

namespace {
// The characters of 0x80 to 0x9F; unassigned octets read as the control code of the same number.
constexpr std::array<char16_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
}  // namespace

std::string codepage::ToAnsi(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char16_t c : text) {
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
            continue;
        }
        const auto* const hit = std::ranges::find(kUpperControls, c);
        if (hit != kUpperControls.end()) {
            out.push_back(static_cast<char>(0x80 + (hit - kUpperControls.begin())));
        } else {
            out.push_back(c < 0x80 || (c >= 0xA0 && c < 0x100) ? static_cast<char>(c) : '?');
        }
    }
    return out;
}

std::u16string codepage::FromAnsi(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (const char c : text) {
        const auto octet = static_cast<unsigned char>(c);
        out.push_back(octet >= 0x80 && octet < 0xA0 ? kUpperControls[octet - 0x80U] : char16_t{octet});
    }
    return out;
}

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
