#include "Common/Wsp/WspCharsets.h"

#include "foundation/CodePage.h"
#include "foundation/Text.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <array>

namespace {

struct Row {
    std::uint16_t charset;
    std::string_view name;
    std::optional<std::uint32_t> codePage;  // of those whose number stands with contents
};
constexpr auto kRows = std::to_array<Row>({
    {3, "us-ascii", {}},
    {4, "iso-8859-1", 1252},
    {5, "iso-8859-2", 28592},
    {6, "iso-8859-3", 28593},
    {7, "iso-8859-4", 28594},
    {8, "iso-8859-5", 28595},
    {9, "iso-8859-6", 28596},
    {10, "iso-8859-7", {}},
    {11, "iso-8859-8", {}},
    {12, "iso-8859-9", {}},
    {17, "shift_jis", {}},
    {wsp::kUtf8, "utf-8", {}},
    {1000, "iso-10646-ucs-2", {}},
    {1015, "utf-16", {}},
    {2026, "big5", {}},
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
    return row != kRows.end() ? row->codePage : std::nullopt;
}

std::optional<std::uint8_t> wsp::CharsetOf(std::uint32_t codePage) {
    const auto* const row = std::ranges::find(kRows, codePage, &Row::codePage);
    if (row == kRows.end()) return std::nullopt;
    return static_cast<std::uint8_t>(row->charset);
}

std::uint64_t wsp::CharsetNamed(std::string_view name) {
    const auto* const row =
        std::ranges::find_if(kRows, [name](const Row& known) { return EqualNoCase(known.name, name); });
    return row != kRows.end() ? row->charset : 0;
}

std::u16string wsp::WideText(std::string_view text, std::uint64_t charset) {
    if (IsTwoOctets(charset)) return FromUcs2(text);
    if (const auto codePage = CodePageOf(charset)) return FromCodePage(text, *codePage);
    return charset == kUtf8 || IsUtf8(text) ? FromUtf8(text) : FromAnsi(text);
}
