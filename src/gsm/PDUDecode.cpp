#include "gsm/PDUDecode.h"

#include "Common/GsmPdu/GsmAlphabet.h"
#include "Common/GsmPdu/Septets.h"
#include "gsm/GsmDeliverPdu.h"
#include "sms/SmsConstants.h"

namespace {

constexpr double kSeptetsPerOctet = 1.1428571428571428;

void ReadText(const CGsmDeliverPdu& pdu, std::u16string& text) {
    const std::size_t headerOctets = pdu.hasHeader ? pdu.header.OctetCount() + 1 : 0;
    const double maximum =
        static_cast<double>(pdu.userDataLength) - static_cast<double>(headerOctets) * kSeptetsPerOctet;
    if (maximum < 1) return;
    std::array<std::uint8_t, 296> codes;
    const std::size_t size =
        septets::Unpack(pdu.Data(), headerOctets, static_cast<std::size_t>(maximum), codes.data());
    std::array<char16_t, codes.size()> characters;
    text.assign(characters.data(), CGsmAlphabet::Decode({codes.data(), size}, characters.data()));
}

void ReadUnits(std::span<const std::uint8_t> octets, std::u16string& text) {
    text.resize(octets.size() / 2);
    char16_t* __restrict out = text.data();
    const std::uint8_t* __restrict in = octets.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
        out[i] = static_cast<char16_t>(in[2 * i] << 8 | in[2 * i + 1]);
    }
}

}  // namespace

bool CPDUDecode::Decode(std::string_view hexText) {
    CGsmDeliverPdu pdu(hexText);
    if (!pdu.Decode()) return false;

    serviceCentre = pdu.serviceCentre.typeOfNumber == GsmAddress::kInternational ? "+" : "";
    if (pdu.originator.typeOfNumber == GsmAddress::kInternational) {
        originator = "+";
    } else {
        serviceCentre.clear();  // on purpose not the originator
    }
    serviceCentre += pdu.serviceCentre.digits;
    originator += pdu.originator.digits;

    body.clear();
    switch (pdu.dcs & 0x0C) {
        case 0x00:
            format = sms::asMESSAGEFORMAT_TEXT;
            ReadText(pdu, body);
            break;
        case 0x04:
            format = sms::asMESSAGEFORMAT_DATA;
            body.assign(pdu.Data().begin(), pdu.Data().end());
            break;
        case 0x08:
            format = sms::asMESSAGEFORMAT_UNICODE;
            ReadUnits(pdu.Data(), body);
            break;
        default:
            break;
    }
    header = std::move(pdu.header);
    timeSeconds = TimeStampSeconds(pdu.timeStamp, *clock_);
    timeText = TimeText(*clock_, timeSeconds);
    return true;
}
