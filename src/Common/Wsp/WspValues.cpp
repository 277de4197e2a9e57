#include "Common/Wsp/WspValues.h"

#include "Common/Wsp/WspCharsets.h"
#include "Common/Wsp/WspContentTypes.h"

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

void ReadAssignedParameter(OctetReader& in, std::uint8_t number, ContentType& content) {
    constexpr std::uint8_t kQ = 0x80;
    constexpr std::uint8_t kFilename = 0x86;
    constexpr std::uint8_t kName14 = 0x97;
    constexpr std::uint8_t kFilename14 = 0x98;
    constexpr std::uint8_t kStart14 = 0x99;
    if (number == kQ) {
        (void)ReadUintvar(in);
        return;
    }
    const Value value = ReadValue(in);
    switch (number) {
        case kCharset:
            if (value.kind != Value::Kind::kText) content.charset = value.number;
            break;
        case kName:
        case kName14:
            content.name = TextOf(value);
            break;
        case kFilename:
        case kFilename14:
            if (content.name.empty()) content.name = TextOf(value);
            break;
        case kStart:
        case kStart14:
            content.start = TextOf(value);
            break;
        default:
            break;
    }
}

void ReadParameters(OctetReader& in, ContentType& content) {
    while (!in.AtEnd()) {
        if (in.Peek() >= kShort) {
            ReadAssignedParameter(in, in.Octet(), content);
        } else {
            const std::string_view name = TextOf(ReadValue(in));
            const std::string_view value = TextOf(ReadValue(in));
            if (name == "boundary") content.boundary = value;
        }
    }
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
