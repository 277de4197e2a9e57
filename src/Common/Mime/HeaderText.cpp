#include "Common/Mime/HeaderText.h"

#include "foundation/Base64.h"
#include "foundation/CodePage.h"
#include "foundation/Text.h"
#include "foundation/Utf8.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongestLine = 998;        // RFC 5322 section 2.1.1
constexpr std::size_t kLongestEncodedLine = 76;  // RFC 2047 section 2
constexpr std::string_view kWordStart = "=?utf-8?B?";
constexpr std::string_view kWordEnd = "?=";
constexpr std::string_view kFold = "\r\n ";
constexpr std::size_t kLongestCharacter = 4;  // octets

bool IsPlain(std::string_view text) {
    const bool printable =
        std::ranges::all_of(text, [](char c) { return (c >= ' ' && c <= '~') || c == '\t'; });
    return printable && text.find("=?") == std::string_view::npos;
}

// How many octets an encoded-word may stand for in a line of which so much is used.
std::size_t RoomBehind(std::size_t used) {
    const std::size_t taken = used + kWordStart.size() + kWordEnd.size();
    return taken < kLongestEncodedLine ? (kLongestEncodedLine - taken) / 4 * 3 : 0;
}

// The longest start of a text that ends with a whole character.
std::string_view WholeCharacters(std::string_view text, std::size_t room) {
    std::size_t size = std::min(text.size(), room);
    while (size > 0 && size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80) --size;
    return text.substr(0, size);
}

// `used`: what the line holds so far.
void AppendWords(std::string& out, std::string_view text, std::size_t used) {
    while (!text.empty()) {
        if (RoomBehind(used) < kLongestCharacter) {
            out += kFold;
            used = 1;
        }
        const std::string_view piece = WholeCharacters(text, RoomBehind(used));
        out += kWordStart;
        base64::Append(out, piece);
        out += kWordEnd;
        used = kLongestEncodedLine;
        text.remove_prefix(piece.size());
    }
}

void AppendField(std::string& out, std::string_view name, std::string_view utf8) {
    const std::string value = OneLine(utf8);
    out.append(name).append(": ");
    if (IsPlain(value) && name.size() + 2 + value.size() <= kLongestLine) {
        out += value;
    } else {
        AppendWords(out, value, name.size() + 2);
    }
    out += "\r\n";
}

std::string_view WithoutQuotes(std::string_view text) {
    const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return quoted ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

void mime::AppendHeader(std::string& out, std::string_view name, std::u16string_view value) {
    AppendField(out, name, ToUtf8(value));
}

void mime::AppendHeader(std::string& out, std::string_view name, std::string_view value) {
    AppendField(out, name, IsPlain(value) ? std::string(value) : ToUtf8(FromAnsi(value)));
}

void mime::AppendAddressHeader(std::string& out, std::string_view name, std::string_view address) {
    const std::size_t bracket = address.rfind('<');
    const std::string_view route = bracket < address.size() ? address.substr(bracket) : std::string_view();
    const std::string_view owner = WithoutQuotes(Trim(address.substr(0, address.size() - route.size())));
    const bool isApart = !IsPlain(address) && !owner.empty() && route.ends_with('>') && IsPlain(route) &&
                         route.size() < kLongestLine;
    if (!isApart) return AppendHeader(out, name, address);
    out.append(name).append(": ");
    AppendWords(out, ToUtf8(FromAnsi(OneLine(owner))), name.size() + 2);
    out.append(kFold).append(route).append("\r\n");
}
