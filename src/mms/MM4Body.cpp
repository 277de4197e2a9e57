#include "mms/MM4Body.h"

#include "Common/Mime/HeaderText.h"
#include "Common/Mime/MultipartWriter.h"
#include "mms/MmsAddresses.h"
#include "mms/MmsMime.h"
#include "mms/MmsVersions.h"

#include <algorithm>
#include <array>

namespace {

std::string_view YesOrNo(bool flag) { return flag ? "Yes" : "No"; }

std::string_view PriorityText(std::int32_t priority) {
    switch (priority) {
        case mms::asMMS_PRIORITY_LOW:
            return "Low";
        case mms::asMMS_PRIORITY_HIGH:
            return "High";
        default:
            return "Normal";
    }
}

void WritePart(mime::MultipartWriter& writer, const CMmsMessagePart& part) {
    writer.Part({{"Content-Type", mms::MimeTypeOf(part)},
                 {"Content-Transfer-Encoding", "base64"},
                 {"Content-ID", part.contentId},
                 {"Content-location", part.contentLocation}});
    writer.Base64(part.data);
}

// At the most: names may become encoded-words.
std::size_t SizeOf(const CMmsMessagePart& part) {
    constexpr std::size_t kEncoded = 6;
    const std::size_t names = part.contentType.size() + part.contentId.size() + part.contentLocation.size();
    return mime::Base64Size(part.data.size()) + mime::MultipartWriter::kPartFraming + kEncoded * names;
}

}  // namespace

std::string mms::SenderOf(const CMmsMessage& message) {
    const std::string sender = BareAddress(message.From);
    return sender.empty() ? "unknown" : sender;
}

void CMM4Body::Encode(std::string& out, const std::string& boundary) const {
    out.clear();
    out.reserve(Size());
    WriteHeader(out, boundary);
    mime::MultipartWriter writer(out, boundary);
    WritePart(writer, message_.Smil);
    for (const CMmsMessageSlide& slide : message_.Slides) {
        for (const CMmsMessagePart& part : slide.parts) WritePart(writer, part);
    }
    writer.End();
}

// Enough for most messages, so that memory is asked for once.
std::size_t CMM4Body::Size() const {
    constexpr std::size_t kHeader = 4096;
    constexpr std::size_t kFieldFraming = 64;
    std::size_t size = kHeader + SizeOf(message_.Smil);
    for (const CMmsRecipients& list : message_.Recipients) {
        for (const std::string& address : list.Addresses()) size += address.size() + kFieldFraming;
    }
    for (const CMmsMessageSlide& slide : message_.Slides) {
        for (const CMmsMessagePart& part : slide.parts) size += SizeOf(part);
    }
    return size;
}

void CMM4Body::WriteHeader(std::string& out, std::string_view boundary) const {
    const std::string& id = message_.TransactionId;
    mime::AppendHeader(out, "X-Mms-3GPP-MMS-Version", mms::VersionText(message_.Settings.version));
    mime::AppendHeader(out, "X-Mms-Message-Type", "MM4_forward.REQ");
    mime::AppendHeader(out, "X-Mms-Transaction-Id", id);
    mime::AppendHeader(out, "X-Mms-Message-Id", id);
    WriteReports(out);
    mime::AppendHeader(out, "Message-ID", '<' + id + '>');
    mime::AppendHeader(out, "Date", MailTimeText(*clock_, now_));
    WriteAddresses(out);
    mime::AppendHeader(out, "Content-Type",
                       "multipart/related; start=\"<" + id +
                           R"(.smil>"; type="application/smil"; boundary=")" + std::string(boundary) + '"');
    out += "\r\n";
}

void CMM4Body::WriteReports(std::string& out) const {
    mime::AppendHeader(out, "X-Mms-Ack Request", "No");  // a blank for the hyphen, kept
    mime::AppendHeader(out, "X-Mms-Priority", PriorityText(message_.Priority));
    mime::AppendHeader(out, "X-Mms-Delivery-Report", YesOrNo(message_.RequestDeliveryReport));
    mime::AppendHeader(out, "X-Mms-Read-Reply", YesOrNo(message_.RequestReadReceipt));
}

// Hidden recipients are named as well: what stands in the mail is for the peer, which shows them to nobody.
void CMM4Body::WriteAddresses(std::string& out) const {
    constexpr const char* kFields[] = {"To", "Cc", "Bcc"};
    const std::string sender = mms::SenderOf(message_);
    mime::AppendAddressHeader(out, "Sender", sender);
    mime::AppendAddressHeader(out, "From", sender);
    mime::AppendHeader(out, "Subject", message_.Subject);
    for (std::size_t list = 0; list < message_.Recipients.size(); ++list) {
        for (const std::string& address : message_.Recipients[list].Addresses()) {
            mime::AppendAddressHeader(out, kFields[list], mms::BareAddress(address));
        }
    }
}
