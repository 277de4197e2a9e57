#include "smsdata/SmsDatavCard.h"

#include "Common/Wsp/PushHeader.h"
#include "foundation/CodePage.h"
#include "foundation/Hex.h"

#include <array>

namespace {

struct Line {
    std::string_view prefix;
    std::u16string VCardFields::*field;
};

// In the order of the card; the home number comes before the work number.
constexpr auto kLines = std::to_array<Line>({
    {"N:", &VCardFields::Name},
    {"TEL;PREF:", &VCardFields::Phone},
    {"TEL;HOME:", &VCardFields::PhoneHome},
    {"TEL;WORK:", &VCardFields::PhoneWork},
    {"TEL;CELLPHONE:", &VCardFields::Mobile},
    {"TEL;PAGER:", &VCardFields::Pager},
    {"TEL;FAX:", &VCardFields::Fax},
    {"EMAIL:", &VCardFields::Email},
    {"TITLE:", &VCardFields::Title},
    {"URL:", &VCardFields::URL},
});

// An octet from 0x80 up is written as a negative 32-bit number, FFFFFFE9 for E9. Callers rely on it.
std::string WidenedHex(std::string_view octets) {
    std::string text;
    text.reserve(2 * octets.size());
    for (const char octet : octets) {
        if ((octet & 0x80) != 0) text += "FFFFFF";
        hex::Append(text, static_cast<std::uint8_t>(octet));
    }
    return text;
}

}  // namespace

void CSmsDatavCard::Encode() {
    OctetWriter header(0);
    WritePortHeader(header, wapport::kVCard, 0);
    std::string card = "BEGIN:VCARD\r\nVERSION:2.1\r\n";
    for (const Line& line : kLines) {
        const std::u16string& value = this->*line.field;
        if (!value.empty()) card.append(line.prefix).append(ToAnsi(value)).append("\r\n");
    }
    card += "END:VCARD\r\n";
    EncodedMessage = hex::Of(header.Written()) + WidenedHex(card);
}
