#include "gsm/GsmStatusPdu.h"

#include "foundation/Hex.h"
#include "sms/SmsConstants.h"

namespace {
constexpr std::uint8_t kMessageType = 0x03;
constexpr std::uint8_t kStatusReport = 0x02;

std::string ReportText(const CGsmStatusPdu& pdu, Clock& clock) {
    const LocalTimeText time = TimeText(clock, pdu.dischargeSeconds);
    std::string text;
    text.reserve(2 + 1 + std::string_view(time).size() + 1 + 3);
    hex::Append(text, pdu.messageReference);
    text.append(1, ',').append(time).append(1, ',');
    if (pdu.status >= 100) text += static_cast<char>('0' + pdu.status / 100);
    text += static_cast<char>('0' + pdu.status / 10 % 10);
    text += static_cast<char>('0' + pdu.status % 10);
    return text;
}
}  // namespace

bool CGsmStatusPdu::Decode(Clock& clock) {
    serviceCentre = ServiceCentre().digits;
    if ((Octet() & kMessageType) != kStatusReport) return false;
    messageReference = Octet();
    recipient = Address();
    timeStamp = ReadTimeStamp();
    dischargeTime = ReadTimeStamp();
    status = Octet();
    dischargeSeconds = TimeStampSeconds(dischargeTime, clock);
    report = ReportText(*this, clock);
    return true;
}

std::int32_t StatusOfOctet(std::uint8_t status) {
    switch (status) {
        case 0x00:
            return sms::asDELIVERYSTATUS_DELIVERED;
        case 0x01:
        case 0x02:
        case 0x20:
        case 0x21:
        case 0x22:
        case 0x23:
        case 0x24:
        case 0x25:
        case 0x30:
            return sms::asDELIVERYSTATUS_ENROUTE;
        case 0x40:
        case 0x41:
        case 0x43:
        case 0x44:
        case 0x45:
        case 0x49:
            return sms::asDELIVERYSTATUS_UNDELIVERABLE;
        case 0x42:
            return sms::asDELIVERYSTATUS_REJECTED;
        case 0x46:
            return sms::asDELIVERYSTATUS_EXPIRED;
        case 0x47:
        case 0x48:
            return sms::asDELIVERYSTATUS_DELETED;
        default:
            return sms::asDELIVERYSTATUS_UNKNOWN;
    }
}
