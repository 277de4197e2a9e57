#include "foundation/CodePage.h"

#include <windows.h>

namespace {
static_assert(sizeof(wchar_t) == sizeof(char16_t));
const wchar_t* Wide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }
wchar_t* Wide(char16_t* text) { return reinterpret_cast<wchar_t*>(text); }
}  // namespace

std::string codepage::ToAnsi(std::u16string_view text) {
    const int length = static_cast<int>(text.size());
    std::string out(text.size(), '\0');
    int size =
        ::WideCharToMultiByte(CP_ACP, 0, Wide(text.data()), length, out.data(), length, nullptr, nullptr);
    if (size == 0) {  // a code page with several octets a character
        size = ::WideCharToMultiByte(CP_ACP, 0, Wide(text.data()), length, nullptr, 0, nullptr, nullptr);
        out.resize(static_cast<std::size_t>(size));
        ::WideCharToMultiByte(CP_ACP, 0, Wide(text.data()), length, out.data(), size, nullptr, nullptr);
    }
    out.resize(static_cast<std::size_t>(size));
    return out;
}

std::u16string codepage::FromAnsi(std::string_view text) { return From(text, CP_ACP); }

std::u16string codepage::From(std::string_view text, std::uint32_t number) {
    const int length = static_cast<int>(text.size());
    std::u16string out(text.size(), u'\0');
    const int size = ::MultiByteToWideChar(number, 0, text.data(), length, Wide(out.data()), length);
    out.resize(static_cast<std::size_t>(size));
    return out;
}
