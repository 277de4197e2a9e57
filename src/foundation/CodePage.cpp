#include "foundation/CodePage.h"

#include "foundation/Utf8.h"

namespace {

template <class To, class From>
bool CopyText(From text, To& out) {
    out.resize(text.size());
    return CopyAscii(text, out.data());
}

}  // namespace

std::string ToAnsi(std::u16string_view text) {
    std::string out;
    return CopyText(text, out) ? out : codepage::ToAnsi(text);
}

std::u16string FromAnsi(std::string_view text) {
    std::u16string out;
    return CopyText(text, out) ? out : codepage::FromAnsi(text);
}

std::u16string FromCodePage(std::string_view text, std::uint32_t number) {
    constexpr std::uint32_t kUtf8 = 65001;
    std::u16string out;
    if (CopyText(text, out)) return out;
    return number == kUtf8 ? FromUtf8(text) : codepage::From(text, number);
}
