#include "Common/Wsp/WspValues.h"

#include "Common/Wsp/WspCharsets.h"
#include "Common/Wsp/WspContentTypes.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

using namespace wsp;

// Saturates.
std::uint64_t NumberOf(std::string_view octets) {
    std::uint64_t number = 0;
    for (const char octet : octets) {
        if (number >> 56 != 0) return std::numeric_limits<std::uint64_t>::max();
        number = number << 8 | static_cast<std::uint8_t>(octet);
    }
    return number;
}

// A media type: an assigned number or a text.
std::string_view ReadType(OctetReader& in) {
    constexpr std::string_view kUnknown = "application/octet-stream";
    const Value value = ReadValue(in);
    if (value.kind == Value::Kind::kText) return value.octets;
    const std::string_view text = ContentTypeText(value.number);
    return text.empty() ? kUnknown : text;
}

std::string_view TextOf(const Value& value) {
    return value.kind == Value::Kind::kText ? Unquoted(value.octets) : std::string_view();
}

void TakeCharset(const Value& value, ContentType& content) {
    const bool isText = value.kind == Value::Kind::kText;
    content.charset = isText ? CharsetNamed(TextOf(value)) : value.number;
}
void TakeName(const Value& value, ContentType& content) { content.name = TextOf(value); }
void TakeFilename(const Value& value, ContentType& content) {
    if (content.name.empty()) content.name = TextOf(value);
}
void TakeStart(const Value& value, ContentType& content) { content.start = TextOf(value); }
void TakeBoundary(const Value& value, ContentType& content) { content.boundary = TextOf(value); }

// The parameters that are read, by their numbers, of which some have another since version 1.4, and by their
// names.
struct Parameter {
    std::string_view name;
    std::uint8_t number, number14;  // 0 = none
    void (*take)(const Value& value, ContentType& content);
};
constexpr auto kParameters = std::to_array<Parameter>({
    {"charset", kCharset, 0, TakeCharset},
    {"name", kName, 0x97, TakeName},
    {"filename", 0x86, 0x98, TakeFilename},
    {"start", kStart, 0x99, TakeStart},
    {"boundary", 0, 0, TakeBoundary},
});

template <class IsWanted>
void TakeParameter(const Value& value, ContentType& content, IsWanted isWanted) {
    const auto* const parameter = std::ranges::find_if(kParameters, isWanted);
    if (parameter != kParameters.end()) parameter->take(value, content);
}

void ReadParameter(OctetReader& in, ContentType& content) {
    constexpr std::uint8_t kQ = 0x80;
    if (in.Peek() == kQ) {
        in.Skip(1);
        (void)ReadUintvar(in);
    } else if (in.Peek() >= kShort) {
        const std::uint8_t number = in.Octet();
        TakeParameter(ReadValue(in), content, [number](const Parameter& row) {
            return number == row.number || number == row.number14;
        });
    } else {
        const std::string_view name = TextOf(ReadValue(in));
        TakeParameter(ReadValue(in), content,
                      [name](const Parameter& row) { return EqualNoCase(name, row.name); });
    }
}

void ReadParameters(OctetReader& in, ContentType& content) {
    while (!in.AtEnd()) ReadParameter(in, content);
}

}  // namespace

std::uint64_t wsp::ReadUintvar(OctetReader& in) {
    constexpr int kLongest = 5;
    std::uint64_t value = 0;
    for (int i = 0; i < kLongest; ++i) {
        const std::uint8_t octet = in.Octet();
        value = value << 7 | (octet & 0x7FU);
        if (octet < 0x80) break;
    }
    return value;
}

void wsp::WriteUintvar(OctetWriter& out, std::uint32_t value) {
    for (int shift = 28; shift > 0; shift -= 7) {
        if (value >> shift != 0) out.Octet(static_cast<std::uint8_t>(0x80U | (value >> shift & 0x7FU)));
    }
    out.Octet(static_cast<std::uint8_t>(value & 0x7FU));
}

std::string_view wsp::ReadLengthed(OctetReader& in) {
    const std::uint8_t first = in.Octet();
    return in.Take(first == kLengthQuote ? ReadUintvar(in) : first);
}

void wsp::WriteValueLength(OctetWriter& out, std::size_t length) {
    if (length < kLengthQuote) return out.Octet(static_cast<std::uint8_t>(length));
    out.Octet(kLengthQuote);
    WriteUintvar(out, static_cast<std::uint32_t>(length));
}

std::string_view wsp::ReadText(OctetReader& in) {
    if (in.Peek() == kQuote) in.Skip(1);
    return in.TextString();
}

std::string_view wsp::Unquoted(std::string_view text) {
    if (!text.starts_with(kStringQuote)) return text;
    text.remove_prefix(1);
    if (text.ends_with(kStringQuote)) text.remove_suffix(1);
    return text;
}

void wsp::WriteText(OctetWriter& out, std::string_view text) {
    out.TextString(text.substr(0, text.find('\0')));
}

EncodedText wsp::ReadEncodedText(OctetReader& in) {
    if (in.Peek() >= kFirstText) return {ReadText(in), 0};
    OctetReader value(ReadLengthed(in));
    if (value.AtEnd()) return {};
    const Value charset = ReadValue(value);
    // A text alone is the text, and a charset by its name counts as none.
    if (charset.kind == Value::Kind::kText) return {value.AtEnd() ? charset.octets : ReadText(value), 0};
    return {IsTwoOctets(charset.number) ? value.Take(value.Left()) : ReadText(value), charset.number};
}

std::string_view wsp::ReadTextValue(OctetReader& in) {
    if (in.Peek() >= kFirstText || in.Peek() == 0) return ReadText(in);
    (void)ReadLengthed(in);
    return {};
}

Value wsp::ReadValue(OctetReader& in) {
    const std::uint8_t first = in.Peek();
    if (first >= kShort) {
        in.Skip(1);
        return {Value::Kind::kShort, first & 0x7FU, {}};
    }
    if (first >= kFirstText) return {Value::Kind::kText, 0, ReadText(in)};
    const std::string_view octets = ReadLengthed(in);
    return {Value::Kind::kLengthed, NumberOf(octets), octets};
}

std::uint64_t wsp::ReadInteger(OctetReader& in) { return ReadValue(in).number; }

ContentType wsp::ReadContentType(OctetReader& in) {
    ContentType content;
    if (in.Peek() >= kFirstText) {
        content.type = ReadType(in);
        return content;
    }
    OctetReader value(ReadLengthed(in));
    if (!value.AtEnd()) content.type = ReadType(value);
    ReadParameters(value, content);
    return content;
}

std::string_view wsp::ReadDispositionName(OctetReader& in) {
    const Value disposition = ReadValue(in);
    if (disposition.kind != Value::Kind::kLengthed) return {};
    OctetReader value(disposition.octets);
    (void)ReadValue(value);
    ContentType parameters;
    ReadParameters(value, parameters);
    return parameters.name;
}
