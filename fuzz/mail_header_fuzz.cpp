// What a header field is written as, parses back to what went in (RFC 5322 section 2.2.3, RFC 2047), and is
// one field whatever it holds.
#include "Common/Mime/HeaderText.h"
#include "Fuzz.h"
#include "foundation/Base64.h"
#include "foundation/Text.h"
#include "foundation/Utf8.h"

#include <cstdlib>
#include <string>

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

// The lines of one field; each but the first goes on with a blank.
std::vector<std::string_view> LinesOf(std::string_view field) {
    Require(field.ends_with("\r\n"));
    field.remove_suffix(2);
    const std::vector<std::string_view> lines = Split(field, "\r\n");
    for (std::size_t i = 0; i < lines.size(); ++i) {
        Require(lines[i].find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos);
        Require(lines[i].size() <= 998);
        Require(i == 0 || (lines[i].starts_with(' ') && !Trim(lines[i]).empty()));
    }
    return lines;
}

std::string WordText(std::string_view word) {
    Require(word.size() <= 75 && word.starts_with("=?utf-8?B?") && word.ends_with("?="));
    const auto text = base64::Decode(word.substr(10, word.size() - 12));
    Require(text.has_value() && IsUtf8(*text) && !text->empty());
    return *text;
}

// What a reader makes of a field with this name.
std::string ValueOf(std::string_view field, std::string_view name) {
    std::vector<std::string_view> lines = LinesOf(field);
    Require(lines[0].starts_with(name) && lines[0].substr(name.size()).starts_with(": "));
    lines[0].remove_prefix(name.size() + 2);
    if (lines.size() == 1 && !lines[0].starts_with("=?")) {
        Require(lines[0].find("=?") == std::string_view::npos);
        return std::string(lines[0]);
    }
    std::string value;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        Require(lines[i].size() + (i == 0 ? name.size() + 2 : 0) <= 76);
        if (!Trim(lines[i]).empty()) value += WordText(Trim(lines[i]));
    }
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::string name(std::size_t{1} + data[0] % 70, 'N');
    const std::u16string value = FromUtf8(TextOf(data + 1, size - 1));
    std::string field;
    mime::AppendHeader(field, name, value);
    Require(ValueOf(field, name) == OneLine(ToUtf8(value)));
    std::string address;
    mime::AppendAddressHeader(address, name, TextOf(data + 1, size - 1));
    (void)LinesOf(address);
    return 0;
}
