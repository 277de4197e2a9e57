#include "gsm/PDUDecode.h"

#include <algorithm>

#include "gsm/GsmAlphabet.h"
#include "gsm/GsmDeliverPdu.h"
#include "gsm/Septets.h"
#include "sms/SmsConstants.h"

namespace {

constexpr double kSeptetsPerOctet = 1.1428571428571428;

std::u16string TextOf(const CGsmDeliverPdu& pdu) {
    const std::size_t headerOctets = pdu.hasHeader ? pdu.header.OctetCount() + 1 : 0;
    const double maximum = static_cast<double>(pdu.userDataLength) - static_cast<double>(headerOctets) * kSeptetsPerOctet;
    if (maximum < 1) return {};
    std::array<std::uint8_t, 256> octets{};
    std::copy_n(pdu.units.begin(), pdu.unitCount, octets.begin());
    std::array<std::uint8_t, 296> codes{};
    const std::size_t size =
        septets::Unpack({octets.data(), pdu.unitCount}, headerOctets, static_cast<std::size_t>(maximum), codes.data());
    std::array<char16_t, 296> text{};
    return {text.data(), CGsmAlphabet::Decode({codes.data(), size}, text.data())};
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
            body = TextOf(pdu);
            break;
        case 0x04:
            format = sms::asMESSAGEFORMAT_DATA;
            body.assign(pdu.units.begin(), pdu.units.begin() + pdu.unitCount);
            break;
        case 0x08:
            format = sms::asMESSAGEFORMAT_UNICODE;
            body.assign(pdu.units.begin(), pdu.units.begin() + pdu.unitCount);
            break;
        default:
            break;
    }
    header = std::move(pdu.header);
    timeSeconds = TimeStampSeconds(pdu.timeStamp, *clock_);
    timeText = TimeText(*clock_, timeSeconds);
    return true;
}
