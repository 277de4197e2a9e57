#include "mms/MmsFields.h"

#include "Common/Wsp/MmsNumbers.h"
#include "Common/Wsp/WspValues.h"
#include "foundation/Hex.h"

#include <array>

namespace {

// The lengthed value at the reader, for what is not there as one: empty, and its first octet's value is
// passed over.
std::string_view Lengthed(OctetReader& in) {
    if (in.Peek() < wsp::kFirstText) return wsp::ReadLengthed(in);
    (void)wsp::ReadValue(in);
    return {};
}

void TakeText(const wsp::EncodedText& read, MmsField& field) {
    field.text = read.text;
    field.charset = read.charset;
}

// --- reading, one function a form; false for a value that does not hold what its form has

bool ReadOctetOrText(OctetReader& in, MmsField& field) {
    const wsp::Value value = wsp::ReadValue(in);
    if (value.kind == wsp::Value::Kind::kShort) {
        field.token = static_cast<std::uint32_t>(wsp::kShort | value.number);
    } else {
        field.text = value.kind == wsp::Value::Kind::kText ? value.octets : std::string_view();
    }
    return true;
}

bool ReadText(OctetReader& in, MmsField& field) {
    field.text = wsp::ReadTextValue(in);
    return true;
}

bool ReadEncodedText(OctetReader& in, MmsField& field) {
    TakeText(wsp::ReadEncodedText(in), field);
    return true;
}

bool ReadLong(OctetReader& in, MmsField& field) {
    const wsp::Value value = wsp::ReadValue(in);
    field.value = value.number;
    return value.kind != wsp::Value::Kind::kText;
}

bool ReadTime(OctetReader& in, MmsField& field) {
    OctetReader value(Lengthed(in));
    field.token = value.Octet();
    field.value = wsp::ReadInteger(value);
    return !value.Overrun();
}

// A length of 31 and more may stand in one octet, as our own encoder writes it, before the octet that says
// that there is an address. Behind a length quote no length begins with that octet. Some write the address,
// or that it is to be inserted, without a length.
bool ReadFrom(OctetReader& in, MmsField& field) {
    OctetReader ahead = in;
    const std::uint8_t first = ahead.Octet();
    const bool marked = ahead.Peek() == mms::kAddressPresent;
    if (first >= wsp::kFirstText && !marked) {
        const wsp::Value bare = wsp::ReadValue(in);
        field.token = bare.kind == wsp::Value::Kind::kText ? mms::kAddressPresent : std::uint32_t{first};
        field.text = bare.octets;
        return true;
    }
    in.Skip(1);
    const bool quoted = first == wsp::kLengthQuote && !marked;
    OctetReader value(in.Take(quoted ? wsp::ReadUintvar(in) : first));
    field.token = value.Octet();
    if (value.Overrun()) return false;
    if (field.token == mms::kAddressPresent) TakeText(wsp::ReadEncodedText(value), field);
    return true;
}

bool ReadNumberAndText(OctetReader& in, MmsField& field) {
    OctetReader value(Lengthed(in));
    field.token = static_cast<std::uint32_t>(wsp::ReadInteger(value));
    const bool whole = !value.Overrun();
    TakeText(wsp::ReadEncodedText(value), field);
    return whole;
}

bool ReadNumberAndNumber(OctetReader& in, MmsField& field) {
    OctetReader value(Lengthed(in));
    field.token = static_cast<std::uint32_t>(wsp::ReadInteger(value));
    field.value = wsp::ReadInteger(value);
    return !value.Overrun();
}

bool ReadContentType(OctetReader& in, MmsField& field) {
    field.text = wsp::ReadContentType(in).type;
    return true;
}

bool PassOver(OctetReader& in, MmsField& /*field*/) {
    (void)wsp::ReadValue(in);
    return true;
}

// --- writing, for the forms that our units hold

constexpr std::uint8_t kLongLength = 4;

void WriteLongValue(OctetWriter& out, std::uint64_t value) {
    out.Octet(kLongLength);
    out.Long(static_cast<std::uint32_t>(value));
}

void WriteToken(OctetWriter& out, const MmsField& field) {
    out.Octet(static_cast<std::uint8_t>(field.token));
}
void WriteText(OctetWriter& out, const MmsField& field) { wsp::WriteText(out, field.text); }
void WriteLong(OctetWriter& out, const MmsField& field) { WriteLongValue(out, field.value); }

void WriteEncodedText(OctetWriter& out, const MmsField& field) {
    constexpr std::size_t kFraming = 3;  // charset, quote, the zero octet at the end
    if (field.charset == 0) return WriteText(out, field);
    wsp::WriteValueLength(out, field.text.size() + kFraming);
    out.Octets({static_cast<std::uint8_t>(wsp::kShort | field.charset), wsp::kQuote});
    out.TextString(field.text);
}

void WriteTime(OctetWriter& out, const MmsField& field) {
    out.Octet(kLongLength + 2);
    WriteToken(out, field);
    WriteLongValue(out, field.value);
}

// The length is one octet, whatever it is, although the standard's form has a length quote above 30: kept,
// since that is how our units have always looked.
void WriteFrom(OctetWriter& out, const MmsField& field) {
    if (field.token == mms::kInsertAddress) return out.Octets({1, mms::kInsertAddress});
    const std::string_view text = field.text.substr(0, field.text.find('\0'));
    out.Octets({static_cast<std::uint8_t>(text.size() + 2), mms::kAddressPresent});
    out.TextString(text);
}

// --- the table

struct Form {
    bool (*read)(OctetReader&, MmsField&);
    void (*write)(OctetWriter&, const MmsField&);
};

namespace form {
constexpr Form kOctet = {ReadOctetOrText, WriteToken};
constexpr Form kOctetOrText = {ReadOctetOrText, WriteToken};
constexpr Form kText = {ReadText, WriteText};
constexpr Form kEncodedText = {ReadEncodedText, WriteEncodedText};
constexpr Form kLong = {ReadLong, WriteLong};
constexpr Form kTime = {ReadTime, WriteTime};
constexpr Form kFrom = {ReadFrom, WriteFrom};
constexpr Form kNumberAndText = {ReadNumberAndText, nullptr};
constexpr Form kNumberAndNumber = {ReadNumberAndNumber, nullptr};
constexpr Form kContentType = {ReadContentType, nullptr};
constexpr Form kUnsettled = {PassOver, nullptr};
}  // namespace form

struct Row {
    std::uint8_t number;
    std::string_view name;
    Form form;
};

constexpr auto kRows = std::to_array<Row>({
#define HEADER(number, id, name, kind) {number, name, form::k##kind},
#include "Common/Wsp/MmsHeaders.inc"
});

constexpr std::uint8_t kFirst = kRows.front().number;

constexpr bool AreConsecutive() {
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        if (kRows[i].number != kFirst + i) return false;
    }
    return true;
}
static_assert(AreConsecutive(), "rows are found by their number");

const Row* RowOf(std::uint8_t number) {
    return number >= kFirst && number < kFirst + kRows.size() ? &kRows[number - kFirst] : nullptr;
}

}  // namespace

bool ReadValueOf(MmsField& field, OctetReader& in) {
    const Row* const row = RowOf(field.number);
    const bool whole = row != nullptr ? row->form.read(in, field) : PassOver(in, field);
    return whole && !in.Overrun();
}

void WriteField(OctetWriter& out, const MmsField& field) {
    const Row* const row = RowOf(field.number);
    if (row == nullptr || row->form.write == nullptr) return;
    out.Octet(field.number);
    row->form.write(out, field);
}

std::string_view FieldName(std::uint8_t number) {
    const Row* const row = RowOf(number);
    return row != nullptr ? row->name : std::string_view();
}

std::string QuotedText(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c >= ' ' && c < 0x7F && c != '"' && c != '\\') {
            out += c;
        } else {
            out += "\\x";
            hex::Append(out, static_cast<std::uint8_t>(c));
        }
    }
    return out + '"';
}

std::string DumpOf(const MmsField& field) {
    std::string out(field.number != 0 ? FieldName(field.number) : field.name);
    if (out.empty()) {
        out = "Field ";
        hex::Append(out, field.number);
    }
    out += ':';
    if (field.token >= wsp::kShort) {
        out += ' ';
        hex::Append(out, static_cast<std::uint8_t>(field.token));
    } else if (field.token != 0) {
        out += ' ' + std::to_string(field.token);
    }
    if (field.value != 0) out += ' ' + std::to_string(field.value);
    if (!field.text.empty()) out += ' ' + QuotedText(field.text);
    if (field.charset != 0) out += " charset=" + std::to_string(field.charset);
    return out;
}
