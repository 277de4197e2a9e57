#include "Common/Wsp/WspCharsets.h"

#include "foundation/CodePage.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <array>

namespace {

struct Row {
    std::uint8_t charset;
    std::uint32_t codePage;
};
constexpr auto kRows = std::to_array<Row>({
    {4, 1252},  // ISO 8859-1
    {5, 28592},
    {6, 28593},
    {7, 28594},
    {8, 28595},
    {9, 28596},
});

// Two octets a character, the high one first unless a byte order mark says otherwise.
std::u16string FromUcs2(std::string_view text) {
    const bool swapped = text.starts_with("\xFF\xFE");
    if (swapped || text.starts_with("\xFE\xFF")) text.remove_prefix(2);
    std::u16string out;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        const auto first = static_cast<std::uint8_t>(text[i]);
        const auto second = static_cast<std::uint8_t>(text[i + 1]);
        out.push_back(static_cast<char16_t>(swapped ? second << 8 | first : first << 8 | second));
    }
    return out.substr(0, out.find(u'\0'));
}

}  // namespace

std::optional<std::uint32_t> wsp::CodePageOf(std::uint64_t charset) {
    const auto* const row = std::ranges::find(kRows, charset, &Row::charset);
    if (row == kRows.end()) return std::nullopt;
    return row->codePage;
}

std::optional<std::uint8_t> wsp::CharsetOf(std::uint32_t codePage) {
    const auto* const row = std::ranges::find(kRows, codePage, &Row::codePage);
    if (row == kRows.end()) return std::nullopt;
    return row->charset;
}

std::u16string wsp::WideText(std::string_view text, std::uint64_t charset) {
    if (IsTwoOctets(charset)) return FromUcs2(text);
    if (const auto codePage = CodePageOf(charset)) return FromCodePage(text, *codePage);
    return charset == kUtf8 || IsUtf8(text) ? FromUtf8(text) : FromAnsi(text);
}
