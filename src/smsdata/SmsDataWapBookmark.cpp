#include "smsdata/SmsDataWapBookmark.h"

#include "Common/Wsp/PushHeader.h"
#include "Common/Wsp/Wbxml.h"
#include "foundation/Hex.h"

namespace {

constexpr std::string_view kContentType = "application/x-wap-prov.browser-bookmarks";
constexpr std::uint8_t kVersion11 = 0x01;
constexpr std::uint8_t kUnknownPublicId = 0x01;

// Of the browser settings code page.
constexpr std::uint8_t kCharacteristicList = 0x45;
constexpr std::uint8_t kCharacteristic = 0xC6;
constexpr std::uint8_t kTypeBookmark = 0x7F;
constexpr std::uint8_t kParameter = 0x87;
constexpr std::uint8_t kName = 0x15;
constexpr std::uint8_t kUrl = 0x17;
constexpr std::uint8_t kValue = 0x11;

void WriteParameter(OctetWriter& out, std::uint8_t name, const std::string& value) {
    out.Octets({kParameter, name, kValue});
    wbxml::WriteInline(out, value);
    out.Octet(wbxml::kEnd);
}

// The content type as a value of its own length, with the charset parameter.
void WriteContentType(OctetWriter& out) {
    constexpr std::uint8_t kLengthQuote = 0x1F;
    out.Octets({kLengthQuote, kContentType.size() + 3});
    out.TextString(kContentType);
    out.Octets({0x81, 0xEA});  // charset = UTF-8
}

}  // namespace

void CSmsDataWapBookmark::Encode() {
    OctetWriter out(Description.size() + URL.size());
    WritePortHeader(out, wapport::kSettings, wapport::kSettingsSender);
    WritePush(out, ++transaction_, kContentType.size() + 5);
    WriteContentType(out);
    wbxml::WriteHead(out, kVersion11, kUnknownPublicId);
    out.Octets({kCharacteristicList, kCharacteristic, kTypeBookmark, wbxml::kEnd});
    WriteParameter(out, kName, Description);
    WriteParameter(out, kUrl, URL);
    out.Octets({wbxml::kEnd, wbxml::kEnd});
    EncodedMessage = hex::Of(out.Written());
}
