#include "mms/MMSECodec.h"

#include "Common/Wsp/MmsNumbers.h"
#include "Common/Wsp/WspContentTypes.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"
#include "mms/MmsSmil.h"

#include <algorithm>
#include <array>

namespace {

// More fields or parts than any message has: what comes behind them is damage, so that a file of the smallest
// ones does not become a multiple of itself in memory.
constexpr std::size_t kMost = std::size_t{1} << 17;

constexpr std::uint32_t kRetrieved = 0x80;  // the retrieve status of a message that is there

// The octets that change the code page stand alone or before its number; only one page is in use.
bool PassShift(OctetReader& in) {
    constexpr std::uint8_t kShift = 0x7F;
    const std::uint8_t first = in.Peek();
    if (first != kShift && first >= wsp::kFirstText) return false;
    in.Skip(first == kShift ? 2 : 1);
    return true;
}

// Headers of parts that some write with their names.
struct NamedHeader {
    std::string_view name;
    std::uint8_t number;
};
constexpr auto kNamedHeaders = std::to_array<NamedHeader>({
    {"Content-Location", wsp::kContentLocation},
    {"Content-ID", wsp::kContentId},
});

// The number of the next header, or what is read of its name: a DRM message has its boundary as a header.
std::uint8_t HeaderNumber(OctetReader& in, MmsPart& part) {
    if (in.Peek() >= wsp::kShort) return in.Octet();
    const std::string_view name = wsp::ReadText(in);
    for (const NamedHeader& header : kNamedHeaders) {
        if (EqualNoCase(name, header.name)) return header.number;
    }
    const wsp::Value value = wsp::ReadValue(in);
    if (name == "boundary") part.boundary = value.octets;
    return 0;
}

void ReadPartHeader(OctetReader& in, MmsPart& part, std::string_view& dispositionName) {
    switch (HeaderNumber(in, part)) {
        case 0:
            break;
        case wsp::kContentLocation:
            part.location = wsp::ReadTextValue(in);
            break;
        case wsp::kContentId:
            part.contentId = wsp::Unquoted(wsp::ReadTextValue(in));
            break;
        case wsp::kContentDisposition:
        case wsp::kContentDisposition14:
            dispositionName = wsp::ReadDispositionName(in);
            break;
        default:
            (void)wsp::ReadValue(in);
            break;
    }
}

bool ReadPartHeaders(OctetReader in, MmsPart& part) {
    std::string_view dispositionName;
    part.type = wsp::ReadContentType(in);
    if (part.type.type == kDrmMessageType) part.boundary = part.type.boundary;
    while (!in.AtEnd()) {
        if (!PassShift(in)) ReadPartHeader(in, part, dispositionName);
    }
    // A part without a location goes by the name that it was sent under.
    if (part.location.empty()) part.location = part.type.name.empty() ? dispositionName : part.type.name;
    return !in.Overrun();
}

}  // namespace

ResultCode CMMSECodec::Decode(std::string_view unit) {
    fields_.clear();
    parts_.clear();
    type_ = {};
    hasBody_ = false;
    OctetReader in(unit);
    const bool whole = ReadFields(in) && (hasBody_ || !NeedsBody());
    const bool wholeBody = !hasBody_ || ReadBody(in);
    return whole && wholeBody && MessageType() != 0 ? result::Success : result::MmscCorrupt;
}

// Reads up to the content type, which is the last field; a damaged one does not hide those behind it as long
// as its length is known.
bool CMMSECodec::ReadFields(OctetReader& in) {
    bool whole = true;
    while (!in.AtEnd() && !hasBody_ && !in.Overrun()) {
        if (in.Peek() == 0 || fields_.size() == kMost) return false;  // a zero octet begins no header
        if (!PassShift(in)) whole = ReadNextField(in) && whole;
    }
    return whole && !in.Overrun();
}

bool CMMSECodec::ReadNextField(OctetReader& in) {
    MmsField field;
    if (in.Peek() < wsp::kShort) {
        field.name = wsp::ReadText(in);
        field.text = wsp::ReadTextValue(in);
        if (in.Overrun()) return false;
    } else {
        field.number = in.Octet();
        if (field.number == mms::header::kContentType) {
            type_ = wsp::ReadContentType(in);
            field.text = type_.type;
            hasBody_ = !in.Overrun();
        } else if (!ReadValueOf(field, in)) {
            return false;
        }
    }
    if (!in.Overrun()) fields_.push_back(field);
    return !in.Overrun();
}

// A message that could not be fetched comes without one.
bool CMMSECodec::NeedsBody() const {
    return MessageType() == mms::type::kSendReq ||
           (MessageType() == mms::type::kRetrieveConf &&
            (Field(mms::header::kRetrieveStatus).token & ~kRetrieved) == 0);
}

// The count of a multipart is a hint: it may be 0, or one too high, since some count a presentation that is
// not there.
bool CMMSECodec::ReadBody(OctetReader& in) {
    if (!wsp::IsMultipart(type_.type)) {
        parts_.push_back({type_, {}, type_.name, type_.boundary, in.Take(in.Left())});
        return true;
    }
    const std::uint64_t count = wsp::ReadUintvar(in);
    bool whole = !in.Overrun();
    std::uint64_t read = 0;
    for (; !in.AtEnd() && (count == 0 || read < count); ++read) {
        if (parts_.size() == kMost) return false;
        whole = ReadPart(in) && whole;
    }
    const bool isPresented =
        std::ranges::any_of(parts_, [](const MmsPart& part) { return part.type.type == kSmilType; });
    return whole && count <= read + (read > 0 && !isPresented ? 1 : 0);
}

bool CMMSECodec::ReadPart(OctetReader& in) {
    const std::uint64_t headersLength = wsp::ReadUintvar(in);
    const std::uint64_t dataLength = wsp::ReadUintvar(in);
    MmsPart part;
    const std::string_view headers = in.Take(headersLength);
    part.data = in.Take(dataLength);
    if (in.Overrun()) return false;
    const bool whole = ReadPartHeaders(OctetReader(headers), part);
    parts_.push_back(part);
    return whole;
}

std::uint8_t CMMSECodec::MessageType() const {
    return static_cast<std::uint8_t>(Field(mms::header::kMessageType).token);
}

const MmsField& CMMSECodec::Field(std::uint8_t number) const {
    static const MmsField none;
    const auto field = std::ranges::find(fields_, number, &MmsField::number);
    return field != fields_.end() ? *field : none;
}

std::string CMMSECodec::Dump() const {
    std::string out;
    for (const MmsField& field : fields_) out += DumpOf(field) + '\n';
    for (const MmsPart& part : parts_) {
        out += "Part " + QuotedText(part.type.type);
        if (part.type.charset != 0) out += " charset=" + std::to_string(part.type.charset);
        out += " id=" + QuotedText(part.contentId) + " location=" + QuotedText(part.location);
        if (!part.boundary.empty()) out += " boundary=" + QuotedText(part.boundary);
        out += ' ' + std::to_string(part.data.size()) + " octets\n";
    }
    return out;
}
