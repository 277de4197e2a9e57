#include "mms/MM1Body.h"

#include "Common/Wsp/MmsNumbers.h"
#include "Common/Wsp/WspCharsets.h"
#include "Common/Wsp/WspContentTypes.h"
#include "Common/Wsp/WspValues.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Utf8.h"
#include "mms/MmsFields.h"
#include "mms/MmsSmil.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongestSubject = 40;
constexpr std::int64_t kSecondsPerMinute = 60;

// Class and priority go out as they are, whatever their range.
void WriteOctet(OctetWriter& out, std::uint8_t number, std::uint32_t token) {
    WriteField(out, {.number = number, .token = token});
}
std::uint32_t TokenOf(bool flag) { return flag ? mms::kYes : mms::kNo; }

std::size_t CountParts(const CMmsMessage& message) {
    std::size_t count = 0;
    for (const CMmsMessageSlide& slide : message.Slides) count += slide.parts.size();
    return count;
}

// Headers and data of one entry, the lengths of both before them.
void WriteEntry(OctetWriter& out, const std::string& headers, const std::string& data) {
    wsp::WriteUintvar(out, static_cast<std::uint32_t>(headers.size()));
    wsp::WriteUintvar(out, static_cast<std::uint32_t>(data.size()));
    out.Text(headers);
    out.Text(data);
}

void WriteTypeOf(OctetWriter& out, const CMmsMessagePart& part) {
    const auto number = wsp::ContentTypeNumber(part.contentType);
    if (!number) return wsp::WriteText(out, part.contentType);
    const auto code = static_cast<std::uint8_t>(wsp::kShort | *number);
    const auto charset = wsp::CharsetOf(part.charset);
    if (!charset) return out.Octet(code);
    out.Octets({3, code, wsp::kCharset, static_cast<std::uint8_t>(wsp::kShort | *charset)});
}

void WriteNames(OctetWriter& out, const std::string& contentId, const std::string& location, bool hasId) {
    if (hasId) {
        out.Octets({wsp::kContentId, static_cast<std::uint8_t>(wsp::kStringQuote)});
        wsp::WriteText(out, contentId);
    }
    if (!location.empty()) {
        out.Octet(wsp::kContentLocation);
        wsp::WriteText(out, location);
    }
}

std::string HeadersOf(const CMmsMessagePart& part, std::string&& memory) {
    memory.clear();
    OctetWriter out(std::move(memory));
    WriteTypeOf(out, part);
    if (!part.drmBoundary.empty()) {  // behind the content type, not among its parameters: kept so
        wsp::WriteText(out, "boundary");
        wsp::WriteText(out, part.drmBoundary);
    }
    // The Content-ID is the bare file name, not the id in its brackets: kept so.
    WriteNames(out, part.contentLocation, part.contentLocation, !part.contentId.empty());
    return out.Take();
}

}  // namespace

ResultCode CMM1Body::Encode(std::string& out) const {
    // So many characters are at most 120 octets in UTF-8.
    if (message_.Subject.size() > kLongestSubject) return result::MmsSubjectTooLong;
    out.clear();
    out.reserve(Size());
    OctetWriter writer(std::move(out));
    WriteHeader(writer);
    WriteParts(writer);
    WriteSmil(writer);
    out = writer.Take();
    return result::Success;
}

// At least what the unit needs, so that its memory is asked for once.
std::size_t CMM1Body::Size() const {
    constexpr std::size_t kPartFraming = 2048;
    constexpr std::size_t kUnitFraming = 4097;
    std::size_t size = kUnitFraming + message_.Smil.data.size() + message_.From.size();
    for (const CMmsRecipients& list : message_.Recipients) {
        for (const std::string& address : list.Addresses()) size += address.size() + 2;
    }
    for (const CMmsMessageSlide& slide : message_.Slides) {
        for (const CMmsMessagePart& part : slide.parts) {
            size +=
                kPartFraming + part.data.size() + part.contentType.size() + 2 * part.contentLocation.size();
        }
    }
    return size;
}

void CMM1Body::WriteHeader(OctetWriter& out) const {
    const bool retrieved = message_.FileFormat == mms::asMMS_MM1FILE_MRETRIEVECONF;
    WriteOctet(out, mms::header::kMessageType, retrieved ? mms::type::kRetrieveConf : mms::type::kSendReq);
    WriteField(out, {.number = mms::header::kTransactionId, .text = message_.TransactionId});
    WriteOctet(out, mms::header::kVersion, mms::kVersion10);
    WriteField(out, {.number = mms::header::kDate, .value = static_cast<std::uint64_t>(now_)});
    WriteField(out, {.number = mms::header::kFrom,
                     .token = message_.From.empty() ? mms::kInsertAddress : mms::kAddressPresent,
                     .text = message_.From});
    WriteSubject(out);
    WriteRecipients(out);
    if (message_.ValidityPeriod != 0) {
        const std::int64_t expiry = now_ + message_.ValidityPeriod * kSecondsPerMinute;
        WriteField(out, {.number = mms::header::kExpiry,
                         .token = mms::kAbsoluteTime,
                         .value = static_cast<std::uint64_t>(expiry)});
    }
    WriteOctet(out, mms::header::kMessageClass, mms::kClassBase + static_cast<std::uint32_t>(message_.Class));
    WriteOctet(out, mms::header::kPriority,
               mms::kPriorityBase + static_cast<std::uint32_t>(message_.Priority));
    WriteOctet(out, mms::header::kDeliveryReport, TokenOf(message_.RequestDeliveryReport));
    WriteOctet(out, mms::header::kReadReport, TokenOf(message_.RequestReadReceipt));
    WriteContentType(out);
}

void CMM1Body::WriteSubject(OctetWriter& out) const {
    const std::u16string& subject = message_.Subject;
    if (subject.empty()) return;
    const bool plain = std::ranges::all_of(subject, [](char16_t c) { return c >= 32 && c <= 127; });
    WriteField(out,
               {.number = mms::header::kSubject, .text = ToUtf8(subject), .charset = plain ? 0 : wsp::kUtf8});
}

void CMM1Body::WriteRecipients(OctetWriter& out) const {
    constexpr std::uint8_t kNumbers[] = {mms::header::kTo, mms::header::kCc, mms::header::kBcc};
    for (std::size_t list = 0; list < message_.Recipients.size(); ++list) {
        for (const std::string& address : message_.Recipients[list].Addresses()) {
            WriteField(out, {.number = kNumbers[list], .text = address});
        }
    }
}

void CMM1Body::WriteContentType(OctetWriter& out) const {
    constexpr std::size_t kFraming = 5;
    const std::string start = '<' + message_.TransactionId + ".smil>";
    const std::string_view type = kSmilType;
    out.Octet(mms::header::kContentType);
    wsp::WriteValueLength(out, start.size() + type.size() + kFraming);
    out.Octets({wsp::kMultipartRelated, wsp::kStart});
    out.TextString(start);
    out.Octet(wsp::kType);
    out.TextString(type);
}

// The number of entries is one octet, which is right up to 126 parts. The presentation counts among them, be
// it there or not.
void CMM1Body::WriteParts(OctetWriter& out) const {
    out.Octet(static_cast<std::uint8_t>(CountParts(message_) + 1));
    std::string headers;
    for (const CMmsMessageSlide& slide : message_.Slides) {
        for (const CMmsMessagePart& part : slide.parts) {
            headers = HeadersOf(part, std::move(headers));
            WriteEntry(out, headers, part.data);
        }
    }
}

void CMM1Body::WriteSmil(OctetWriter& out) const {
    constexpr std::size_t kFraming = 5;
    const CMmsMessagePart& smil = message_.Smil;
    if (smil.data.empty()) return;
    OctetWriter headers(smil.contentType.size() + 3 * smil.contentLocation.size());
    wsp::WriteValueLength(headers, smil.contentType.size() + smil.contentLocation.size() + kFraming);
    headers.TextString(smil.contentType);
    headers.Octet(wsp::kName);
    headers.TextString(smil.contentLocation);
    headers.Octets({wsp::kCharset, static_cast<std::uint8_t>(wsp::kShort | wsp::kUtf8)});
    WriteNames(headers, smil.contentId, smil.contentLocation, !smil.contentId.empty());
    WriteEntry(out, headers.Written(), smil.data);
}
