#include "mms/MmsMessage.h"

#include "Common/Mime/MultipartWriter.h"
#include "Common/Wsp/MmsNumbers.h"
#include "Common/Wsp/WspCharsets.h"
#include "foundation/Addresses.h"
#include "foundation/BinaryFile.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"
#include "mms/MM1Body.h"
#include "mms/MM4Body.h"
#include "mms/MM7Body.h"
#include "mms/MMSECodec.h"
#include "mms/MmsAddresses.h"
#include "mms/MmsSlide.h"
#include "mms/MmsSmil.h"
#include "mms/NameToken.h"

#include <algorithm>
#include <utility>

namespace {

// The id of a part as mails have it; units come with and without the brackets.
std::string Bracketed(std::string_view id) {
    if (id.empty()) return {};
    std::string text(id.starts_with('<') ? "" : "<");
    text += id;
    if (!id.ends_with('>')) text += '>';
    return text;
}

}  // namespace

void CMmsMessage::SetFrom(std::string from) {
    From = std::move(from);
    if (address::IsSenderNumber(From)) {
        From += mms::kTypeNumber;
    } else if (address::IsIPv4(From)) {
        From += mms::kTypeIPv4;
    }
}

void CMmsMessage::SetEncoded(std::string octets) {
    Clear();
    EncodedMessage = std::move(octets);
}

CMmsRecipients* CMmsMessage::ListOf(std::int32_t type) {
    const bool known = type >= 0 && static_cast<std::size_t>(type) < Recipients.size();
    return known ? &Recipients[static_cast<std::size_t>(type)] : nullptr;
}

ResultCode CMmsMessage::AddRecipient(std::string_view address, std::int32_t type) {
    CMmsRecipients* const list = ListOf(type);
    if (address.empty()) return list != nullptr ? result::Success : result::NoRecipient;
    std::string entry(address);
    if (address::IsNumber(address)) {
        entry += mms::kTypeNumber;
    } else if (address::IsIPv4(address)) {
        entry += mms::kTypeIPv4;
    } else if (!address::IsMail(address)) {
        return result::InvalidMmsRecipient;
    }
    if (list == nullptr) return result::NoRecipient;
    list->Add(entry);
    return result::Success;
}

ResultCode CMmsMessage::RecipientAt(std::int32_t type, std::size_t index, std::string& address) {
    const CMmsRecipients* const list = ListOf(type);
    address = list != nullptr ? list->Address(index) : std::string_view();
    return address.empty() ? result::NoMoreRecipients : result::Success;
}

ResultCode CMmsMessage::FirstRecipient(std::int32_t type, std::string& address) {
    RecipientCursor = 0;
    return RecipientAt(type, 0, address);
}

ResultCode CMmsMessage::NextRecipient(std::int32_t type, std::string& address) {
    return RecipientAt(type, RecipientCursor++, address);
}

void CMmsMessage::ClearRecipients() {
    for (CMmsRecipients& list : Recipients) list.Clear();
}

void CMmsMessage::AddSlide(const CMmsMessageSlide& slide) {
    const std::int32_t id = NextSlideId++;
    if (!slide.parts.empty()) Slides.push_back({id, slide.duration, slide.parts});
}

const CMmsMessageSlide* CMmsMessage::FirstSlide() {
    SlideCursor = 0;
    return NextSlide();
}

const CMmsMessageSlide* CMmsMessage::NextSlide() {
    return SlideCursor < Slides.size() ? &Slides[SlideCursor++] : nullptr;
}

ResultCode CMmsMessage::Encode() {
    const ResultCode code = EncodeAs(Protocol);
    EncodeResult = code;
    return code;
}

// Class and priority are not checked: the checks that 34135 and 34136 stand for have never refused anything.
ResultCode CMmsMessage::EncodeAs(std::int32_t protocol) {
    if (std::ranges::all_of(Recipients, &CMmsRecipients::IsEmpty)) return result::NoRecipient;
    if (Slides.empty()) return result::MmsNoSlides;
    TransactionId = NameToken();
    BuildSmil();
    const std::int64_t now = GetClock().Now();
    switch (protocol) {
        case mms::asMMS_PROTOCOL_MM4:
            Boundary = mime::NewBoundary();
            CMM4Body(*this, GetClock(), now).Encode(EncodedMessage, Boundary);
            return result::Success;
        case mms::asMMS_PROTOCOL_MM7:
            return CMM7Body(*this, now).Encode(EncodedMessage, Boundary);
        default:
            return CMM1Body(*this, now).Encode(EncodedMessage);
    }
}

void CMmsMessage::BuildSmil() {
    Smil.contentType = kSmilType;
    Smil.contentLocation = TransactionId + ".smil";
    Smil.contentId = '<' + Smil.contentLocation + '>';
    Smil.data = CustomSmil.empty() ? SmilOf(Slides) : CustomSmil;
}

ResultCode CMmsMessage::Decode() {
    CMMSECodec unit;
    const ResultCode code = unit.Decode(EncodedMessage);
    if (code != result::Success && unit.Fields().empty()) return code;  // no unit at all
    TakeFields(unit);
    TakeParts(unit);
    return code;
}

void CMmsMessage::TakeFields(const CMMSECodec& unit) {
    constexpr std::uint8_t kNumbers[] = {mms::header::kTo, mms::header::kCc, mms::header::kBcc};
    From = mms::AddressIn(unit.Field(mms::header::kFrom));
    for (std::size_t list = 0; list < Recipients.size(); ++list) {
        Recipients[list].Clear();
        for (const MmsField& field : unit.Fields()) {
            if (field.number == kNumbers[list]) Recipients[list].Add(mms::AddressIn(field));
        }
    }
    const MmsField& subject = unit.Field(mms::header::kSubject);
    Subject = wsp::WideText(subject.text, subject.charset);
    TransactionId = unit.Field(mms::header::kTransactionId).text;
    RequestReadReceipt = unit.Field(mms::header::kReadReport).token == mms::kYes;
    RequestDeliveryReport = unit.Field(mms::header::kDeliveryReport).token == mms::kYes;
    Class = mms::ClassIn(unit.Field(mms::header::kMessageClass));
    const std::uint32_t priority = unit.Field(mms::header::kPriority).token;
    Priority =
        priority != 0 ? static_cast<std::int32_t>(priority - mms::kPriorityBase) : mms::asMMS_PRIORITY_NORMAL;
}

void CMmsMessage::TakeParts(const CMMSECodec& unit) {
    Slides.clear();
    SlideCursor = 0;
    CustomSmil.clear();
    CMmsMessageSlide& slide = Slides.emplace_back();
    slide.id = NextSlideId++;
    slide.parts.reserve(unit.Parts().size());
    for (const MmsPart& part : unit.Parts()) {
        if (part.type.type == kSmilType) {
            CustomSmil = part.data;
            continue;
        }
        slide.parts.push_back({std::string(part.type.type), Bracketed(part.contentId),
                               std::string(part.location), std::string(part.boundary), std::string(part.data),
                               wsp::CodePageOf(part.type.charset).value_or(0)});
    }
}

ResultCode CMmsMessage::SaveToFile(const std::string& file, std::int32_t format) {
    const bool retrieved = format == mms::asMMS_MM1FILE_MRETRIEVECONF;
    // Also when encoding throws, the next one is as usual.
    struct Usual {
        std::int32_t& format;
        ~Usual() { format = mms::asMMS_MM1FILE_MSENDREQ; }
    };
    ResultCode code = result::Success;
    {
        const Usual afterwards{FileFormat};
        FileFormat = retrieved ? mms::asMMS_MM1FILE_MRETRIEVECONF : mms::asMMS_MM1FILE_MSENDREQ;
        code = EncodeAs(mms::asMMS_PROTOCOL_MM1);
    }
    if (code != result::Success) return code;
    return WriteBinaryFile(file, EncodedMessage) ? result::Success : result::MmsSaveFailed;
}

ResultCode CMmsMessage::LoadFromFile(const std::string& file) {
    auto octets = ReadBinaryFile(file, kLargestMmsFile);
    if (!octets) return result::MmsInvalidAttachment;
    EncodedMessage = *std::move(octets);
    return Decode();
}

ResultCode CMmsMessage::LoadCustomSmil(const std::string& file) {
    auto text = ReadBinaryFile(file, kLargestMmsFile);
    if (!text) return result::MmsInvalidSmil;
    ReplaceAll(*text, "\r\n", "\n");  // as text is read
    CustomSmil = *std::move(text);
    return result::Success;
}
