#include "smsdata/SmsDataWapPush.h"

#include "Common/Wsp/PushHeader.h"
#include "Common/Wsp/Wbxml.h"
#include "foundation/Hex.h"
#include "foundation/Text.h"

#include <array>

namespace {

constexpr std::uint8_t kVersion12 = 0x02;
constexpr std::uint32_t kActionBase = 5;  // the token of action 1 is 6, in both documents

// The tokens of the href attribute follow each other in this order, in both documents. A prefix is taken out
// of the link before the next is looked for, so that the "www." forms are never chosen; receivers have come
// to see the "www." in the text.
constexpr auto kPrefixes =
    std::to_array<std::string_view>({"http://", "http://www.", "https://", "https://www."});

struct Link {
    std::uint8_t token;
    std::string rest;
};

Link LinkOf(std::string url, std::uint8_t hrefToken) {
    Link link{hrefToken, std::move(url)};
    for (std::size_t i = 0; i < kPrefixes.size(); ++i) {
        if (!ContainsNoCase(link.rest, kPrefixes[i])) continue;
        link.token = static_cast<std::uint8_t>(hrefToken + 1 + i);
        ReplaceAllNoCase(link.rest, kPrefixes[i], {});
    }
    return link;
}

// Nothing for 0, the receiver's default.
void WriteAction(OctetWriter& out, std::int32_t action) {
    if (action != 0) out.Octet(static_cast<std::uint8_t>(static_cast<std::uint32_t>(action) + kActionBase));
}

void WriteLink(OctetWriter& out, const std::string& url, std::uint8_t hrefToken) {
    const Link link = LinkOf(url, hrefToken);
    out.Octet(link.token);
    wbxml::WriteInline(out, link.rest);
}

}  // namespace

void CSmsDataWapPush::Encode() {
    ++transaction_;
    OctetWriter out(URL.size() + Description.size() + SignalReference.size());
    WritePortHeader(out, wapport::kPush, wapport::kConnectionlessWsp);
    if (ConnectionType == sms::asWAPPUSH_SERVICE_INDICATION) {
        WriteIndication(out);
    } else {
        WriteLoad(out);
    }
    EncodedMessage = hex::Of(out.Written());
}

void CSmsDataWapPush::WriteIndication(OctetWriter& out) const {
    constexpr std::uint8_t kContentType = 0xAE;  // application/vnd.wap.sic
    constexpr std::uint8_t kPublicId = 0x05;     // SI 1.0
    constexpr std::uint8_t kSi = 0x45;
    constexpr std::uint8_t kIndication = 0xC6;
    constexpr std::uint8_t kHref = 0x0B;
    constexpr std::uint8_t kSiId = 0x11;
    WritePush(out, transaction_, 1);
    out.Octet(kContentType);
    wbxml::WriteHead(out, kVersion12, kPublicId);
    out.Octets({kSi, kIndication});
    WriteLink(out, URL, kHref);
    if (!SignalReference.empty()) {
        out.Octet(kSiId);
        wbxml::WriteInline(out, SignalReference);
    }
    WriteAction(out, SignalAction);
    out.Octet(wbxml::kEnd);
    wbxml::WriteInline(out, Description);
    out.Octets({wbxml::kEnd, wbxml::kEnd});
}

void CSmsDataWapPush::WriteLoad(OctetWriter& out) const {
    constexpr std::uint8_t kContentType = 0xB0;  // application/vnd.wap.slc
    constexpr std::uint8_t kPublicId = 0x06;     // SL 1.0
    constexpr std::uint8_t kSl = 0x85;
    constexpr std::uint8_t kHref = 0x08;
    WritePush(out, transaction_, 1);
    out.Octet(kContentType);
    wbxml::WriteHead(out, kVersion12, kPublicId);
    out.Octet(kSl);
    WriteLink(out, URL, kHref);
    WriteAction(out, ExecuteAction);
    out.Octet(wbxml::kEnd);
}
