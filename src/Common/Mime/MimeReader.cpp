#include "Common/Mime/MimeReader.h"

#include "foundation/Base64.h"
#include "foundation/Hex.h"
#include "foundation/Text.h"

#include <algorithm>

namespace {

constexpr auto kNone = std::string_view::npos;

// Takes the line at the front, with its end.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end == kNone ? end : end + 1);
    text.remove_prefix(line.size());
    return line;
}

std::string_view WithoutEnd(std::string_view text) {
    if (text.ends_with('\n')) text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return text;
}

// "--boundary" of the first delimiter, whose line is taken with all that stands before it.
std::string_view TakeFirstDelimiter(std::string_view& octets) {
    while (!octets.empty()) {
        const std::string_view line = Trim(TakeLine(octets));
        if (line.starts_with("--") && line.size() > 2) return line;
    }
    return {};
}

// What stands up to the next delimiter, which is taken with its line; `octets` is empty behind the last one.
std::string_view TakeUpTo(std::string_view delimiter, std::string_view& octets) {
    for (std::size_t at = octets.find(delimiter); at != kNone; at = octets.find(delimiter, at + 1)) {
        if (at > 0 && octets[at - 1] != '\n') continue;
        std::string_view rest = octets.substr(at);
        const std::string_view behind = Trim(TakeLine(rest)).substr(delimiter.size());
        if (!behind.empty() && behind != "--") continue;
        const std::string_view before = WithoutEnd(octets.substr(0, at));
        octets = behind.empty() ? rest : std::string_view();
        return before;
    }
    const std::string_view all = octets;
    octets = {};
    return all;
}

std::string FromBase64(std::string_view content) {
    std::string text(content);
    std::erase_if(text, [](char c) { return c == '\r' || c == '\n' || c == ' ' || c == '\t'; });
    return base64::Decode(text).value_or(std::string());
}

// RFC 2045 section 6.7. An "=" that begins nothing stands for itself.
std::string FromQuotedPrintable(std::string_view content) {
    std::string out;
    while (!content.empty()) {
        const std::size_t plain = std::min(content.find('='), content.size());
        out += content.substr(0, plain);
        content.remove_prefix(plain);
        if (content.empty()) break;
        const std::string_view next = content.substr(1, 2);
        if (next.size() == 2 && hex::IsHex(next)) {
            out += hex::OctetsOf(next);
            content.remove_prefix(3);
        } else if (next.starts_with('\n') || next == "\r\n") {  // the line goes on
            content.remove_prefix(content.find('\n') + 1);
        } else {
            out += '=';
            content.remove_prefix(1);
        }
    }
    return out;
}

mime::ReadPart PartOf(std::string_view text) {
    std::string_view content = text;
    while (!content.empty()) {
        if (WithoutEnd(TakeLine(content)).empty()) break;
    }
    return {text.substr(0, text.size() - content.size()), content};
}

}  // namespace

std::string mime::ReadPart::Header(std::string_view name) const {
    std::string value;
    bool isFound = false;
    for (std::string_view rest = headers; !rest.empty();) {
        const std::string_view line = WithoutEnd(TakeLine(rest));
        const bool isFolded = line.starts_with(' ') || line.starts_with('\t');
        if (isFound && !isFolded) break;
        if (isFound) value.append(" ").append(Trim(line));
        const std::size_t colon = line.find(':');
        if (isFound || isFolded || colon == kNone) continue;
        isFound = EqualNoCase(Trim(line.substr(0, colon)), name);
        if (isFound) value = Trim(line.substr(colon + 1));
    }
    return value;
}

std::string mime::ReadPart::Decoded() const {
    const std::string encoding = Upper(Header("Content-Transfer-Encoding"));
    if (encoding == "BASE64") return FromBase64(content);
    if (encoding == "QUOTED-PRINTABLE") return FromQuotedPrintable(content);
    return std::string(content);
}

std::vector<mime::ReadPart> mime::ReadMultipart(std::string_view octets, std::size_t most) {
    std::vector<ReadPart> parts;
    const std::string_view delimiter = TakeFirstDelimiter(octets);
    if (delimiter.empty()) return parts;
    while (!octets.empty() && parts.size() < most) parts.push_back(PartOf(TakeUpTo(delimiter, octets)));
    return parts;
}
