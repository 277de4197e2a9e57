#include "mms/MM7Body.h"

#include "Common/Mime/MultipartWriter.h"
#include "foundation/Addresses.h"
#include "foundation/Clock.h"
#include "foundation/CodePage.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Utf8.h"
#include "foundation/XmlText.h"
#include "mms/MmsAddresses.h"
#include "mms/MmsMime.h"
#include "mms/MmsSmil.h"
#include "mms/MmsVersions.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t kLongestSubject = 40;
constexpr std::int64_t kSecondsPerMinute = 60;
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kEnvelopeId = "<mm7_msg>";
constexpr std::string_view kContentId = "<mms_cid>";
constexpr std::string_view kRawMark = "NOTAG:";

// --- texts of the envelope

// In one line, and of characters that XML can hold.
std::string Utf8Line(std::u16string text) {
    std::ranges::replace_if(
        text, [](char16_t c) { return c < ' ' && c != '\t'; }, u' ');
    std::ranges::replace_if(
        text, [](char16_t c) { return c >= 0xFFFE; }, u'\xFFFD');
    return ToUtf8(text);
}
std::string Escaped(std::u16string text) { return xml::Escape(Utf8Line(std::move(text))); }
std::string Escaped(std::string_view ansi) { return Escaped(FromAnsi(ansi)); }

void AddLine(std::string& out, std::string_view line) { out.append(line).append(kLineEnd); }

// `text` is as it has to stand there.
void AddElement(std::string& out, std::string_view name, std::string_view text) {
    out.append("<").append(name).append(">").append(text).append("</").append(name).append(">\r\n");
}
void AddIfAny(std::string& out, std::string_view name, const std::string& ansi) {
    if (!ansi.empty()) AddElement(out, name, Escaped(ansi));
}

// The number without its type; empty for what is none.
std::string_view NumberIn(std::string_view address) {
    if (address.ends_with(mms::kTypeNumber)) {
        return address.substr(0, address.size() - mms::kTypeNumber.size());
    }
    return address::IsSenderNumber(address) ? address : std::string_view();
}

// The names of the values from 0 on; class 1 and 2 are swapped against their constants, and always have been.
constexpr auto kClasses =
    std::to_array<std::string_view>({"Personal", "Informational", "Advertisement", "Auto"});
constexpr auto kPriorities = std::to_array<std::string_view>({"Low", "Normal", "High"});

template <std::size_t N>
std::string_view NameOf(const std::array<std::string_view, N>& names, std::int32_t value,
                        std::string_view other) {
    const bool isKnown = value >= 0 && static_cast<std::size_t>(value) < N;
    return isKnown ? names[static_cast<std::size_t>(value)] : other;
}

std::string_view TextOf(bool flag) { return flag ? "true" : "false"; }

}  // namespace

CMM7Body::CMM7Body(const CMmsMessage& message, std::int64_t now)
    : message_(message),
      now_(now),
      outerBoundary_(mime::NewBoundary()),
      innerBoundary_(mime::NewBoundary()) {}

ResultCode CMM7Body::Encode(std::string& out, std::string& headers) const {
    // So many characters are at most 120 octets in UTF-8.
    if (message_.Subject.size() > kLongestSubject) return result::MmsSubjectTooLong;
    out.clear();
    mime::MultipartWriter body(out, outerBoundary_);
    body.Part({{"Content-Type", "text/xml; charset=utf-8"}, {"Content-ID", kEnvelopeId}});
    WriteEnvelope(out);
    out.reserve(out.size() + ContentSize());
    const std::string type = "multipart/related; start=\"<" + message_.TransactionId + ".smil>\"; type=\"" +
                             kSmilType + "\"; boundary=\"" + innerBoundary_ + '"';
    body.Part({{"Content-Type", type}, {"Content-ID", kContentId}});
    WriteContent(out);
    body.End();
    headers = "SOAPAction: \"\"\r\nContent-Type: multipart/related; boundary=\"" + outerBoundary_ +
              R"("; type="text/xml"; start="<mm7_msg>")";
    return result::Success;
}

// --- the envelope

void CMM7Body::WriteEnvelope(std::string& out) const {
    const std::string schema = mms::SchemaNamespace(message_.Settings.schema);
    AddLine(out, R"(<?xml version="1.0" encoding="UTF-8"?>)");
    AddLine(out, R"(<env:Envelope xmlns:env="http://schemas.xmlsoap.org/soap/envelope/">)");
    AddLine(out, "<env:Header>");
    AddLine(out, "<TransactionID xmlns=\"" + schema + R"(" env:mustUnderstand="1" >)" +
                     Escaped(message_.TransactionId) + "</TransactionID>");
    AddLine(out, "</env:Header>");
    AddLine(out, "<env:Body>");
    AddLine(out, "<SubmitReq xmlns=\"" + schema + "\" >");
    AddElement(out, "MM7Version", mms::VersionText(message_.Settings.version));
    WriteSender(out);
    WriteRecipients(out);
    WriteMessageFields(out);
    AddLine(out, R"(<Content href="cid:mms_cid" />)");
    AddLine(out, "</SubmitReq>");
    AddLine(out, "</env:Body>");
    AddLine(out, "</env:Envelope>");
}

void CMM7Body::WriteSender(std::string& out) const {
    const MmsSettings& settings = message_.Settings;
    const std::string& from = message_.From;
    if (settings.vaspId.empty() && settings.vasId.empty() && from.empty()) return;
    AddLine(out, "<SenderIdentification>");
    AddIfAny(out, "VASPID", settings.vaspId);
    AddIfAny(out, "VASID", settings.vasId);
    if (!from.empty()) {
        out += "<SenderAddress>";
        if (from.starts_with(kRawMark)) {  // what follows is the caller's own XML
            out += Utf8Line(FromAnsi(from.substr(kRawMark.size())));
        } else if (const std::string_view number = NumberIn(from); !number.empty()) {
            AddElement(out, "Number", Escaped(number));
        } else {
            const bool isMail = address::IsMail(from);
            AddElement(out, isMail ? "RFC2822Address" : "ShortCode", Escaped(from));
        }
        out += "</SenderAddress>";
    }
    AddLine(out, "</SenderIdentification>");
}

// Addresses that are neither numbers nor mail have no element.
void CMM7Body::WriteRecipients(std::string& out) const {
    constexpr std::string_view kLists[] = {"To", "Cc", "Bcc"};
    AddLine(out, "<Recipients>");
    for (std::size_t list = 0; list < message_.Recipients.size(); ++list) {
        if (message_.Recipients[list].IsEmpty()) continue;
        const std::string name(kLists[list]);
        AddLine(out, "<" + name + ">");
        for (const std::string& address : message_.Recipients[list].Addresses()) {
            if (const std::string_view number = NumberIn(address); !number.empty()) {
                AddElement(out, "Number", Escaped(number));
            } else if (address::IsMail(address)) {
                AddElement(out, "RFC2822Address", Escaped(address));
            }
        }
        AddLine(out, "</" + name + ">");
    }
    AddLine(out, "</Recipients>");
}

void CMM7Body::WriteMessageFields(std::string& out) const {
    AddIfAny(out, "ServiceCode", message_.Settings.serviceCode);
    if (message_.ValidityPeriod != 0) {
        const std::int64_t expiry = now_ + message_.ValidityPeriod * kSecondsPerMinute;
        AddElement(out, "ExpiryDate", UtcTimeText(std::max<std::int64_t>(expiry, 1)));
    }
    const std::string_view messageClass = NameOf(kClasses, message_.Class, {});
    if (!messageClass.empty()) AddElement(out, "MessageClass", messageClass);
    AddElement(out, "DeliveryReport", TextOf(message_.RequestDeliveryReport));
    AddElement(out, "ReadReply", TextOf(message_.RequestReadReceipt));
    AddElement(out, "Priority", NameOf(kPriorities, message_.Priority, "Normal"));
    AddElement(out, "Subject", Escaped(message_.Subject));
}

// --- the parts

template <class Use>
void CMM7Body::ForEachPart(Use use) const {
    use(message_.Smil);
    for (const CMmsMessageSlide& slide : message_.Slides) {
        for (const CMmsMessagePart& part : slide.parts) use(part);
    }
}

// At least what the parts need, so that their memory is asked for once.
std::size_t CMM7Body::ContentSize() const {
    std::size_t size = 3 * mime::MultipartWriter::kPartFraming;
    ForEachPart([&size](const CMmsMessagePart& part) {
        size += mime::MultipartWriter::kPartFraming + part.data.size() + part.contentType.size() +
                3 * (part.contentId.size() + part.contentLocation.size());
    });
    return size;
}

void CMM7Body::WriteContent(std::string& out) const {
    mime::MultipartWriter content(out, innerBoundary_);
    ForEachPart([&content](const CMmsMessagePart& part) {
        content.Part({{"Content-Type", mms::MimeTypeOf(part)},
                      {"Content-ID", part.contentId},
                      {"Content-Location", part.contentLocation},
                      {"Content-Transfer-Encoding", "binary"}});
        content.Binary(part.data);
    });
    content.End();
}
